// Positions here count from 1 (split_positions.h).  Every value is formed in
// the order its formula is written, since these starts decide which minimum
// the later fits find.
#include "strategies/three_transition_split.h"

#include <algorithm>
#include <cmath>

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "models/curve_models.h"
#include "models/plausibility.h"
#include "models/r_squared.h"
#include "numerics/line_fit.h"
#include "strategies/one_transition_attempts.h"
#include "strategies/split_positions.h"

namespace quent {
namespace {

using L1 = TransitionLayout<1>;
using L3 = TransitionLayout<3>;
using split::at;
using split::kGoodPart;
using split::kLeastPoints;
using split::kTokenSlope;
using split::rounded;


struct Stretch {
  const real_T* x;
  const real_T* y;
  int32_T n;  // 0 or less: the stretch ends before it starts
};

Stretch stretch(const CurvePoints& c, int32_T first, int32_T last) {
  return {c.x + (first - 1), c.y + (first - 1), last - first + 1};
}

void failVector(real_T* v, int count) { std::fill_n(v, count, kFailed); }

// A poor stretch is fitted once more from flat baselines at its own ends, and
// that fit stands whatever it scores.
void fitStretch(const Stretch& s, real_T dG, real_T Cm, LineCoefficients native,
                LineCoefficients unfolded, real_T RT, real_T* fit) {
  if (s.n < 1) {
    failVector(fit, L1::kParams);
    return;
  }
  real_T start[L1::kParams];
  start[L1::dG(0)] = dG;
  start[L1::Cm(0)] = Cm;
  start[L1::nativeIntercept] = native.intercept;
  start[L1::nativeSlope] = native.slope;
  start[L1::unfoldedIntercept] = unfolded.intercept;
  start[L1::unfoldedSlope] = unfolded.slope;
  start[L1::RT] = RT;
  heldFit<OneTransitionModel>(s.x, s.y, s.n, start, attempts1::holdRT, fit);
  if (!(rSquaredOfFit<1>(s.x, s.y, s.n, fit) < kGoodPart)) return;
  start[L1::nativeIntercept] = s.y[0];
  start[L1::nativeSlope] = kTokenSlope;
  start[L1::unfoldedIntercept] = s.y[s.n - 1];
  start[L1::unfoldedSlope] = kTokenSlope;
  heldFit<OneTransitionModel>(s.x, s.y, s.n, start, attempts1::holdRT, fit);
}

real_T fittedAt(const real_T* fit, real_T x) {
  real_T y;
  curveModel<1>(fit, &x, 1, &y);
  return y;
}

// The share of the change made at the junction of stretch fits A (before)
// and B (after), where A ends at position e and B starts at s; or, when
// either failed, the mean signal there measured from the first signal
// against `span`.
real_T junctionAmplitude(const CurvePoints& c, const real_T* A, const real_T* B, int32_T e,
                         int32_T s, real_T span, real_T fallback) {
  real_T amp;
  if (A[L1::dG(0)] == kFailed || B[L1::dG(0)] == kFailed) {
    amp = (std::fabs((at(c.y, e) + at(c.y, s)) / 2.0) - at(c.y, 1)) / span;
  } else {
    const real_T xj = (at(c.x, e) + at(c.x, s)) / 2.0;
    const real_T lower = A[L1::nativeSlope] * xj + A[L1::nativeIntercept];
    const real_T upper = B[L1::unfoldedSlope] * xj + B[L1::unfoldedIntercept];
    amp = std::fabs(((fittedAt(A, at(c.x, e)) + fittedAt(B, at(c.x, s))) / 2.0 - lower) /
                    (upper - lower));
  }
  if (amp > 0.85 || amp < 0.15) amp = fallback;
  return amp;
}

// A stretch fit stands with its energy and midpoint at or above 0 and the
// midpoint at or below the last signal of the curve (not its last x: so the
// procedure was tuned).
bool stands(const real_T* fit, real_T yLast) {
  return fit[L1::dG(0)] >= 0.0 && fit[L1::Cm(0)] >= 0.0 && yLast >= fit[L1::Cm(0)];
}

// The seeds of the stretch midpoints, a margin inside the outer stretches;
// `low` and `high` are the shares of n the outer ones fall back to.
StretchCut withSeeds(StretchCut cut, int32_T n, real_T low, real_T high) {
  const real_T margin = roundHalfAway(0.05 * n);
  cut.p1 = static_cast<int32_T>(std::ceil((1 + cut.b1) / 2.0 + margin));
  if (cut.p1 > n) cut.p1 = rounded(low * n);
  cut.p2 = rounded((cut.b2 + cut.b3) / 2.0);
  if (cut.p2 < 1 || cut.p2 > n) cut.p2 = rounded(0.5 * n);
  cut.p3 = static_cast<int32_T>(std::floor((cut.b4 + n) / 2.0 - margin));
  if (cut.p3 < 1 || cut.p3 > n) cut.p3 = rounded(high * n);
  return cut;
}

// Every position the steps below read lies inside the curve.  Cuts of x not
// ascending, or with ties at the first share, may name others.
bool readsInside(const StretchCut& cut, int32_T n) {
  const auto inside = [n](int32_T p) { return p >= 1 && p <= n; };
  return n >= 3 && inside(cut.b1 - 2) && inside(cut.b1) && inside(cut.b2) &&
         inside(cut.b2 + 2) && inside(cut.b3 - 2) && inside(cut.b3) && inside(cut.b4) &&
         inside(cut.b4 + 2) && inside(cut.p1) && inside(cut.p2) && inside(cut.p3);
}

void splitFrom(const CurvePoints& c, const StretchCut& cut, real_T RT,
               const HeldMask<13>& holdForm, real_T* result) {
  if (!readsInside(cut, c.n)) {
    failVector(result, L3::kParams);
    return;
  }
  const real_T* x = c.x;
  const real_T* y = c.y;
  const int32_T n = c.n;
  const Stretch parts[3] = {stretch(c, 1, cut.b1), stretch(c, cut.b2, cut.b3),
                            stretch(c, cut.b4, n)};
  StretchFits s;
  fitStretch(parts[0], 4000.0, at(x, cut.p1), lineFit3(x, y),
             lineFit3(x + (cut.b1 - 3), y + (cut.b1 - 3)), RT, s.fit[0]);
  fitStretch(parts[1], 8000.0, at(x, cut.p2), lineFit3(x + (cut.b2 - 1), y + (cut.b2 - 1)),
             lineFit3(x + (cut.b3 - 3), y + (cut.b3 - 3)), RT, s.fit[1]);
  fitStretch(parts[2], 12000.0, at(x, cut.p3), lineFit3(x + (cut.b4 - 1), y + (cut.b4 - 1)),
             lineFit3(x + (n - 3), y + (n - 3)), RT, s.fit[2]);
  real_T amplitudes[2];
  junctionAmplitudes(c, cut, s, amplitudes);
  real_T J[L3::kParams];
  joinedStretches(c, cut, s, amplitudes, RT, J);

  heldFit<ThreeTransitionModel>(x, y, n, J, holdForm, result);
  // Three sound stretches rescue a whole the plausibility test refuses:
  // their transitions and outer baselines, with J's amplitudes.
  bool stretchesSound = true;
  for (int k = 0; k < 3; ++k)
    stretchesSound = stretchesSound && plausible<1>(s.fit[k], parts[k].x, parts[k].n) != 0.0;
  if (plausible<3>(result, x, n) == 0.0 && stretchesSound) {
    std::copy_n(J, L3::kParams, result);
    for (int k = 0; k < 3; ++k) {
      result[L3::dG(k)] = s.fit[k][L1::dG(0)];
      result[L3::Cm(k)] = s.fit[k][L1::Cm(0)];
    }
    result[L3::nativeIntercept] = s.fit[0][L1::nativeIntercept];
    result[L3::nativeSlope] = s.fit[0][L1::nativeSlope];
    result[L3::unfoldedIntercept] = s.fit[2][L1::unfoldedIntercept];
    result[L3::unfoldedSlope] = s.fit[2][L1::unfoldedSlope];
  }
  keepIfPlausible<3>(result, x, n);
}

}  // namespace

StretchCut stretchCutByShare(const real_T* x, int32_T n) {
  const real_T x1 = at(x, static_cast<int32_T>(std::ceil(0.35 * n)));
  const real_T x2 = at(x, static_cast<int32_T>(std::floor(0.3 * n)));
  const real_T x3 = at(x, static_cast<int32_T>(std::ceil(0.7 * n)));
  const real_T x4 = at(x, static_cast<int32_T>(std::floor(0.65 * n)));
  const auto count = [x, n](auto below) {
    return static_cast<int32_T>(std::count_if(x, x + n, below));
  };
  StretchCut cut{};
  cut.b1 = count([x1](real_T v) { return v <= x1; });
  cut.b2 = count([x2](real_T v) { return v < x2; });
  cut.b3 = count([x3](real_T v) { return v <= x3; });
  cut.b4 = count([x4](real_T v) { return v < x4; });
  return withSeeds(cut, n, 0.2, 0.8);
}

StretchCut stretchCutAt(const real_T* x, int32_T n, const real_T midpointTriple[3]) {
  const real_T j1 = (midpointTriple[0] + midpointTriple[1]) / 2.0;
  const real_T j2 = (midpointTriple[1] + midpointTriple[2]) / 2.0;
  StretchCut cut{rounded(0.35 * n), rounded(0.3 * n), rounded(0.7 * n), rounded(0.65 * n),
                 0, 0, 0};
  for (int32_T i = 1; i <= n; ++i) {
    if (j1 >= at(x, i)) cut.b1 = i;
    if (j1 > at(x, i)) cut.b2 = i;
    if (j2 >= at(x, i)) cut.b3 = i;
    if (j2 > at(x, i)) cut.b4 = i;
  }
  for (int32_T* end : {&cut.b1, &cut.b3}) {
    if (*end < 8) *end = 8;
    if (*end > n - 4) *end = n - 4;
  }
  for (int32_T* start : {&cut.b2, &cut.b4}) {
    if (*start > n - 8) *start = n - 8;
    if (*start < 5) *start = 5;
  }
  return withSeeds(cut, n, 0.18, 0.82);
}

void junctionAmplitudes(const CurvePoints& c, const StretchCut& cut, const StretchFits& s,
                        real_T amplitudes[2]) {
  const real_T y1 = at(c.y, 1);
  amplitudes[0] = junctionAmplitude(c, s.fit[0], s.fit[1], cut.b1, cut.b2,
                                    std::fabs(at(c.y, cut.b3) - y1), 0.35);
  amplitudes[1] = junctionAmplitude(c, s.fit[1], s.fit[2], cut.b3, cut.b4,
                                    std::fabs(at(c.y, c.n) - at(c.y, cut.b2)), 0.65);
}

// A stretch whose fit does not stand starts from the curve: the first and the
// third at the first seed (the third too, so the procedure was tuned), with
// energies of 1500 and 2500 per unit of x and a flat baseline at the first
// signal; the second at its own seed with 2500.
void joinedStretches(const CurvePoints& c, const StretchCut& cut, const StretchFits& s,
                     const real_T amplitudes[2], real_T RT, real_T* J) {
  const real_T yLast = at(c.y, c.n);
  const real_T* first = s.fit[0];
  const real_T* second = s.fit[1];
  const real_T* third = s.fit[2];
  const real_T x1 = at(c.x, cut.p1), x2 = at(c.x, cut.p2);
  if (stands(first, yLast)) {
    J[L3::dG(0)] = first[L1::dG(0)];
    J[L3::Cm(0)] = first[L1::Cm(0)];
    J[L3::nativeIntercept] = first[L1::nativeIntercept];
    J[L3::nativeSlope] = first[L1::nativeSlope];
  } else {
    J[L3::dG(0)] = x1 * 1500.0;
    J[L3::Cm(0)] = x1;
    J[L3::nativeIntercept] = at(c.y, 1);
    J[L3::nativeSlope] = kTokenSlope;
  }
  J[L3::dG(1)] = stands(second, yLast) ? second[L1::dG(0)] : x2 * 2500.0;
  J[L3::Cm(1)] = stands(second, yLast) ? second[L1::Cm(0)] : x2;
  if (stands(third, yLast)) {
    J[L3::dG(2)] = third[L1::dG(0)];
    J[L3::Cm(2)] = third[L1::Cm(0)];
    J[L3::unfoldedIntercept] = third[L1::unfoldedIntercept];
    J[L3::unfoldedSlope] = third[L1::unfoldedSlope];
  } else {
    J[L3::dG(2)] = x1 * 2500.0;
    J[L3::Cm(2)] = x1;
    J[L3::unfoldedIntercept] = at(c.y, 1);
    J[L3::unfoldedSlope] = kTokenSlope;
  }
  J[L3::amp(0)] = amplitudes[0];
  J[L3::amp(1)] = amplitudes[1];
  J[L3::RT] = RT;
}

void attempt3Split(const CurvePoints& c, real_T RT, const HeldMask<13>& holdForm,
                   real_T* result) {
  if (c.n < kLeastPoints) return failVector(result, L3::kParams);
  splitFrom(c, stretchCutByShare(c.x, c.n), RT, holdForm, result);
}

void attempt3SplitAt(const CurvePoints& c, const real_T midpointTriple[3], real_T RT,
                     const HeldMask<13>& holdForm, real_T* result) {
  if (c.n < kLeastPoints) return failVector(result, L3::kParams);
  splitFrom(c, stretchCutAt(c.x, c.n, midpointTriple), RT, holdForm, result);
}

}  // namespace quent
