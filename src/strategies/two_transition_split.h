// Starts for the two-transition fit from the curve cut in two: one transition
// is fitted to each part and the parts are joined into a start of the whole,
// which is then fitted with its baselines held.  The hardest curves, whose
// transitions overlap, are seeded this way.
#pragma once

#include "quent_dgtrend.h"
#include "strategies/family.h"

namespace quent {

// Where a curve is cut, in positions from 1: the first part is positions 1
// to e1, the second s2 to b (they may overlap); q1 and q2 are the positions
// whose x start the midpoints of the parts; a only moves q1.
struct SplitCut {
  int32_T a, e1, s2, b, q1, q2;
};
SplitCut splitCutAt(const real_T* x, int32_T n, const real_T midpointPair[2]);
SplitCut splitCutInHalf(const real_T* x, int32_T n);

// Steps of the split attempts after the halves are fitted (H1 and H2, one
// transition each, -1.0 for a failed half).  The share of the change made at
// the junction, from measured signals: with a failed half the mean signal
// at the cut against the ends, else against the halves' outer baselines;
// outside [0.15, 0.85] it is 0.5.
real_T splitAmplitude(const CurvePoints& c, const SplitCut& cut, const real_T* H1,
                      const real_T* H2);
// The start of the whole curve joined from the halves: each transition with
// the outer baseline of its half, where the half's fit is sound.
void joinedStart(const CurvePoints& c, const SplitCut& cut, const real_T* H1, const real_T* H2,
                 real_T A, real_T RT, real_T* J);

// Cut where the two transitions of `midpointPair` meet (their mean), within
// limits that leave each part at least a few points.  result: ten entries, all
// -1.0 for a failed attempt.
void attempt2SplitAt(const CurvePoints& c, const real_T midpointPair[2], real_T RT,
                     real_T* result);

// The same without known midpoints: cut at the middle of the points.
void attempt2SplitHalf(const CurvePoints& c, real_T RT, real_T* result);

}  // namespace quent
