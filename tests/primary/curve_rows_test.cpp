// A curve's row and mask under a reference row (refits from the row, mask
// building and the final fit, for every transition count), the trend of the
// free energies, and the acceptance gates.
#include <tuple>

#include "frame/fit_row.h"
#include "primary/acceptance_gates.h"
#include "primary/curve_point_mask.h"
#include "primary/final_curve_fit.h"
#include "primary/fit_statistics.h"
#include "primary/finish_row.h"
#include "primary/free_energy_trend.h"
#include "primary/refit_from_row.h"
#include "strategies/families.h"
#include "test_support.h"

namespace quent {
namespace {

struct MaskCase {
  const char* what;
  real_T firstPointShift;  // a spike at the first point
  real_T sharesMoved;      // added to amp1 of the reference
  bool zeroReference;      // every refit fails, and the row is not fitted
  real_T code;             // of the curve's row
  bool firstCleared;
};

// A small first-point spike is cleared by the spike screen, comes back in the
// revision (it is not judged) and stays: the refit with it passes.  A large
// one fails that refit, which clears the point again and ends the pass on
// round 1's row.  A reference no refit starts from fails all five rounds: the
// held pass's cleared row stands with all points, code 11, or 12 once the
// free pass has run.  With two and three transitions the free pass stands
// while its shares stay near the reference's, else the held pass, recoded 12.
template <int T>
void buildsCurveMask(const MaskCase& c) {
  SCOPED_TRACE(testing::Message() << "T" << T << " " << c.what);
  constexpr int32_T n = 32 * T;
  test::Curve<T> curve(n);
  curve.y[0] += c.firstPointShift;
  curve.row[8] += c.sharesMoved;
  if (c.zeroReference) std::fill(curve.row, curve.row + kRowColumns, 0.0);
  real_T row[kRowColumns];
  std::vector<int32_T> mask(n, 7), expected(n, 1);
  expected[0] = !c.firstCleared;
  buildCurveMask<T>(curve.x, curve.y, n, curve.row, row, mask.data());
  EXPECT_TRUE(row[13] == c.code && (row[12] > 0.0) != c.zeroReference && mask == expected) << row[13];
  // The held pass keeps the reference's shares.
  if (c.sharesMoved != 0.0) { EXPECT_EQ(row[8], curve.row[8]); }
}

TEST(CurveMask, EveryFamily) {
  const MaskCase one[] = {{"clean", 0.0, 0.0, false, 1.0, false},
                          {"small first spike", 1.0, 0.0, false, 2.0, false},
                          {"large first spike", 10.0, 0.0, false, 1.0, true},
                          {"no start", 0.0, 0.0, true, 11.0, false}};
  for (const MaskCase& c : one) buildsCurveMask<1>(c);
  const MaskCase more[] = {{"clean: free pass", 0.0, 0.0, false, 6.0, false},
                           {"shares moved: held pass", 0.0, 0.15, false, 12.0, false},
                           {"no start", 0.0, 0.0, true, 12.0, false}};
  for (const MaskCase& c : more) buildsCurveMask<2>(c), buildsCurveMask<3>(c);
}

// Both end pairs far off the curve, yet not spikes (each point has a
// neighbour as far off): every refit fails while one of them is kept, and each
// failure clears the next of the first, the last, the second and the
// second-last point.  The fifth and last round fits the rest.
TEST(CurveMask, FourEndPointsGoThenTheFifthRoundFits) {
  test::Curve<1> curve(32);
  for (int i : {0, 1, 30, 31}) curve.y[i] += 20.0;
  real_T row[kRowColumns];
  std::vector<int32_T> mask(32, 7), expected(32, 1);
  for (int i : {0, 1, 30, 31}) expected[i] = 0;
  buildCurveMask<1>(curve.x, curve.y, 32, curve.row, row, mask.data());
  EXPECT_EQ(row[13], 5.0);
  EXPECT_EQ(mask, expected);
}

// A spike at the second-last point is screened out, which keeps the last
// point, though far off: its refits fail.  The free pass clears the first
// point, then the last, and fits on the third round (code 3 + 5); its shares
// are the reference's, so it stands.
TEST(CurveMask, FreePassClearsTheFirstThenTheLastPoint) {
  test::Curve<2> curve(64);
  curve.y[62] += 6.0, curve.y[63] -= 3.0;
  real_T row[kRowColumns];
  std::vector<int32_T> mask(64, 7), expected(64, 1);
  for (int i : {0, 62, 63}) expected[i] = 0;
  buildCurveMask<2>(curve.x, curve.y, 64, curve.row, row, mask.data());
  EXPECT_EQ(row[13], 8.0);
  EXPECT_EQ(mask, expected);
}

// Too few kept points leave the blank row; a curve the host left out gets
// the failed rows of codes 34 and 35 in place of its refits, of which only
// the free one (two and three transitions) shows.  A good held fit of a
// noise-free curve reaches both plateaus and stands with the family's code.
template <int T>
void fitsCurveForGood(real_T heldCode) {
  SCOPED_TRACE(T);
  constexpr int32_T n = 32 * T;
  test::Curve<T> curve(n);
  real_T row[kRowColumns], blank[kRowColumns], failed35[kRowColumns];
  writeClearedRow(0.0, blank);
  writeFailedRow<T>(35.0, failed35);
  finalCurveFit<T>(curve.x, curve.y, 8 * T - 1, curve.row, true, row);
  EXPECT_TRUE(test::sameRow(row, blank));
  test::Curve<T> fewest(8 * T);  // the least number of points is fitted
  finalCurveFit<T>(fewest.x, fewest.y, 8 * T, fewest.row, true, row);
  EXPECT_EQ(row[13], heldCode);
  finalCurveFit<T>(curve.x, curve.y, n, curve.row, false, row);
  EXPECT_TRUE(test::sameRow(row, T == 1 ? blank : failed35));
  finalCurveFit<T>(curve.x, curve.y, n, curve.row, true, row);
  EXPECT_EQ(row[13], heldCode);
  EXPECT_NEAR(row[4], curve.p[0], 1e-6 * curve.p[0]);
}

TEST(FinalCurveFit, EveryFamily) {
  fitsCurveForGood<1>(2.0), fitsCurveForGood<2>(3.0), fitsCurveForGood<3>(4.0);
  // With amp1 of the reference 0.08 off, the held two-transition fit misses
  // a plateau and the free fit, back at the curve's share, stands; 0.12 off
  // it is too far from the reference, and the held fit stands.
  for (const auto& [moved, code, amp1] : {std::tuple{0.08, 6.0, 0.4}, {0.12, 3.0, 0.52}}) {
    test::Curve<2> curve(64);
    curve.row[8] += moved;
    real_T row[kRowColumns];
    finalCurveFit<2>(curve.x, curve.y, 64, curve.row, true, row);
    EXPECT_EQ(row[13], code);
    EXPECT_NEAR(row[8], amp1, 1e-9);
  }
  // The same with three transitions, whose shares may move by less than 0.07.
  for (const auto& [moved, code, amp1] : {std::tuple{0.069, 5.0, 0.3}, {0.075, 4.0, 0.375}}) {
    const real_T p[13] = {2000.0, 1.0, 6000.0, 3.0, 10000.0, 5.0, 0.3, 0.35, 1.0, 0.05, 5.0, 0.1,
                          kFixedRT};
    const std::vector<real_T> x = test::grid(96, 0.0, 6.0), y = test::evaluated(curveModel3, p, x);
    real_T reference[kRowColumns] = {}, row[kRowColumns];
    paramsToRow<3>(p, reference);
    reference[8] += moved;
    finalCurveFit<3>(x.data(), y.data(), 96, reference, true, row);
    EXPECT_EQ(row[13], code);
    EXPECT_NEAR(row[8], amp1, 1e-9);
  }
}

// Where the free refit of two or three transitions stands on its shares.
// While masks are built a move of exactly the bound still stands and, with
// two transitions, so does a NaN share or RT; in the final fit the bound is
// strict and a NaN never stands.  The shares are compared column by column.
TEST(ShareRules, BoundsOfTwoAndThreeTransitions) {
  const auto rows = [](real_T amp1, real_T amp2, real_T RT) {
    std::vector<real_T> r(kRowColumns, 0.0);
    r[8] = amp1, r[11] = amp2, r[12] = RT;
    return r;
  };
  using F2 = TwoTransitionFamily;
  using F3 = ThreeTransitionFamily;
  const auto zero = rows(0.0, 0.0, 600.0), half = rows(0.5, 0.25, 600.0);
  const real_T above = std::nextafter(0.1, 1.0), above7 = std::nextafter(0.07, 1.0);
  const struct { std::vector<real_T> row, reference; bool mask2, final2, mask3, final3; } cases[] = {
      {rows(0.1, 0.0, 600.0), zero, true, false, false, false},
      {rows(std::nextafter(0.1, 0.0), 0.0, 600.0), zero, true, true, false, false},
      {rows(above, 0.0, 600.0), zero, false, false, false, false},
      {rows(0.07, 0.07, 600.0), zero, true, true, true, false},
      {rows(0.05, 0.07, 600.0), zero, true, true, true, false},
      {rows(0.07, 0.05, 600.0), zero, true, true, true, false},
      {rows(0.07, above7, 600.0), zero, true, true, false, false},
      {rows(0.55, 0.3, 600.0), half, true, true, true, true},
      {rows(0.45, 0.2, 600.0), half, true, true, true, true},
      {rows(0.05, 0.05, 0.0), zero, false, true, false, true},
      {rows(0.05, 0.05, -1.0), zero, false, true, false, true},
      {rows(0.05, 0.05, NAN), zero, true, true, false, true},
      {rows(NAN, 0.05, 600.0), zero, true, false, false, false},
      {rows(0.05, NAN, 600.0), zero, true, true, false, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.row[8] << " " << c.row[11] << " " << c.row[12]);
    EXPECT_EQ(F2::maskFreePassStands(c.row.data(), c.reference.data()), c.mask2);
    EXPECT_EQ(F2::finalSharesClose(c.row.data(), c.reference.data()), c.final2);
    EXPECT_EQ(F3::maskFreePassStands(c.row.data(), c.reference.data()), c.mask3);
    EXPECT_EQ(F3::finalSharesClose(c.row.data(), c.reference.data()), c.final3);
  }
}

// With one valid curve the line goes through its single point (slope m / ln c
// for ln c of 1 or more), so the energy comes back as Cm times m; a failed
// row is marked -1 and left alone, and only the transitions some row shows
// are followed.
TEST(FreeEnergyTrend, OneValidCurve) {
  const std::vector<real_T> conc{std::exp(2.0), 3.0};
  std::vector<real_T> rows(48, 0.0);
  rows[4] = 6000.0, rows[5] = 3.0, rows[12] = 600.0, rows[28] = 7.0, rows[36] = -3.0;
  freeEnergyTrend({conc.data(), 1, 2}, 2, nullptr, rows.data());
  const real_T dG = 3.0 * (std::log(conc[0]) * (2000.0 / std::log(conc[0])) + 0.0);
  EXPECT_TRUE(rows[4] == dG && rows[18] == std::exp(-(dG / 600.0)) * 1e6);
  EXPECT_TRUE(rows[6] == 0.0 && rows[19] == 0.0 && rows[28] == 7.0 && rows[36] == -1.0);
  // A curve the host left out is marked -1 and does not count for the line.
  std::vector<real_T> flagged(48, 0.0);
  flagged[4] = 6000.0, flagged[5] = 3.0, flagged[12] = 600.0;
  flagged[28] = 9000.0, flagged[29] = 3.0, flagged[36] = 600.0;
  const std::vector<int32_T> flags{1, 0};
  const VectorView<int32_T> flagView{flags.data(), 1, 2};
  freeEnergyTrend({conc.data(), 1, 2}, 2, &flagView, flagged.data());
  EXPECT_TRUE(flagged[4] == dG && flagged[36] == -1.0 && flagged[28] == 9000.0);
  // A second transition is followed too (m 2000 at Cm 2), a third nobody shows is not.
  std::vector<real_T> two(24, 0.0);
  two[4] = 6000.0, two[5] = 3.0, two[6] = 4000.0, two[7] = 2.0, two[12] = 600.0;
  freeEnergyTrend({conc.data(), 1, 1}, 1, nullptr, two.data());
  const real_T dG2 = 2.0 * (std::log(conc[0]) * (2000.0 / std::log(conc[0])) + 0.0);
  EXPECT_TRUE(two[6] == dG2 && two[19] == std::exp(-(dG2 / 600.0)) * 1e6);
  EXPECT_TRUE(two[9] == 0.0 && two[20] == 0.0);
}

// Each gate at its bound: R squared 0.95 and an error of exactly a quarter of
// dG1 pass; a hair beyond fails, as does any negative energy; NaN passes.  A
// failing row keeps RT -1 and code 12 only, an earlier failure its own code.
TEST(AcceptanceGates, Bounds) {
  const struct { int column; real_T value; bool fails; } cases[] = {
      {14, 0.95, false}, {14, std::nextafter(0.95, 0.0), true}, {15, 250.0, false},
      {15, std::nextafter(250.0, 300.0), true}, {6, -1e-9, true}, {9, -1e-9, true},
      {4, -1.0, true}, {14, NAN, false}, {15, NAN, false}, {12, -1.0, true}};
  for (const auto& c : cases) {
    std::vector<real_T> r(24, 0.0), failed(24, 0.0);
    r[0] = 7.0, r[4] = 1000.0, r[5] = 3.0, r[12] = 592.0, r[13] = 5.0, r[14] = 0.99, r[15] = 100.0;
    r[23] = 0.5;
    r[c.column] = c.value;
    failed[12] = -1.0, failed[13] = c.column == 12 ? 5.0 : 12.0;
    if (c.column != 12) { EXPECT_EQ(failsAcceptanceGates(r.data()), c.fails); }
    EXPECT_EQ(applyAcceptanceGates(r.data()), c.fails) << c.column << " " << c.value;
    if (c.fails) { EXPECT_EQ(r, failed) << c.column << " " << c.value; }
  }
  // RT exactly 0 is judged like any fitted row; a NaN RT is neither judged
  // nor blanked.
  for (const real_T rSquared : {0.99, 0.5}) {
    std::vector<real_T> r(24, 0.0);
    r[4] = 1000.0, r[13] = 2.0, r[14] = rSquared, r[15] = 100.0, r[23] = 0.5;
    const std::vector<real_T> before = r;
    EXPECT_EQ(applyAcceptanceGates(r.data()), rSquared < 0.95);
    if (rSquared < 0.95) EXPECT_TRUE(r[12] == -1.0 && r[13] == 12.0 && r[23] == 0.0);
    else EXPECT_EQ(r, before);
    r = before;
    r[12] = NAN, r[14] = 0.5;
    EXPECT_FALSE(applyAcceptanceGates(r.data()));
    EXPECT_TRUE(std::isnan(r[12]) && r[14] == 0.5 && r[23] == 0.5);
  }
}

// From a row a few percent off, both forms recover the curve; the masked form
// is the same fit on the kept points and refuses fewer than 8 per transition;
// held entries stay where the row puts them.  finishRow writes the row of the
// family; only a first energy below 0 fails it, a NaN one does not.
template <int T>
void refitsAndFinishes() {
  using L = TransitionLayout<T>;
  test::Curve<T> c(64);
  for (int t = 0; t < T; ++t) c.row[4 + 2 * t + (t == 2)] *= 1.04, c.row[5 + 2 * t + (t == 2)] *= 0.98;
  c.row[0] += 0.1, c.row[2] -= 0.1;
  for (bool held : {false, true}) {
    SCOPED_TRACE(testing::Message() << T << (held ? " held" : " free"));
    real_T fit[13], masked[13], row[kRowColumns];
    refitFromRow<T>(c.x, c.y, 64, c.row, held, fit);
    for (int k = 0; k < L::kParams; ++k) EXPECT_NEAR(fit[k], c.p[k], 1e-6 * std::fabs(c.p[k])) << k;

    std::vector<int32_T> mask(64, 0);
    std::vector<real_T> xs, ys;
    for (int i = 0; i < 8 * T; ++i) {  // spread over the curve, the last point last
      const int at = i + 1 < 8 * T ? i * (8 / T) : 63;
      mask[at] = 1, xs.push_back(c.x[at]), ys.push_back(c.y[at]);
    }
    mask[63] = 0;
    refitMasked<T>(c.x, c.y, 64, c.row, mask.data(), held, masked);
    EXPECT_EQ(masked[0] + masked[L::kParams - 1], -2.0);  // one point short
    mask[63] = 1;
    refitMasked<T>(c.x, c.y, 64, c.row, mask.data(), held, masked);
    refitFromRow<T>(xs.data(), ys.data(), 8 * T, c.row, held, fit);
    EXPECT_TRUE(fit[0] != -1.0 && std::equal(fit, fit + L::kParams, masked));

    std::copy(c.row, c.row + kRowColumns, row);
    row[1] += 0.001, row[3] -= 0.001, row[8] += 0.01, row[11] -= 0.01 * (T == 3);
    refitFromRow<T>(c.x, c.y, 64, row, held, fit);
    EXPECT_TRUE(fit[L::nativeSlope] == row[1] && fit[L::unfoldedSlope] == row[3]);
    for (int t = 0; t < T - 1; ++t) EXPECT_EQ(fit[L::amp(t)] == row[8 + 3 * t], held) << t;
  }
  if constexpr (T == 2) {  // named in the wrong order: back by midpoint, amp1 complemented
    real_T row[kRowColumns], fit[10];
    std::copy(c.row, c.row + kRowColumns, row);
    std::swap(row[4], row[6]), std::swap(row[5], row[7]), row[8] = 1.0 - row[8];
    refitFromRow<2>(c.x, c.y, 64, row, false, fit);
    for (int k = 0; k < 10; ++k) EXPECT_NEAR(fit[k], c.p[k], 1e-6 * std::fabs(c.p[k])) << k;
  }

  real_T row[kRowColumns], expected[kRowColumns];
  c.y[9] += 0.05;
  finishRow<T>(c.x, c.y, 64, c.p, 3.0, row);
  writeFitRow<T>(c.x, c.y, 64, c.p, 3.0, expected);
  EXPECT_TRUE(test::sameRow(row, expected));
  c.p[0] = -0.5;
  finishRow<T>(c.x, c.y, 64, c.p, 4.0, row);
  writeFailedRow<T>(4.0, expected);
  EXPECT_TRUE(test::sameRow(row, expected));
  c.p[0] = NAN;
  finishRow<T>(c.x, c.y, 64, c.p, 4.0, row);
  EXPECT_TRUE(row[12] == kFixedRT && row[14] == -1.0);
}

// A whole curve of the most points a call takes is refitted on all of them.
TEST(Refit, AsManyPointsAsACurveHolds) {
  const auto x = test::grid(2304, 0.0, 6.0);
  const auto y = test::evaluated(curveModel1, test::kTruth[0], x);
  real_T row[kRowColumns] = {}, fit[7];
  paramsToRow<1>(test::kTruth[0], row);
  const std::vector<int32_T> all(2304, 1);
  refitMasked<1>(x.data(), y.data(), 2304, row, all.data(), true, fit);
  EXPECT_NEAR(fit[0], 6000.0, 1e-6 * 6000.0);
}

TEST(Refit, EachFamily) { refitsAndFinishes<1>(), refitsAndFinishes<2>(), refitsAndFinishes<3>(); }

// Alternating noise of 0.7 leaves a plausible fit with R squared below 0.95.
// (R squared 0.9516 with 0.45, 0.9409 with 0.5.)
TEST(Refit, BelowTheScoreLimit) {
  for (real_T noise : {0.45, 0.5}) {
    test::Curve<1> c(64);
    for (int i = 0; i < 64; ++i) c.y[i] += i % 2 ? noise : -noise;
    real_T fit[7];
    refitFromRow<1>(c.x, c.y, 64, c.row, false, fit);
    EXPECT_EQ(std::count(fit, fit + 7, -1.0), noise > 0.46 ? 7 : 0) << noise;
  }
}

// Every row of a curve is measured again on its kept points, failed rows too:
// a failed one-transition row has no fraction error (-1), and the columns of
// transitions the family lacks stay exactly +0.
TEST(FitStatistics, FailedRowsAreMeasuredToo) {
  test::Curve<1> c(40);
  real_T row[kRowColumns];
  writeFailedRow<1>(34.0, row);
  row[4] = 5000.0;
  refreshFitStatistics(2, c.x, c.y, 40, row);
  EXPECT_EQ(row[14], -1.0);
  EXPECT_EQ(row[15], -5000.0);
  for (int k : {16, 17}) EXPECT_TRUE(test::sameBits(row[k], 0.0)) << k;
  // Each transition's energy error from its own energy.
  test::Curve<2> two(64);
  writeFailedRow<2>(34.0, row);
  row[4] = 5000.0, row[6] = 3000.0;
  refreshFitStatistics(3, two.x, two.y, 64, row);
  EXPECT_TRUE(row[15] == -5000.0 && row[16] == -3000.0 && test::sameBits(row[17], 0.0));
}

}  // namespace
}  // namespace quent
