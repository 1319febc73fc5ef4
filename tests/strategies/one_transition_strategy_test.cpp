// Fits of synthetic one-transition curves through the strategy's passes: the
// exit each curve takes, the parameters recovered, and that every path writes
// all 24 columns of the row.
#include "models/r_squared.h"
#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/exit_rows.h"
#include "test_support.h"

namespace quent {
namespace {

using F = OneTransitionFamily;

using Curve = test::Points;
using test::Row;
using test::expectExit;

std::vector<real_T> paramsOf(const Row& r) { return {r.v[4], r.v[5], r.v[0], r.v[1], r.v[2], r.v[3], r.v[12]}; }

// A transition on 0..8 from a native plateau at 10 to an unfolded one at 2,
// with noise of `noiseShare` of that amplitude of 8.
Curve synthetic(int32_T n, real_T dG, real_T Cm, real_T nativeSlope = 0.0,
                real_T unfoldedSlope = 0.0, real_T noiseShare = 0.0, unsigned seed = 7) {
  const real_T p[7] = {dG, Cm, 10.0, nativeSlope, 2.0, unfoldedSlope, rtFromCelsius(25.0)};
  Curve c{test::grid(n, 0.0, 8.0), {}};
  c.y = test::evaluated(curveModel1, p, c.x);
  for (int32_T i = 0; i < n; ++i) c.y[i] += 8.0 * noiseShare * test::noise(i, seed);
  return c;
}


Row fit(const Curve& c, real_T temperature = 25.0) {
  Row row;
  strategy::fitWhole<F>(c.x.data(), c.n(), c.y.data(), c.n(), temperature, row.v);
  return row;
}

std::vector<int32_T> maskOut;  // the mask of the last masked fit

// The masked form (Pass::Main) or one of its retries; with no mask given, all
// points are on.
Row fitMasked(Pass pass, const Curve& c, std::vector<int32_T> mask = {}) {
  if (mask.empty()) mask.assign(c.n(), 1);
  Row row;
  maskOut.assign(mask.size(), -7);
  const int32_T m = static_cast<int32_T>(mask.size());
  if (pass == Pass::Main)
    strategy::fitMasked<F>(c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), m, 25.0, row.v,
                           maskOut.data());
  else
    strategy::fitTrimmed<F>(pass, c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), m, 25.0,
                            row.v, maskOut.data());
  return row;
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
      {"oneNativeGood", 48, 10000.0, 4.0, -0.6, 0.0, 0.0,    82,  2,   38,  43},  // one start meets the native end
      {"nativeHeld",    48, 4500.0, 3.0, -0.6, -0.3, 0.03,   3,   3,   39,  44},
      {"unfoldedHeld",  48, 4500.0, 3.0,  0.0,  0.0, 0.01,   3,   4,   39,  45},
      {"pairNative",    48, 7500.0, 5.0, -0.6,  0.3, 0.0,    3,   5,   39,  46},
      {"pairUnfolded",  48, 4500.0, 3.0, -0.6,  0.3, 0.01,   3,   6,   39,  47},
      {"firstPass",     48, 9750.0, 6.5, -0.6, -0.3, 0.01,   3,   25,  39,  64},
      {"firstPlace",    44, 5.1 * 1648.0, 5.1, 0.5, 0.1, 0.032, 2648, 23, 39, 64},
      {"noUnfolded",    96, 8000.0, 7.0, -0.1,  0.0, 0.0,    7,   3,   39,  44},
      {"oneNativeStart",48, 9750.0, 6.5, -0.6,  0.3, 0.0,    1,   3,   39,  44},
      {"nothingPassed", 96, 5200.0, 3.6,  0.0,  0.0, 0.1875, 7,   34,  39,  64}};
  for (const auto& p : cases) {
    SCOPED_TRACE(p.name);
    const Curve c = synthetic(p.n, p.dG, p.Cm, p.nativeSlope, p.unfoldedSlope, p.noiseShare, p.seed);
    expectExit(fit(c), p.mainCode);
    expectExit(fitMasked(Pass::TrimOne, c), p.trimOneCode);
    expectExit(fitMasked(Pass::TrimBoth, c), p.trimBothCode);
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
  const Row one = fitMasked(Pass::Main, last);
  expectExit(one, 38.0);
  EXPECT_EQ(maskOut, expected);
  // The first point goes when only the unfolded baseline is known: here the
  // first point is pulled above the native plateau.
  Curve first = synthetic(48, 4500.0, 3.0, -0.6, -0.3);
  first.y[0] += 0.5;
  expectExit(fitMasked(Pass::Main, first), 38.0);
  std::vector<int32_T> firstOff(48, 1);
  firstOff[0] = 0;
  EXPECT_EQ(maskOut, firstOff);
  // The last point goes by its own entry, whatever its neighbour's.
  std::vector<int32_T> secondLastOff(96, 1);
  secondLastOff[94] = 0;
  expectExit(fitMasked(Pass::Main, last, secondLastOff), 38.0);
  secondLastOff[95] = 0;
  EXPECT_EQ(maskOut, secondLastOff);
  EXPECT_NEAR(one.v[4], 5200.0, 0.005 * 5200.0);
  EXPECT_EQ(one.v[14], rSquaredOfFit1(last.x.data(), last.y.data(), 95, paramsOf(one).data()));

  const Row two = fitMasked(Pass::Main, both);
  expectExit(two, 43.0);
  expected[0] = 0;
  EXPECT_EQ(maskOut, expected);
  EXPECT_NEAR(two.v[5], 3.6, 0.001 * 3.6);
  EXPECT_EQ(two.v[14], rSquaredOfFit1(both.x.data() + 1, both.y.data() + 1, 94, paramsOf(two).data()));

  // The double trim needs only one of the curve's end points on: here the
  // host left out the first and the second-last, and the last is off.
  Curve lastOff = synthetic(48, 5200.0, 3.6);
  lastOff.y[47] -= 4.5;
  std::vector<int32_T> mask(48, 1);
  mask[0] = mask[46] = 0;
  const Row three = fitMasked(Pass::Main, lastOff, mask);
  expectExit(three, 43.0);
  mask[47] = 0;
  EXPECT_EQ(maskOut, mask);
}

// One transition never lacks a start (its refinement slot takes part in the
// best-start walk at 0.0).  Without that slot, a step no plausible transition
// fits has none: each pass then ends on its own code, and the masked form
// first takes off the curve's first point, then its last.
struct WithoutRefinementSlot : OneTransitionFamily {
  static constexpr int kBestWalkEnd = 8;
};

TEST(NoStart, EachPassEndsOnItsCodeAndTheMaskedFormDropsEnds) {
  using G = WithoutRefinementSlot;
  Curve step{test::grid(24, 0.0, 8.0), std::vector<real_T>(24, 0.0)};
  for (int32_T i = 12; i < 24; ++i) step.y[i] = 1.0;
  Row whole;
  strategy::fitWhole<G>(step.x.data(), 24, step.y.data(), 24, 25.0, whole.v);
  expectExit(whole, 33.0);
  const struct { Pass pass; real_T code; } passes[] = {{Pass::TrimOne, 37.0}, {Pass::TrimBoth, 42.0}};
  for (const auto& p : passes) {
    Row row;
    std::vector<int32_T> mask(24, 1), out(24);
    strategy::fitTrimmed<G>(p.pass, step.x.data(), 24, step.y.data(), 24, mask.data(), 24, 25.0,
                            row.v, out.data());
    expectExit(row, p.code);
  }
  for (const bool firstOn : {true, false}) {
    std::vector<int32_T> mask(24, 1), expected(24, 1), out(24);
    mask[0] = firstOn ? 1 : 0;
    expected[0] = expected[23] = 0;
    Row row;
    strategy::fitMasked<G>(step.x.data(), 24, step.y.data(), 24, mask.data(), 24, 25.0, row.v,
                           out.data());
    expectExit(row, 33.0);
    EXPECT_EQ(out, expected) << firstOn;
  }
  // Nine points on: taking off the first leaves eight, taking off the last
  // seven, too few for a fit.
  std::vector<int32_T> nine(24, 0), out(24);
  for (int32_T i : {0, 9, 10, 11, 12, 13, 14, 15, 23}) nine[i] = 1;
  Row row;
  strategy::fitMasked<G>(step.x.data(), 24, step.y.data(), 24, nine.data(), 24, 25.0, row.v,
                         out.data());
  expectExit(row, 1.0);
  EXPECT_EQ(row.v[6], 0.0);  // the one-transition layout of a mask too short
  nine[0] = nine[23] = 0;
  EXPECT_EQ(out, nine);
}

}  // namespace
}  // namespace quent
