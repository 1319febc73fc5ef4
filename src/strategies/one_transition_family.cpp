// Members of the one-transition family that are its own.  A midpoint comes
// first from the slope peaks of the curve and is then replaced by the mean
// midpoint of the good starts.
#include "strategies/one_transition_family.h"

#include <iterator>

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "models/derivative_peaks.h"
#include "models/plausibility.h"
#include "strategies/attempt_runner.h"
#include "strategies/strategy_skeleton.h"

namespace quent {
namespace {

using F = OneTransitionFamily;
using L = F::Layout;

constexpr int kRefinedSlot = 8;
static_assert(std::size(F::kStartSlots) == kRefinedSlot);

constexpr real_T startEnergy(StartForm form) { return form == StartForm::Segment ? 10000.0 : 6000.0; }

}  // namespace

bool F::startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                    const Estimate& e, real_T RT, real_T* start) {
  // A midpoint exactly at the last x still seeds Cm but is not held there.
  const real_T xLast = c.x[c.n - 1];
  const bool given = m.takes == Takes::Midpoint && 0.0 < e.midpoint;
  const bool seeds = given && e.midpoint <= xLast;
  start[L::dG(0)] = startEnergy(m.form);
  start[L::Cm(0)] = seeds ? e.midpoint : midX(c.x, c.n);
  start[L::nativeIntercept] = b.nativeIntercept;
  start[L::nativeSlope] = b.nativeSlope;
  start[L::unfoldedIntercept] = b.unfoldedIntercept;
  start[L::unfoldedSlope] = b.unfoldedSlope;
  start[L::RT] = RT;
  return given && e.midpoint < xLast;
}

void F::refineBest(const CurvePoints& c, real_T* vector) {
  heldFit<OneTransitionModel>(c.x, c.y, c.n, vector, attempts1::holdSlopes, vector);
  keepIfPlausible<1>(vector, c.x, c.n);
}

void F::refineRanked(const CurvePoints& c, const real_T* table, real_T* result) {
  heldFit<OneTransitionModel>(c.x, c.y, c.n, table, attempts1::holdSlopes, result);
  keepIfPlausible<1>(result, c.x, c.n);
}

// The free starts do not read the midpoint, so it may be found before them.
void F::startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e) {
  e.midpoint = derivativePeaks1(c.x, c.y, c.n);
  constexpr HeldBaselines kNoBaselines{};
  real_T v[L::kParams];
  for (int s = 0; s < kRefinedSlot; ++s) {
    strategy::runMember<F>(kStartSlots[s], c, RT, kNoBaselines, e, v);
    t.set(s, v);
  }
  strategy::scoreSlots<F>(c, t, 0, kRefinedSlot);
  t.score[kRefinedSlot] = 0.0;
}

void F::completeStartTable(const CurvePoints& c, real_T, int best, StartTable& t, Estimate&) {
  real_T v[L::kParams];
  t.get(best, v);
  refineBest(c, v);
  t.set(kRefinedSlot, v);
  t.score[kRefinedSlot] = strategy::scoreSlot<F>(c, t, kRefinedSlot);
}

// A mean of good fits may lie exactly at the last x, while a slope-peak
// estimate there is dropped: the peak fit is least sure at the edge.
void F::reviseEstimate(const CurvePoints& c, const StartTable& t, Estimate& e) {
  const real_T xLast = c.x[c.n - 1];
  real_T sum = 0.0;
  int count = 0;
  for (int s = 0; s < StartTable::kSlots; ++s) {
    if (t.score[s] >= kGoodScore) {
      sum += t.at(s, L::Cm(0));
      ++count;
    }
  }
  real_T midpoint;
  if (count > 0)
    midpoint = sum / static_cast<real_T>(count);
  else
    midpoint = e.midpoint > 0.0 && e.midpoint < xLast ? e.midpoint : kFailed;
  if (midpoint < 0.0 || midpoint > xLast) midpoint = kFailed;
  e.midpoint = midpoint;
}

// The refinement starts from the first seven numbers of the ranked table as
// stored, slot-fastest: the energies of the seven best slots, best first.
// Odd as a parameter vector, it is judged like any other.
void F::refineHeldTable(const CurvePoints& c, const int32_T* order, HeldTable& t) {
  HeldTable ranked{};
  real_T v[L::kParams];
  for (int k = 0; k < HeldTable::kSlots; ++k) {
    t.get(order[k] - 1, v);
    ranked.set(k, v);
  }
  refineRanked(c, ranked.value, v);
  t.set(kRefinedSlot, v);
}

}  // namespace quent
