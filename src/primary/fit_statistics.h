// R squared and energy errors of a finished row, measured again on the kept
// points of its curve once the trend has replaced its energies.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Columns 14 and 15 (16, 17 with more transitions) of row from the model of
// the family of stateCount on the n kept points x, y.  An error that cannot
// be computed is -1, also where it came out NaN.
void refreshFitStatistics(int32_T stateCount, const real_T* x, const real_T* y, int32_T n,
                          real_T* row);

}  // namespace quent
