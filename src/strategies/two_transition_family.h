// The two-transition family: two transitions in sequence through one
// intermediate state, amp1 being the share of the signal change that the
// first transition makes.  Everything the library knows of it stands here:
// its vector, the limits and codes of its fits, its attempts and the tables
// and ladders of its strategy.  Its estimate is a pair of midpoints, which
// only seeds the cut of the split attempts, and an amplitude, which the held
// stages take; neither is revised from the good starts.
#pragma once

#include <cmath>

#include "engine/held_mask.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"
#include "strategies/family.h"
#include "strategies/two_transition_attempts.h"

namespace quent {

template <>
struct Family<2> {
  static constexpr int T = 2;
  // dG1, Cm1, dG2, Cm2, amp1, native intercept and slope, unfolded intercept
  // and slope, RT.
  using Layout = TransitionLayout<2>;
  static constexpr int32_T kStateCount = 3;
  // Twice the points of one transition.
  static constexpr int32_T kMinPoints = 16;
  static constexpr int32_T kUsableMinPoints = 12;

  static constexpr real_T kShareMin = 0.08;
  static constexpr real_T kShareMax = 0.92;
  static constexpr bool kSharesSumBelowOne = false;

  // Refits from a reference row hold both slopes and RT, and in the held
  // form the share too.
  static constexpr HeldMask<10> kRefitFree = heldMask("0000001011");
  static constexpr HeldMask<10> kRefitHeld = heldMask("0000101011");
  static constexpr real_T kHeldRefitCode = 3.0;
  static constexpr real_T kFreeRefitCode = 6.0;

  // While masks are built the free pass stands unless its share moved from
  // the reference's by more than 0.1 or it failed; a NaN share or RT does not
  // count against it.
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return !(std::fabs(freeRow[kColShare[0]] - reference[kColShare[0]]) > 0.1 ||
             freeRow[kColRT] <= 0.0);
  }
  // In the final fit the bound is strict, and a NaN share fails it.
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[kColShare[0]] - reference[kColShare[0]]) < 0.1;
  }

  // ---- Attempts.
  using Attempt = attempts2::Attempt;
  using Member = AttemptMember<10>;
  static constexpr const auto& kAttempts = attempts2::kMembers;
  // The slope-peak midpoints, ascending (-1.0, -1.0 for none), and the
  // estimate of amp1 (-1.0 for none).
  struct Estimate {
    real_T midpoints[2];
    real_T amplitude;
  };
  static constexpr Estimate kNoEstimate{{kFailed, kFailed}, kFailed};
  static constexpr Attempt kUsableAttempts[] = {Attempt::ThreePointFull, Attempt::ThreePointCore,
                                                Attempt::FlatCore, Attempt::SegmentCore,
                                                Attempt::SplitHalf};

  // The start vector of a member: the form's energies, midpoints at a third
  // and two thirds of the x range, and amp1 0.5 unless the member takes the
  // amplitude.  Returns whether it did.
  static bool startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                          const Estimate& e, real_T RT, real_T* start);
  // The split members, SplitAt cutting at the estimate's midpoints.
  static void splitAttempt(const Member& m, const CurvePoints& c, real_T RT, const Estimate& e,
                           real_T* result);

  // ---- Strategy.
  // Slots 0 to 4: free and split starts; 5: split at the slope peaks; 6:
  // split at the best start's midpoints; 7 to 10: the amplitude members.
  using StartTable = AttemptTable<10, 11>;
  using HeldTable = AttemptTable<10, 8>;
  static constexpr int kHeldScored = 8;
  // Only the slots scored so far take part: no start below 0.0 is a real exit.
  static constexpr int kBestWalkEnd = 6;
  // The better of the two passing is enough.
  static constexpr bool kBothHeldEvery = false;
  static constexpr FlatCurve kFlatCurve = FlatCurve::GoesOn;
  static constexpr bool kTrimsEnds = true;

  static constexpr Attempt kStartSlots[5] = {Attempt::ThreePointFull, Attempt::ThreePointCore,
                                             Attempt::FlatCore, Attempt::SegmentCore,
                                             Attempt::SplitHalf};
  static constexpr Attempt kAmplitudeSlots[4] = {
      Attempt::ThreePointFullAmp, Attempt::ThreePointCoreAmp, Attempt::FlatCoreAmp,
      Attempt::SegmentCoreAmp};
  // Even slots free the amplitude, odd slots start from it.
  static constexpr Attempt kNativeHeld[8] = {
      Attempt::KeepNative,           Attempt::KeepNativeAmp,
      Attempt::NativeThreePointCore, Attempt::NativeThreePointCoreAmp,
      Attempt::NativeFlatCore,       Attempt::NativeFlatCoreAmp,
      Attempt::NativeSegmentCore,    Attempt::NativeSegmentCoreAmp};
  static constexpr Attempt kUnfoldedHeld[8] = {
      Attempt::KeepUnfolded,           Attempt::KeepUnfoldedAmp,
      Attempt::UnfoldedThreePointCore, Attempt::UnfoldedThreePointCoreAmp,
      Attempt::UnfoldedFlatCore,       Attempt::UnfoldedFlatCoreAmp,
      Attempt::UnfoldedSegmentCore,    Attempt::UnfoldedSegmentCoreAmp};
  static constexpr Attempt kBothHeld[2] = {Attempt::BothCore, Attempt::BothCoreAmp};

  //                 bad      no      flat  no     both  native   unfolded nothing
  //                 input    change  x     start  held  held     held     passed
  static constexpr PassCodes kCodes[3] = {
      /* Main     */ {1,       32,    32,   33,    2,    3,       4,       34},
      /* TrimOne  */ {kNoExit, 35,    36,   37,    38,   kNoExit, kNoExit, 39},
      /* TrimBoth */ {kNoExit, 40,    41,   42,    43,   44,      45,      62}};

  //                                     slot  margin   codes: main   both ends off
  //                                                    native unf.   native unf.
  static constexpr PairRung kPairRungs[8] = {{7,  0.0,     {5,  6},     {46, 47}},
                                             {6,  0.0,     {7,  8},     {48, 49}},
                                             {3, -0.0005,  {9,  10},    {50, 51}},
                                             {2, -0.0005,  {11, 12},    {52, 53}},
                                             {5,  0.0,     {13, 14},    {54, 55}},
                                             {4,  0.0,     {15, 16},    {56, 57}},
                                             {1,  0.001,   {17, 18},    {58, 59}},
                                             {0,  0.001,   {19, 20},    {60, 61}}};
  //                                                slot  code
  static constexpr FirstPassRung kFirstPassRungs[11] = {{10, 21},
                                                        {3,  22},
                                                        {6,  23},
                                                        {7,  24},
                                                        {0,  25},
                                                        {8,  26},
                                                        {1,  27},
                                                        {9,  28},
                                                        {2,  29},
                                                        {5,  30},
                                                        {4,  31}};

  // The held stages take an amplitude strictly inside (0, 1), while the start
  // table runs its amplitude members only below 0.99: the two limits differ
  // on purpose.
  static bool estimateUsable(const Estimate& e) { return 0.0 < e.amplitude && e.amplitude < 1.0; }
  static bool amplitudeFillsStartTable(real_T a) { return !(a <= 0.0 || a >= 0.99); }

  static void startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e);
  static void completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                                 Estimate& e);
  // Neither estimate is revised from the good starts, and the held tables
  // have no refinement slot.
  static void reviseEstimate(const CurvePoints&, const StartTable&, Estimate&) {}
  static void refineHeldTable(const CurvePoints&, const int32_T*, HeldTable&) {}
};

using TwoTransitionFamily = Family<2>;

}  // namespace quent
