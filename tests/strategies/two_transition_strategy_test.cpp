// Fits of synthetic two-transition curves through the strategy's passes: the
// exit each curve takes in the main pass and the two retries, the trims of
// the masked form, and the parameters recovered.
#include "models/r_squared.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/two_transition_family.h"
#include "strategies/exit_rows.h"
#include "test_support.h"

namespace quent {
namespace {

using F = TwoTransitionFamily;

using Curve = test::Points;
using test::Row;
using test::expectExit;

// Baseline slopes (native, unfolded) of the curves below.
constexpr real_T kSlopes[3][2] = {{-0.6, -0.3}, {0.0, 0.0}, {-0.6, 0.3}};

// Two transitions on 0..8 from a native plateau at 10 to an unfolded one at
// 2, with m values m1 and m2; the first makes `amp1` of the change.  Noise
// of `noiseShare` of the amplitude of 8.
Curve synthetic(int32_T n, real_T Cm1, real_T Cm2, real_T m1, real_T m2, real_T amp1, int slopes,
                real_T noiseShare, unsigned seed) {
  const real_T p[10] = {m1 * Cm1, Cm1,  m2 * Cm2, Cm2, amp1, 10.0, kSlopes[slopes][0],
                        2.0,      kSlopes[slopes][1], rtFromCelsius(25.0)};
  Curve c{test::grid(n, 0.0, 8.0), {}};
  c.y = test::evaluated(curveModel2, p, c.x);
  for (int32_T i = 0; i < n; ++i) c.y[i] += 8.0 * noiseShare * test::noise(i, seed);
  return c;
}


Row fit(const Curve& c) {
  Row row;
  strategy::fitWhole<F>(c.x.data(), c.n(), c.y.data(), c.n(), 25.0, row.v);
  return row;
}

// The masked form (Pass::Main) or one of its retries, all points on.
Row fitMasked(Pass pass, const Curve& c, std::vector<int32_T>& maskOut) {
  const std::vector<int32_T> mask(c.n(), 1);
  Row row;
  maskOut.assign(mask.size(), -7);
  if (pass == Pass::Main)
    strategy::fitMasked<F>(c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), c.n(), 25.0, row.v,
                           maskOut.data());
  else
    strategy::fitTrimmed<F>(pass, c.x.data(), c.n(), c.y.data(), c.n(), mask.data(), c.n(), 25.0,
                            row.v, maskOut.data());
  return row;
}

// Curves found to take each exit of the main pass, with the exits the two
// retries take on all of their points.  Only the better of the two attempts
// with both baselines held has to pass (code 2 here, 38 and 43 in the
// retries); no start scoring 0.0 or more is an exit of its own (33, 37, 42).
TEST(FitTwoTransitionPath, EachCurveTakesItsExit) {
  const struct {
    int32_T n;
    real_T Cm1, Cm2, m1, m2, amp1;
    int slopes;
    real_T noise;
    unsigned seed;
    real_T mainCode, trimOneCode, trimBothCode;
  } cases[] = {
      // n  Cm1  Cm2  m1    m2    amp1 slopes noise seed   main one both
      {96, 1.0, 4.0, 2500, 4000, 0.7, 1,    0.01,  27,    2,   38,  43},
      {96, 2.0, 6.5, 2500, 1000, 0.2, 2,    0.03,  43,    3,   39,  44},
      {48, 1.0, 2.5, 1000, 2500, 0.2, 0,    0.03,  20,    4,   39,  45},
      {32, 1.0, 2.5, 1000, 2500, 0.4, 0,    0.01,  25,    5,   39,  46},
      {32, 3.0, 7.5, 4000, 2500, 0.7, 0,    0.01,  99,    6,   39,  47},
      {32, 3.0, 6.0, 4000, 4000, 0.2, 1,    0.03,  59,    7,   39,  48},
      {32, 2.0, 3.5, 4000, 2500, 0.7, 2,    0.01,  15,    8,   39,  49},
      {96, 3.0, 4.5, 2500, 2500, 0.2, 2,    0.0,   35,    9,   39,  50},
      {96, 1.0, 2.5, 4000, 2500, 0.4, 2,    0.0,   17,    10,  39,  51},
      {96, 1.0, 4.0, 2500, 1000, 0.2, 2,    0.03,  12,    11,  39,  52},
      {32, 1.0, 2.5, 1000, 1000, 0.4, 1,    0.03,  21,    12,  39,  53},
      {96, 3.0, 6.0, 4000, 2500, 0.2, 1,    0.01,  27,    13,  39,  54},
      {48, 2.0, 3.5, 2500, 4000, 0.4, 1,    0.03,  87,    14,  39,  55},
      {32, 2.0, 5.0, 4000, 2500, 0.7, 1,    0.03,  99,    15,  39,  56},
      {48, 2.0, 3.5, 4000, 1000, 0.7, 1,    0.03,  17,    16,  39,  57},
      {48, 2.0, 5.0, 2500, 4000, 0.7, 1,    0.03,  37,    17,  39,  58},
      {96, 1.0, 2.5, 2500, 2500, 0.7, 1,    0.03,  76,    18,  39,  59},
      {96, 1.0, 4.0, 2500, 2500, 0.4, 2,    0.01,  45,    19,  39,  60},
      {48, 1.0, 4.0, 1000, 1000, 0.7, 2,    0.0,   60,    20,  39,  61},
      {32, 1.0, 4.0, 4000, 1000, 0.7, 2,    0.03,  19,    21,  39,  62},
      {96, 1.0, 2.5, 4000, 2500, 0.4, 2,    0.03,  44,    22,  39,  62},
      {32, 1.0, 5.5, 4000, 4000, 0.4, 2,    0.03,  11,    23,  39,  62},
      {48, 2.0, 6.5, 2500, 1000, 0.7, 2,    0.03,  30,    24,  39,  62},
      {32, 1.0, 4.0, 1000, 1000, 0.4, 2,    0.03,  77,    25,  39,  62},
      {48, 2.0, 3.5, 4000, 2500, 0.4, 1,    0.06,  59,    26,  39,  62},
      {96, 1.0, 2.5, 2500, 4000, 0.7, 2,    0.03,  44,    27,  39,  62},
      {48, 3.0, 7.5, 4000, 1000, 0.7, 0,    0.03,  95,    28,  39,  62},
      {48, 1.0, 2.5, 2500, 1000, 0.2, 2,    0.03,  33,    29,  39,  62},
      {96, 1.0, 2.5, 2500, 4000, 0.7, 0,    0.03,  28,    30,  39,  62},
      {96, 1.0, 4.0, 2500, 2500, 0.7, 2,    0.03,  10,    31,  39,  62},
      {48, 1.0, 2.5, 1000, 1000, 0.7, 2,    0.01,  93,    33,  37,  42},
      {96, 1.0, 4.0, 2500, 1000, 0.2, 2,    0.15,  12,    34,  39,  62}};
  for (const auto& p : cases) {
    SCOPED_TRACE(testing::Message() << "main code " << p.mainCode);
    const Curve c = synthetic(p.n, p.Cm1, p.Cm2, p.m1, p.m2, p.amp1, p.slopes, p.noise, p.seed);
    std::vector<int32_T> maskOut;
    expectExit(fit(c), p.mainCode);
    expectExit(fitMasked(Pass::TrimOne, c, maskOut), p.trimOneCode);
    expectExit(fitMasked(Pass::TrimBoth, c, maskOut), p.trimBothCode);
    EXPECT_EQ(maskOut, std::vector<int32_T>(p.n, 1));
  }
}

// The masked form: a last point pulled below the unfolded plateau goes in the
// single trim (38); with the first point far above the native plateau too,
// both go in the double trim (43).  A curve without a start first loses its
// first point and fits on the rest (4), or loses its last point as well and
// fits in the pair ladder (19).
TEST(FitTwoTransitionMasked, TrimsAndDroppedEnds) {
  const struct {
    int32_T n;
    real_T Cm1, Cm2, m1, m2, amp1;
    int slopes;
    real_T noise;
    unsigned seed;
    real_T firstShift, lastShift, code;
    std::vector<int32_T> off;
  } cases[] = {
      {96, 1.0, 4.0, 2500, 4000, 0.7, 1, 0.01, 27, 0.0, -0.5, 38, {95}},
      {96, 1.0, 4.0, 2500, 4000, 0.7, 1, 0.01, 27, 5.0, -4.5, 43, {0, 95}},
      {48, 1.0, 2.5, 4000, 2500, 0.2, 0, 0.01, 18, 0.0, -0.5, 4, {0}},
      {32, 1.0, 2.5, 1000, 1000, 0.4, 1, 0.03, 21, 0.0, -0.5, 19, {0, 31}}};
  for (const auto& p : cases) {
    SCOPED_TRACE(testing::Message() << "code " << p.code);
    Curve c = synthetic(p.n, p.Cm1, p.Cm2, p.m1, p.m2, p.amp1, p.slopes, p.noise, p.seed);
    c.y[0] += p.firstShift, c.y[p.n - 1] += p.lastShift;
    std::vector<int32_T> maskOut, expected(p.n, 1);
    for (const int32_T i : p.off) expected[i] = 0;
    const Row row = fitMasked(Pass::Main, c, maskOut);
    expectExit(row, p.code);
    EXPECT_EQ(maskOut, expected);
  }
}

// Well separated midpoints come back closely from a clean curve, through both
// baselines held.
TEST(FitTwoTransitionRecovery, WellSeparatedMidpoints) {
  const Curve c = synthetic(96, 2.0, 5.0, 3000.0, 2400.0, 0.4, 1, 0.002, 7);
  const Row row = fit(c);
  EXPECT_EQ(row.code(), 2.0);
  EXPECT_NEAR(row.v[5], 2.0, 0.01);
  EXPECT_NEAR(row.v[7], 5.0, 0.01);
  EXPECT_NEAR(row.v[8], 0.4, 0.01);
  EXPECT_NEAR(row.v[4], 6000.0, 0.03 * 6000.0);
  EXPECT_NEAR(row.v[6], 12000.0, 0.03 * 12000.0);
}


// A held stage scores every slot before ranking: here only slot 0 holds a
// fit (the curve's own vector, meeting both ends), and the walk finds it.
TEST(HeldStage, ScoresEverySlotBeforeRanking) {
  const real_T truth[10] = {6000.0, 2.0, 12000.0, 5.0, 0.4, 10.0, 0.0, 2.0, 0.0, rtFromCelsius(25.0)};
  const Curve c{test::grid(64, 0.0, 8.0), {}};
  const std::vector<real_T> y = test::evaluated(curveModel2, truth, c.x);
  F::HeldTable t{};
  for (int s = 1; s < F::HeldTable::kSlots; ++s) t.fail(s);
  t.set(0, truth);
  EXPECT_EQ(strategy::heldStage<F>(Side::Native, {c.x.data(), y.data(), 64}, t), 0);
  EXPECT_EQ(t.score[0], 1.0);
}

}  // namespace
}  // namespace quent
