// The walks and ladders that pick an attempt, as functions of score and flag
// tables, with the exit codes of the one-transition family: every ladder
// exit, the margins and tie rules, and the slot/place pairing of held tables.
#include "strategies/acceptance_walks.h"
#include "strategies/one_transition_family.h"
#include "test_support.h"

namespace quent {
namespace {

using F = OneTransitionFamily;

// Thresholds of step k as the ladders form them.
real_T pairThreshold(int k, real_T margin) { return (k * -0.0005 + 0.9995) + margin; }
real_T firstPassThreshold(int k) { return k * -0.001 + 0.999; }
real_T below(real_T v) { return std::nextafter(v, 0.0); }

struct Scores {
  real_T native[9], unfolded[9];
  explicit Scores(real_T v) { std::fill(native, native + 9, v), std::fill(unfolded, unfolded + 9, v); }
  PairHit ladder() const { return pairLadder(F::kPairRungs, 9, native, unfolded); }
};

TEST(StageWalks, BestStartHeldTableAndBothHeld) {
  // Strictly above the best so far: the first of equal scores wins, and a
  // refinement slot still at 0.0 beats failed starts.
  const real_T scores[9] = {-1.0, 0.5, 0.97, 0.97, -1.0, 0.2, 0.97, 0.1, 0.0};
  EXPECT_EQ(bestSlot(scores, 0, 9, 0).slot, 2);
  const real_T failed[3] = {-1.0, -1.0, 0.0};
  EXPECT_EQ(bestSlot(failed, 0, 3, 0).slot, 2);

  // Flags go by slot, scores by sorted place, position against position.
  const real_T sorted[9] = {0.999, 0.995, 0.99, 0.9, 0.5, 0.0, 0.0, -1.0, -1.0};
  const real_T fromSlot2[9] = {0, 0, 1, 1, 1, 1, 1, 1, 1}, fromSlot3[9] = {0, 0, 0, 1, 1, 1, 1, 1, 1};
  EXPECT_EQ(heldTableWalk(fromSlot2, sorted, 9), 2);
  EXPECT_EQ(heldTableWalk(fromSlot3, sorted, 9), -1);

  const real_T bothGood[2] = {0.995, 0.99}, oneGood[2] = {0.995, below(0.99)};
  EXPECT_TRUE(bothHeldAccepted(bothGood, 2, F::kBothHeldEvery));
  EXPECT_FALSE(bothHeldAccepted(oneGood, 2, F::kBothHeldEvery));
  EXPECT_TRUE(bothHeldAccepted(oneGood, 2, false));
}

// Each rung hit alone, in either table, at its first threshold: the codes of
// the main pass and of the pass without end points follow the rungs in order.
TEST(PairLadder, EveryRungAndTableHasItsCode) {
  for (int r = 0; r < 9; ++r) {
    for (bool unfolded : {false, true}) {
      Scores s(0.98);
      const int slot = F::kPairRungs[r].slot;
      (unfolded ? s.unfolded : s.native)[slot] = pairThreshold(0, F::kPairRungs[r].margin);
      const PairHit hit = s.ladder();
      ASSERT_EQ(hit.rung, r);
      EXPECT_TRUE(hit.slot == slot && hit.unfolded == unfolded);
      EXPECT_EQ(F::pairCode(Pass::Main, r, unfolded), 5 + 2 * r + unfolded);
      EXPECT_EQ(F::pairCode(Pass::TrimBoth, r, unfolded), 46 + 2 * r + unfolded);
    }
  }
  Scores last(0.98);
  last.native[3] = pairThreshold(19, -0.0005);  // slots 3 and 2 reach down to 0.9895
  EXPECT_EQ(last.ladder().rung, 3);
  last.native[3] = below(last.native[3]);
  EXPECT_EQ(last.ladder().rung, -1);
}

TEST(PairLadder, MarginsAndTheChoiceBetweenTables) {
  Scores s(0.9);
  s.native[7] = s.native[3] = 0.999;  // slot 7 needs 0.9995 at the first step, slot 3 only 0.999
  EXPECT_EQ(s.ladder().slot, 3);

  Scores tie(0.9);
  tie.native[6] = tie.unfolded[6] = 0.9995;
  EXPECT_TRUE(tie.ladder().unfolded);
  Scores nativeFirst(0.9);  // the native table hits, the unfolded one is written
  nativeFirst.native[6] = 0.9996, nativeFirst.unfolded[6] = 0.9997;
  EXPECT_TRUE(nativeFirst.ladder().unfolded);
  nativeFirst.unfolded[6] = 0.9;
  EXPECT_FALSE(nativeFirst.ladder().unfolded);
}

TEST(FirstPassLadder, EveryPlaceHasItsCode) {
  for (int j = 0; j < 9; ++j) {
    real_T scores[9] = {0.9, 0.9, 0.9, 0.9, 0.9, 0.9, 0.9, 0.9, 0.9};
    scores[F::kFirstPassOrder[j]] = firstPassThreshold(0);
    EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, scores), j);
    EXPECT_EQ(F::firstPassCode(Pass::Main, j), 23 + j);
  }
  // A higher threshold is tried against every slot before the next step.
  const real_T scores[9] = {0.9, 0.9, 0.999, 0.9, 0.9, 0.9, 0.9, 0.998, 0.9};
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, scores), 8);
  real_T lowest[9] = {0.9, 0.9, 0.9, 0.9, firstPassThreshold(49), 0.9, 0.9, 0.9, 0.9};
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, lowest), 3);  // slot 4 is tried fourth
  lowest[4] = below(lowest[4]);
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, lowest), -1);
}

}  // namespace
}  // namespace quent
