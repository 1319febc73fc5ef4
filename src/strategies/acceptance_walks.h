// The tests and walks by which a strategy accepts a curve or one of its
// attempts: the change across the curve, the best start, the held tables
// and the two falling-threshold ladders.  Pure functions of scores and flags.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// An attempt this good is accepted without relaxing anything.
constexpr real_T kGoodScore = 0.99;

// |(mean of the first five y - mean of the last five) / sample deviation of
// all y|: how many deviations the two plateaus lie apart (n >= 5).  NaN for a
// flat curve.
real_T endChangeRatio(const real_T* y, int32_T n);

// Best of scores[first .. end): from -1.1, a slot is taken only when strictly
// above the best so far, so the first of equal scores wins; `fallback` when
// none is taken.
struct BestSlot {
  int slot;
  real_T score;
};
BestSlot bestSlot(const real_T* scores, int first, int end, int fallback);

// The first k, in table order, whose slot k has its flag above 0.0 while the
// k-th best score is good, or -1.  Flags go by slot and scores by sorted
// place, position against position: the table is ranked but not realigned.
int heldTableWalk(const real_T* flags, const real_T* sortedScores, int slots);

// Whether the attempts with both baselines held are accepted, given their
// scores in descending order: all of them good, or only the best.
bool bothHeldAccepted(const real_T* sortedScores, int count, bool everyMustPass);

// One rung of the pair ladder: a slot of the two held tables, tested at the
// step's threshold plus its margin.
struct PairRung {
  int slot;
  real_T margin;
};
// Where the ladder stopped: rung -1 when twenty steps passed without a hit.
// On a hit the native table's attempt is taken only when it scores strictly
// above the unfolded table's.
struct PairHit {
  int rung;
  int slot;
  bool unfolded;
};
PairHit pairLadder(const PairRung* rungs, int rungCount, const real_T* nativeScores,
                   const real_T* unfoldedScores);

// The place in `order` of the first slot that reaches the falling threshold of
// the first-pass ladder, or -1 after fifty steps.
int firstPassLadder(const int* order, int count, const real_T* scores);

}  // namespace quent
