// Fits of synthetic one-transition curves through the four entry points: the
// exit each curve takes, the parameters recovered, and that every path writes
// all 24 columns of the row.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "models/r_squared.h"
#include "strategies/one_transition_strategy.h"

namespace quent {
namespace {

constexpr real_T kGarbage = 7.7e77;
constexpr real_T kRoomTemperature = 25.0;

// Uniform pseudo-noise in [-1, 1], the same on every platform.
real_T noise(int32_T i, unsigned seed) {
  unsigned s = static_cast<unsigned>(i + 1) * 2654435761u ^ seed * 40503u;
  s ^= s >> 13;
  s *= 0x5bd1e995u;
  s ^= s >> 15;
  return static_cast<real_T>(s % 20001u) / 10000.0 - 1.0;
}

struct Curve {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
};

// A transition on 0..8 from a native plateau near 10 to an unfolded one near
// 2, with noise of `noiseShare` of that amplitude (8).
Curve synthetic(int32_T n, real_T dG, real_T Cm, real_T nativeSlope, real_T unfoldedSlope,
                real_T noiseShare = 0.0, unsigned seed = 7) {
  Curve c{std::vector<real_T>(n), std::vector<real_T>(n)};
  for (int32_T i = 0; i < n; ++i) c.x[i] = 8.0 * i / (n - 1);
  const real_T p[7] = {dG, Cm, 10.0, nativeSlope, 2.0, unfoldedSlope, rtFromCelsius(kRoomTemperature)};
  curveModel1(p, c.x.data(), n, c.y.data());
  for (int32_T i = 0; i < n; ++i) c.y[i] += 8.0 * noiseShare * noise(i, seed);
  return c;
}

struct Row {
  real_T v[24];
  Row() { for (real_T& e : v) e = kGarbage; }
  real_T code() const { return v[13]; }
  bool fitted() const { return v[12] > 0.0; }
};

void expectAllColumnsWritten(const Row& row) {
  for (int c = 0; c < 24; ++c) EXPECT_NE(row.v[c], kGarbage) << "column " << c;
}

void expectFailedRow(const Row& row, real_T code) {
  expectAllColumnsWritten(row);
  EXPECT_EQ(row.code(), code);
  for (int c = 0; c < 6; ++c) EXPECT_EQ(row.v[c], -1.0) << "column " << c;
  for (int c = 6; c < 12; ++c) EXPECT_EQ(row.v[c], 0.0) << "column " << c;
  EXPECT_EQ(row.v[12], -1.0);
  EXPECT_EQ(row.v[14], -1.0);
  for (int c = 15; c < 24; ++c) EXPECT_EQ(row.v[c], 0.0) << "column " << c;
}

Row fit(const Curve& c, real_T temperature = kRoomTemperature) {
  Row row;
  fitOneTransition(c.x.data(), c.n(), c.y.data(), c.n(), temperature, row.v);
  return row;
}

using MaskedFit = void (*)(const real_T*, int32_T, const real_T*, int32_T, const int32_T*, int32_T,
                           real_T, real_T*, int32_T*);

Row fitMasked(MaskedFit f, const Curve& c, const std::vector<int32_T>& mask,
              std::vector<int32_T>& maskOut) {
  Row row;
  maskOut.assign(mask.size(), -7);
  f(c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), static_cast<int32_T>(mask.size()),
    kRoomTemperature, row.v, maskOut.data());
  return row;
}

TEST(FitOneTransitionGate, RefusesBadShapesAndTemperatures) {
  const Curve c8 = synthetic(8, 5200.0, 3.6, 0.0, 0.0);
  const Curve c7 = synthetic(7, 5200.0, 3.6, 0.0, 0.0);
  const Curve c385 = synthetic(385, 5200.0, 3.6, 0.0, 0.0);
  expectFailedRow(fit(c7), 1.0);
  expectFailedRow(fit(c385), 1.0);
  expectFailedRow(fit(c8, 100.1), 1.0);
  expectFailedRow(fit(c8, -0.1), 1.0);
  Row unequal;
  fitOneTransition(c8.x.data(), 8, c8.y.data(), 7, kRoomTemperature, unequal.v);
  expectFailedRow(unequal, 1.0);
  for (real_T t : {0.0, 100.0}) {
    const Row row = fit(c8, t);
    expectAllColumnsWritten(row);
    EXPECT_NE(row.code(), 1.0) << t;
  }
}

TEST(FitOneTransitionGate, CurvesWithoutChangeOrWidth) {
  Curve bump = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  for (int32_T i = 0; i < 20; ++i) bump.y[39 - i] = bump.y[i];  // same plateau at both ends
  expectFailedRow(fit(bump), 32.0);

  Curve noWidth = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  noWidth.x[39] = noWidth.x[0];
  expectFailedRow(fit(noWidth), 32.0);

  // A flat curve has no deviation to measure change by; it goes on to the
  // attempts, and none of them is acceptable.
  Curve flat = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  flat.y.assign(40, 3.0);
  expectFailedRow(fit(flat), 34.0);
}

struct PathCase {
  const char* name;
  int32_T n;
  real_T dG, Cm, nativeSlope, unfoldedSlope, noiseShare;
  unsigned seed;
  real_T mainCode, trimBothCode;
};

// Curves whose exits differ, found from the codes they take: each names the
// stage that accepted it, in the main pass and in the pass without end points.
class FitOneTransitionPath : public ::testing::TestWithParam<PathCase> {};

TEST_P(FitOneTransitionPath, TakesItsExit) {
  const PathCase& p = GetParam();
  const Curve c = synthetic(p.n, p.dG, p.Cm, p.nativeSlope, p.unfoldedSlope, p.noiseShare, p.seed);
  const Row main = fit(c);
  expectAllColumnsWritten(main);
  EXPECT_EQ(main.code(), p.mainCode);
  std::vector<int32_T> all(p.n, 1), out;
  const Row trimmed = fitMasked(fitOneTransitionTrimBoth, c, all, out);
  expectAllColumnsWritten(trimmed);
  EXPECT_EQ(trimmed.code(), p.trimBothCode);
  EXPECT_EQ(out, all);
}

INSTANTIATE_TEST_SUITE_P(
    Exits, FitOneTransitionPath,
    ::testing::Values(
        //        name              n    dG      Cm   slopes      noise seed  main trimBoth
        PathCase{"bothHeld",        48, 2250.0, 1.5, -0.6, -0.3, 0.0,  3,   2,   43},
        PathCase{"nativeHeld",      48, 4500.0, 3.0, -0.6, -0.3, 0.03, 3,   3,   44},
        PathCase{"unfoldedHeld",    48, 4500.0, 3.0,  0.0,  0.0, 0.01, 3,   4,   45},
        PathCase{"pairNative",      48, 7500.0, 5.0, -0.6,  0.3, 0.0,  3,   5,   46},
        PathCase{"pairUnfolded",    48, 4500.0, 3.0, -0.6,  0.3, 0.01, 3,   6,   47},
        PathCase{"firstPass",       48, 9750.0, 6.5, -0.6, -0.3, 0.01, 3,   25,  64},
        PathCase{"nothingPassed",   96, 5200.0, 3.6,  0.0,  0.0, 0.1875, 7, 34,  64}),
    [](const auto& info) { return std::string(info.param.name); });

// Noise-free flat baselines: the held baselines are means of free fits that
// each match the plateaus to rounding, so the transition comes back to
// within a few parts in a thousand.
TEST(FitOneTransitionRecovery, CleanCurve) {
  const Row row = fit(synthetic(96, 5200.0, 3.6, 0.0, 0.0));
  EXPECT_EQ(row.code(), 2.0);
  EXPECT_NEAR(row.v[4], 5200.0, 0.005 * 5200.0);
  EXPECT_NEAR(row.v[5], 3.6, 0.001 * 3.6);
  EXPECT_GT(row.v[14], 0.99999);
}

// Noise of +-1% of the amplitude (sd 0.6%) over 96 points: each plateau mean
// is good to about 0.1% of the amplitude, and dG, set by the steepness of a
// transition a quarter of the curve wide, to a few percent; a mildly sloped
// baseline adds its own spread to the averaged baselines.
TEST(FitOneTransitionRecovery, NoisyAndSlopedCurves) {
  const Row noisy = fit(synthetic(96, 5200.0, 3.6, 0.0, 0.0, 0.01));
  EXPECT_EQ(noisy.code(), 2.0);
  EXPECT_NEAR(noisy.v[4], 5200.0, 0.03 * 5200.0);
  EXPECT_NEAR(noisy.v[5], 3.6, 0.01 * 3.6);
  const Row sloped = fit(synthetic(96, 5200.0, 3.6, -0.05, 0.02));
  EXPECT_EQ(sloped.code(), 2.0);
  EXPECT_NEAR(sloped.v[4], 5200.0, 0.02 * 5200.0);
  EXPECT_NEAR(sloped.v[5], 3.6, 0.01 * 3.6);
}

// Without an unfolded plateau only the native baseline is known: the fit
// holds it and is accepted where its last points meet the curve.
TEST(FitOneTransitionRecovery, NoUnfoldedPlateau) {
  const Row row = fit(synthetic(96, 8000.0, 7.0, -0.1, 0.0));
  EXPECT_EQ(row.code(), 3.0);
  EXPECT_GT(row.v[14], 0.99);
}

// A last point pulled below the unfolded plateau spoils the agreement at that
// end, so the unfolded baseline is unknown and both cannot be held: the
// single trim drops the last point (the native baseline is known) and its fit
// is measured on the points it kept.
TEST(FitOneTransitionMasked, SingleTrimDropsTheLastPoint) {
  Curve c = synthetic(96, 5200.0, 3.6, 0.0, 0.0);
  c.y[95] -= 0.5;
  std::vector<int32_T> all(96, 1), out;
  const Row row = fitMasked(fitOneTransitionMasked, c, all, out);
  expectAllColumnsWritten(row);
  EXPECT_EQ(row.code(), 38.0);
  std::vector<int32_T> expected(96, 1);
  expected[95] = 0;
  EXPECT_EQ(out, expected);
  EXPECT_NEAR(row.v[4], 5200.0, 0.005 * 5200.0);
  const real_T params[7] = {row.v[4], row.v[5], row.v[0], row.v[1], row.v[2], row.v[3], row.v[12]};
  EXPECT_EQ(row.v[14], rSquaredOfFit1(c.x.data(), c.y.data(), 95, params));
}

// Outliers at both ends leave no good start: the double trim fits the rest.
TEST(FitOneTransitionMasked, DoubleTrimDropsBothEnds) {
  Curve c = synthetic(96, 5200.0, 3.6, 0.0, 0.0);
  c.y[0] += 5.0;
  c.y[95] -= 5.0;
  std::vector<int32_T> all(96, 1), out;
  const Row row = fitMasked(fitOneTransitionMasked, c, all, out);
  expectAllColumnsWritten(row);
  EXPECT_EQ(row.code(), 43.0);
  std::vector<int32_T> expected(96, 1);
  expected[0] = expected[95] = 0;
  EXPECT_EQ(out, expected);
  const real_T params[7] = {row.v[4], row.v[5], row.v[0], row.v[1], row.v[2], row.v[3], row.v[12]};
  EXPECT_EQ(row.v[14], rSquaredOfFit1(c.x.data() + 1, c.y.data() + 1, 94, params));
  EXPECT_NEAR(row.v[5], 3.6, 0.001 * 3.6);
}

TEST(FitOneTransitionMasked, GateCountsThePointsLeftOn) {
  const Curve c = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  std::vector<int32_T> mask(40, 0), out;
  for (int32_T i = 0; i < 8; ++i) mask[4 * i + 2] = 1;
  const Row eight = fitMasked(fitOneTransitionMasked, c, mask, out);
  expectAllColumnsWritten(eight);
  EXPECT_NE(eight.code(), 1.0);
  mask[30] = 0;
  expectFailedRow(fitMasked(fitOneTransitionMasked, c, mask, out), 1.0);
  EXPECT_EQ(out, mask);
  mask.resize(39);
  expectFailedRow(fitMasked(fitOneTransitionMasked, c, mask, out), 1.0);
}

TEST(FitOneTransitionTrims, EarlyExitsHaveTheirOwnCodes) {
  Curve bump = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  for (int32_T i = 0; i < 20; ++i) bump.y[39 - i] = bump.y[i];
  Curve noWidth = synthetic(40, 5200.0, 3.6, 0.0, 0.0);
  noWidth.x[39] = noWidth.x[0];
  const Curve noUnfolded = synthetic(96, 8000.0, 7.0, -0.1, 0.0);
  std::vector<int32_T> all40(40, 1), all96(96, 1), out;
  expectFailedRow(fitMasked(fitOneTransitionTrimOne, bump, all40, out), 35.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimOne, noWidth, all40, out), 36.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimOne, noUnfolded, all96, out), 39.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimBoth, bump, all40, out), 40.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimBoth, noWidth, all40, out), 41.0);
}

}  // namespace
}  // namespace quent
