// The fitted curve of a returned row: evaluated at the points its fit kept
// it gives back column 14 bit for bit, in every family and both fits; rows
// without a fit give NaN; the fraction takes any number of points.
#include "models/r_squared.h"
#include "primary/user_plate.h"

namespace quent::test {
namespace {

// R squared of a row recomputed from the host's side: kept points gathered
// by the mask, the curve drawn by the export, scored by the library's rule.
real_T rSquaredFromExport(const real_T* row, int32_T stateCount, const real_T* den,
                          const real_T* sig, const int32_T* mask, int32_T points) {
  std::vector<real_T> x, y;
  for (int32_T i = 0; i < points; ++i)
    if (mask[i] == 1) {
      x.push_back(den[i]);
      y.push_back(sig[i]);
    }
  const int32_T n = static_cast<int32_T>(x.size());
  std::vector<real_T> fitted(n), fraction(n);
  QUENT_dGtrend_evaluateRow(row, stateCount, x.data(), n, fitted.data(), fraction.data());
  return rSquared(n, y.data(), n, fitted.data());
}

template <int T>
void expectColumn14Reproduced() {
  const UserPlate<T> plate;
  const int32_T n = plate.kPoints;
  std::vector<int32_T> mask;
  const std::vector<real_T> rows = plate.automatic(mask);
  // The host's refit: curve 1 left out, the first three points of curve 2 dropped.
  std::vector<int32_T> userMask = mask;
  userMask[2 * n] = userMask[2 * n + 1] = userMask[2 * n + 2] = 0;
  const std::vector<real_T> userRows = plate.user(userMask, {1, 0, 1, 1, 1, 1});
  int fitted = 0;
  for (int32_T c = 0; c < plate.curves(); ++c) {
    const real_T* den = plate.den.data() + n * c;
    const real_T* sig = plate.sig.data() + n * c;
    for (const auto& [row, m] : {std::pair{rows.data() + 24 * c, mask.data() + n * c},
                                 std::pair{userRows.data() + 24 * c, userMask.data() + n * c}}) {
      if (!(row[12] > 0.0)) continue;
      ++fitted;
      EXPECT_TRUE(sameBits(rSquaredFromExport(row, T + 1, den, sig, m, n), row[14]))
          << "family " << T << " curve " << c;
    }
  }
  EXPECT_EQ(fitted, 11) << "family " << T;  // six automatic rows, five of the host's
}

TEST(EvaluateRow, ReproducesRSquaredOfEveryFamilyAndFit) {
  expectColumn14Reproduced<1>();
  expectColumn14Reproduced<2>();
  expectColumn14Reproduced<3>();
}

// dG 6000, Cm 3, native 1 + 0.05 x, unfolded 5 + 0.1 x at RT of 25 degrees.
constexpr real_T kOneRow[24] = {1, 0.05, 5, 0.1, 6000, 3, 0, 0, 0, 0, 0, 0, 592.4836799999999, 2};

TEST(EvaluateRow, ValuesAtTheMidpointAndWithoutDenaturant) {
  const real_T x[2] = {3.0, 0.0};
  real_T signal[2], fraction[2];
  QUENT_dGtrend_evaluateRow(kOneRow, 2, x, 2, signal, fraction);
  // K = 1 at the midpoint: the mean of the two baselines, half unfolded.
  EXPECT_EQ(signal[0], (1.0 + 0.05 * 3.0 + (5.0 + 0.1 * 3.0)) / 2.0);
  EXPECT_EQ(fraction[0], 0.5);
  // Without denaturant K = exp(-6000 / RT), the constant of column 18.
  const real_T K = std::exp(-(6000.0 * 1.0) / 592.4836799999999);
  EXPECT_EQ(fraction[1], K / (K + 1.0));
  EXPECT_EQ(signal[1], (1.0 + 5.0 * K) / (1.0 + K));
}

TEST(EvaluateRow, StateCountPicksTheFamily) {
  // Two transitions, the second at Cm 5 with a share of 0.4.
  real_T row[24] = {1, 0, 5, 0, 6000, 3, 10000, 5, 0.6, 0, 0, 0, 592.4836799999999, 3};
  const std::vector<real_T> x = grid(9, 0.0, 8.0);
  std::vector<real_T> two(9), one(9), seven(9), want(9);
  QUENT_dGtrend_evaluateRow(row, 3, x.data(), 9, two.data(), nullptr);
  QUENT_dGtrend_evaluateRow(row, 2, x.data(), 9, one.data(), nullptr);
  QUENT_dGtrend_evaluateRow(row, 7, x.data(), 9, seven.data(), nullptr);
  const real_T p2[10] = {6000, 3, 10000, 5, 0.6, 1, 0, 5, 0, 592.4836799999999};
  curveModel2(p2, x.data(), 9, want.data());
  expectList(two.data(), 9, want, "two transitions");
  const real_T p1[7] = {6000, 3, 1, 0, 5, 0, 592.4836799999999};
  curveModel1(p1, x.data(), 9, want.data());
  expectList(one.data(), 9, want, "read as one transition");
  expectList(seven.data(), 9, want, "state count 7");
}

TEST(EvaluateRow, RowsWithoutAFitAndEmptyRequests) {
  // The parameters of a fit, but column 12 says there is none.
  real_T failed[24];
  std::copy_n(kOneRow, 24, failed);
  const real_T x[3] = {0.0, 1.0, 2.0};
  real_T signal[3] = {7, 7, 7}, fraction[3] = {7, 7, 7};
  for (const real_T rt : {-1.0, 0.0, std::nan("")}) {
    failed[12] = rt;
    QUENT_dGtrend_evaluateRow(failed, 2, x, 3, signal, fraction);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(std::isnan(signal[i]) && std::isnan(fraction[i])) << rt;
  }
  std::fill_n(signal, 3, 7.0);
  QUENT_dGtrend_evaluateRow(nullptr, 4, x, 3, signal, nullptr);
  EXPECT_TRUE(std::isnan(signal[2]));
  // Nothing to evaluate: the outputs stay as they were.
  std::fill_n(signal, 3, 7.0);
  QUENT_dGtrend_evaluateRow(kOneRow, 2, x, 0, signal, fraction);
  QUENT_dGtrend_evaluateRow(kOneRow, 2, nullptr, 3, signal, fraction);
  EXPECT_EQ(signal[0], 7.0);
  QUENT_dGtrend_evaluateRow(kOneRow, 2, x, 3, nullptr, nullptr);  // no output, no harm
}

TEST(EvaluateRow, FractionTakesAnyNumberOfPoints) {
  // Beyond the 384 points of a fit, in blocks: every point as if alone.
  const std::vector<real_T> x = grid(1000, 8.0, 0.0);
  std::vector<real_T> fraction(1000);
  QUENT_dGtrend_evaluateRow(kOneRow, 2, x.data(), 1000, nullptr, fraction.data());
  for (const int i : {0, 383, 384, 767, 768, 999}) {
    real_T alone;
    QUENT_dGtrend_evaluateRow(kOneRow, 2, &x[i], 1, nullptr, &alone);
    EXPECT_TRUE(sameBits(fraction[i], alone)) << i;
  }
  EXPECT_GT(fraction[0], 0.99);  // descending denaturant is fine
  EXPECT_LT(fraction[999], 0.01);
  // Three transitions read their points one by one too.
  const real_T three[24] = {1, 0, 5, 0, 4000, 2, 8000, 4, 0.3, 12000, 6, 0.3, 592.4836799999999, 4};
  QUENT_dGtrend_evaluateRow(three, 4, x.data(), 1000, nullptr, fraction.data());
  for (const int i : {1, 500, 998}) {
    real_T alone;
    QUENT_dGtrend_evaluateRow(three, 4, &x[i], 1, nullptr, &alone);
    EXPECT_TRUE(sameBits(fraction[i], alone)) << i;
  }
}

}  // namespace
}  // namespace quent::test
