// The walks and ladders that pick an attempt, run on score and flag tables:
// for every family, each rung and place of its ladders is hit at its own
// threshold and missed just below it, and names its code; the tie rules and
// the slot/place pairing of held tables.
#include "strategies/acceptance_walks.h"
#include "strategies/family_literals.h"
#include "strategies/strategy_skeleton.h"
#include "test_support.h"

namespace quent {
namespace {

// Thresholds of step k as the ladders form them.
real_T pairThreshold(int k, real_T margin) { return (k * -0.0005 + 0.9995) + margin; }
real_T firstPassThreshold(int k) { return k * -0.001 + 0.999; }
real_T below(real_T v) { return std::nextafter(v, 0.0); }

template <class F>
class Ladders : public ::testing::Test {};
TYPED_TEST_SUITE(Ladders, test::FittedFamilies);

// Scores of both held tables, every slot below every threshold of the ladder.
struct HeldScores {
  std::vector<real_T> native, unfolded;
  explicit HeldScores(int slots) : native(slots, 0.98), unfolded(slots, 0.98) {}
  std::vector<real_T>& of(bool unfoldedTable) { return unfoldedTable ? unfolded : native; }
  template <class F>
  PairHit ladder() const {
    return pairLadder(F::kPairRungs, static_cast<int>(std::size(F::kPairRungs)), native.data(),
                      unfolded.data());
  }
};

// A rung at its threshold wins over the next rung at its own; just below it,
// the next rung wins at the same step (the last rung: itself one step later).
TYPED_TEST(Ladders, EveryPairRungHitsAtItsThresholdWithItsCode) {
  using F = TypeParam;
  using L = test::Literals<F>;
  const auto& rungs = L::pairRungs;
  for (std::size_t r = 0; r < rungs.size(); ++r) {
    for (bool unfolded : {false, true}) {
      SCOPED_TRACE(testing::Message() << "rung " << r << (unfolded ? " unfolded" : " native"));
      const bool last = r + 1 == rungs.size();
      HeldScores s(L::kHeldSlots);
      s.of(unfolded)[rungs[r].slot] = pairThreshold(0, rungs[r].margin);
      if (!last) s.of(!unfolded)[rungs[r + 1].slot] = pairThreshold(0, rungs[r + 1].margin);
      const PairHit hit = s.template ladder<F>();
      ASSERT_TRUE(hit.step == 0 && hit.rung == static_cast<int>(r));
      EXPECT_TRUE(hit.slot == rungs[r].slot && hit.unfolded == unfolded);
      EXPECT_EQ(strategy::pairLadderCode<F>(Pass::Main, hit),
                unfolded ? rungs[r].mainUnfolded : rungs[r].mainNative);
      EXPECT_EQ(strategy::pairLadderCode<F>(Pass::TrimBoth, hit),
                unfolded ? rungs[r].trimBothUnfolded : rungs[r].trimBothNative);

      s.of(unfolded)[rungs[r].slot] = below(pairThreshold(0, rungs[r].margin));
      const PairHit next = s.template ladder<F>();
      EXPECT_EQ(next.rung, static_cast<int>(last ? r : r + 1));
      EXPECT_EQ(next.step, last ? 1 : 0);
    }
  }
}

// Twenty steps: the last threshold of a rung still hits, below it nothing does.
TYPED_TEST(Ladders, PairLadderEndsAfterTwentySteps) {
  using F = TypeParam;
  using L = test::Literals<F>;
  const auto& rung = L::pairRungs.back();
  HeldScores s(L::kHeldSlots);
  s.native[rung.slot] = pairThreshold(19, rung.margin);
  const PairHit hit = s.template ladder<F>();
  EXPECT_TRUE(hit.step == 19 && hit.slot == rung.slot);
  s.native[rung.slot] = below(s.native[rung.slot]);
  const PairHit none = s.template ladder<F>();
  EXPECT_TRUE(none.step == -1 && none.rung == -1 && none.slot == -1 && !none.unfolded);
}

// The same for the first-pass ladder over the start table, down to step 49.
TYPED_TEST(Ladders, EveryFirstPassPlaceHitsAtItsThresholdWithItsCode) {
  using F = TypeParam;
  using L = test::Literals<F>;
  const auto& places = L::firstPass;
  const int count = static_cast<int>(std::size(F::kFirstPassRungs));
  for (std::size_t j = 0; j < places.size(); ++j) {
    SCOPED_TRACE(j);
    std::vector<real_T> scores(L::kStartSlots, 0.9);
    scores[places[j].slot] = firstPassThreshold(0);
    if (j + 1 < places.size()) scores[places[j + 1].slot] = firstPassThreshold(0);
    const FirstPassHit hit = firstPassLadder(std::data(F::kFirstPassRungs), count, scores.data());
    ASSERT_TRUE(hit.step == 0 && hit.place == static_cast<int>(j));
    EXPECT_TRUE(F::kFirstPassRungs[hit.place].slot == places[j].slot &&
                F::kFirstPassRungs[hit.place].code == places[j].code);
    scores[places[j].slot] = below(firstPassThreshold(0));
    const FirstPassHit next = firstPassLadder(std::data(F::kFirstPassRungs), count, scores.data());
    EXPECT_EQ(next.place, static_cast<int>(j + 1 < places.size() ? j + 1 : j));
  }
  std::vector<real_T> lowest(L::kStartSlots, 0.9);
  lowest[places.back().slot] = firstPassThreshold(49);
  EXPECT_EQ(firstPassLadder(std::data(F::kFirstPassRungs), count, lowest.data()).step, 49);
  lowest[places.back().slot] = below(lowest[places.back().slot]);
  const FirstPassHit none = firstPassLadder(std::data(F::kFirstPassRungs), count, lowest.data());
  EXPECT_TRUE(none.step == -1 && none.place == -1);
}

// The pair ladder scores both held tables afresh: scores the held stages left
// ranked in place do not count.  Failed vectors score -1 whatever stood.
TYPED_TEST(Ladders, PairLadderScoresTheTablesAfresh) {
  using F = TypeParam;
  const std::vector<real_T> x = test::grid(40, 0.0, 6.0), y(40, 1.0);
  strategy::Tables<F> w{};
  for (int s = 0; s < F::HeldTable::kSlots; ++s) {
    w.nativeHeld.fail(s), w.unfoldedHeld.fail(s);
    w.nativeHeld.score[s] = w.unfoldedHeld.score[s] = 1.0;
  }
  real_T row[24];
  EXPECT_FALSE(strategy::pairLadderStage<F>(Pass::Main, {x.data(), y.data(), 40}, w, row));
  EXPECT_EQ(w.unfoldedHeld.score[0], -1.0);
}

TEST(StageWalks, BestStartHeldTableAndBothHeld) {
  // Strictly above the best so far: the first of equal scores wins, and a
  // refinement slot still at 0.0 beats failed starts.
  const real_T scores[9] = {-1.0, 0.5, 0.97, 0.97, -1.0, 0.2, 0.97, 0.1, 0.0};
  EXPECT_EQ(bestSlot(scores, 0, 9, 0).slot, 2);
  EXPECT_EQ(bestSlot(scores, 3, 6, 0).slot, 3);
  const real_T failed[3] = {-1.0, -1.0, 0.0};
  EXPECT_EQ(bestSlot(failed, 0, 3, 0).slot, 2);
  EXPECT_EQ(bestSlot(failed, 0, 2, 1).slot, 0);  // -1.0 beats the start of -1.1
  const real_T allNaN[2] = {NAN, NAN};
  EXPECT_EQ(bestSlot(allNaN, 0, 2, 1).slot, 1);

  // Flags go by slot, scores by sorted place, position against position.
  const real_T sorted[9] = {0.999, 0.995, 0.99, 0.9, 0.5, 0.0, 0.0, -1.0, -1.0};
  const real_T fromSlot2[9] = {0, 0, 1, 1, 1, 1, 1, 1, 1}, fromSlot3[9] = {0, 0, 0, 1, 1, 1, 1, 1, 1};
  EXPECT_EQ(heldTableWalk(fromSlot2, sorted, 9), 2);
  EXPECT_EQ(heldTableWalk(fromSlot3, sorted, 9), -1);

  const real_T bothGood[2] = {0.995, 0.99}, oneGood[2] = {0.995, below(0.99)};
  EXPECT_TRUE(bothHeldAccepted(bothGood, 2, true));
  EXPECT_FALSE(bothHeldAccepted(oneGood, 2, true));
  EXPECT_TRUE(bothHeldAccepted(oneGood, 2, false));
  const real_T bestBelow[2] = {below(0.99), 0.5}, bestAt[2] = {0.99, 0.5};
  EXPECT_FALSE(bothHeldAccepted(bestBelow, 2, false));
  EXPECT_TRUE(bothHeldAccepted(bestAt, 2, false));
  const real_T lastNaN[3] = {0.999, 0.995, NAN}, three[3] = {0.999, 0.995, 0.99};
  EXPECT_FALSE(bothHeldAccepted(lastNaN, 3, true));
  EXPECT_TRUE(bothHeldAccepted(three, 3, true));
}

TEST(PairLadder, TiesGoToTheUnfoldedTable) {
  const PairRung rungs[2] = {{6, 0.0, {0, 0}, {0, 0}}, {3, -0.0005, {0, 0}, {0, 0}}};
  real_T native[9], unfolded[9];
  std::fill(native, native + 9, 0.9), std::fill(unfolded, unfolded + 9, 0.9);
  native[6] = unfolded[6] = 0.9995;
  EXPECT_TRUE(pairLadder(rungs, 2, native, unfolded).unfolded);
  // The native table hits, and the unfolded one is written where it scores higher.
  native[6] = 0.9996, unfolded[6] = 0.9997;
  EXPECT_TRUE(pairLadder(rungs, 2, native, unfolded).unfolded);
  unfolded[6] = 0.9;
  EXPECT_FALSE(pairLadder(rungs, 2, native, unfolded).unfolded);
}

TEST(ChangeTest, PlateausOneDeviationApart) {
  // Ends 1.0 apart over a deviation of 1.0 pass; a flat curve (NaN ratio)
  // goes on or fails by the family's rule.
  std::vector<real_T> y(10, 0.0);
  for (int i = 5; i < 10; ++i) y[i] = 1.0;
  // s = sqrt(10 * 0.25 / 9), |0 - 1| / s > 1
  EXPECT_TRUE(curveChanges(y.data(), 10, FlatCurve::HasNoChange));
  y.assign(10, 2.0);
  EXPECT_TRUE(curveChanges(y.data(), 10, FlatCurve::GoesOn));
  EXPECT_FALSE(curveChanges(y.data(), 10, FlatCurve::HasNoChange));
  // Plateaus 0.5 apart with a wide middle: the ratio is below 1.
  const std::vector<real_T> wide = {0.0, 0.0, 0.0, 0.0, 0.0, -3.0, 3.0, 0.5, 0.5, 0.5, 0.5, 0.5};
  EXPECT_FALSE(curveChanges(wide.data(), 12, FlatCurve::GoesOn));
}

}  // namespace
}  // namespace quent
