// Rows of the primary fit: a refit parameter vector evaluated on the points it
// was fitted to, and the failed row of a family.  The family comes as a state
// count (transitions + 1); 2, 3 and 4 name one, two and three transitions and
// any other value takes the three-transition layout.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Row of params fitted to the n points x, y, with the exit code.  A first
// energy below 0 writes the failed row instead; a NaN one does not, and its
// row carries R squared -1.
void finishRow(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
               real_T stateCount, real_T* row);

// Failed row of the family: -1 in its parameter columns and in columns 12
// and 14, the code in 13, zero elsewhere.
void failedRow(real_T code, real_T stateCount, real_T* row);

}  // namespace quent
