// Members of the two-transition family that are its own.  The start table is
// built in two rounds: free and split starts, then a split at the midpoints of
// the best of them, whose amplitude seeds the members that hold amp1.
#include "strategies/two_transition_family.h"

#include "frame/limits.h"
#include "models/derivative_peaks.h"
#include "strategies/attempt_runner.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/two_transition_split.h"

namespace quent {
namespace {

using F = TwoTransitionFamily;
using L = F::Layout;

constexpr int kPeakSplitSlot = 5;
constexpr int kBestSplitSlot = 6;
constexpr int kFirstAmplitudeSlot = 7;
constexpr int kFirstSplitSlot = 4;  // the split slots are 4, 5 and 6
static_assert(std::size(F::kStartSlots) == kPeakSplitSlot);
static_assert(kFirstAmplitudeSlot + std::size(F::kAmplitudeSlots) == F::StartTable::kSlots);

constexpr real_T firstEnergy(StartForm form) { return form == StartForm::Segment ? 10000.0 : 4000.0; }
constexpr real_T secondEnergy(StartForm form) { return form == StartForm::Segment ? 10000.0 : 8000.0; }

// The amp members proper start from an amplitude strictly inside (0.01, 0.99).
bool amplitudeUsable(real_T amplitude) { return 0.01 < amplitude && amplitude < 0.99; }

}  // namespace

bool F::startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                    const Estimate& e, real_T RT, real_T* start) {
  const real_T x0 = c.x[0], xLast = c.x[c.n - 1];
  const bool takes = m.takes == Takes::AmplitudeAsGiven ||
                     (m.takes == Takes::Amplitude && amplitudeUsable(e.amplitude));
  start[L::dG(0)] = firstEnergy(m.form);
  start[L::Cm(0)] = x0 + (xLast - x0) / 3.0;
  start[L::dG(1)] = secondEnergy(m.form);
  start[L::Cm(1)] = x0 + 2.0 * (xLast - x0) / 3.0;
  start[L::amp(0)] = takes ? e.amplitude : 0.5;
  start[L::nativeIntercept] = b.nativeIntercept;
  start[L::nativeSlope] = b.nativeSlope;
  start[L::unfoldedIntercept] = b.unfoldedIntercept;
  start[L::unfoldedSlope] = b.unfoldedSlope;
  start[L::RT] = RT;
  return takes;
}

void F::splitAttempt(const Member& m, const CurvePoints& c, real_T RT, const Estimate& e,
                     real_T* result) {
  if (m.takes == Takes::Midpoints) attempt2SplitAt(c, e.midpoints, RT, result);
  else attempt2SplitHalf(c, RT, result);
}

// The split at the slope peaks runs also when none were found: the limits of
// the cut then decide where it falls.
void F::startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e) {
  constexpr HeldBaselines kNoBaselines{};
  e = kNoEstimate;
  real_T v[L::kParams];
  for (int s = 0; s < kPeakSplitSlot; ++s) {
    strategy::runMember<F>(kStartSlots[s], c, RT, kNoBaselines, e, v);
    t.set(s, v);
  }
  derivativePeaks2(c.x, c.y, c.n, e.midpoints);
  runAttempt<F>(Attempt::SplitAt, c, RT, e, kAbsentPair, kAbsentPair, v);
  t.set(kPeakSplitSlot, v);
  strategy::scoreSlots<F>(c, t, 0, kPeakSplitSlot + 1);
}

// The amplitude comes from the best of the three split slots (slot 4 unless
// another scores strictly higher), if that one scored above -1.0.
void F::completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                           Estimate& e) {
  real_T v[L::kParams];
  Estimate atBest = e;
  atBest.midpoints[0] = t.at(best, L::Cm(0));
  atBest.midpoints[1] = t.at(best, L::Cm(1));
  runAttempt<F>(Attempt::SplitAt, c, RT, atBest, kAbsentPair, kAbsentPair, v);
  t.set(kBestSplitSlot, v);
  strategy::scoreSlots<F>(c, t, kFirstSplitSlot, kBestSplitSlot + 1);
  const BestSlot split = bestSlot(t.score, kFirstSplitSlot, kBestSplitSlot + 1, kFirstSplitSlot);
  e.amplitude = split.score > -1.0 ? t.at(split.slot, L::amp(0)) : kFailed;

  const bool fill = amplitudeFillsStartTable(e.amplitude);
  for (int k = 0; k < static_cast<int>(std::size(kAmplitudeSlots)); ++k) {
    if (fill) {
      runAttempt<F>(kAmplitudeSlots[k], c, RT, e, kAbsentPair, kAbsentPair, v);
      t.set(kFirstAmplitudeSlot + k, v);
    } else {
      t.fail(kFirstAmplitudeSlot + k);
    }
  }
  strategy::scoreSlots<F>(c, t, 0, StartTable::kSlots);
}

}  // namespace quent
