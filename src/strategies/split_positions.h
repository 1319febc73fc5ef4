// Positions in a curve counted from 1, as the cut arithmetic of the split
// attempts was tuned in them, and the rounding that makes them.
#pragma once

#include "frame/scalar.h"
#include "quent_dgtrend.h"

namespace quent {
namespace split {

// Entry i (from 1) of v.
inline real_T at(const real_T* v, int32_T i) { return v[i - 1]; }

// The position nearest v, halves away from zero.
inline int32_T rounded(real_T v) { return static_cast<int32_T>(roundHalfAway(v)); }

// The slope of the flat baselines a poor part of a split curve restarts from.
constexpr real_T kTokenSlope = 0.001;

// A part whose fit scores below this is fitted once more.
constexpr real_T kGoodPart = 0.99;

// Fewer points than this cannot carry a cut: it would read positions the
// points do not have.
constexpr int32_T kLeastPoints = 8;

}  // namespace split
}  // namespace quent
