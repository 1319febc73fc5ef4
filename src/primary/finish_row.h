// The row of a refit of the primary fit: a parameter vector evaluated on the
// points it was fitted to.  The refits judge their vectors by the sign of the
// first energy alone, so a NaN energy still gets a row, which then fails every
// quality gate by its R squared of -1.
#pragma once

#include "frame/fit_row.h"
#include "quent_dgtrend.h"

namespace quent {

// Row of the T-transition params fitted to the n points x, y, with the exit
// code; a first energy below 0 writes the failed row instead.
template <int T>
void finishRow(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
               real_T* row) {
  if (params[TransitionLayout<T>::dG(0)] < 0.0)
    writeFailedRow<T>(code, row);
  else
    writeFittedRow<T>(x, y, n, params, code, row);
}

}  // namespace quent
