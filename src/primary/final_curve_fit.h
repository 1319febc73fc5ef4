// The fit of one curve for good, from the reference row: a refit with the
// amplitude shares held, and for curves of two and three transitions whose
// held fit lacks a plateau a refit with the shares free, which stands only
// while it has its plateaus and its shares stay near the reference.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// row (24) := the row of the n kept points x, y of a curve.  Fewer kept
// points than the family needs leave the blank row (zeros, -1 in column 12,
// code 0).  A curve the host did not choose (chosen false) goes through the
// same steps with failed rows in place of the refits: code 34 for the held
// one, 35 for the free one.
template <int T>
void finalCurveFit(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
                   bool chosen, real_T* row);

}  // namespace quent
