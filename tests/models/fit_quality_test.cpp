// Scores of a fit: the t quantiles, R squared, the error of the fraction
// unfolded and the agreement of the fitted ends with the measured plateaus.
#include "models/end_agreement.h"
#include "models/fraction_error.h"
#include "models/r_squared.h"
#include "models/student_t95.h"
#include "test_support.h"

namespace quent {
namespace {

// Printed tables, the Cauchy case tan(0.45 pi) to 15 digits, the four entries
// kept as they always were, and the expansion in 1/df around the normal
// quantile z past the tables (error below 2e-7 from 200 df on).
TEST(StudentT95, AgreesWithTheQuantile) {
  const double printed[][2] = {{1, 6.314}, {2, 2.920}, {3, 2.353}, {5, 2.015}, {10, 1.812},
                               {20, 1.725}, {30, 1.697}, {60, 1.671}, {120, 1.658}};
  for (const auto& p : printed) EXPECT_NEAR(studentT95[int(p[0]) - 1], p[1], 0.0005) << p[0];
  EXPECT_NEAR(studentT95[0], std::tan(0.45 * M_PI), 5e-15);
  const double kept[][2] = {{0, 6.31375151467504}, {1, 2.91998558035372}, {2, 2.35336343480182}, {383, 1.64883142452112}};
  for (const auto& k : kept) EXPECT_EQ(studentT95[int(k[0])], k[1]);
  for (int i = 1; i < 384; ++i) EXPECT_LT(studentT95[i], studentT95[i - 1]) << i;
  const double z = 1.6448536269514722;
  for (int df : {200, 300, 384})
    EXPECT_NEAR(studentT95[df - 1], z + (z * z * z + z) / (4.0 * df) +
                (5 * std::pow(z, 5) + 16 * z * z * z + 3 * z) / (96.0 * df * df), 2e-7) << df;
}

TEST(RSquared, ExactValuesAndFailures) {
  const real_T y[] = {1, 2, 3, 4}, off[] = {1, 2, 3, 5}, thirdOff[] = {1, 2, 4, 9};
  const real_T flat[] = {2, 2, 2, 2}, worse[] = {4, 3, 2, 1}, nan[] = {1, NAN, 3, 4}, failed[] = {-1, 2, 3, 4};
  EXPECT_EQ(rSquared(4, y, 4, y), 1.0);
  EXPECT_EQ(rSquared(4, y, 4, off), 1.0 - 1.0 / 5.0);
  EXPECT_EQ(rSquared(3, y, 4, thirdOff), 1.0 - 1.0 / 2.75);  // mean over 4 values, sums over 3
  for (const real_T* fitted : {worse, nan}) EXPECT_EQ(rSquared(4, y, 4, fitted), -1.0);
  EXPECT_EQ(rSquared(4, flat, 4, y), -1.0);         // SST is 0
  EXPECT_EQ(rSquared(4, failed, 4, failed), -1.0);  // a failed vector at x = 0
  EXPECT_EQ(rSquared(0, y, 4, y), -1.0);
  EXPECT_EQ(rSquared(5, y, 4, y), -1.0);  // y shorter than x
}

// A T-transition vector: energies G, midpoints 1, 2, 3, dyadic shares,
// intercepts a and c, flat baselines.
template <int T>
void setVector(real_T G, real_T a, real_T c, real_T* p) {
  std::fill(p, p + 13, 0.0);
  for (int t = 0; t < T; ++t) p[2 * t] = G, p[2 * t + 1] = t + 1.0;
  p[2 * T] = T == 2 ? 0.5 : 0.25, p[7] = T == 3 ? 0.25 : p[7];
  p[3 * T - 1] = a, p[3 * T + 1] = c, p[3 * T + 3] = kFixedRT;
}

// Energies 0 make every fraction exactly 0.5, baselines 0 and 1 make the
// observed fraction y itself: ten points at 0.5 +- 0.25 give SSE = 0.625.
template <int T>
void checkFractionError() {
  SCOPED_TRACE(T);
  real_T x[385], y[385], p[13], row[kRowColumns] = {}, matrix[3 * kRowColumns];
  for (int i = 0; i < 385; ++i) x[i] = 0.1 * i, y[i] = i % 2 ? 0.25 : 0.75;
  setVector<T>(0.0, 0.0, 1.0, p);
  paramsToRow<T>(p, row);
  const real_T expected = 1.81246112281168 * std::sqrt(0.625 / 8.0);  // t at 10 df
  EXPECT_EQ(fractionError<T>(x, 10, y, 10, row, 1), expected);
  for (int k = 0; k < kRowColumns; ++k) matrix[3 * k] = row[k], matrix[3 * k + 1] = -1.0;
  EXPECT_EQ(fractionError<T>(x, 10, y, 10, matrix, 3), expected);
  const real_T first384 = fractionError<T>(x, 384, y, 384, row, 1);
  y[384] = 1e6;  // a 385th point is not used
  EXPECT_EQ(fractionError<T>(x, 385, y, 385, row, 1), first384);
  EXPECT_EQ(fractionError<T>(x, 10, y, 9, row, 1), -1.0);
  EXPECT_EQ(fractionError<T>(x, 0, y, 0, row, 1), -1.0);
  for (int column : {5, 12}) {  // a failed row shows in Cm1, with two transitions in RT
    std::copy(row, row + kRowColumns, matrix);
    matrix[column] = -1.0;
    EXPECT_EQ(fractionError<T>(x, 10, y, 10, matrix, 1), (column == 12) == (T == 2) ? -1.0 : expected);
  }
}

TEST(FractionError, PairsTheQuantileAtNWithNMinusTwo) { checkFractionError<1>(), checkFractionError<2>(), checkFractionError<3>(); }

// Twenty points on 0 .. 6 drawn from the model: native intercept 10, unfolded 20.
template <int T>
void checkEndAgreement() {
  SCOPED_TRACE(T);
  const real_T cases[][4] = {  // energy, midpoint, start, end
      {6000, 3, 1, 1},         // sharp and centred: both plateaus
      {300, 3, 0, 0},          // broad: neither end flattens out
      {6000, 6, 1, 0},         // midpoint at the last point: only the start
      {-1, 3, 0, 0}, {NAN, 3, 0, 0}};  // endAgreement1 goes on with NaN, 2 and 3 stop
  real_T x[20], y[20], p[13], out[2], level[20] = {};
  for (int i = 0; i < 20; ++i) x[i] = 6.0 * i / 19.0;
  for (const auto& c : cases) {
    setVector<T>(c[0], 10.0, 20.0, p);
    for (int t = 0; t < T; ++t) p[2 * t + 1] = c[1];
    curveModel<T>(p, x, 20, y);
    endAgreement<T>(x, 20, y, 20, p, out);
    EXPECT_TRUE(out[0] == c[2] && out[1] == c[3]) << c[0] << " " << c[1];
  }
  setVector<T>(6000.0, 10.0, 20.0, p);
  curveModel<T>(p, x, 20, y);
  EXPECT_EQ(rSquaredOfFit<T>(x, y, 20, p), 1.0);
  for (const real_T* signal : {y, level}) {  // lengths differ; no signal range
    endAgreement<T>(x, 20, signal, signal == y ? 19 : 20, p, out);
    EXPECT_EQ(out[0] + out[1], 0.0);
  }
}

TEST(EndAgreement, SeesWhichPlateausTheFitReaches) { checkEndAgreement<1>(), checkEndAgreement<2>(), checkEndAgreement<3>(); }

}  // namespace
}  // namespace quent
