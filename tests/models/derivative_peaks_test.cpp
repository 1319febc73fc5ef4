// Midpoint estimates from the slope of a curve.
#include "frame/limits.h"
#include "models/curve_models.h"
#include "models/derivative_peaks.h"
#include "test_support.h"

namespace quent::test {
namespace {

// The slope peak of a two-state curve sits within a grid step of Cm; two
// transitions come back ascending.
TEST(DerivativePeaks, FindTheMidpointsOfRisingTransitions) {
  const auto x = grid(60, 0.0, 8.0);
  const real_T p[7] = {7000.0, 3.5, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  EXPECT_NEAR(derivativePeaks1(x.data(), evaluated(curveModel1, p, x).data(), 60), 3.5, 8.0 / 59);
  const auto x2 = grid(80, 0.0, 8.0);
  const real_T p2[10] = {9000.0, 2.0, 12000.0, 5.5, 0.5, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  real_T centres[2];
  derivativePeaks2(x2.data(), evaluated(curveModel2, p2, x2).data(), 80, centres);
  EXPECT_NEAR(centres[0], 2.0, 0.2);
  EXPECT_NEAR(centres[1], 5.5, 0.2);
}

TEST(DerivativePeaks, NoEstimateFromAStraightLineOrTooFewPoints) {
  const auto x = grid(30, 0.0, 3.0);
  std::vector<real_T> y(30);
  for (int i = 0; i < 30; ++i) y[i] = 2.0 + 0.5 * x[i];
  // Equal slopes everywhere: three peaks spread out and one leaves the range.
  real_T centres[3];
  derivativePeaks3(x.data(), y.data(), 30, centres);
  for (real_T c : centres) EXPECT_EQ(c, kFailed);
  EXPECT_EQ(derivativePeaks1(x.data(), y.data(), 1), kFailed);
  // A peak beyond the last x loses the good peak too.
  const auto wide = grid(40, 0.0, 4.0);
  const real_T p[7] = {9000.0, 3.9, 1.0, 0.0, 10.0, 0.0, kFixedRT};
  derivativePeaks2(wide.data(), evaluated(curveModel1, p, wide).data(), 30, centres);
  EXPECT_TRUE(centres[0] == kFailed && centres[1] == kFailed);
}

}  // namespace
}  // namespace quent::test
