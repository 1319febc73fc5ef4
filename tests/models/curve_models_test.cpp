// Known answers of the forward models, and the midpoints their slopes give.
// Expected values were computed in double arithmetic with the fixed order of
// operations (x / C first, then 1 - x / C).
#include "models/derivative_peaks.h"
#include "test_support.h"

namespace quent::test {
namespace {

constexpr real_T kRT = kFixedRT;
constexpr ModelFunction kModel[3] = {curveModel1, curveModel2, curveModel3};

struct Known {
  const char* what;
  std::vector<real_T> p, x, y, fraction;  // no fraction: not checked
};

TEST(CurveModel, KnownAnswers) {
  const Known cases[] = {
      // Entries 1 to 4 change in the last bit if 1 - x / C is formed as (C - x) / C.
      {"one transition", {5000.0, 3.0, 10.0, -0.2, 2.0, 0.1, kRT}, {0.0, 1.0, 2.5, 4.0, 7.0},
       {9.998270331839137, 9.772357754463584, 8.073306275154374, 2.7850486495992706, 2.7000765835200737}, {}},
      {"at the midpoint half-way between the baselines", {6000.0, 2.0, 1.0, 0.5, 3.0, 0.25, kRT}, {2.0},
       {(1.0 + 1.0 + 3.0 + 0.5) / 2.0}, {0.5}},
      // A failed candidate (all -1) reads -1 at x = 0: that is how R squared
      // recognises it.
      {"failed vector", {-1, -1, -1, -1, -1, -1, -1}, {0.0}, {-1.0}, {}},
      {"two transitions", {4000.0, 2.0, 9000.0, 5.0, 0.3, 10.0, -0.2, 2.0, 0.1, kRT}, {1.0, 3.0, 6.0},
       {9.723588783941967, 7.329040550064857, 2.7984960760067543}, {}},
      {"three transitions", {4000.0, 2.0, 9000.0, 5.0, 12000.0, 7.0, 0.3, 0.45, 10.0, -0.2, 2.0, 0.1, kRT},
       {1.0, 4.5, 8.0}, {9.723598885712152, 6.566765330014313, 2.87375128765032},
       {0.009922222634785519, 0.38093754435875, 0.9868301272053}}};
  for (const Known& c : cases) {
    SCOPED_TRACE(c.what);
    const int T = (static_cast<int>(c.p.size()) - 4) / 3;
    const auto y = evaluated(kModel[T - 1], c.p.data(), c.x);
    expectList(y.data(), y.size(), c.y);
    if (c.fraction.empty()) continue;
    real_T f[kMaxFitPoints];
    const int32_T n = static_cast<int32_T>(c.x.size());
    const int32_T written = T == 1 ? unfoldedFraction1(c.p.data(), c.x.data(), 1, n, f)
                                   : unfoldedFraction3(c.p.data(), c.x.data(), 1, n, f);
    expectList(f, written, c.fraction);
  }
}

TEST(CurveModel, ExtraTransitionsWithZeroWeightVanish) {
  const std::vector<real_T> x = {0.5, 2.0, 3.5, 6.0};
  const real_T p1[7] = {5000.0, 2.5, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T p2[10] = {5000.0, 2.5, 9000.0, 5.0, 1.0, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T p2mix[10] = {5000.0, 2.5, 9000.0, 5.0, 0.25, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T p3[13] = {5000.0, 2.5, 9000.0, 5.0, 3000.0, 1.0, 0.25, 0.75, 10.0, -0.2, 2.0, 0.1, kRT};
  // amp1 = 1: only the first transition; amp1 + amp2 = 1: no third.
  EXPECT_EQ(evaluated(curveModel2, p2, x), evaluated(curveModel1, p1, x));
  EXPECT_EQ(evaluated(curveModel3, p3, x), evaluated(curveModel2, p2mix, x));
}

// At most 384 points.  Of a 2-by-2 matrix with first row (1, 2) the
// three-transition form reads that row, the others the first two elements of
// storage (1, 9).
TEST(UnfoldedFraction, EvaluatesAtMost384PointsAndReadsStridedX) {
  const std::vector<real_T> x = grid(385, 0.0, 4.0);
  const real_T p1[7] = {5000.0, 2.0, 0, 0, 0, 0, kRT};
  const real_T p2[10] = {5000.0, 2.0, 5000.0, 2.0, 0.3, 0, 0, 0, 0, kRT};
  const real_T p3[13] = {5000.0, 2.0, 5000.0, 2.0, 5000.0, 2.0, 0.3, 0.3, 0, 0, 0, 0, kRT};
  real_T f1[kMaxFitPoints], f2[kMaxFitPoints], f3[kMaxFitPoints], f1row[kMaxFitPoints];
  EXPECT_EQ(unfoldedFraction1(p1, x.data(), 1, 385, f1), 384);
  EXPECT_EQ(unfoldedFraction1(p1, x.data(), 1, 0, f1), 0);
  const real_T matrix[4] = {1.0, 9.0, 2.0, 9.0}, row[2] = {1.0, 2.0};
  ASSERT_EQ(unfoldedFraction3(p3, matrix, 2, 2, f3), 2);
  ASSERT_EQ(unfoldedFraction2(p2, matrix, 2, 2, f2), 2);
  unfoldedFraction1(p1, row, 1, 2, f1row);
  unfoldedFraction1(p1, matrix, 2, 2, f1);
  EXPECT_DOUBLE_EQ(f3[1], f1row[1]);  // shares of equal transitions sum to a few ulps
  EXPECT_DOUBLE_EQ(f2[1], f1[1]);
  EXPECT_NE(f3[1], f2[1]);
}

TEST(GaussianSum, PeaksAddInOrder) {
  const real_T p[9] = {2.0, 1.5, 0.7, 1.0, 4.0, 1.2, 0.5, 6.0, 0.3}, x = 3.3, atCentre = 1.5;
  real_T y, centre;
  gaussianSum3(p, &x, 1, &y);
  gaussianSum1(p, &atCentre, 1, &centre);
  EXPECT_EQ(y, 0.9168637329709904);
  EXPECT_EQ(centre, 2.0);
}

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
