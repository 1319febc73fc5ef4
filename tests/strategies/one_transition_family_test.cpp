// The members of the one-transition strategy that are its own: the midpoint
// estimate revised from the good starts, and the rule that members taking a
// midpoint run only with one above 0.0.
#include "strategies/attempt_runner.h"
#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"
#include "test_support.h"

namespace quent {
namespace {

using F = OneTransitionFamily;

real_T below(real_T v) { return std::nextafter(v, 0.0); }

// A start table whose slots all score 0.5 with Cm 1.0, on a curve ending at x = 8.
struct Starts {
  std::vector<real_T> x = test::grid(48, 0.0, 8.0), y = std::vector<real_T>(48, 0.0);
  F::StartTable t{};
  Starts() {
    for (int s = 0; s < 9; ++s) t.score[s] = 0.5, t.value[1 * 9 + s] = 1.0;
  }
  void good(int s, real_T score, real_T Cm) { t.score[s] = score, t.value[1 * 9 + s] = Cm; }
  real_T revised(real_T peak) {
    F::Estimate e{peak};
    F::reviseEstimate({x.data(), y.data(), 48}, t, e);
    return e.midpoint;
  }
};

TEST(OneTransitionEstimate, SlopePeakKeptOnlyStrictlyInsideTheCurve) {
  Starts s;
  const struct { real_T peak, midpoint; } cases[] = {
      {0.0, -1.0}, {8.0, -1.0}, {below(8.0), below(8.0)}, {-0.5, -1.0}, {2.5, 2.5}, {0.0005, 0.0005}};
  for (const auto& c : cases) EXPECT_EQ(s.revised(c.peak), c.midpoint) << c.peak;
}

// The mean Cm of the slots scoring 0.99 or more, whatever the slope peak; a
// mean exactly at the last x stands, beyond it or below 0.0 it is dropped.
TEST(OneTransitionEstimate, MeanMidpointOfTheGoodStarts) {
  Starts s;
  s.good(2, 0.99, 3.0), s.good(8, 0.995, 4.5), s.good(5, below(0.99), 100.0);
  EXPECT_EQ(s.revised(-1.0), 3.75);
  const struct { real_T Cm, midpoint; } cases[] = {
      {8.0, 8.0}, {8.5, -1.0}, {0.0, 0.0}, {-1.5, -1.0}};
  for (const auto& c : cases) {
    Starts one;
    one.good(4, 0.999, c.Cm);
    EXPECT_EQ(one.revised(2.0), c.midpoint) << c.Cm;
  }
}

bool failed(const real_T* v) { return std::all_of(v, v + 7, [](real_T e) { return e == -1.0; }); }

// Held tables and the attempts with both baselines held run their midpoint
// members (odd slots, the second attempt) only with a midpoint above 0.0; the
// refinement slot stays failed until the table is ranked.
TEST(OneTransitionEstimate, MidpointMembersRunOnlyAboveZero) {
  test::Curve<1> c(48);
  const CurvePoints points{c.x, c.y, 48};
  const HeldBaselines b{{1.0, 0.05}, 3, {5.0, 0.1}, 2};
  for (real_T midpoint : {0.0, 3.0}) {
    SCOPED_TRACE(midpoint);
    const F::Estimate e{midpoint};
    for (Side side : {Side::Native, Side::Unfolded}) {
      F::HeldTable t{};
      strategy::fillHeldTable<F>(side, points, kFixedRT, b, e, t);
      for (int s = 0; s < 9; ++s) {
        real_T v[7];
        t.get(s, v);
        EXPECT_EQ(failed(v), s == 8 || (s % 2 == 1 && midpoint == 0.0)) << s;
      }
      real_T first[7], run[7];  // slot 0 holds its member's fit
      t.get(0, first);
      runAttempt<F>((side == Side::Native ? F::kNativeHeld : F::kUnfoldedHeld)[0], points,
                    kFixedRT, e, b.native, b.unfolded, run);
      EXPECT_TRUE(std::equal(first, first + 7, run));
    }
    real_T both[2][7];
    for (int k = 0; k < 2; ++k)
      strategy::runMember<F>(F::kBothHeld[k], points, kFixedRT, b, e, both[k]);
    EXPECT_FALSE(failed(both[0]));
    EXPECT_EQ(failed(both[1]), midpoint == 0.0);
  }
  EXPECT_TRUE(F::estimateUsable({std::nextafter(0.0, 1.0)}));
}

// The baselines to hold: means over the slots scoring 0.99 or more that meet
// that end; a side no such slot meets has the pair (0, 0) and count 0.
TEST(OneTransitionEstimate, BaselinesFromTheGoodStarts) {
  F::StartTable t{};
  const auto slot = [&t](int s, real_T score, real_T nativeFlag, real_T unfoldedFlag,
                         real_T a, real_T b, real_T c, real_T d) {
    const real_T v[7] = {5000.0, 3.0, a, b, c, d, kFixedRT};
    t.set(s, v), t.score[s] = score, t.nativeFlag[s] = nativeFlag, t.unfoldedFlag[s] = unfoldedFlag;
  };
  slot(1, 0.995, 1.0, 0.0, 10.0, -0.5, 99.0, 99.0);
  slot(3, 0.99, 1.0, 1.0, 11.0, -0.25, 2.0, 0.5);
  slot(5, std::nextafter(0.99, 0.0), 1.0, 1.0, 99.0, 99.0, 99.0, 99.0);
  HeldBaselines b = strategy::baselinesFromGoodSlots<F>(t);
  EXPECT_TRUE(b.nativeCount == 2 && b.native[0] == 10.5 && b.native[1] == -0.375);
  EXPECT_TRUE(b.unfoldedCount == 1 && b.unfolded[0] == 2.0 && b.unfolded[1] == 0.5);
  t.nativeFlag[1] = t.nativeFlag[3] = 0.0;
  b = strategy::baselinesFromGoodSlots<F>(t);
  EXPECT_TRUE(b.nativeCount == 0 && b.native[0] == 0.0 && b.native[1] == 0.0);
  EXPECT_TRUE(test::sameBits(b.native[0], 0.0) && test::sameBits(b.native[1], 0.0));
}

// Slots 4 to 7 of the start table take the slope peak of the curve, and are
// failed where the curve has none.
TEST(OneTransitionEstimate, StartTableTakesTheSlopePeak) {
  test::Curve<1> c(48);
  F::StartTable t{};
  F::Estimate e{};
  F::startAttempts({c.x, c.y, 48}, kFixedRT, t, e);
  EXPECT_NEAR(e.midpoint, 3.0, 0.1);
  for (int s = 0; s < 8; ++s) EXPECT_GT(t.score[s], 0.99) << s;
  EXPECT_EQ(t.score[8], 0.0);

  // A slope that grows to the last point has its peak beyond the curve.
  std::vector<real_T> rising(48);
  for (int i = 0; i < 48; ++i) rising[i] = std::exp(c.x[i]);
  F::startAttempts({c.x, rising.data(), 48}, kFixedRT, t, e);
  EXPECT_EQ(e.midpoint, -1.0);
  for (int s = 4; s < 8; ++s) {
    real_T v[7];
    t.get(s, v);
    EXPECT_TRUE(failed(v) && t.score[s] == -1.0) << s;
  }
}

// A ranked held table is refined from its first seven numbers as stored:
// the energies of its seven best slots, best first, whatever their other
// entries.  The refinement lands in slot 8.  (With noise, where a fit stops
// depends on where it started.)
TEST(OneTransitionEstimate, RankedTableRefinedFromTheBestEnergies) {
  test::Curve<1> c(48);
  for (int i = 0; i < 48; ++i) c.y[i] += 0.05 * test::noise(i, 3);
  const CurvePoints points{c.x, c.y, 48};
  // The energies are chosen so that, read in rank order, they make a vector
  // near the curve's own.
  const real_T start[7] = {5800.0, 3.1, 1.02, 0.05, 4.95, 0.1, kFixedRT};
  const int32_T order[9] = {3, 9, 1, 7, 5, 2, 8, 4, 6};  // 1-based slots, best first
  F::HeldTable t{};
  for (int s = 0; s < 9; ++s) {
    const real_T v[7] = {-2.0, 3.5, 1.0, 0.05, 5.0, 0.1, kFixedRT};
    t.set(s, v);
  }
  for (int k = 0; k < 7; ++k) t.value[order[k] - 1] = start[k];  // entry 0 of each slot
  F::refineHeldTable(points, order, t);
  real_T expected[7], refined[7];
  F::refineRanked(points, start, expected);
  t.get(8, refined);
  EXPECT_NEAR(refined[0], 6000.0, 100.0);
  EXPECT_TRUE(std::equal(refined, refined + 7, expected));
}

}  // namespace
}  // namespace quent
