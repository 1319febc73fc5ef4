// Start baselines from the straight stretches at the two ends of a curve: each
// end is followed inward while the point-to-point slopes agree, and a line is
// fitted to that stretch.  Shared by the start attempts of every family.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// The four baseline entries of a parameter vector, in vector order.
struct BaselinePairs {
  real_T nativeIntercept;
  real_T nativeSlope;
  real_T unfoldedIntercept;
  real_T unfoldedSlope;
};

// Baselines of the n points (x ascending, n >= 3).  Only the first 384
// points feed the slopes; on short curves the stretch of the unfolded end
// reads slopes before the first point as 0.0, and its line starts at the
// first point.  A coefficient that comes out exactly 0.0 takes the plain
// start (slope 0.001, intercept the end's signal).
BaselinePairs segmentBaselines(const real_T* x, const real_T* y, int32_T n);

}  // namespace quent
