// What a model family is: everything the library knows of the curves with
// one, two or three transitions, in one traits type per family.  Each family
// is a specialisation Family<T> in a file of its own; the primary fit, the
// strategy skeleton and the attempt runner read a family only through it.
//
// Family<T> provides, for the primary fit:
//   T, Layout               transitions and their parameter vector
//   kStateCount             the host's name of the family (transitions + 1)
//   kMinPoints              least number of (kept) points any fit of it takes
//   kShareMin, kShareMax, kSharesSumBelowOne   plausible amplitude shares
//   kRefitFree, kRefitHeld  held entries of the refits from a reference row
//   kHeldRefitCode (and kFreeRefitCode, maskFreePassStands, finalSharesClose
//                           where the family has shares to free)
// and, once its strategies are in the library (families.h registers it):
//   Attempt, kAttempts      its attempt members, as rows of one table
//   kUsableMinPoints, kUsableAttempts   the least points of a curve worth testing,
//                           and the members it is tested with at a fixed RT
//   kNoEstimate             the estimate of those tests
//   startVector             a member's start vector from its baselines and estimate
//   StartTable, HeldTable   AttemptTable types of its start and held tables
//   kNativeHeld, kUnfoldedHeld, kBothHeld   the members of the held stages
//   kHeldScored             held slots scored before ranking; the rest rank at 0.0
//   kBestWalkEnd            the best-start walk covers start slots [0, kBestWalkEnd)
//   kBothHeldEvery          attempts with both baselines held pass only all together
//   kFlatCurve              what a flat curve (NaN change ratio) does at the gate
//   kTrimsEnds              the masked form retries without end points
//   kCodes, kPairRungs, kFirstPassRungs     exit codes and the two ladders
//   Estimate                what it estimates of the transitions
//   estimateUsable          whether the held stages run the members that take the estimate
//   startAttempts, completeStartTable, reviseEstimate, refineHeldTable
//                           the stage members that are its own
#pragma once

#include "frame/limits.h"
#include "quent_dgtrend.h"
#include "strategies/acceptance_walks.h"
#include "strategies/attempt_table.h"

namespace quent {

template <int T>
struct Family;

// The points a pass fits: a whole curve, or the points a mask leaves on.
struct CurvePoints {
  const real_T* x;
  const real_T* y;
  int32_T n;
};

// Baselines averaged over the good start attempts that meet that end of the
// curve, as (intercept, slope), and how many attempts gave each.  A baseline
// no attempt gave is (0, 0), which the attempts take as absent.
struct HeldBaselines {
  real_T native[2];
  int32_T nativeCount;
  real_T unfolded[2];
  int32_T unfoldedCount;
};

enum class Side : unsigned char { Native, Unfolded };

// The main pass fits the curve (or the points its mask leaves on); the
// masked form may retry without one end point (a short pass that only
// accepts both baselines held) or without both (a long pass without the
// first-pass ladder).
enum class Pass : int { Main, TrimOne, TrimBoth };

// Exit codes of a pass that name a stage; kNoExit where the pass has no such
// exit (a row never carries it).
constexpr int kNoExit = 0;
static_assert(kNoExit == 0, "code 0 is the blank row of the primary fit, never a strategy's");
struct PassCodes {
  int badInput;
  int noChange;
  int flatX;
  int noStart;
  int bothHeld;
  int nativeHeld;
  int unfoldedHeld;
  int exhausted;
};

}  // namespace quent
