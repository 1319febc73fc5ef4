// Members of the three-transition family that are its own.  The start table is
// built in rounds: free, held-amplitude and split starts; splits at the
// midpoints of the best of them; then the members holding both amplitudes,
// from those of the best split.
#include "strategies/three_transition_family.h"

#include "frame/limits.h"
#include "models/derivative_peaks.h"
#include "strategies/attempt_runner.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/three_transition_split.h"

namespace quent {
namespace {

using F = ThreeTransitionFamily;
using L = F::Layout;
using attempts3::inHoldForm;

constexpr int kPeakSplitEnd = 24;    // slots 0 to 23 run the members of those numbers
constexpr int kBestSplitSlot = 24;   // 24 to 27: the splits at the best start's midpoints
constexpr int kBothAmpsSlot = 28;    // 28 to 31: both amplitudes held
constexpr int kFirstSplitSlot = 16;  // the split slots are 16 to 27
constexpr int kHoldForms = 4;
static_assert(static_cast<int>(F::Attempt::SplitAtAmps) + 1 == kPeakSplitEnd);
static_assert(kBothAmpsSlot + kHoldForms == F::StartTable::kSlots);

// Both amplitudes held, in the four start forms of slots 3, 7, 11 and 15.
constexpr F::Attempt kBothAmplitudeSlots[kHoldForms] = {
    F::Attempt::ThreePointHoldAmps, F::Attempt::ThreePointCoreAmps, F::Attempt::FlatCoreAmps,
    F::Attempt::SegmentCoreAmps};

constexpr real_T kFallbackAmp1 = 0.35;
constexpr real_T kFallbackAmp2 = 0.3;

real_T energy(StartForm form, int t) {
  constexpr real_T kEnergies[3] = {4000.0, 8000.0, 12000.0};
  return form == StartForm::Segment ? 10000.0 : kEnergies[t];
}

// The start table's rule: the pair as given unless it sums above 1.
void amplitudesAsGiven(const real_T given[2], real_T* amp) {
  amp[0] = given[0];
  amp[1] = given[1];
  if (given[0] + given[1] > 1.0) {
    amp[0] = kFallbackAmp1;
    amp[1] = kFallbackAmp2;
  }
}

// The rule of the members given a baseline: each within [0, 1], and the pair
// as given summing to 1 at most.
void amplitudesBounded(const real_T given[2], real_T* amp) {
  amp[0] = given[0] < 0.0 || given[0] > 1.0 ? kFallbackAmp1 : given[0];
  amp[1] = given[1] < 0.0 || given[1] > 1.0 ? kFallbackAmp2 : given[1];
  if (given[0] + given[1] > 1.0) {
    amp[0] = kFallbackAmp1;
    amp[1] = kFallbackAmp2;
  }
}

}  // namespace

// The exchanged flat start goes on with guards on four entries by their place
// in the vector, as the fits were tuned: a third midpoint, amplitudes and
// native intercept of exactly 0.0 take the first signal, 0.001, the last
// signal and 0.001.
bool F::startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                    const Estimate& e, real_T RT, real_T* start) {
  const real_T x0 = c.x[0], xLast = c.x[c.n - 1];
  start[L::dG(0)] = energy(m.form, 0);
  start[L::Cm(0)] = x0 + (xLast - x0) / 4.0;
  start[L::dG(1)] = energy(m.form, 1);
  start[L::Cm(1)] = x0 + 2.0 * (xLast - x0) / 4.0;
  start[L::dG(2)] = energy(m.form, 2);
  start[L::Cm(2)] = x0 + 3.0 * (xLast - x0) / 4.0;
  if (m.takes == Takes::AmplitudePairBounded) amplitudesBounded(e.amplitudes, start + L::amp(0));
  else amplitudesAsGiven(e.amplitudes, start + L::amp(0));
  static_assert(L::amp(1) == L::amp(0) + 1);
  start[L::nativeIntercept] = b.nativeIntercept;
  start[L::nativeSlope] = b.nativeSlope;
  start[L::unfoldedIntercept] = b.unfoldedIntercept;
  start[L::unfoldedSlope] = b.unfoldedSlope;
  start[L::RT] = RT;
  if (m.form == StartForm::FlatExchanged) {
    if (start[L::Cm(2)] == 0.0) start[L::Cm(2)] = c.y[0];
    if (start[L::amp(0)] == 0.0) start[L::amp(0)] = 0.001;
    if (start[L::amp(1)] == 0.0) start[L::amp(1)] = c.y[c.n - 1];
    if (start[L::nativeIntercept] == 0.0) start[L::nativeIntercept] = 0.001;
  }
  return true;
}

void F::splitAttempt(const Member& m, const CurvePoints& c, real_T RT, const Estimate& e,
                     real_T* result) {
  const HeldMask<13>& holdForm = m.mask[0][0][0];
  if (m.takes == Takes::Midpoints) attempt3SplitAt(c, e.midpoints, RT, holdForm, result);
  else attempt3Split(c, RT, holdForm, result);
}

// The means are of positions on the denaturant axis, so above 0.99 unless the
// transitions lie close to zero: the start was tuned so.
void F::peakAmplitudes(const real_T midpoints[3], real_T amplitudes[2]) {
  real_T amp1 = (midpoints[0] + midpoints[1]) / 2.0;
  real_T amp2 = (midpoints[1] + midpoints[2]) / 2.0;
  if (amp1 < 0.01 || amp1 > 0.99) amp1 = kFallbackAmp1;
  if (amp2 < 0.01 || amp2 > 0.99) amp2 = kFallbackAmp2;
  amplitudes[0] = amp1;
  amplitudes[1] = amp2;
}

int F::amplitudeSlot(const real_T* scores) {
  BestSlot found = bestSlot(scores, kFirstSplitSlot, kBothAmpsSlot, 0);
  if (found.score <= 0.0) found = bestSlot(scores, 0, kFirstSplitSlot, 0);
  return found.slot;
}

// The slope-peak midpoints seed the last four splits of the first round.
void F::startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e) {
  derivativePeaks3(c.x, c.y, c.n, e.midpoints);
  peakAmplitudes(e.midpoints, e.amplitudes);
  real_T v[L::kParams];
  for (int s = 0; s < kPeakSplitEnd; ++s) {
    runAttempt<F>(static_cast<Attempt>(s), c, RT, e, kAbsentPair, kAbsentPair, v);
    t.set(s, v);
  }
  strategy::scoreSlots<F>(c, t, 0, kPeakSplitEnd);
}

void F::completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                           Estimate& e) {
  real_T v[L::kParams];
  Estimate atBest = e;
  for (int k = 0; k < 3; ++k) atBest.midpoints[k] = t.at(best, L::Cm(k));
  for (int k = 0; k < kHoldForms; ++k) {
    runAttempt<F>(inHoldForm(Attempt::SplitAt, k), c, RT, atBest, kAbsentPair, kAbsentPair, v);
    t.set(kBestSplitSlot + k, v);
  }
  strategy::scoreSlots<F>(c, t, kBestSplitSlot, kBothAmpsSlot);

  const int found = amplitudeSlot(t.score);
  e.amplitudes[0] = t.at(found, L::amp(0));
  e.amplitudes[1] = t.at(found, L::amp(1));
  const bool fill = amplitudesFillStartTable(e.amplitudes);
  for (int k = 0; k < kHoldForms; ++k) {
    const int s = kBothAmpsSlot + k;
    if (fill) {
      runAttempt<F>(kBothAmplitudeSlots[k], c, RT, e, kAbsentPair, kAbsentPair, v);
      t.set(s, v);
      t.score[s] = strategy::scoreSlot<F>(c, t, s);
    } else {
      t.fail(s);
      t.score[s] = kFailed;
    }
  }
}

void F::reviseEstimate(const CurvePoints&, const StartTable& t, Estimate& e) {
  real_T sum[2] = {0.0, 0.0};
  int32_T count = 0;
  for (int s = 0; s < StartTable::kSlots; ++s) {
    if (!(t.score[s] >= kGoodScore)) continue;
    if (!(meetsEnd(t.nativeFlag[s]) || meetsEnd(t.unfoldedFlag[s]))) continue;
    sum[0] += t.at(s, L::amp(0));
    sum[1] += t.at(s, L::amp(1));
    ++count;
  }
  if (count == 0) return;
  const real_T a1 = sum[0] / static_cast<real_T>(count);
  const real_T a2 = sum[1] / static_cast<real_T>(count);
  if (0.0 < a1 + a2 && a1 + a2 < 1.0) {
    e.amplitudes[0] = a1;
    e.amplitudes[1] = a2;
  }
}

}  // namespace quent
