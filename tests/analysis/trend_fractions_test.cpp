// Normalization, the concentration grid and the drawn trend and fractions.
#include "analysis/linear_grid.h"
#include "frame/allocation.h"
#include "test_support.h"

namespace quent::test {
namespace {

TEST(Normalization, ScalesByTargetOverPositiveReference) {
  const real_T values[6] = {1.0, 100.0, 2.0, 200.0, 3.0, 300.0};  // 2-by-3: first row 1, 2, 3
  const int32_T matrixSize[2] = {2, 3};
  real_T scaled[3];
  int32_T scaledSize[2];
  for (real_T reference : {4.0, 0.0, -4.0, real_T(NAN)}) {  // unscaled unless above 0
    QUENT_dGtrend_normalization(values, matrixSize, reference, 2.0, scaled, scaledSize);
    const real_T k = reference > 0.0 ? 0.5 : 1.0;
    expectList(scaled, 3, {k * 1.0, k * 2.0, k * 3.0});
    EXPECT_TRUE(scaledSize[0] == 1 && scaledSize[1] == 3);
  }
  // NaN and infinities pass through; a column vector is its first entry; a
  // vector of no entries, or of a negative length, scales nothing.
  const real_T odd[3] = {NAN, INFINITY, -2.0};
  const int32_T row[2] = {1, 3}, column[2] = {3, 1}, none[2] = {1, 0}, negative[2] = {1, -3};
  QUENT_dGtrend_normalization(odd, row, 4.0, 2.0, scaled, scaledSize);
  expectList(scaled, 3, {NAN, INFINITY, -1.0});
  QUENT_dGtrend_normalization(odd, column, 4.0, 2.0, scaled, scaledSize);
  EXPECT_TRUE(scaledSize[0] == 1 && scaledSize[1] == 1 && std::isnan(scaled[0]));
  for (const int32_T* size : {none, negative}) {
    scaled[0] = 9.0;
    QUENT_dGtrend_normalization(odd, size, 4.0, 2.0, scaled, scaledSize);
    EXPECT_TRUE(scaledSize[0] == 1 && scaledSize[1] == 0 && scaled[0] == 9.0);
  }
}

// A single point is the high end; the last point is the high end exactly;
// huge ends of opposite sign do not overflow the step.
TEST(LinearGrid, EndsAreExactAndHugeSpansFinite) {
  OwnedArray<RealArray> g;
  ASSERT_TRUE(linearGrid(1.0, 4.0, 1, g.get()));
  expectList(g->data, g.count(), {4.0});
  ASSERT_TRUE(linearGrid(0.1, 0.7, 7, g.get()));
  expectList(g->data, g.count(), {0.1, kAny, kAny, 0.1 + 3.0 * ((0.7 - 0.1) / 6.0), kAny, kAny, 0.7});
  ASSERT_TRUE(linearGrid(-1.5e308, 1.5e308, 3, g.get()));
  EXPECT_EQ(g->data[1], 0.0);
  ASSERT_TRUE(linearGrid(-1.0e308, 1.7e308, 4, g.get()));
  EXPECT_TRUE(std::isfinite(g->data[1]) && std::isfinite(g->data[2]));
}


TEST(Drawing, GridsAndCurves) {
  const struct {
    const char* what;
    decltype(&QUENT_dGtrend_fd) draw;  // a fraction export, or null for the trend itself
    std::vector<real_T> conc;
    real_T coefficients[2];  // slope, intercept
    int32_T points;
    std::vector<real_T> grid, curve;
    int32_T concRows = 1;
  } cases[] = {
      {"NaN passed over, extremes 2 and 8", nullptr, {NAN, 8, 2, 8}, {-400, 7000}, 4, {2, 4, 6, 8},
       {kAny, 7000.0 + -400.0 * std::log(4.0), kAny, kAny}},
      {"G = 0 on a flat grid: one half", QUENT_dGtrend_fd, {1, 1}, {-300, 0}, 3, {1, 1, 1}, {0.5, 0.5, 0.5}},
      // (G1 - G0) / RT is about 36.7, so g lies in [2^53, 2^54) with an odd
      // last bit: (g - 1) + 1 is g - 2 there, and the fraction comes out
      // exactly 1 where the tidied form g would give 1 - 2^-52.
      {"(g - 1) + 1 kept", QUENT_dGtrend_fragg, {1, 10}, {9452.84, 20000}, 2, {1, 10}, {0, 1}},
      {"NaN slope: zeros", QUENT_dGtrend_fragg, {1, 10}, {NAN, 5000}, 4, {1, kAny, kAny, 10}, {0, 0, 0, 0}},
      {"rising trend", QUENT_dGtrend_fraggfd, {1, 10}, {100, 5000}, 4, {1, kAny, kAny, 10}, {0, 0, 0, 0}},
      // Energies of order 1 show the missing division by RT in the
      // denominator: with it the value would be 0.0005847793914830504.
      {"exp(G) without RT", QUENT_dGtrend_fraggfd, {1, 2}, {-0.5, 1}, 2, {1, 2}, {0, 0.0004447535018134014}},
      {"one concentration", QUENT_dGtrend_fd, {1}, {1, 1}, 5, {1}, {1}},
      {"concentration 0: G infinite there", nullptr, {0, 4}, {-100, 5000}, 2, {0, 4},
       {INFINITY, 5000.0 + -100.0 * std::log(4.0)}},
      {"negative concentration: G NaN there", nullptr, {-1, 4}, {-100, 5000}, 2, {-1, 4},
       {NAN, 5000.0 + -100.0 * std::log(4.0)}},
      {"one point: the high end", nullptr, {1, 4}, {-100, 5000}, 1, {4}, {5000.0 + -100.0 * std::log(4.0)}},
      {"no points", QUENT_dGtrend_fd, {1, 3}, {1, 1}, 0, {1}, {1}},
      {"no rows", QUENT_dGtrend_fd, {1, 3}, {1, 1}, 5, {1}, {1}, 0},
      {"beyond 100000 points", QUENT_dGtrend_fragg, {1, 3}, {1, 1}, 100001, {1}, {1}},
      {"far beyond", nullptr, {1, 3}, {1, 1}, 2147483647, {1}, {1}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const int32_T size[2] = {c.concRows, static_cast<int32_T>(c.conc.size())};
    OwnedArray<RealArray> grid, curve;
    if (c.draw) c.draw(c.conc.data(), size, c.coefficients, c.points, 25.0, grid.get(), curve.get());
    else QUENT_dGtrend_trend(c.conc.data(), size, c.coefficients, c.points, grid.get(), curve.get());
    expectList(grid->data, grid.count(), c.grid, "grid");
    expectList(curve->data, curve.count(), c.curve, "curve");
  }
}

// 100000 points are drawn; null coefficients give the refusal, and null
// outputs leave every drawing and the scaling alone.
TEST(Drawing, LimitsAndNulls) {
  const real_T conc[2] = {1.0, 4.0}, coefficients[2] = {-100.0, 5000.0};
  const int32_T size[2] = {1, 2};
  OwnedArray<RealArray> grid, curve;
  QUENT_dGtrend_fd(conc, size, coefficients, 100000, 25.0, grid.get(), curve.get());
  EXPECT_TRUE(grid.count() == 100000 && curve.count() == 100000 && grid->data[99999] == 4.0);
  QUENT_dGtrend_trend(conc, size, nullptr, 5, grid.get(), curve.get());
  expectList(curve->data, curve.count(), {1.0});
  for (auto draw : {QUENT_dGtrend_fd, QUENT_dGtrend_fragg, QUENT_dGtrend_fraggfd}) {
    draw(conc, size, coefficients, 5, 25.0, nullptr, curve.get());
    draw(conc, size, coefficients, 5, 25.0, grid.get(), nullptr);
  }
  QUENT_dGtrend_trend(conc, size, coefficients, 5, nullptr, nullptr);
  EXPECT_EQ(curve.count(), 1);
  int32_T scaledSize[2] = {7, 7};
  real_T scaled[2] = {9.0, 9.0};
  QUENT_dGtrend_normalization(conc, size, 2.0, 1.0, nullptr, scaledSize);
  QUENT_dGtrend_normalization(conc, size, 2.0, 1.0, scaled, nullptr);
  EXPECT_TRUE(scaledSize[0] == 7 && scaled[0] == 9.0);
  // The temperature is not checked: at -273.15 degrees RT is 0, and a
  // positive G leaves nothing unfolded.
  QUENT_dGtrend_fd(conc, size, coefficients, 3, -273.15, grid.get(), curve.get());
  expectList(curve->data, curve.count(), {0.0, 0.0, 0.0});
}

// A drawing whose storage runs out, at the grid or at the curve, returns both
// empty.
TEST(Drawing, OutOfMemoryGivesEmptyOutputs) {
  const real_T conc[2] = {1.0, 4.0}, coefficients[2] = {-100.0, 5000.0};
  const int32_T size[2] = {1, 2};
  for (long limit = 0; limit < 2; ++limit) {
    OwnedArray<RealArray> grid, curve;
    failAllocationsAfter(limit);
    QUENT_dGtrend_fragg(conc, size, coefficients, 50, 25.0, grid.get(), curve.get());
    failAllocationsAfter(-1);
    EXPECT_TRUE(grid.count() == 0 && curve.count() == 0) << limit;
  }
}

}  // namespace
}  // namespace quent::test
