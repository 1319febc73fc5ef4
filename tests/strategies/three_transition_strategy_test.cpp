// Fits of synthetic three-transition curves through the strategy: the exit
// each curve takes, the parameters recovered in canonical order, and the
// choices of the start table as functions of its scores and flags.
#include "strategies/attempt_runner.h"
#include "strategies/exit_rows.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/three_transition_family.h"
#include "test_support.h"

namespace quent {
namespace {

using F = ThreeTransitionFamily;
using Curve = test::Points;
using test::Row;
using test::expectExit;

// Baseline slopes (native, unfolded) of the curves below.
constexpr real_T kSlopes[3][2] = {{-0.6, -0.3}, {0.0, 0.0}, {-0.6, 0.3}};

struct Shape {
  int32_T n;
  real_T Cm[3], m[3], amp[2];
  int slopes;
  real_T noise;
  unsigned seed;
};

// Three transitions on 0..8 from a native plateau at 10 to an unfolded one
// at 2; noise of `noise` of the change of 8.
Curve synthetic(const Shape& s) {
  const real_T p[13] = {s.m[0] * s.Cm[0], s.Cm[0], s.m[1] * s.Cm[1], s.Cm[1],
                        s.m[2] * s.Cm[2], s.Cm[2], s.amp[0],         s.amp[1],
                        10.0,             kSlopes[s.slopes][0],      2.0,
                        kSlopes[s.slopes][1],      rtFromCelsius(25.0)};
  Curve c{test::grid(s.n, 0.0, 8.0), {}};
  c.y = test::evaluated(curveModel3, p, c.x);
  for (int32_T i = 0; i < s.n; ++i) c.y[i] += 8.0 * s.noise * test::noise(i, s.seed);
  return c;
}

Row fit(const Curve& c) {
  Row row;
  strategy::fitWhole<F>(c.x.data(), c.n(), c.y.data(), c.n(), 25.0, row.v);
  return row;
}

// Curves found to take each kind of exit: both baselines held (2), one held
// (3, 4), the fine ladder over the held tables (5 to 39, 31 then 35), the
// coarse ladder over the start table (40 to 71), and nothing passing (34).
// A row names its transitions in ascending order of midpoint.  The masked
// form with every point on fits the same and leaves the mask as it was.
TEST(FitThreeTransitionPath, EachCurveTakesItsExit) {
  const struct {
    Shape shape;
    real_T code;
  } cases[] = {
      //  n   Cm1  Cm2  Cm3   m1    m2    m3   amp1 amp2  slopes noise seed  code
      {{24,  {2,   3,   4},   {2500, 2500, 4000}, {0.4, 0.4}, 0, 0,    49}, 2},
      {{32,  {0.5, 2,   4},   {2500, 1000, 4000}, {0.2, 0.4}, 1, 0.03, 20}, 3},
      {{120, {0.5, 1.5, 3.5}, {2500, 4000, 2500}, {0.3, 0.4}, 0, 0.03, 55}, 4},
      {{32,  {1.5, 3,   5.5}, {2500, 4000, 1000}, {0.4, 0.2}, 1, 0.03, 14}, 5},
      {{32,  {0.5, 2.5, 5},   {2500, 4000, 2500}, {0.4, 0.2}, 1, 0.03, 73}, 6},
      {{32,  {2,   3.5, 5.5}, {4000, 1000, 1000}, {0.4, 0.2}, 2, 0.03, 88}, 12},
      {{120, {2,   3,   5},   {1000, 4000, 4000}, {0.2, 0.3}, 2, 0,    46}, 13},
      {{48,  {1.5, 2.5, 5},   {2500, 4000, 4000}, {0.4, 0.4}, 2, 0,    61}, 20},
      {{48,  {1.5, 3.5, 6},   {1000, 2500, 4000}, {0.3, 0.3}, 0, 0.06, 2},  21},
      {{24,  {1.5, 4,   6.5}, {2500, 1000, 4000}, {0.3, 0.3}, 0, 0.06, 42}, 31},
      {{24,  {1.5, 4,   6},   {4000, 4000, 1000}, {0.3, 0.3}, 2, 0.06, 52}, 35},
      {{96,  {1.5, 3.5, 5},   {4000, 4000, 4000}, {0.4, 0.3}, 2, 0.01, 45}, 39},
      {{24,  {1.5, 3,   4.5}, {1000, 4000, 1000}, {0.4, 0.4}, 2, 0,    50}, 40},
      {{32,  {1,   2,   3},   {1000, 1000, 1000}, {0.2, 0.2}, 2, 0.06, 86}, 45},
      {{120, {1,   2,   3.5}, {1000, 2500, 1000}, {0.4, 0.4}, 1, 0.06, 40}, 52},
      {{32,  {1,   2,   4},   {1000, 1000, 2500}, {0.4, 0.3}, 2, 0.03, 62}, 64},
      {{120, {1.5, 2.5, 5},   {2500, 4000, 4000}, {0.2, 0.3}, 2, 0.03, 10}, 70},
      {{32,  {0.5, 2,   4.5}, {4000, 2500, 4000}, {0.4, 0.2}, 2, 0,    53}, 34},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.code);
    const Curve c = synthetic(k.shape);
    const Row row = fit(c);
    expectExit(row, k.code);
    if (k.code != 34) {
      EXPECT_EQ(transitionsOfRow(row.v), 3);
      EXPECT_TRUE(row.v[5] <= row.v[7] && row.v[7] <= row.v[10]);
    }
    if (k.shape.n > 32) continue;
    const std::vector<int32_T> all(c.n(), 1);
    std::vector<int32_T> maskOut(c.n(), -7);
    Row masked;
    strategy::fitMasked<F>(c.x.data(), c.n(), c.y.data(), c.n(), all.data(), c.n(), 25.0, masked.v,
                           maskOut.data());
    EXPECT_TRUE(test::sameRow(masked.v, row.v));
    EXPECT_EQ(maskOut, all);
  }
}

// A clean curve comes back close to what made it.
TEST(FitThreeTransitionPath, RecoversAClean96PointCurve) {
  const Curve c = synthetic({96, {1.5, 3.5, 5.5}, {2500, 2500, 2500}, {0.3, 0.3}, 1, 0.0, 0});
  const Row row = fit(c);
  ASSERT_GT(row.v[kColRT], 0.0);
  const real_T Cm[3] = {1.5, 3.5, 5.5};
  for (int t = 0; t < 3; ++t) EXPECT_NEAR(row.v[kColMidpoint[t]], Cm[t], 0.01) << t;
  EXPECT_NEAR(row.v[kColShare[0]], 0.3, 0.01);
  EXPECT_NEAR(row.v[kColShare[1]], 0.3, 0.01);
  EXPECT_GT(row.v[kColRSquared], 0.9999);
}

// The amplitudes of the start come from the means of neighbouring slope-peak
// midpoints, kept inside [0.01, 0.99], else 0.35 and 0.3.
TEST(ThreeTransitionStart, PeakAmplitudes) {
  const struct {
    real_T midpoints[3], amp1, amp2;
  } cases[] = {
      {{0.0, 0.02, 0.02}, 0.01, 0.02},
      {{0.0, 0.0, 1.98}, 0.35, 0.99},
      {{0.0, 0.0, std::nextafter(1.98, 2.0)}, 0.35, 0.3},
      {{std::nextafter(0.02, 0.0), 0.0, 1.0}, 0.35, 0.5},
      {{1.0, 1.5, 3.0}, 0.35, 0.3},
      {{-1.0, -1.0, -1.0}, 0.35, 0.3},
  };
  for (const auto& c : cases) {
    real_T amp[2];
    F::peakAmplitudes(c.midpoints, amp);
    EXPECT_EQ(amp[0], c.amp1) << c.midpoints[1];
    EXPECT_EQ(amp[1], c.amp2) << c.midpoints[2];
  }
}

// The best split (slots 16 to 27) that scored above 0.0 gives the
// amplitudes; else the best of slots 0 to 15; slot 0 when nothing counts.
// Ties go to the first, a NaN never counts.
TEST(ThreeTransitionStart, SlotOfTheAmplitudes) {
  const auto slotOf = [](std::initializer_list<std::pair<int, real_T>> set) {
    real_T scores[32];
    std::fill_n(scores, 32, -1.0);
    for (const auto& [slot, score] : set) scores[slot] = score;
    return F::amplitudeSlot(scores);
  };
  EXPECT_EQ(slotOf({{5, 0.5}}), 5);
  EXPECT_EQ(slotOf({{15, 0.9}, {16, 0.1}}), 16);
  EXPECT_EQ(slotOf({{20, 0.3}, {24, 0.3}, {19, NAN}}), 20);
  EXPECT_EQ(slotOf({{27, 0.4}, {28, 0.9}}), 27);
  EXPECT_EQ(slotOf({{17, 0.0}, {3, 0.2}, {4, 0.2}}), 3);
  EXPECT_EQ(slotOf({}), 0);
}

// Slots 28 to 31 run only with both amplitudes strictly inside (0, 0.99); a
// NaN is not refused.
TEST(ThreeTransitionStart, AmplitudesThatFillTheLastSlots) {
  const struct {
    real_T a1, a2;
    bool fills;
  } cases[] = {{0.98, 0.01, true},  {0.99, 0.3, false}, {0.3, 0.99, false},
               {0.0, 0.3, false},   {0.3, -0.0, false}, {std::nextafter(0.0, 1.0), std::nextafter(0.99, 0.0), true},
               {NAN, 0.3, true}};
  for (const auto& c : cases) {
    const real_T amp[2] = {c.a1, c.a2};
    EXPECT_EQ(F::amplitudesFillStartTable(amp), c.fills) << c.a1 << ", " << c.a2;
  }
}

// The amplitudes are revised to their means over the starts scoring 0.99 or
// more that meet either end, when those sum to between 0 and 1 (bounds
// excluded); without such a start they stay.
TEST(ThreeTransitionStart, RevisedAmplitudes) {
  const auto revised = [](std::initializer_list<std::array<real_T, 5>> slots) {
    F::StartTable t{};
    int s = 0;
    for (const auto& [score, nativeFlag, unfoldedFlag, a1, a2] : slots) {
      t.score[s] = score, t.nativeFlag[s] = nativeFlag, t.unfoldedFlag[s] = unfoldedFlag;
      t.value[6 * 32 + s] = a1, t.value[7 * 32 + s] = a2;
      ++s;
    }
    F::Estimate e{{1.0, 2.0, 3.0}, {0.45, 0.25}};
    F::reviseEstimate({nullptr, nullptr, 0}, t, e);
    return std::vector<real_T>{e.amplitudes[0], e.amplitudes[1]};
  };
  using V = std::vector<real_T>;
  EXPECT_EQ(revised({{0.995, 1.0, 0.0, 0.2, 0.3}, {0.99, 0.0, 1.0, 0.4, 0.1},
                     {0.999, 0.0, 0.0, 0.9, 0.9}, {std::nextafter(0.99, 0.0), 1.0, 1.0, 0.9, 0.9}}),
            (V{(0.2 + 0.4) / 2.0, (0.3 + 0.1) / 2.0}));
  EXPECT_EQ(revised({{0.995, 1.0, 1.0, 0.6, 0.4}}), (V{0.45, 0.25}));
  EXPECT_EQ(revised({{0.995, 1.0, 1.0, 0.3, -0.3}}), (V{0.45, 0.25}));
  EXPECT_EQ(revised({{0.995, 1.0, 1.0, 0.7, -0.3}}), (V{0.7, -0.3}));
  EXPECT_EQ(revised({{0.999, 0.0, 0.0, 0.2, 0.2}}), (V{0.45, 0.25}));
}

// The second round of the start table: splits in the four hold forms at the
// midpoints of the best start (a slot never filled gives zeros), then the
// amplitudes of the best split; amplitudes of 0.99 or more leave slots 28 to
// 31 failed at a score of -1.
TEST(ThreeTransitionStart, SecondRoundSplitsAtTheBestStart) {
  const Curve c = synthetic({48, {1.5, 3.5, 5.5}, {2500, 2500, 2500}, {0.3, 0.3}, 1, 0.0, 0});
  const CurvePoints points{c.x.data(), c.y.data(), c.n()};
  for (const int best : {5, 24}) {
    SCOPED_TRACE(best);
    F::StartTable t{};
    std::fill_n(t.score, 24, -1.0);
    const real_T midpoints[3] = {1.4, 3.6, 5.4};
    for (int k = 0; k < 3; ++k) t.value[(2 * k + 1) * 32 + 5] = midpoints[k];
    F::Estimate e{{-1.0, -1.0, -1.0}, {0.35, 0.3}};
    F::completeStartTable(points, 600.0, best, t, e);
    F::Estimate at{{0.0, 0.0, 0.0}, {0.35, 0.3}};
    if (best == 5) std::copy(midpoints, midpoints + 3, at.midpoints);
    for (int k = 0; k < 4; ++k) {
      real_T want[13], got[13];
      runAttempt<F>(attempts3::inHoldForm(F::Attempt::SplitAt, k), points, 600.0, at, kAbsentPair,
                    kAbsentPair, want);
      t.get(24 + k, got);
      EXPECT_TRUE(std::equal(got, got + 13, want)) << k;
    }
    const int found = F::amplitudeSlot(t.score);
    EXPECT_TRUE(e.amplitudes[0] == t.at(found, 6) && e.amplitudes[1] == t.at(found, 7));
    EXPECT_EQ(F::amplitudesFillStartTable(e.amplitudes), t.score[28] != -1.0);
  }
}

}  // namespace
}  // namespace quent
