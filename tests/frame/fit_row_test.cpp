// Where a fit's entries and the values derived from them land in the row,
// and the rows of failures.
#include "frame/fit_row.h"
#include "models/fraction_error.h"
#include "models/r_squared.h"
#include "test_support.h"

namespace quent {
namespace {

// A fit of T transitions with distinct entries, and the row columns its
// entries must land in (three transitions put amp1 before dG3).
const real_T kParams[3][13] = {{3000, 1.5, 1, 0.1, 5, -0.2, 592},
                               {3000, 1.5, 4000, 3, 0.4, 1, 0.1, 5, -0.2, 592},
                               {3000, 1.5, 4000, 3, 5000, 4.5, 0.4, 0.35, 1, 0.1, 5, -0.2, 592}};
const int kColumns[3][13] = {{4, 5, 0, 1, 2, 3, 12},
                             {4, 5, 6, 7, 8, 0, 1, 2, 3, 12},
                             {4, 5, 6, 7, 9, 10, 8, 11, 0, 1, 2, 3, 12}};

template <int T>
void checkRows() {
  SCOPED_TRACE(T);
  real_T p[13], x[30], y[30], row[kRowColumns], expected[kRowColumns] = {};
  std::copy(kParams[T - 1], kParams[T - 1] + 13, p);
  for (int i = 0; i < 30; ++i) x[i] = 0.2 * i;
  curveModel<T>(p, x, 30, y);
  y[7] += 0.05;  // a residual, so that e is not 0
  std::fill(row, row + kRowColumns, 99.0);  // every column must be written
  writeFitRow<T>(x, y, 30, p, 17.0, row);
  for (int k = 0; k < 3 * T + 4; ++k) expected[kColumns[T - 1][k]] = p[k];
  expected[13] = 17.0;
  expected[14] = rSquaredOfFit<T>(x, y, 30, p);  // on the points the fit used
  const real_T e = fractionError<T>(x, 30, y, 30, row, 1);
  ASSERT_GT(e, 0.0);
  for (int t = 0; t < T; ++t) {
    expected[15 + t] = p[2 * t] * e;
    expected[18 + t] = std::exp(-(p[2 * t] / 592.0)) * 1e6;
  }
  for (int c = 0; c < kRowColumns; ++c) EXPECT_EQ(row[c], expected[c]) << "column " << c;

  // A negative first midpoint marks a failed row for the fraction error, so
  // e = -1 and column 15 is -dG1; with two transitions RT is tested instead.
  p[1] = -1.5;
  writeFitRow<T>(x, y, 30, p, 17.0, row);
  EXPECT_EQ(row[15] == -p[0] && (T == 1 || row[16] == -p[2]), T != 2);

  p[0] = 0.0;  // zero is a fitted first energy
  writeFitRow<T>(x, y, 30, p, 2.0, row);
  EXPECT_TRUE(row[18] == 1e6 && row[12] == 592.0);
  for (real_T bad : {-0.5, std::nan("")}) {
    p[0] = bad;
    writeFitRow<T>(x, y, 30, p, 23.0, row);  // the caller's code, though 23 names a fitted exit
    for (int c = 0; c < kRowColumns; ++c)
      EXPECT_EQ(row[c], c == 13 ? 23.0 : (c < 3 * T + 3 || c == 12 || c == 14) ? -1.0 : 0.0) << c;
  }
}

TEST(FitRow, LayoutDerivedColumnsAndFailedRows) { checkRows<1>(), checkRows<2>(), checkRows<3>(); }

TEST(FitRow, MaskTooShortAndClearedRows) {
  real_T row[kRowColumns];
  writeMaskTooShortRow(row);
  for (int c = 0; c < kRowColumns; ++c)
    EXPECT_EQ(row[c], c == 13 ? 1.0 : (c < 6 || c == 12 || c == 14) ? -1.0 : 0.0) << c;
  writeClearedRow(12.0, row);
  for (int c = 0; c < kRowColumns; ++c) EXPECT_EQ(row[c], c == 13 ? 12.0 : c == 12 ? -1.0 : 0.0) << c;
}

}  // namespace
}  // namespace quent
