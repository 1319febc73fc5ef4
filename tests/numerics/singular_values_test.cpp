// Singular values of small matrices against closed forms, and the matrix norm
// (the largest of them) with its NaN rules.
#include <string>

#include "numerics/singular_values.h"
#include "test_support.h"

namespace quent::test {
namespace {

// Golub-Kahan with QR sweeps is backward stable: each value is off by a small
// multiple of order * eps * largest value.  16 times that still fails on any
// wrong transformation.
double tolerance(double largest, int order) { return 16.0 * 2.220446049250313e-16 * order * largest; }

struct Case {
  std::string name;
  int m, n;
  std::vector<double> a, expected;  // for matrixNorm: one value, NaN where NaN is due
};

TEST(MatrixNorm, IsTheLargestSingularValueWithTheNaNRules) {
  // 12-by-12 free block, its columns past the first all 1.0: the nonzero
  // singular values are those of [x, sqrt(11) * 1], from the 2-by-2 Gram matrix.
  std::vector<double> block(144, 1.0);
  double xx = 0, sx = 0;
  for (int i = 0; i < 12; ++i) block[i] = 0.5 * i - 2.0, xx += block[i] * block[i], sx += block[i];
  const double tr = xx + 132, det = xx * 132 - 11 * sx * sx;
  const Case cases[] = {
      {"empty", 0, 3, {}, {0.0}},
      {"single", 1, 1, {-3.0}, {3.0}},
      {"vector", 1, 2, {3.0, 4.0}, {5.0}},
      {"vector with NaN", 3, 1, {1.0, NAN, 2.0}, {NAN}},
      {"matrix with NaN", 2, 2, {1.0, NAN, 0.0, 2.0}, {0.0}},
      {"zeros", 2, 2, {0.0, -0.0, 0.0, 0.0}, {0.0}},
      // not the Frobenius-like sqrt(a^2 + b^2 + 2) = 5.196
      {"a b 1 1", 2, 2, {3.0, 4.0, 1.0, 1.0}, {std::sqrt((27.0 + std::sqrt(725.0)) / 2)}},
      {"free block", 12, 12, block, {std::sqrt((tr + std::sqrt(tr * tr - 4 * det)) / 2)}}};
  for (const Case& c : cases) {
    const double got = matrixNorm(c.a.data(), c.m, c.n), want = c.expected[0];
    if (std::isnan(want)) EXPECT_TRUE(std::isnan(got)) << c.name;
    else EXPECT_NEAR(got, want, tolerance(want, std::max(c.m, c.n))) << c.name;
  }
}

// Q D (4-by-4) and D Q (3-by-5, the wide path) with Q the reflector
// I - 2 u u' / u'u, u = (1, 2, ...).
std::vector<double> rotatedDiagonal(int m, int n, const double* d, bool left) {
  const int q = left ? m : n;
  const double uu = q * (q + 1) * (2 * q + 1) / 6.0;
  std::vector<double> a(m * n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) a[i + j * m] = ((i == j) - 2.0 * (i + 1) * (j + 1) / uu) * d[left ? j : i];
  return a;
}

TEST(SingularValues, MatchClosedFormsSortedAndNonNegative) {
  const double d[] = {7, 3, 1, 0.5};
  const Case cases[] = {
      {"diagonal", 3, 3, {2, 0, 0, 0, -5, 0, 0, 0, 3}, {5, 3, 2}},
      {"rank one", 3, 2, {3, 6, 6, 4, 8, 8}, {15, 0}},  // (1, 2, 2)' (3, 4)
      // [[4, 0], [3, 5]]: squares sum to 50, product 20
      {"two by two", 2, 2, {4, 3, 0, 5}, {std::sqrt(25 + std::sqrt(225.0)), std::sqrt(25 - std::sqrt(225.0))}},
      {"orthogonal times diagonal", 4, 4, rotatedDiagonal(4, 4, d, true), {7, 3, 1, 0.5}},
      {"wide", 3, 5, rotatedDiagonal(3, 5, d, false), {7, 3, 1}}};
  for (const Case& c : cases) {
    std::vector<double> s(c.expected.size(), -1.0);
    ASSERT_EQ(singularValues(c.a.data(), c.m, c.n, s.data()), int(s.size())) << c.name;
    for (size_t i = 0; i < s.size(); ++i) {
      if (c.name == "diagonal") EXPECT_EQ(s[i], c.expected[i]);  // no rotation ever runs
      else EXPECT_NEAR(s[i], c.expected[i], tolerance(c.expected[0], std::max(c.m, c.n))) << c.name;
      EXPECT_TRUE(s[i] >= 0.0 && (i == 0 || s[i] <= s[i - 1])) << c.name;
    }
  }
}

}  // namespace
}  // namespace quent::test
