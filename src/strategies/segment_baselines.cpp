// The native end is straight unless its first two slopes disagree by more
// than their mean; the unfolded end is widened one slope at a time until one
// slope of the stretch strays from the stretch's mean.
#include "strategies/segment_baselines.h"

#include <algorithm>
#include <cmath>

#include "frame/limits.h"
#include "numerics/line_fit.h"

namespace quent {
namespace {

constexpr real_T kPlainSlope = 0.001;
constexpr int32_T kWidenings = 8;    // stretches of 4 to 11 slopes at the unfolded end
constexpr int32_T kNativeLine = 3;   // points of the native line when its slopes disagree

}  // namespace

BaselinePairs segmentBaselines(const real_T* x, const real_T* y, int32_T n) {
  const int32_T m = std::min(n, kMaxFitPoints) - 1;
  real_T d[kMaxFitPoints] = {};
  for (int32_T i = 0; i < m; ++i)
    d[i] = x[i] == x[i + 1] ? 0.0 : (y[i] - y[i + 1]) / (x[i] - x[i + 1]);
  // Short curves: a stretch may reach before the first slope.
  const auto slope = [&d](int32_T i) { return i < 0 ? 0.0 : d[i]; };

  BaselinePairs b;
  const real_T a0 = (d[0] + d[1]) / 2.0;
  if (std::fabs(d[0] - a0) > std::fabs(a0) || std::fabs(d[1] - a0) > std::fabs(a0)) {
    const LineCoefficients line = lineFit(x, y, kNativeLine);
    b.nativeSlope = line.slope;
    b.nativeIntercept = line.intercept;
  } else {
    b.nativeSlope = kPlainSlope;
    b.nativeIntercept = y[0];
  }

  int32_T c = 0;
  for (int32_T w = 0; w < kWidenings && c == 0; ++w) {
    const int32_T s = m - w - 4;
    real_T sum = 0.0;
    for (int32_T i = s; i < m; ++i) sum += slope(i);
    // One less than the number of slopes: the divisor the fits were tuned with.
    const real_T a = sum / (3.0 + static_cast<real_T>(w));
    for (int32_T i = s; i < m; ++i) {
      if (std::fabs(slope(i) - a) > std::fabs(a)) {
        c = w + 3;
        break;
      }
    }
  }
  if (c >= 2) {
    const int32_T first = std::max(n - c - 1, 0);
    const LineCoefficients line = lineFit(x + first, y + first, n - first);
    b.unfoldedSlope = line.slope;
    b.unfoldedIntercept = line.intercept;
  } else {
    b.unfoldedSlope = kPlainSlope;
    // The signal, not x, scales the plain slope here; kept as the fits were tuned.
    b.unfoldedIntercept = y[n - 1] - kPlainSlope * y[n - 1];
  }

  if (b.nativeSlope == 0.0) b.nativeSlope = kPlainSlope;
  if (b.nativeIntercept == 0.0) b.nativeIntercept = y[0];
  if (b.unfoldedSlope == 0.0) b.unfoldedSlope = kPlainSlope;
  if (b.unfoldedIntercept == 0.0) b.unfoldedIntercept = y[n - 1];
  return b;
}

}  // namespace quent
