// Least-squares kernels: vector norms, the pivoted QR (pivot rules, and every
// bit against its literal form) and the line fits built on it.
#include <random>

#include "numerics/line_fit.h"
#include "numerics/literal_qr.h"
#include "numerics/pivoted_qr.h"
#include "test_support.h"

namespace quent::test {
namespace {

TEST(VectorKernels, KeepTheirOrderOfRounding) {
  const double x[] = {4.0, 2.0, 11.0}, huge[] = {3e300, 4e300}, single = -7.5;
  EXPECT_EQ(scaledNorm2(x, 3), 0x1.7bfa9c41ab041p+3);  // sum * (t * t) ends a bit lower
  EXPECT_EQ(scaledNorm2(x, 0), 0.0);
  EXPECT_EQ(scaledNorm2(&single, 1), 7.5);
  EXPECT_NEAR(scaledNorm2(huge, 2) / 5e300, 1.0, 1e-15);
  EXPECT_EQ(safeHypot(23.0, 12.0), 0x1.9f136df6e620ap+4);  // std::hypot: a bit lower
  EXPECT_EQ(safeHypot(-3.0, 3.0), 3.0 * 1.4142135623730951);
  EXPECT_EQ(safeHypot(0.0, -0.0), 0.0);
  EXPECT_TRUE(std::isnan(safeHypot(1.0, NAN)) && std::isnan(safeHypot(NAN, 1.0)));
  const double ties[] = {1.0, -3.0, 3.0, NAN}, nanFirst[] = {NAN, 5.0};
  EXPECT_EQ(firstMaxAbs(ties, 4), 2);
  EXPECT_EQ(firstMaxAbs(nanFirst, 2), 1);
  EXPECT_EQ(firstMaxAbs(ties, 0), 0);
}

struct Factored { std::vector<double> a, tau; std::vector<int> jpvt; };

Factored factor(std::vector<double> a, int m, int n) {
  Factored f{std::move(a), std::vector<double>(std::min(m, n)), std::vector<int>(n)};
  pivotedQr(f.a.data(), m, n, f.tau.data(), f.jpvt.data());
  return f;
}

// Equal norms keep their order and a zero column goes last with a zero on
// the diagonal.  The second matrix tells the kept downdate form from
// sqrt(vn1^2 - a^2) (which gives 1 2 3); in the third the columns have
// nothing left below the top row after the first step, which only the exact
// recomputation sees (a downdate alone gives 1 3 2).
TEST(PivotedQr, PivotsFollowTheNormRules) {
  const std::pair<std::vector<double>, std::vector<int>> cases[] = {  // 3-by-3, pivots
      {{0, 0, 0, 2, 1, 2, 0, 3, 0}, {2, 3, 1}},
      {{3, 3, -3, -2, 2, -1, 0, -1, 4}, {1, 3, 2}},
      {{4, -4, 0, 1, -1, 0, 4, -4, 0}, {1, 2, 3}}};
  for (const auto& [a, jpvt] : cases) EXPECT_EQ(factor(a, 3, 3).jpvt, jpvt);
  EXPECT_EQ(factor(cases[0].first, 3, 3).a[8], 0.0);
}

TEST(PivotedQr, SubnormalColumnGetsTheReflectorOfItsScaledUpCopy) {
  const double unit = std::ldexp(1.0, -1030);  // (3, 4) * unit, both subnormal
  const Factored f = factor({3 * unit, 4 * unit}, 2, 1);
  EXPECT_EQ(f.a[0], -5 * unit);
  EXPECT_NEAR(f.tau[0], 1.6, 1e-15);
  EXPECT_NEAR(f.a[1], 0.5, 1e-15);  // 1 / (alpha - beta) unscaled would overflow
}

// The shortcuts for exact zeros must leave every bit as the literal steps do,
// whatever the matrix holds: damped least-squares shapes, the same poisoned
// with huge, tiny and non-finite entries, and small matrices of a pool.
TEST(PivotedQr, AgreesWithTheLiteralStepsBitForBit) {
  for (unsigned shape = 0; shape < 3; ++shape) {
    SCOPED_TRACE(shape);
    std::mt19937_64 rng(shape + 11);
    std::normal_distribution<double> normal;
    const double pool[] = {0.0, -0.0, 1.0, -1.0, 2.0, 3.0, 0.5, 1e300, 1e-310, NAN, INFINITY, -INFINITY};
    for (int trial = 0; trial < 300; ++trial) {
      int m = 1 + rng() % 7, n = 1 + rng() % 7;
      std::vector<double> a;
      for (int i = 0; i < m * n; ++i) a.push_back(pool[rng() % (rng() % 3 ? 7 : 12)]);
      if (shape != 2) {
        // Residual rows over a diagonal block; unread parameters give zero
        // columns (some with negative zeros) and zero diagonal rows.
        const int f = 1 + rng() % 5, rows = 2 + rng() % 30;
        n = f * f, m = rows + n;
        a.assign(static_cast<size_t>(m) * n, 0.0);
        for (int j = 0; j < n; ++j) {
          double* col = &a[static_cast<size_t>(j) * m];
          const bool live = rng() % f == 0, integers = rng() % 2, repeat = j > 0 && rng() % 4 == 0;
          for (int i = 0; i < rows; ++i)
            col[i] = !live ? (rng() % 4 ? 0.0 : -0.0)
                     : repeat ? col[i - m]  // tied norms, lost rank
                              : integers ? double(rng() % 5) - 2 : normal(rng);
          if (live) col[rows + j] = std::fabs(normal(rng));
          if (live && shape == 1 && rng() % 3 == 0) col[rng() % rows] = pool[7 + rng() % 5];
        }
      }
      const int k = std::min(m, n);
      std::vector<double> literal = a, tauLiteral(k), tau(k);
      std::vector<int> jpvtLiteral(n), jpvt(n);
      literalPivotedQr(literal.data(), m, n, tauLiteral.data(), jpvtLiteral.data());
      pivotedQr(a.data(), m, n, tau.data(), jpvt.data());
      ASSERT_EQ(jpvt, jpvtLiteral) << "trial " << trial;
      for (int i = 0; i < k; ++i) ASSERT_TRUE(sameBits(tau[i], tauLiteral[i])) << "trial " << trial;
      for (size_t i = 0; i < a.size(); ++i) ASSERT_TRUE(sameBits(a[i], literal[i])) << "trial " << trial;
    }
  }
}

// One point reaches only the coefficient of the pivot column: the abscissa's
// unless |x| < 1, when the column of ones is the larger one.
TEST(LineFit, GivesExactCoefficientsAndNoUsableLineFromBadPoints) {
  const struct { std::vector<double> x, y; double slope, intercept; } cases[] = {
      {{}, {}, 0.0, 0.0}, {{4.0}, {2.0}, 0.5, 0.0}, {{-1.0}, {3.0}, -3.0, 0.0}, {{0.5}, {3.0}, 0.0, 3.0},
      {{2.0, 4.0}, {2.0, 2.0}, 0.0, 2.0}};
  for (const auto& c : cases) {
    const LineCoefficients got = lineFit(c.x.data(), c.y.data(), int(c.x.size()));
    EXPECT_TRUE(got.slope == c.slope && got.intercept == c.intercept) << c.x.size();
  }
  const double x[] = {2.0, 2.0}, y[] = {1.0, 3.0}, nanY[] = {1.0, NAN};
  const LineCoefficients equal = lineFit(x, y, 2), poisoned = lineFit(x, nanY, 2);
  EXPECT_FALSE(std::fabs(equal.slope) < 1e12 && std::fabs(equal.intercept) < 1e12);
  EXPECT_TRUE(std::isnan(poisoned.slope) && std::isnan(poisoned.intercept));
}

TEST(LineFit, ThreePointFormMatchesTheGeneralOneBitForBit) {
  std::mt19937_64 rng(5);
  std::normal_distribution<double> normal;
  for (int trial = 0; trial < 200; ++trial) {
    double px[3], py[3];
    for (int i = 0; i < 3; ++i) px[i] = trial % 4 ? normal(rng) : double(rng() % 3), py[i] = normal(rng);
    EXPECT_EQ(bits(lineFit3(px, py).slope), bits(lineFit(px, py, 3).slope));
    EXPECT_EQ(bits(lineFit3(px, py).intercept), bits(lineFit(px, py, 3).intercept));
  }
}

}  // namespace
}  // namespace quent::test
