// The one-transition family of the strategy skeleton: its tables, exit codes
// and the attempts of its stages.  A ninth slot in each table holds a
// refinement of the best attempts found before it.
#pragma once

#include "quent_dgtrend.h"
#include "strategies/acceptance_walks.h"
#include "strategies/attempt_table.h"
#include "strategies/strategy_skeleton.h"

namespace quent {

struct OneTransitionFamily {
  static constexpr int T = 1;
  static constexpr int32_T kMinPoints = 8;
  using StartTable = AttemptTable<7, 9>;  // slot 8: refineBest of the best start
  using HeldTable = AttemptTable<7, 9>;   // slot 8: refineRanked of the ranked table
  static constexpr int kHeldScored = 8;   // slot 8 ranks at 0.0, before it is filled
  // Slot 8 takes part at 0.0, so the best start never scores below 0.0.
  static constexpr int kBestWalkEnd = 9;
  static constexpr int kBothHeldAttempts = 2;
  // Both must pass, so that without a usable midpoint (second attempt
  // refused) holding both baselines cannot succeed.
  static constexpr bool kBothHeldEvery = true;
  // A flat curve (NaN ratio) goes on to the attempts, which then fail.
  static constexpr bool kFlatWhenRatioNaN = false;
  static constexpr bool kTrimsEnds = true;

  // Midpoint-held fits from segment baselines first, the forms without a
  // midpoint last and hardest.
  //                                          slot  margin
  static constexpr PairRung kPairRungs[9] = {{7,  0.0},
                                             {6,  0.0},
                                             {8,  0.0},
                                             {3, -0.0005},
                                             {2, -0.0005},
                                             {5,  0.0},
                                             {4,  0.0},
                                             {1,  0.001},
                                             {0,  0.001}};
  static constexpr int kFirstPassOrder[9] = {7, 3, 8, 4, 0, 5, 1, 6, 2};

  //                 bad  no      flat  no     both  native unfolded pair    first  nothing
  //                 input change x     start  held  held   held     ladder  pass   passed
  static constexpr PassCodes kCodes[3] = {
      /* Main     */ {1,  32,     32,   33,    2,    3,     4,       5,      23,    34},
      /* TrimOne  */ {0,  35,     36,   37,    38,   0,     0,       0,      0,     39},
      /* TrimBoth */ {0,  40,     41,   42,    43,   44,    45,      46,     0,     64}};
  // Two codes a rung: the native table's attempt, then the unfolded one's.
  static constexpr int pairCode(Pass pass, int rung, bool unfolded) {
    return kCodes[static_cast<int>(pass)].pairLadder + 2 * rung + (unfolded ? 1 : 0);
  }
  static constexpr int firstPassCode(Pass pass, int place) {
    return kCodes[static_cast<int>(pass)].firstPassLadder + place;
  }

  // The current midpoint estimate; at or below 0.0 means none.
  struct Estimate {
    real_T midpoint;
  };

  static void startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e);
  static void completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                                 Estimate& e);
  static void reviseEstimate(const CurvePoints& c, const StartTable& t, Estimate& e);
  static void bothHeldAttempts(const CurvePoints& c, real_T RT, const HeldBaselines& b,
                               const Estimate& e, real_T (&v)[2][7]);
  static void fillHeldTable(Side side, const CurvePoints& c, real_T RT, const HeldBaselines& b,
                            const Estimate& e, HeldTable& t);
  static void refineHeldTable(const CurvePoints& c, const int32_T* order, HeldTable& t);
};

}  // namespace quent
