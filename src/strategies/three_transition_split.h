// Starts for the three-transition fit from the curve cut in three stretches
// that overlap: one transition is fitted to each stretch, and the stretches
// are joined into a start of the whole, which is then fitted in the member's
// hold form.  Curves whose transitions crowd each other are seeded this way.
#pragma once

#include "engine/held_mask.h"
#include "quent_dgtrend.h"
#include "strategies/family.h"

namespace quent {

// Where a curve is cut, in positions from 1: the stretches are 1 to b1, b2 to
// b3 and b4 to n; p1, p2 and p3 are the positions whose x start their
// midpoints.
struct StretchCut {
  int32_T b1, b2, b3, b4, p1, p2, p3;
};
// Cut at fixed shares of the points: the last x at or below the x at ceil(0.35
// n), the first below floor(0.3 n), and so on at 0.7 and 0.65.
StretchCut stretchCutByShare(const real_T* x, int32_T n);
// Cut where neighbouring transitions of `midpointTriple` meet, j1 = (m1 +
// m2) / 2 and j2 = (m2 + m3) / 2: b1 the last position with x at or below
// j1 and b2 the last below it, b3 and b4 likewise at j2 (b1 = round(0.35 n),
// b2 = round(0.3 n), b3 = round(0.7 n), b4 = round(0.65 n) where no x
// qualifies).  The ends b1 and b3 below 8 become 8 and above n - 4 become n -
// 4; the starts b2 and b4 above n - 8 become n - 8 and below 5 become 5.  The
// seeds fall back to round(0.18 n) and round(0.82 n) at the outer stretches.
StretchCut stretchCutAt(const real_T* x, int32_T n, const real_T midpointTriple[3]);

// One transition fitted to each stretch (-1.0 throughout for a stretch that
// failed or has no point); seven entries each.
struct StretchFits {
  real_T fit[3][7];
};

// The shares of the change made at the two junctions, from the fitted values
// of the stretches on either side against their outer baselines, or from
// measured signals where a stretch failed.  Outside [0.15, 0.85] the first
// is 0.35 and the second 0.65.
void junctionAmplitudes(const CurvePoints& c, const StretchCut& cut, const StretchFits& s,
                        real_T amplitudes[2]);
// The start of the whole curve joined from the stretches: each transition,
// and the outer baselines, from its stretch where that fit stands.
void joinedStretches(const CurvePoints& c, const StretchCut& cut, const StretchFits& s,
                     const real_T amplitudes[2], real_T RT, real_T* J);

// result: thirteen entries, all -1.0 for a failed attempt; it fails on fewer
// than 8 points, and on cuts naming positions outside the curve.
void attempt3Split(const CurvePoints& c, real_T RT, const HeldMask<13>& holdForm,
                   real_T* result);
void attempt3SplitAt(const CurvePoints& c, const real_T midpointTriple[3], real_T RT,
                     const HeldMask<13>& holdForm, real_T* result);

}  // namespace quent
