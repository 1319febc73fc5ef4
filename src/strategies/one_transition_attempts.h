// Start attempts of the one-transition fit: one held least-squares fit from a
// start vector built from the curve, with given baselines or a given midpoint
// where the member takes them.  A refused fit comes back as seven -1.0.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// The members, in the order of the table in one_transition_attempts.cpp.
// "At" members take a midpoint; Native/Unfolded/Both/Keep members take the
// named baseline pair.
enum class Attempt1 : int {
  ThreePointFull, ThreePointCore, FlatCore, SegmentCore,
  ThreePointFullAt, ThreePointCoreAt, FlatCoreAt, SegmentCoreAt,
  KeepNative, KeepNativeAt, KeepUnfolded, KeepUnfoldedAt,
  NativeThreePointCore, NativeThreePointCoreAt, UnfoldedThreePointCore, UnfoldedThreePointCoreAt,
  BothCore, BothCoreAt,
  NativeFlatCore, NativeFlatCoreAt, UnfoldedFlatCore, UnfoldedFlatCoreAt,
  NativeSegmentCore, NativeSegmentCoreAt, UnfoldedSegmentCore, UnfoldedSegmentCoreAt,
  Count
};

// A pair that counts as absent.
inline constexpr real_T kAbsentPair[2] = {0.0, 0.0};

// Name of a member, as the tables of the strategies call it.
const char* attempt1Name(Attempt1 member);

// Runs one member on the n points (x ascending, n >= 3).  midpoint is read by
// the At members only, and a pair only by the members that take it; a pair is
// (intercept, slope) and counts as absent when its entries add up to 0.0.
void runAttempt1(Attempt1 member, const real_T* x, const real_T* y, int32_T n, real_T RT,
                 real_T midpoint, const real_T nativePair[2], const real_T unfoldedPair[2],
                 real_T result[7]);

// A finished vector polished with both slopes and RT held, in place.
void refineBest(const real_T* x, const real_T* y, int32_T n, real_T vector[7]);

// The same fit from the first seven numbers of `table` as stored.
void refineRanked(const real_T* x, const real_T* y, int32_T n, const real_T* table,
                  real_T result[7]);

// The four free attempts at 25 degrees, for comparing models on a curve
// without a temperature.
void attemptThreePointFullFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]);
void attemptThreePointCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]);
void attemptFlatCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]);
void attemptSegmentCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]);

}  // namespace quent
