// The one-transition family: a single two-state transition between a native
// and an unfolded baseline.  Everything the library knows of it stands here:
// its vector, the limits and codes of its fits, its attempts and the tables
// and ladders of its strategy.  A ninth slot in each table holds a
// refinement of the best attempts found before it.
#pragma once

#include "models/curve_models.h"
#include "quent_dgtrend.h"
#include "strategies/family.h"
#include "strategies/one_transition_attempts.h"

namespace quent {

template <>
struct Family<1> {
  static constexpr int T = 1;
  // dG, Cm, native intercept and slope, unfolded intercept and slope, RT.
  using Layout = TransitionLayout<1>;
  static constexpr int32_T kStateCount = 2;
  static constexpr int32_T kMinPoints = 8;
  static constexpr int32_T kUsableMinPoints = 8;

  // Refits from a reference row hold both slopes and RT; there are no shares
  // to hold besides.
  static constexpr HeldMask<7> kRefitFree = attempts1::holdSlopes;
  static constexpr HeldMask<7> kRefitHeld = kRefitFree;
  static constexpr real_T kHeldRefitCode = 2.0;

  // ---- Attempts.
  using Attempt = attempts1::Attempt;
  using Member = AttemptMember<7>;
  static constexpr const auto& kAttempts = attempts1::kMembers;
  // The current midpoint estimate; at or below 0.0 means none.
  struct Estimate {
    real_T midpoint;
  };
  static constexpr Estimate kNoEstimate{kFailed};
  static constexpr Attempt kUsableAttempts[] = {Attempt::ThreePointFull, Attempt::ThreePointCore,
                                                Attempt::FlatCore, Attempt::SegmentCore};

  // The start vector of a member: the form's energy, the midpoint where the
  // member takes one that lies in (0, x[n-1]], else the middle of x.  Returns
  // whether the midpoint is usable, that is strictly below x[n-1] too.
  static bool startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                          const Estimate& e, real_T RT, real_T* start);

  // A finished vector polished with both slopes and RT held, in place; and
  // the same fit from the first seven numbers of `table` as stored.
  static void refineBest(const CurvePoints& c, real_T* vector);
  static void refineRanked(const CurvePoints& c, const real_T* table, real_T* result);

  // ---- Strategy.
  using StartTable = AttemptTable<7, 9>;  // slot 8: refineBest of the best start
  using HeldTable = AttemptTable<7, 9>;   // slot 8: refineRanked of the ranked table
  static constexpr int kHeldScored = 8;   // slot 8 ranks at 0.0, before it is filled
  // Slot 8 takes part at 0.0, so the best start never scores below 0.0.
  static constexpr int kBestWalkEnd = 9;
  // Both must pass, so that without a usable midpoint (second attempt
  // refused) holding both baselines cannot succeed.
  static constexpr bool kBothHeldEvery = true;
  static constexpr FlatCurve kFlatCurve = FlatCurve::GoesOn;
  static constexpr bool kTrimsEnds = true;

  // Start slots 0 to 3 are free; 4 to 7 take the midpoint of the slope peaks.
  static constexpr Attempt kStartSlots[] = {
      Attempt::ThreePointFull,   Attempt::ThreePointCore,   Attempt::FlatCore,
      Attempt::SegmentCore,      Attempt::ThreePointFullAt, Attempt::ThreePointCoreAt,
      Attempt::FlatCoreAt,       Attempt::SegmentCoreAt};
  // Even slots free the midpoint, odd slots hold it.
  static constexpr Attempt kNativeHeld[8] = {
      Attempt::KeepNative,           Attempt::KeepNativeAt,
      Attempt::NativeThreePointCore, Attempt::NativeThreePointCoreAt,
      Attempt::NativeFlatCore,       Attempt::NativeFlatCoreAt,
      Attempt::NativeSegmentCore,    Attempt::NativeSegmentCoreAt};
  static constexpr Attempt kUnfoldedHeld[8] = {
      Attempt::KeepUnfolded,           Attempt::KeepUnfoldedAt,
      Attempt::UnfoldedThreePointCore, Attempt::UnfoldedThreePointCoreAt,
      Attempt::UnfoldedFlatCore,       Attempt::UnfoldedFlatCoreAt,
      Attempt::UnfoldedSegmentCore,    Attempt::UnfoldedSegmentCoreAt};
  static constexpr Attempt kBothHeld[2] = {Attempt::BothCore, Attempt::BothCoreAt};

  // No start scores below 0.0 (see kBestWalkEnd): codes 33, 37 and 42 name
  // exits that one transition never takes.
  //                 bad      no      flat  no     both  native   unfolded nothing
  //                 input    change  x     start  held  held     held     passed
  static constexpr PassCodes kCodes[3] = {
      /* Main     */ {1,       32,    32,   33,    2,    3,       4,       34},
      /* TrimOne  */ {kNoExit, 35,    36,   37,    38,   kNoExit, kNoExit, 39},
      /* TrimBoth */ {kNoExit, 40,    41,   42,    43,   44,      45,      64}};

  // Midpoint-held fits from segment baselines first, the forms without a
  // midpoint last and hardest.
  //                                     slot  margin   codes: main   both ends off
  //                                                    native unf.   native unf.
  static constexpr PairRung kPairRungs[9] = {{7,  0.0,     {5,  6},     {46, 47}},
                                             {6,  0.0,     {7,  8},     {48, 49}},
                                             {8,  0.0,     {9,  10},    {50, 51}},
                                             {3, -0.0005,  {11, 12},    {52, 53}},
                                             {2, -0.0005,  {13, 14},    {54, 55}},
                                             {5,  0.0,     {15, 16},    {56, 57}},
                                             {4,  0.0,     {17, 18},    {58, 59}},
                                             {1,  0.001,   {19, 20},    {60, 61}},
                                             {0,  0.001,   {21, 22},    {62, 63}}};
  //                                               slot  code
  static constexpr FirstPassRung kFirstPassRungs[9] = {{7, 23},
                                                       {3, 24},
                                                       {8, 25},
                                                       {4, 26},
                                                       {0, 27},
                                                       {5, 28},
                                                       {1, 29},
                                                       {6, 30},
                                                       {2, 31}};

  // A midpoint estimate is one above 0.0: the start table and the held stages
  // run their midpoint members only then.
  static bool estimateUsable(const Estimate& e) { return e.midpoint > 0.0; }

  static void startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e);
  static void completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                                 Estimate& e);
  static void reviseEstimate(const CurvePoints& c, const StartTable& t, Estimate& e);
  static void refineHeldTable(const CurvePoints& c, const int32_T* order, HeldTable& t);
};

using OneTransitionFamily = Family<1>;

}  // namespace quent
