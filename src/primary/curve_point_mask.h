// The point mask of one curve under the reference row: refits of the curve
// from the reference, each followed by a residual revision of its spike mask,
// until the mask settles.  Curves of two and three transitions get a second
// pass with the amplitude shares free; the pass whose shares stay near the
// reference stands.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// For the n points x, y of a curve (n up to 2304) and a 24-column reference
// row: row (24) := the curve's row, which fails (column 12 below 0) when no
// refit passed; mask (n) := the points that row was fitted to, or all ones.
template <int T>
void buildCurveMask(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
                    real_T* row, int32_T* mask);

}  // namespace quent
