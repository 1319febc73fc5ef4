// Fits of synthetic two-transition curves through the strategy's passes: the
// exit each curve takes and the parameters recovered.
#include "models/r_squared.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/two_transition_family.h"
#include "test_support.h"

namespace quent {
namespace {

using F = TwoTransitionFamily;

struct Curve {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
};

// Two transitions on 0..8 from a native plateau at 10 to an unfolded one at
// 2, the first making `amp1` of the change.
Curve synthetic(int32_T n, real_T dG1, real_T Cm1, real_T dG2, real_T Cm2, real_T amp1,
                real_T noiseShare = 0.0, unsigned seed = 7) {
  const real_T p[10] = {dG1, Cm1, dG2, Cm2, amp1, 10.0, 0.0, 2.0, 0.0, rtFromCelsius(25.0)};
  Curve c{test::grid(n, 0.0, 8.0), {}};
  c.y = test::evaluated(curveModel2, p, c.x);
  for (int32_T i = 0; i < n; ++i) c.y[i] += 8.0 * noiseShare * test::noise(i, seed);
  return c;
}

std::vector<real_T> fit(const Curve& c, real_T temperature = 25.0) {
  std::vector<real_T> row(24, 7.7e77);
  strategy::fitWhole<F>(c.x.data(), c.n(), c.y.data(), c.n(), temperature, row.data());
  return row;
}

TEST(TwoTransitionStrategy, WellSeparatedMidpointsAreRecovered) {
  const Curve c = synthetic(96, 6000.0, 2.0, 12000.0, 5.0, 0.4, 0.002);
  const std::vector<real_T> row = fit(c);
  for (int k = 0; k < 24; ++k) std::printf("%d %.17g\n", k, row[k]);
  EXPECT_NEAR(row[5], 2.0, 0.02);
  EXPECT_NEAR(row[7], 5.0, 0.02);
  EXPECT_NEAR(row[8], 0.4, 0.01);
}

}  // namespace
}  // namespace quent
