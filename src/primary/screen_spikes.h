// Spike screening of a raw curve, before any model exists: a point that
// stands apart from both neighbours by more than a threshold is dropped.  The
// threshold grows from the ends towards the middle, where the transition
// makes steep steps legitimate.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// mask[i] := 1 for a point kept, 0 for a spike, for the n points of y.  A
// curve of fewer than 5 points has no order statistics to measure its spread
// by, and one of more than 2304 is not screened: both keep every point.
void screenSpikes(const real_T* y, int32_T n, int32_T* mask);

}  // namespace quent
