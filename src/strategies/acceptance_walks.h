// The tests and walks by which a strategy accepts a curve or one of its
// attempts: the change across the curve, the best start, the held tables
// and the two falling-threshold ladders.  Pure functions of scores and flags.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// An attempt this good is accepted without relaxing anything.
constexpr real_T kGoodScore = 0.99;

// What a flat curve, whose change ratio is NaN, does at the change test: go
// on to the attempts (which then fail), or count as a curve without change.
enum class FlatCurve : unsigned char { GoesOn, HasNoChange };

// Whether the plateaus of the n >= 5 points lie at least one sample deviation
// of all y apart: |(mean of the first five y - mean of the last five)| / s.
bool curveChanges(const real_T* y, int32_T n, FlatCurve flat);

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
// scores in descending order (a NaN last): all of them good, or only the best.
bool bothHeldAccepted(const real_T* sortedScores, int count, bool everyMustPass);

// One rung of the pair ladder: a slot of the two held tables, tested at the
// step's threshold plus its margin, and the codes of a hit in the native and
// in the unfolded table, in the main pass and in the pass without both end
// points.
struct PairRung {
  int slot;
  real_T margin;
  int mainCodes[2];
  int trimBothCodes[2];
};
// Where the ladder stopped: rung -1 when twenty steps passed without a hit.
// On a hit the native table's attempt is taken only when it scores strictly
// above the unfolded table's.
struct PairHit {
  int step;
  int rung;
  int slot;
  bool unfolded;
};
PairHit pairLadder(const PairRung* rungs, int rungCount, const real_T* nativeScores,
                   const real_T* unfoldedScores);

// One place of the first-pass ladder: a start slot and the code of a hit.
struct FirstPassRung {
  int slot;
  int code;
};
// Where the first-pass ladder stopped: place -1 after fifty steps.
struct FirstPassHit {
  int step;
  int place;
};
FirstPassHit firstPassLadder(const FirstPassRung* rungs, int count, const real_T* scores);

}  // namespace quent
