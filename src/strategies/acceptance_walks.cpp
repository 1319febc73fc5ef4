// Thresholds fall in fixed steps, computed afresh at each step as
// k * -step + start: the exact thresholds decide which slot a ladder takes.
// Every comparison against a threshold is written so that a NaN fails it.
#include "strategies/acceptance_walks.h"

#include <cmath>

#include "models/end_agreement.h"
#include "numerics/order_statistics.h"

namespace quent {
namespace {

constexpr int kPairSteps = 20;  // 0.9995 down to 0.99
constexpr real_T kPairStart = 0.9995;
constexpr real_T kPairStep = -0.0005;
constexpr int kFirstPassSteps = 50;  // 0.999 down to 0.95
constexpr real_T kFirstPassStart = 0.999;
constexpr real_T kFirstPassStep = -0.001;
constexpr real_T kNoBest = -1.1;
constexpr int32_T kPlateauPoints = 5;

}  // namespace

bool curveChanges(const real_T* y, int32_T n, FlatCurve flat) {
  const real_T last = meanOfFive(y + (n - kPlateauPoints));
  const real_T first = meanOfFive(y);
  const real_T ratio = std::fabs((first - last) / sampleStdDev(y, n));
  return flat == FlatCurve::HasNoChange ? ratio >= 1.0 : !(ratio < 1.0);
}

BestSlot bestSlot(const real_T* scores, int first, int end, int fallback) {
  BestSlot best{fallback, kNoBest};
  for (int s = first; s < end; ++s) {
    if (scores[s] > best.score) best = {s, scores[s]};
  }
  return best;
}

int heldTableWalk(const real_T* flags, const real_T* sortedScores, int slots) {
  for (int k = 0; k < slots; ++k)
    if (meetsEnd(flags[k]) && sortedScores[k] >= kGoodScore) return k;
  return -1;
}

// Descending, with a NaN last: all are good when the last is.
bool bothHeldAccepted(const real_T* sortedScores, int count, bool everyMustPass) {
  return sortedScores[everyMustPass ? count - 1 : 0] >= kGoodScore;
}

PairHit pairLadder(const PairRung* rungs, int rungCount, const real_T* nativeScores,
                   const real_T* unfoldedScores) {
  for (int k = 0; k < kPairSteps; ++k) {
    const real_T t = static_cast<real_T>(k) * kPairStep + kPairStart;
    for (int r = 0; r < rungCount; ++r) {
      const int s = rungs[r].slot;
      const real_T threshold = t + rungs[r].margin;
      if (nativeScores[s] >= threshold || unfoldedScores[s] >= threshold)
        return {k, r, s, nativeScores[s] <= unfoldedScores[s]};
    }
  }
  return {-1, -1, -1, false};
}

FirstPassHit firstPassLadder(const FirstPassRung* rungs, int count, const real_T* scores) {
  for (int k = 0; k < kFirstPassSteps; ++k) {
    const real_T t = static_cast<real_T>(k) * kFirstPassStep + kFirstPassStart;
    for (int j = 0; j < count; ++j)
      if (scores[rungs[j].slot] >= t) return {k, j};
  }
  return {-1, -1};
}

}  // namespace quent
