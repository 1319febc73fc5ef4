// Normalization, the concentration grid and the drawn trend and fractions.
#include <gtest/gtest.h>

#include <cmath>

#include "analysis/linear_grid.h"
#include "quent_dgtrend.h"
#include "test_support.h"

namespace quent {
namespace {

using test::OwnedArray;

TEST(Normalization, ScalesByTargetOverPositiveReference) {
  const real_T values[6] = {1.0, 100.0, 2.0, 200.0, 3.0, 300.0};  // 2-by-3: first row 1, 2, 3
  const int32_T matrixSize[2] = {2, 3};
  real_T scaled[3];
  int32_T scaledSize[2];
  QUENT_dGtrend_normalization(values, matrixSize, 4.0, 2.0, scaled, scaledSize);
  EXPECT_EQ(scaledSize[0], 1);
  EXPECT_EQ(scaledSize[1], 3);
  EXPECT_EQ(scaled[0], 0.5);
  EXPECT_EQ(scaled[2], 1.5);
  for (real_T reference : {0.0, -4.0, real_T(NAN)}) {
    QUENT_dGtrend_normalization(values, matrixSize, reference, 2.0, scaled, scaledSize);
    EXPECT_EQ(scaled[1], 2.0) << "reference " << reference;  // unscaled
  }
}

TEST(LinearGrid, EndsAreExact) {
  OwnedArray<RealArray> g;
  ASSERT_TRUE(linearGrid(1.0, 4.0, 1, g.get()));
  EXPECT_EQ(g.count(), 1);
  EXPECT_EQ(g->data[0], 4.0);  // a single point is the high end
  ASSERT_TRUE(linearGrid(1.0, 4.0, 2, g.get()));
  EXPECT_EQ(g->data[0], 1.0);
  EXPECT_EQ(g->data[1], 4.0);
  ASSERT_TRUE(linearGrid(0.1, 0.7, 7, g.get()));
  EXPECT_EQ(g->data[3], 0.1 + 3.0 * ((0.7 - 0.1) / 6.0));
  EXPECT_EQ(g->data[6], 0.7);
}

TEST(LinearGrid, HugeEndsOfOppositeSignDoNotOverflow) {
  OwnedArray<RealArray> g;
  ASSERT_TRUE(linearGrid(-1.5e308, 1.5e308, 3, g.get()));
  EXPECT_EQ(g->data[1], 0.0);
  ASSERT_TRUE(linearGrid(-1.0e308, 1.7e308, 4, g.get()));
  EXPECT_TRUE(std::isfinite(g->data[1]));
  EXPECT_TRUE(std::isfinite(g->data[2]));
}

struct Drawing {
  OwnedArray<RealArray> grid, curve;
};

TEST(Trend, DrawsTheLineBetweenTheExtremeConcentrations) {
  const real_T conc[4] = {NAN, 8.0, 2.0, 8.0};  // NaN passed over, extremes 2 and 8
  const int32_T concSize[2] = {1, 4};
  const real_T coefficients[2] = {-400.0, 7000.0};
  Drawing d;
  QUENT_dGtrend_trend(conc, concSize, coefficients, 4, d.grid.get(), d.curve.get());
  ASSERT_EQ(d.grid.count(), 4);
  EXPECT_EQ(d.grid->data[0], 2.0);
  EXPECT_EQ(d.grid->data[1], 4.0);
  EXPECT_EQ(d.grid->data[3], 8.0);
  EXPECT_EQ(d.curve->data[1], 7000.0 + -400.0 * std::log(4.0));
}

TEST(Trend, ShortInputGivesTheOneElementAnswer) {
  const real_T conc[2] = {1.0, 3.0};
  const real_T coefficients[2] = {1.0, 1.0};
  const int32_T one[2] = {1, 1}, two[2] = {1, 2}, empty[2] = {0, 2};
  Drawing d;
  for (auto [size, points] : {std::pair{one, 5}, std::pair{two, 0}, std::pair{empty, 5}}) {
    QUENT_dGtrend_fd(conc, size, coefficients, points, 25.0, d.grid.get(), d.curve.get());
    ASSERT_EQ(d.grid.count(), 1);
    ASSERT_EQ(d.curve.count(), 1);
    EXPECT_EQ(d.grid->data[0], 1.0);
    EXPECT_EQ(d.curve->data[0], 1.0);
  }
}

TEST(Fractions, UnfoldedFractionOfTheTrend) {
  const real_T conc[2] = {1.0, 1.0};  // equal ends: a flat grid at 1
  const int32_T concSize[2] = {1, 2};
  const real_T coefficients[2] = {-300.0, 0.0};  // G = 0 at c = 1
  Drawing d;
  QUENT_dGtrend_fd(conc, concSize, coefficients, 3, 25.0, d.grid.get(), d.curve.get());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(d.grid->data[i], 1.0);
    EXPECT_EQ(d.curve->data[i], 0.5);
  }
}

TEST(Fractions, AssociatedFractionKeepsTheRoundingOfGMinusOnePlusOne) {
  // (G1 - G0) / RT is about 36.7, so g lies in [2^53, 2^54) with an odd last
  // bit: (g - 1) + 1 is g - 2 there, and the fraction comes out exactly 1
  // where the tidied form g would give 1 - 2^-52.
  const real_T conc[2] = {1.0, 10.0};
  const int32_T concSize[2] = {1, 2};
  const real_T coefficients[2] = {9452.84, 20000.0};
  Drawing d;
  QUENT_dGtrend_fragg(conc, concSize, coefficients, 2, 25.0, d.grid.get(), d.curve.get());
  EXPECT_EQ(d.curve->data[0], 0.0);  // zero at the lowest concentration
  EXPECT_EQ(d.curve->data[1], 1.0);
}

TEST(Fractions, AssociatedFractionIsZeroWithoutASlope) {
  const real_T conc[2] = {1.0, 10.0};
  const int32_T concSize[2] = {1, 2};
  Drawing d;
  for (real_T slope : {0.0, real_T(NAN)}) {
    const real_T coefficients[2] = {slope, 5000.0};
    QUENT_dGtrend_fragg(conc, concSize, coefficients, 4, 25.0, d.grid.get(), d.curve.get());
    ASSERT_EQ(d.curve.count(), 4);
    EXPECT_EQ(d.grid->data[3], 10.0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(d.curve->data[i], 0.0);
  }
  const real_T rising[2] = {100.0, 5000.0};
  QUENT_dGtrend_fraggfd(conc, concSize, rising, 4, 25.0, d.grid.get(), d.curve.get());
  for (int i = 0; i < 4; ++i) EXPECT_EQ(d.curve->data[i], 0.0);
}

TEST(Fractions, AssociatedOverUnfoldedTakesExpOfGWithoutRT) {
  // Energies of order 1 show the missing division by RT in the denominator:
  // with it the value would be 0.0005847793914830504.
  const real_T conc[2] = {1.0, 2.0};
  const int32_T concSize[2] = {1, 2};
  const real_T coefficients[2] = {-0.5, 1.0};
  Drawing d;
  QUENT_dGtrend_fraggfd(conc, concSize, coefficients, 2, 25.0, d.grid.get(), d.curve.get());
  EXPECT_EQ(d.curve->data[0], 0.0);
  EXPECT_EQ(d.curve->data[1], 0.0004447535018134014);
}

}  // namespace
}  // namespace quent
