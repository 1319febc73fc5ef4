// Stage members of the one-transition family.  A midpoint comes first from the
// slope peaks of the curve and is then replaced by the mean midpoint of the
// good starts; the held tables pair each member with its midpoint-held twin.
#include "strategies/one_transition_family.h"

#include "frame/limits.h"
#include "models/derivative_peaks.h"
#include "models/params.h"
#include "strategies/one_transition_attempts.h"

namespace quent {
namespace {

using F = OneTransitionFamily;
using enum Attempt1;

constexpr Attempt1 kFreeStarts[4] = {ThreePointFull, ThreePointCore, FlatCore, SegmentCore};
constexpr Attempt1 kMidpointStarts[4] = {ThreePointFullAt, ThreePointCoreAt, FlatCoreAt,
                                         SegmentCoreAt};
// Even slots free the midpoint, odd slots hold it.
constexpr Attempt1 kNativeHeld[8] = {KeepNative,           KeepNativeAt,
                                     NativeThreePointCore, NativeThreePointCoreAt,
                                     NativeFlatCore,       NativeFlatCoreAt,
                                     NativeSegmentCore,    NativeSegmentCoreAt};
constexpr Attempt1 kUnfoldedHeld[8] = {KeepUnfolded,           KeepUnfoldedAt,
                                       UnfoldedThreePointCore, UnfoldedThreePointCoreAt,
                                       UnfoldedFlatCore,       UnfoldedFlatCoreAt,
                                       UnfoldedSegmentCore,    UnfoldedSegmentCoreAt};
constexpr int kRefinedSlot = 8;

void run(Attempt1 member, const CurvePoints& c, real_T RT, real_T midpoint, const real_T* native,
         const real_T* unfolded, real_T* v) {
  runAttempt1(member, c.x, c.y, c.n, RT, midpoint, native, unfolded, v);
}

}  // namespace

void F::startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e) {
  real_T v[7];
  for (int s = 0; s < 4; ++s) {
    run(kFreeStarts[s], c, RT, kFailed, kAbsentPair, kAbsentPair, v);
    t.set(s, v);
  }
  e.midpoint = derivativePeaks1(c.x, c.y, c.n);
  for (int s = 0; s < 4; ++s) {
    if (e.midpoint <= 0.0) {
      t.fail(4 + s);
      continue;
    }
    run(kMidpointStarts[s], c, RT, e.midpoint, kAbsentPair, kAbsentPair, v);
    t.set(4 + s, v);
  }
  strategy::scoreSlots<F>(c, t, 0, kRefinedSlot);
  t.score[kRefinedSlot] = 0.0;
}

void F::completeStartTable(const CurvePoints& c, real_T, int best, StartTable& t, Estimate&) {
  real_T v[7];
  t.get(best, v);
  refineBest(c.x, c.y, c.n, v);
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
      sum += t.at(s, p1::Cm);
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

void F::bothHeldAttempts(const CurvePoints& c, real_T RT, const HeldBaselines& b,
                         const Estimate& e, real_T (&v)[2][7]) {
  run(BothCore, c, RT, e.midpoint, b.native, b.unfolded, v[0]);
  if (e.midpoint > 0.0) {
    run(BothCoreAt, c, RT, e.midpoint, b.native, b.unfolded, v[1]);
  } else {
    for (real_T& p : v[1]) p = kFailed;
  }
}

// Filled also when only the other side's baseline is known: the members then
// fall back to the curve's own baselines.
void F::fillHeldTable(Side side, const CurvePoints& c, real_T RT, const HeldBaselines& b,
                      const Estimate& e, HeldTable& t) {
  const Attempt1* members = side == Side::Native ? kNativeHeld : kUnfoldedHeld;
  real_T v[7];
  for (int s = 0; s < 8; ++s) {
    if (s % 2 == 1 && !(e.midpoint > 0.0)) {
      t.fail(s);
      continue;
    }
    run(members[s], c, RT, e.midpoint, b.native, b.unfolded, v);
    t.set(s, v);
  }
  t.fail(kRefinedSlot);
}

// The refinement starts from the first seven numbers of the ranked table as
// stored, slot-fastest: the energies of the seven best slots, best first.
// Odd as a parameter vector, it is judged like any other.
void F::refineHeldTable(const CurvePoints& c, const int32_T* order, HeldTable& t) {
  HeldTable ranked;
  real_T v[7];
  for (int k = 0; k < HeldTable::kSlots; ++k) {
    t.get(order[k] - 1, v);
    ranked.set(k, v);
  }
  refineRanked(c.x, c.y, c.n, ranked.value, v);
  t.set(kRefinedSlot, v);
}

}  // namespace quent
