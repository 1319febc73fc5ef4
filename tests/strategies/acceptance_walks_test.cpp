// The walks and ladders that pick an attempt, as functions of score and flag
// tables, with the exit codes of the one-transition family: every ladder
// exit, the margins and tie rules, and the slot/place pairing of the held
// tables.
#include <gtest/gtest.h>

#include <cmath>

#include "strategies/acceptance_walks.h"
#include "strategies/one_transition_family.h"

namespace quent {
namespace {

using F = OneTransitionFamily;

// Threshold of step k as the ladders form it.
real_T pairThreshold(int k, real_T margin) { return (k * -0.0005 + 0.9995) + margin; }
real_T firstPassThreshold(int k) { return k * -0.001 + 0.999; }
real_T below(real_T v) { return std::nextafter(v, 0.0); }

struct Scores {
  real_T native[9], unfolded[9];
  explicit Scores(real_T v) {
    for (int s = 0; s < 9; ++s) native[s] = unfolded[s] = v;
  }
  PairHit ladder() const { return pairLadder(F::kPairRungs, 9, native, unfolded); }
};

TEST(BestSlot, StrictlyAboveSoFarFirstOfEqualsWins) {
  const real_T scores[9] = {-1.0, 0.5, 0.97, 0.97, -1.0, 0.2, 0.97, 0.1, 0.0};
  EXPECT_EQ(bestSlot(scores, 0, 9, 0).slot, 2);
  EXPECT_EQ(bestSlot(scores, 0, 9, 0).score, 0.97);
  const real_T failed[3] = {-1.0, -1.0, 0.0};  // a refinement slot still at 0.0 wins
  EXPECT_EQ(bestSlot(failed, 0, 3, 0).slot, 2);
  EXPECT_EQ(bestSlot(failed, 0, 2, 0).score, -1.0);
  const real_T nan[2] = {NAN, NAN};
  EXPECT_EQ(bestSlot(nan, 0, 2, 1).slot, 1);
  EXPECT_EQ(bestSlot(nan, 0, 2, 1).score, -1.1);
}

// Flags go by slot, scores by sorted place, position against position.
TEST(HeldTableWalk, PairsSlotFlagsWithSortedPlaces) {
  const real_T sorted[9] = {0.999, 0.995, 0.99, 0.9, 0.5, 0.0, 0.0, -1.0, -1.0};
  const real_T flags[9] = {0.0, 0.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
  EXPECT_EQ(heldTableWalk(flags, sorted, 9), 2);
  const real_T late[9] = {0.0, 0.0, 0.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
  EXPECT_EQ(heldTableWalk(late, sorted, 9), -1);
  const real_T none[9] = {};
  EXPECT_EQ(heldTableWalk(none, sorted, 9), -1);
}

TEST(BothHeldAccepted, EveryOrOnlyTheBest) {
  const real_T both[2] = {0.995, 0.99};
  const real_T one[2] = {0.995, below(0.99)};
  EXPECT_TRUE(bothHeldAccepted(both, 2, true));
  EXPECT_FALSE(bothHeldAccepted(one, 2, true));
  EXPECT_TRUE(bothHeldAccepted(one, 2, false));
  EXPECT_EQ(F::kBothHeldEvery, true);
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
      EXPECT_EQ(hit.slot, slot);
      EXPECT_EQ(hit.unfolded, unfolded);
      EXPECT_EQ(F::pairCode(Pass::Main, r, unfolded), 5 + 2 * r + unfolded);
      EXPECT_EQ(F::pairCode(Pass::TrimBoth, r, unfolded), 46 + 2 * r + unfolded);
    }
  }
  EXPECT_EQ(Scores(0.98).ladder().rung, -1);
  Scores last(0.98);
  last.native[3] = pairThreshold(19, -0.0005);  // slots 3 and 2 reach down to 0.9895
  EXPECT_EQ(last.ladder().rung, 3);
  last.native[3] = below(last.native[3]);
  EXPECT_EQ(last.ladder().rung, -1);
}

TEST(PairLadder, MarginsAndTheChoiceBetweenTables) {
  Scores s(0.9);
  s.native[7] = 0.999;  // slot 7 needs 0.9995 at the first step, slot 3 only 0.999
  s.native[3] = 0.999;
  EXPECT_EQ(s.ladder().slot, 3);
  s.native[1] = 0.9995;  // slot 1 needs 0.9995 + 0.001 until step 3
  s.native[3] = 0.0;
  EXPECT_EQ(s.ladder().slot, 7);

  Scores tie(0.9);
  tie.native[6] = tie.unfolded[6] = 0.9995;
  EXPECT_TRUE(tie.ladder().unfolded);
  Scores nativeFirst(0.9);  // the native table hits, the unfolded one is written
  nativeFirst.native[6] = 0.9996;
  nativeFirst.unfolded[6] = 0.9997;
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
  real_T scores[9] = {0.9, 0.9, 0.999, 0.9, 0.9, 0.9, 0.9, 0.998, 0.9};
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, scores), 8);
  real_T lowest[9] = {0.9, 0.9, 0.9, 0.9, firstPassThreshold(49), 0.9, 0.9, 0.9, 0.9};
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, lowest), 3);  // slot 4 is tried fourth
  lowest[4] = below(lowest[4]);
  EXPECT_EQ(firstPassLadder(F::kFirstPassOrder, 9, lowest), -1);
  EXPECT_EQ(F::kCodes[0].exhausted, 34);
}

TEST(EndChangeRatio, FlatCurveIsNaNAndGoesOn) {
  const real_T flat[8] = {3.0, 3.0, 3.0, 3.0, 3.0, 3.0, 3.0, 3.0};
  EXPECT_TRUE(std::isnan(endChangeRatio(flat, 8)));
  EXPECT_TRUE(strategy::curveChanges<F>(flat, 8));
  const real_T step[10] = {1.0, 1.0, 1.0, 1.0, 1.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  // Means 1 and 0, sample deviation sqrt(2.5 / 9).
  EXPECT_EQ(endChangeRatio(step, 10), 1.0 / std::sqrt(2.5 / 9.0));
}

}  // namespace
}  // namespace quent
