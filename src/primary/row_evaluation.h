// The fitted curve of a returned row, drawn with the very models that fitted
// it, so that a host plots what was fitted and nothing of its own.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// signal[i] and fraction[i] (unfolded) := the model of the family of stateCount,
// with the parameters in row (24 values), at x[i], for i below n.  Either
// output may be null.  A row that is null or carries no fit (column 12 not
// above 0) gives NaN.  Nothing happens without x or with n below 1.
void evaluateRow(const real_T* row, int32_T stateCount, const real_T* x, int32_T n,
                 real_T* signal, real_T* fraction);

}  // namespace quent
