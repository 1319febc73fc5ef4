// Positions here count from 1 (split_positions.h).  Every value is formed in
// the order its formula is written, since these starts decide which minimum
// the later fits find.
#include "strategies/two_transition_split.h"

#include <algorithm>
#include <cmath>

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "frame/scalar.h"
#include "models/curve_models.h"
#include "models/plausibility.h"
#include "models/r_squared.h"
#include "numerics/line_fit.h"
#include "strategies/one_transition_attempts.h"
#include "strategies/split_positions.h"
#include "strategies/two_transition_attempts.h"

namespace quent {
namespace {

using L1 = TransitionLayout<1>;
using L2 = TransitionLayout<2>;

using split::at;
using split::kGoodPart;
using split::kLeastPoints;
using split::kTokenSlope;
using split::rounded;


// One half fitted with one transition, the start it came from, and its score.
struct Half {
  const real_T* x;
  const real_T* y;
  int32_T n;
  real_T fit[L1::kParams];
  real_T score;
};

void fitHalf(Half& h, real_T dG, real_T Cm, LineCoefficients native, LineCoefficients unfolded,
             real_T RT) {
  real_T start[L1::kParams];
  start[L1::dG(0)] = dG;
  start[L1::Cm(0)] = Cm;
  start[L1::nativeIntercept] = native.intercept;
  start[L1::nativeSlope] = native.slope;
  start[L1::unfoldedIntercept] = unfolded.intercept;
  start[L1::unfoldedSlope] = unfolded.slope;
  start[L1::RT] = RT;
  heldFit<OneTransitionModel>(h.x, h.y, h.n, start, attempts1::holdRT, h.fit);
  h.score = rSquaredOfFit<1>(h.x, h.y, h.n, h.fit);
  if (h.fit[L1::dG(0)] != kFailed && !(h.score < kGoodPart)) return;
  // A poor half is tried once more from flat baselines at its own ends.
  start[L1::nativeIntercept] = h.y[0];
  start[L1::nativeSlope] = kTokenSlope;
  start[L1::unfoldedIntercept] = h.y[h.n - 1];
  start[L1::unfoldedSlope] = kTokenSlope;
  real_T refit[L1::kParams];
  heldFit<OneTransitionModel>(h.x, h.y, h.n, start, attempts1::holdRT, refit);
  const real_T score = rSquaredOfFit<1>(h.x, h.y, h.n, refit);
  if (refit[L1::dG(0)] != kFailed && score > h.score) {
    std::copy_n(refit, L1::kParams, h.fit);
    h.score = score;
  }
}

// Transition t of the joined start J from the fit H of its half, with the
// baseline pair at H's `pair` (intercept, slope) going to J's `joined`.  A
// sound half gives its own; otherwise the transition starts at xq with an
// energy of xq * perX, and the pair is H's unless the half failed, when it
// is flat at the end signal yEnd.  A midpoint is bounded by the last signal,
// not by an x: so the procedure was tuned.
void joinHalf(const real_T* H, int pair, real_T xq, real_T perX, real_T yEnd, real_T yLast, int t,
              int joined, real_T* J) {
  const bool failed = H[L1::dG(0)] == kFailed;
  if (H[L1::dG(0)] >= 0.0 && H[L1::Cm(0)] >= 0.0 && H[L1::Cm(0)] <= yLast) {
    J[L2::dG(t)] = H[L1::dG(0)];
    J[L2::Cm(t)] = H[L1::Cm(0)];
    J[joined] = H[pair];
    J[joined + 1] = H[pair + 1];
    return;
  }
  J[L2::dG(t)] = xq * perX;
  J[L2::Cm(t)] = xq;
  J[joined] = failed ? yEnd : H[pair];
  J[joined + 1] = failed ? kTokenSlope : H[pair + 1];
}
static_assert(L1::nativeSlope == L1::nativeIntercept + 1 && L1::unfoldedSlope == L1::unfoldedIntercept + 1);
static_assert(L2::nativeSlope == L2::nativeIntercept + 1 && L2::unfoldedSlope == L2::unfoldedIntercept + 1);

void fail(real_T* result) { std::fill_n(result, L2::kParams, kFailed); }

// The start midpoints of the parts: a little inside each from its middle.
SplitCut withStartPositions(SplitCut cut, int32_T n) {
  const real_T w = roundHalfAway(n * 0.05);
  cut.q1 = static_cast<int32_T>(std::ceil((cut.a + cut.e1) / 2.0 + w));
  cut.q2 = static_cast<int32_T>(std::floor((cut.s2 + cut.b) / 2.0 - w));
  if (cut.q1 <= 0 || cut.q1 > n) cut.q1 = rounded(cut.e1 * 0.6);
  if (cut.q2 <= 0 || cut.q2 > n) cut.q2 = cut.s2 + rounded((cut.b - cut.s2) * 0.4);
  return cut;
}

// Steps common to both cuts, from the fits of the parts on.
void splitFrom(const CurvePoints& c, const SplitCut& cut, real_T RT, real_T* result) {
  const real_T* x = c.x;
  const real_T* y = c.y;
  const int32_T n = c.n;
  const int32_T q1 = cut.q1, q2 = cut.q2;
  // Cuts of curves shorter than any strategy takes, or of x not ascending,
  // may name positions outside the curve: such an attempt fails.
  const auto inside = [n](int32_T p) { return p >= 1 && p <= n; };
  if (!(cut.e1 >= 3 && inside(cut.e1) && inside(cut.s2) &&
        cut.s2 + 2 <= cut.b && cut.b == n && inside(q1) && inside(q2))) {
    fail(result);
    return;
  }

  Half h1{x, y, cut.e1, {}, 0.0};
  Half h2{x + (cut.s2 - 1), y + (cut.s2 - 1), cut.b - cut.s2 + 1, {}, 0.0};
  fitHalf(h1, 4000.0, at(x, q1), lineFit3(x, y), lineFit3(x + (cut.e1 - 3), y + (cut.e1 - 3)),
          RT);
  fitHalf(h2, 8000.0, at(x, q2), lineFit3(x + (cut.s2 - 1), y + (cut.s2 - 1)),
          lineFit3(x + (cut.b - 3), y + (cut.b - 3)), RT);
  const real_T* H1 = h1.fit;
  const real_T* H2 = h2.fit;
  real_T J[L2::kParams];
  joinedStart(c, cut, H1, H2, splitAmplitude(c, cut, H1, H2), RT, J);

  // The whole curve from J with the baselines held, amp1 free and held; the
  // better score wins, R1 on a tie, and a NaN score counts as none.
  real_T R1[L2::kParams], R2[L2::kParams];
  heldFit<TwoTransitionModel>(x, y, n, J, attempts2::hold2Baselines, R1);
  heldFit<TwoTransitionModel>(x, y, n, J, attempts2::hold2AmpBaselines, R2);
  const real_T score1 = rSquaredOfFit<2>(x, y, n, R1);
  const real_T score2 = rSquaredOfFit<2>(x, y, n, R2);
  const bool second = score1 != score1 ? true : score2 > score1;
  const real_T score = second ? score2 : score1;
  if (score == kFailed) fail(result);
  else std::copy_n(second ? R2 : R1, L2::kParams, result);

  // Two good halves rescue a whole the plausibility test refuses: their
  // transitions with J's amplitude and baselines, judged once more below.
  if (plausible<2>(result, x, n) == 0.0 && plausible<1>(H1, h1.x, h1.n) != 0.0 &&
      plausible<1>(H2, h2.x, h2.n) != 0.0) {
    std::copy_n(J, L2::kParams, result);
    result[L2::dG(0)] = H1[L1::dG(0)];
    result[L2::Cm(0)] = H1[L1::Cm(0)];
    result[L2::dG(1)] = H2[L1::dG(0)];
    result[L2::Cm(1)] = H2[L1::Cm(0)];
  }
  keepIfPlausible<2>(result, x, n);
}

}  // namespace

real_T splitAmplitude(const CurvePoints& c, const SplitCut& cut, const real_T* H1,
                      const real_T* H2) {
  const real_T* x = c.x;
  const real_T* y = c.y;
  real_T A;
  if (H1[L1::dG(0)] == kFailed || H2[L1::dG(0)] == kFailed) {
    A = (std::fabs((at(y, cut.e1) + at(y, cut.s2)) / 2.0) - at(y, 1)) /
        std::fabs(at(y, cut.b) - at(y, 1));
  } else {
    const real_T m = (at(x, cut.e1) + at(x, cut.s2)) / 2.0;
    const real_T lower = H1[L1::nativeSlope] * m + H1[L1::nativeIntercept];
    const real_T upper = H2[L1::unfoldedSlope] * m + H2[L1::unfoldedIntercept];
    A = std::fabs(((at(y, cut.e1) + at(y, cut.s2)) / 2.0 - lower) / (upper - lower));
  }
  if (A > 0.85 || A < 0.15) A = 0.5;
  return A;
}

void joinedStart(const CurvePoints& c, const SplitCut& cut, const real_T* H1, const real_T* H2,
                 real_T A, real_T RT, real_T* J) {
  const real_T yLast = at(c.y, c.n);
  J[L2::amp(0)] = A;
  J[L2::RT] = RT;
  joinHalf(H1, L1::nativeIntercept, at(c.x, cut.q1), 1500.0, at(c.y, 1), yLast, 0,
           L2::nativeIntercept, J);
  joinHalf(H2, L1::unfoldedIntercept, at(c.x, cut.q2), 2500.0, yLast, yLast, 1,
           L2::unfoldedIntercept, J);
}

SplitCut splitCutAt(const real_T* x, int32_T n, const real_T midpointPair[2]) {
  const real_T mid = (midpointPair[0] + midpointPair[1]) / 2.0;
  SplitCut cut{1, rounded(n / 2.0), rounded(n / 2.0), n, 0, 0};
  // x ascending: e1 is the last position at or below mid, s2 the last below it.
  for (int32_T i = 1; i <= n; ++i) {
    if (mid >= at(x, i)) cut.e1 = i;
    if (mid > at(x, i)) cut.s2 = i;
  }
  if (cut.e1 < 8) cut.e1 = 8;
  if (cut.e1 > n - 4) cut.e1 = n - 4;
  if (cut.e1 < 1) {
    cut.a = cut.e1;
    cut.e1 = 1;
  }
  if (cut.s2 > n - 8) cut.s2 = n - 8;
  if (cut.s2 < 5) cut.s2 = 5;
  if (cut.s2 > n) {
    cut.b = cut.s2;
    cut.s2 = n;
  }
  if (cut.s2 == cut.b) {
    cut.s2 = rounded(n / 2.0);
    cut.b = n;
  }
  return withStartPositions(cut, n);
}

SplitCut splitCutInHalf(const real_T* x, int32_T n) {
  const real_T xa = at(x, static_cast<int32_T>(std::ceil(n * 0.5)));
  const real_T xb = at(x, static_cast<int32_T>(std::floor(n * 0.51)));
  SplitCut cut{1, 0, 0, n, 0, 0};
  cut.e1 = static_cast<int32_T>(std::count_if(x, x + n, [xa](real_T v) { return v <= xa; }));
  cut.s2 = static_cast<int32_T>(std::count_if(x, x + n, [xb](real_T v) { return v < xb; }));
  return withStartPositions(cut, n);
}

void attempt2SplitAt(const CurvePoints& c, const real_T midpointPair[2], real_T RT,
                     real_T* result) {
  if (c.n < kLeastPoints) return fail(result);
  splitFrom(c, splitCutAt(c.x, c.n, midpointPair), RT, result);
}

void attempt2SplitHalf(const CurvePoints& c, real_T RT, real_T* result) {
  if (c.n < kLeastPoints) return fail(result);
  splitFrom(c, splitCutInHalf(c.x, c.n), RT, result);
}

}  // namespace quent
