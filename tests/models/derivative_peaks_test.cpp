// Midpoint estimates from the slope of a curve.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "models/derivative_peaks.h"

namespace quent {
namespace {

std::vector<real_T> grid(int32_T n, real_T high) {
  std::vector<real_T> x(n);
  for (int32_T i = 0; i < n; ++i) x[i] = high * i / (n - 1);
  return x;
}

TEST(DerivativePeaks, FindsTheMidpointOfARisingTransition) {
  const auto x = grid(60, 8.0);
  std::vector<real_T> y(60);
  const real_T p[7] = {7000.0, 3.5, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  curveModel1(p, x.data(), 60, y.data());
  // The slope peak of a two-state curve sits close to Cm (within a grid step).
  EXPECT_NEAR(derivativePeaks1(x.data(), y.data(), 60), 3.5, 8.0 / 59);
}

TEST(DerivativePeaks, TwoTransitionsComeBackAscending) {
  const auto x = grid(80, 8.0);
  std::vector<real_T> y(80);
  const real_T p[10] = {9000.0, 2.0, 12000.0, 5.5, 0.5, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  curveModel2(p, x.data(), 80, y.data());
  real_T centres[2];
  derivativePeaks2(x.data(), y.data(), 80, centres);
  EXPECT_NEAR(centres[0], 2.0, 0.2);
  EXPECT_NEAR(centres[1], 5.5, 0.2);
}

TEST(DerivativePeaks, NoEstimateFromAStraightLineOrTooFewPoints) {
  const auto x = grid(30, 3.0);
  std::vector<real_T> y(30);
  for (int i = 0; i < 30; ++i) y[i] = 2.0 + 0.5 * x[i];
  // Equal slopes everywhere: three peaks spread out and one leaves the range.
  real_T centres[3];
  derivativePeaks3(x.data(), y.data(), 30, centres);
  for (real_T c : centres) EXPECT_EQ(c, kFailed);
  EXPECT_EQ(derivativePeaks1(x.data(), y.data(), 1), kFailed);
  // A peak beyond the last x loses the good peak too.
  const auto wide = grid(40, 4.0);
  std::vector<real_T> rising(40);
  const real_T p[7] = {9000.0, 3.9, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  curveModel1(p, wide.data(), 40, rising.data());
  const std::vector<real_T> shortX(wide.begin(), wide.begin() + 30);
  real_T pair[2];
  derivativePeaks2(shortX.data(), rising.data(), 30, pair);
  EXPECT_EQ(pair[0], kFailed);
  EXPECT_EQ(pair[1], kFailed);
}

}  // namespace
}  // namespace quent
