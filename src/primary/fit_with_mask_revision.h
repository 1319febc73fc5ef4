// The repeated fit behind the first reference row: a masked strategy fit,
// then a residual revision of the spike mask, until the mask settles or five
// rounds have run.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Fits the n points x, y (a mean curve or a single curve, n up to 2304) for
// the family of stateCount into row (24 entries) and writes the mask the fit
// used to mask (n entries).  Without a good round the row is cleared (zeros,
// column 12 at -1) and the mask all ones; so is a curve of which more than a
// quarter are spikes.
void fitWithMaskRevision(const real_T* x, const real_T* y, int32_T n, int32_T stateCount,
                         real_T temperatureC, real_T* row, int32_T* mask);

}  // namespace quent
