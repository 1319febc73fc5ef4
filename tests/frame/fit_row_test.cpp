#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "frame/fit_row.h"
#include "models/fraction_error.h"
#include "models/r_squared.h"

namespace quent {
namespace {

// A fit with distinct entries, and the row columns its entries land in.
struct Family { std::vector<real_T> params; std::vector<int> columns; };
const Family kFamilies[] = {
    {{3000, 1.5, 1, 0.1, 5, -0.2, 592}, {4, 5, 0, 1, 2, 3, 12}},
    {{3000, 1.5, 4000, 3, 0.4, 1, 0.1, 5, -0.2, 592}, {4, 5, 6, 7, 8, 0, 1, 2, 3, 12}},
    {{3000, 1.5, 4000, 3, 5000, 4.5, 0.4, 0.35, 1, 0.1, 5, -0.2, 592},
     {4, 5, 6, 7, 9, 10, 8, 11, 0, 1, 2, 3, 12}},  // amp1 between the second and third energy
};

template <class Count>
class FitRow : public testing::Test {
 protected:
  static constexpr int T = Count::value;
  const Family& f = kFamilies[T - 1];
  std::vector<real_T> p = f.params;
  real_T x[30], y[30], row[kRowColumns];
  void SetUp() override {
    for (int i = 0; i < 30; ++i) x[i] = 0.2 * i;
    curveModel<T>(p.data(), x, 30, y);
    y[7] += 0.05;  // a residual, so that e is not 0
    std::fill(row, row + kRowColumns, 99.0);  // every column must be written
  }
};
using Counts = testing::Types<std::integral_constant<int, 1>, std::integral_constant<int, 2>,
                              std::integral_constant<int, 3>>;
TYPED_TEST_SUITE(FitRow, Counts);

TYPED_TEST(FitRow, LayoutAndDerivedColumns) {
  constexpr int T = TestFixture::T;
  const real_T *x = this->x, *y = this->y, *p = this->p.data();
  writeFitRow<T>(x, y, 30, p, 17.0, this->row);
  std::vector<real_T> expected(kRowColumns, 0.0);
  for (int k = 0; k < 3 * T + 4; ++k) expected[this->f.columns[k]] = p[k];
  expected[13] = 17.0;
  expected[14] = rSquaredOfFit<T>(x, y, 30, p);  // on the points the fit used
  const real_T e = fractionError<T>(x, 30, y, 30, this->row, 1);
  ASSERT_GT(e, 0.0);
  for (int t = 0; t < T; ++t) {
    expected[15 + t] = p[2 * t] * e;
    expected[18 + t] = std::exp(-(p[2 * t] / 592.0)) * 1e6;
  }
  for (int c = 0; c < kRowColumns; ++c) EXPECT_EQ(this->row[c], expected[c]) << "column " << c;
  // A negative first midpoint marks a failed row for the fraction error, so
  // e = -1 and column 15 is -dG1; with two transitions RT is tested instead.
  this->p[1] = -1.5;
  writeFitRow<T>(x, y, 30, p, 17.0, this->row);
  EXPECT_EQ(this->row[15] == -p[0] && (T == 1 || this->row[16] == -p[2]), T != 2);
}

TYPED_TEST(FitRow, ZeroFirstEnergyIsAFitNegativeOrNaNIsNot) {
  constexpr int T = TestFixture::T;
  real_T* row = this->row;
  this->p[0] = 0.0;
  writeFitRow<T>(this->x, this->y, 30, this->p.data(), 2.0, row);
  EXPECT_EQ(row[18], 1e6);
  EXPECT_EQ(row[12], 592.0);
  for (real_T bad : {-0.5, std::nan("")}) {
    this->p[0] = bad;
    writeFitRow<T>(this->x, this->y, 30, this->p.data(), 23.0, row);  // 23 names a fitted exit too
    for (int c = 0; c < kRowColumns; ++c)
      EXPECT_EQ(row[c], c == 13 ? 23.0 : (c < 3 * T + 3 || c == 12 || c == 14) ? -1.0 : 0.0) << c;
  }
}

TEST(UnsuccessfulRows, MaskTooShortAndCleared) {
  real_T row[kRowColumns];
  writeMaskTooShortRow(row);
  for (int c = 0; c < kRowColumns; ++c)
    EXPECT_EQ(row[c], c == 13 ? 1.0 : (c < 6 || c == 12 || c == 14) ? -1.0 : 0.0) << c;
  writeClearedRow(12.0, row);
  for (int c = 0; c < kRowColumns; ++c) EXPECT_EQ(row[c], c == 13 ? 12.0 : c == 12 ? -1.0 : 0.0) << c;
}

}  // namespace
}  // namespace quent
