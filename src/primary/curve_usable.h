// Whether a single curve deserves a place in a group mean: its two ends must
// lie at least a standard deviation apart (a transition was measured), and a
// quick fit at a fixed RT must reach an R squared of 0.95 on its kept points.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// 1.0 for a curve usable under the family of stateCount, 0.0 for one that is
// not.  x and y must have the same count, within the family's least number
// of points and 384, and differing end abscissas.  The unmasked form keeps
// what a spike screening of y keeps.
real_T curveUsable(int32_T stateCount, const real_T* x, int32_T xCount, const real_T* y,
                   int32_T yCount);

// The kept points are those whose mask entry is 1; a mask shorter than the
// curve keeps none of the points it does not reach.
real_T curveUsableMasked(int32_T stateCount, const real_T* x, int32_T xCount, const real_T* y,
                         int32_T yCount, const int32_T* mask, int32_T maskCount);

// The same with a host's mask (data, size), read by the stride of its first
// dimension.
real_T curveUsableMaskedPair(int32_T stateCount, const real_T* x, int32_T xCount,
                             const real_T* y, int32_T yCount, const int32_T* maskData,
                             const int32_T* maskSize);

}  // namespace quent
