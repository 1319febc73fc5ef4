// Whether a single curve deserves a place in a group mean: its two ends must
// lie at least a standard deviation apart (a transition was measured), and a
// quick fit at a fixed RT must reach an R squared of 0.95 on its kept points.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// 1.0 for a usable curve, 0.0 for one that is not.  x and y must have the
// same count, within the family's minimum and 384, and differing end
// abscissas.  The unmasked form keeps what a spike screening of y keeps.
template <int T>
real_T curveUsable(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount);

// The kept points are those whose mask entry is 1; a mask shorter than the
// curve keeps none of the points it does not reach.
template <int T>
real_T curveUsableMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                         const int32_T* mask, int32_T maskCount);

// The same with a host's mask (data, size), read by the stride of its first
// dimension.
template <int T>
real_T curveUsableMaskedPair(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                             const int32_T* maskData, const int32_T* maskSize);

extern template real_T curveUsable<1>(const real_T*, int32_T, const real_T*, int32_T);
extern template real_T curveUsableMasked<1>(const real_T*, int32_T, const real_T*, int32_T, const int32_T*, int32_T);
extern template real_T curveUsableMaskedPair<1>(const real_T*, int32_T, const real_T*, int32_T, const int32_T*, const int32_T*);

}  // namespace quent
