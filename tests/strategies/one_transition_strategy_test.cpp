// Fits of synthetic one-transition curves through the four entry points: the
// exit each curve takes, the parameters recovered, and that every path writes
// all 24 columns of the row.
#include "models/r_squared.h"
#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"
#include "test_support.h"

namespace quent {
namespace {

constexpr real_T kGarbage = 7.7e77;
using F = OneTransitionFamily;

void fitOneTransition(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                      real_T temperature, real_T* row) {
  strategy::fitWhole<F>(x, xCount, y, yCount, temperature, row);
}
void fitOneTransitionMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                            const int32_T* mask, int32_T maskCount, real_T temperature,
                            real_T* row, int32_T* maskOut) {
  strategy::fitMasked<F>(x, xCount, y, yCount, mask, maskCount, temperature, row, maskOut);
}
void fitOneTransitionTrimOne(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                             const int32_T* mask, int32_T maskCount, real_T temperature,
                             real_T* row, int32_T* maskOut) {
  strategy::fitTrimmed<F>(Pass::TrimOne, x, xCount, y, yCount, mask, maskCount, temperature, row,
                          maskOut);
}
void fitOneTransitionTrimBoth(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                              const int32_T* mask, int32_T maskCount, real_T temperature,
                              real_T* row, int32_T* maskOut) {
  strategy::fitTrimmed<F>(Pass::TrimBoth, x, xCount, y, yCount, mask, maskCount, temperature,
                          row, maskOut);
}

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

// A transition on 0..8 from a native plateau at 10 to an unfolded one at 2,
// with noise of `noiseShare` of that amplitude of 8.
Curve synthetic(int32_T n, real_T dG, real_T Cm, real_T nativeSlope = 0.0,
                real_T unfoldedSlope = 0.0, real_T noiseShare = 0.0, unsigned seed = 7) {
  const real_T p[7] = {dG, Cm, 10.0, nativeSlope, 2.0, unfoldedSlope, rtFromCelsius(25.0)};
  Curve c{test::grid(n, 0.0, 8.0), {}};
  c.y = test::evaluated(curveModel1, p, c.x);
  for (int32_T i = 0; i < n; ++i) c.y[i] += 8.0 * noiseShare * noise(i, seed);
  return c;
}

// The same plateau at both ends, or no width: first x equals last x.
Curve sameEnds(bool width = true) {
  Curve c = synthetic(40, 5200.0, 3.6);
  for (int32_T i = 0; i < 20 && width; ++i) c.y[39 - i] = c.y[i];
  if (!width) c.x[39] = c.x[0];
  return c;
}

struct Row {
  real_T v[24];
  Row() { std::fill(v, v + 24, kGarbage); }
  real_T code() const { return v[13]; }
  std::vector<real_T> params() const { return {v[4], v[5], v[0], v[1], v[2], v[3], v[12]}; }
};

// The exit taken, on a row written in full.
void expectExit(const Row& row, real_T code) {
  for (int c = 0; c < 24; ++c) EXPECT_NE(row.v[c], kGarbage) << "column " << c;
  EXPECT_EQ(row.code(), code);
}
void expectFailedRow(const Row& row, real_T code) {
  test::expectList(row.v, 24, {-1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, -1, code, -1, 0, 0, 0, 0, 0,
                               0, 0, 0, 0});
}

Row fit(const Curve& c, real_T temperature = 25.0) {
  Row row;
  fitOneTransition(c.x.data(), c.n(), c.y.data(), c.n(), temperature, row.v);
  return row;
}

std::vector<int32_T> maskOut;  // the mask of the last masked fit

// With no mask given, all points are on.
Row fitMasked(decltype(&fitOneTransitionMasked) f, const Curve& c, std::vector<int32_T> mask = {}) {
  if (mask.empty()) mask.assign(c.n(), 1);
  Row row;
  maskOut.assign(mask.size(), -7);
  f(c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), static_cast<int32_T>(mask.size()), 25.0,
    row.v, maskOut.data());
  return row;
}

TEST(FitOneTransitionGate, RefusedAndFailedInputs) {
  const Curve c8 = synthetic(8, 5200.0, 3.6);
  expectFailedRow(fit(synthetic(7, 5200.0, 3.6)), 1.0);
  expectFailedRow(fit(synthetic(385, 5200.0, 3.6)), 1.0);
  expectFailedRow(fit(c8, 100.1), 1.0);
  expectFailedRow(fit(c8, -0.1), 1.0);
  Row unequal;
  fitOneTransition(c8.x.data(), 8, c8.y.data(), 7, 25.0, unequal.v);
  expectFailedRow(unequal, 1.0);
  expectExit(fit(c8, 0.0), 2.0);  // eight points pass
  expectExit(fit(c8, 100.0), 2.0);
  expectFailedRow(fit(sameEnds()), 32.0);
  expectFailedRow(fit(sameEnds(false)), 32.0);
  // A flat curve has no deviation to measure change by: it goes on to the
  // attempts, and none of them is acceptable.
  Curve flat = synthetic(40, 5200.0, 3.6);
  flat.y.assign(40, 3.0);
  expectFailedRow(fit(flat), 34.0);
  // The retries count their own early exits.
  expectFailedRow(fitMasked(fitOneTransitionTrimOne, sameEnds()), 35.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimOne, sameEnds(false)), 36.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimBoth, sameEnds()), 40.0);
  expectFailedRow(fitMasked(fitOneTransitionTrimBoth, sameEnds(false)), 41.0);
}

// Curves found to take different exits: the stage that accepted each, in the
// main pass and in the two retries (run here on all points).
TEST(FitOneTransitionPath, EachCurveTakesItsExit) {
  const struct {
    const char* name;
    int32_T n;
    real_T dG, Cm, nativeSlope, unfoldedSlope, noiseShare;
    unsigned seed;
    real_T mainCode, trimOneCode, trimBothCode;
  } cases[] = {
      // name            n   dG      Cm   slopes      noise   seed main one both
      {"bothHeld",      48, 2250.0, 1.5, -0.6, -0.3, 0.0,    3,   2,   38,  43},
      {"nativeHeld",    48, 4500.0, 3.0, -0.6, -0.3, 0.03,   3,   3,   39,  44},
      {"unfoldedHeld",  48, 4500.0, 3.0,  0.0,  0.0, 0.01,   3,   4,   39,  45},
      {"pairNative",    48, 7500.0, 5.0, -0.6,  0.3, 0.0,    3,   5,   39,  46},
      {"pairUnfolded",  48, 4500.0, 3.0, -0.6,  0.3, 0.01,   3,   6,   39,  47},
      {"firstPass",     48, 9750.0, 6.5, -0.6, -0.3, 0.01,   3,   25,  39,  64},
      {"noUnfolded",    96, 8000.0, 7.0, -0.1,  0.0, 0.0,    7,   3,   39,  44},
      {"nothingPassed", 96, 5200.0, 3.6,  0.0,  0.0, 0.1875, 7,   34,  39,  64}};
  for (const auto& p : cases) {
    SCOPED_TRACE(p.name);
    const Curve c = synthetic(p.n, p.dG, p.Cm, p.nativeSlope, p.unfoldedSlope, p.noiseShare, p.seed);
    expectExit(fit(c), p.mainCode);
    expectExit(fitMasked(fitOneTransitionTrimOne, c), p.trimOneCode);
    expectExit(fitMasked(fitOneTransitionTrimBoth, c), p.trimBothCode);
    EXPECT_EQ(maskOut, std::vector<int32_T>(p.n, 1));
  }
}

// Without noise the held baselines meet the plateaus to rounding: dG and Cm
// come back to a few parts in a thousand.  Noise of +-1% of the amplitude
// costs dG a few percent; a mild slope the spread of the averaged baselines.
TEST(FitOneTransitionRecovery, CleanNoisyAndSlopedCurves) {
  const struct { Curve c; real_T dGShare, CmShare; } cases[] = {
      {synthetic(96, 5200.0, 3.6), 0.005, 0.001},
      {synthetic(96, 5200.0, 3.6, 0.0, 0.0, 0.01), 0.03, 0.01},
      {synthetic(96, 5200.0, 3.6, -0.05, 0.02), 0.02, 0.01}};
  for (const auto& k : cases) {
    const Row row = fit(k.c);
    EXPECT_EQ(row.code(), 2.0);
    EXPECT_NEAR(row.v[4], 5200.0, k.dGShare * 5200.0);
    EXPECT_NEAR(row.v[5], 3.6, k.CmShare * 3.6);
  }
}

// A last point pulled below the unfolded plateau spoils the agreement at that
// end, so only the native baseline is known and both cannot be held: the
// single trim drops the last point and accepts both baselines held, measured
// on the points it kept.  Outliers at both ends leave no good start at all:
// the double trim fits the rest.
TEST(FitOneTransitionMasked, TrimsDropEndPointsAndMeasureOnThePointsKept) {
  Curve last = synthetic(96, 5200.0, 3.6);
  last.y[95] -= 0.5;
  Curve both = last;
  both.y[0] += 5.0, both.y[95] -= 4.5;
  std::vector<int32_T> expected(96, 1);
  expected[95] = 0;
  const Row one = fitMasked(fitOneTransitionMasked, last);
  expectExit(one, 38.0);
  EXPECT_EQ(maskOut, expected);
  EXPECT_NEAR(one.v[4], 5200.0, 0.005 * 5200.0);
  EXPECT_EQ(one.v[14], rSquaredOfFit1(last.x.data(), last.y.data(), 95, one.params().data()));

  const Row two = fitMasked(fitOneTransitionMasked, both);
  expectExit(two, 43.0);
  expected[0] = 0;
  EXPECT_EQ(maskOut, expected);
  EXPECT_NEAR(two.v[5], 3.6, 0.001 * 3.6);
  EXPECT_EQ(two.v[14], rSquaredOfFit1(both.x.data() + 1, both.y.data() + 1, 94, two.params().data()));
}

TEST(FitOneTransitionMasked, GateCountsThePointsLeftOn) {
  const Curve c = synthetic(40, 5200.0, 3.6);
  std::vector<int32_T> mask(40, 0);
  for (int32_T i = 0; i < 8; ++i) mask[4 * i + 2] = 1;
  expectExit(fitMasked(fitOneTransitionMasked, c, mask), 2.0);
  mask[30] = 0;
  expectFailedRow(fitMasked(fitOneTransitionMasked, c, mask), 1.0);
  EXPECT_EQ(maskOut, mask);
  mask.resize(39);
  expectFailedRow(fitMasked(fitOneTransitionMasked, c, mask), 1.0);
}

}  // namespace
}  // namespace quent
