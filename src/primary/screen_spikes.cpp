// The spread of a curve is measured between its third-lowest and third-highest
// signal, so that two spikes at either extreme cannot widen it.  The signal is
// shifted by 1.0 before every difference; the shift is kept for the rounding
// it brings.
#include "primary/screen_spikes.h"

#include <algorithm>
#include <cmath>

#include "frame/limits.h"
#include "frame/thread_scratch.h"
#include "numerics/sort.h"

namespace quent {
namespace {

// Shifted signal of a whole curve, sorted.
struct Sorted {
  real_T values[kMaxCurvePoints];
};

// The threshold profile: a parabola over m = n rounded up to even places,
// equal to the spread at both ends and twice the spread at the middle.
struct SpikeThresholds {
  real_T h, curvature, spread;
  SpikeThresholds(int32_T n, real_T spread) : spread(spread) {
    h = static_cast<real_T>((n + 1) / 2);  // half of n rounded up to even
    const real_T d = h - 0.5;
    curvature = -1.0 / (d * d);
  }
  real_T at(int32_T i) const {
    const real_T t = static_cast<real_T>(i) + 1.0 - h;
    const real_T d = t - 0.5;
    return (curvature * (d * d) + 2.0) * spread;
  }
};

}  // namespace

void screenSpikes(const real_T* y, int32_T n, int32_T* mask) {
  std::fill_n(mask, n, 1);
  Sorted* scratch = threadScratch<Sorted>();
  if (n < 5 || n > kMaxCurvePoints || scratch == nullptr) return;

  real_T* sorted = scratch->values;
  for (int32_T i = 0; i < n; ++i) sorted[i] = y[i] + 1.0;
  sortAscending(sorted, n);
  const SpikeThresholds threshold(n, std::fabs(sorted[2] - sorted[n - 3]) * 15.0 / 100.0);

  auto apart = [y](int32_T i, int32_T j, real_T limit) {
    return std::fabs((y[i] + 1.0) - (y[j] + 1.0)) > limit;
  };
  for (int32_T i = 1; i < n - 1; ++i) {
    const real_T limit = threshold.at(i);
    if (apart(i, i - 1, limit) && apart(i, i + 1, limit)) mask[i] = 0;
  }
  // An end point has one neighbour to stand apart from, and is judged only
  // while that neighbour is itself kept.
  if (mask[1] == 1 && apart(0, 1, threshold.at(0))) mask[0] = 0;
  if (mask[n - 2] == 1 && apart(n - 1, n - 2, threshold.at(n - 1))) mask[n - 1] = 0;
}

}  // namespace quent
