// The three-transition family: three transitions in sequence through two
// intermediate states, amp1 and amp2 being the shares of the signal change
// that the first two make.  Everything the library knows of it stands here:
// its vector, the limits and codes of its fits, its attempts and the tables
// and ladders of its strategy.  Its estimate is a triple of midpoints, which
// seeds the cuts of the split attempts, and the pair of amplitudes, which the
// start table takes at first and the held stages take as revised from the
// good starts.
#pragma once

#include <array>
#include <cmath>

#include "engine/held_mask.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"
#include "strategies/family.h"
#include "strategies/three_transition_attempts.h"

namespace quent {

template <>
struct Family<3> {
  static constexpr int T = 3;
  // dG1, Cm1, dG2, Cm2, dG3, Cm3, amp1, amp2, native intercept and slope,
  // unfolded intercept and slope, RT.
  using Layout = TransitionLayout<3>;
  static constexpr int32_T kStateCount = 4;
  // Three times the points of one transition.
  static constexpr int32_T kMinPoints = 24;
  static constexpr int32_T kUsableMinPoints = 16;

  // The third share is tested only through the sum of the first two, so it
  // may be arbitrarily small while they may not.
  static constexpr real_T kShareMin = 0.06;
  static constexpr real_T kShareMax = 0.94;
  static constexpr bool kSharesSumBelowOne = true;

  static constexpr HeldMask<13> kRefitFree = heldMask("0000000001011");
  static constexpr HeldMask<13> kRefitHeld = heldMask("0000001101011");
  static constexpr real_T kHeldRefitCode = 4.0;
  static constexpr real_T kFreeRefitCode = 5.0;

  // While masks are built the free pass stands only when both shares stay
  // within 0.07 of the reference's and it has an RT; a NaN fails.
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return std::fabs(freeRow[kColShare[0]] - reference[kColShare[0]]) <= 0.07 &&
           std::fabs(freeRow[kColShare[1]] - reference[kColShare[1]]) <= 0.07 &&
           freeRow[kColRT] > 0.0;
  }
  // In the final fit the bound is strict.
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[kColShare[0]] - reference[kColShare[0]]) < 0.07 &&
           std::fabs(bestRow[kColShare[1]] - reference[kColShare[1]]) < 0.07;
  }

  // ---- Attempts.
  using Attempt = attempts3::Attempt;
  using Member = AttemptMember<13>;
  static constexpr const auto& kAttempts = attempts3::kMembers;
  // The slope-peak midpoints, ascending (-1.0 throughout for none), and amp1
  // and amp2.
  struct Estimate {
    real_T midpoints[3];
    real_T amplitudes[2];
  };
  static constexpr Estimate kNoEstimate{{kFailed, kFailed, kFailed}, {0.35, 0.3}};
  static constexpr Attempt kUsableAttempts[] = {Attempt::ThreePointFull, Attempt::ThreePointCore,
                                                Attempt::FlatCore, Attempt::SegmentCore,
                                                Attempt::Split};

  // The start vector of a member: the form's energies, midpoints at the
  // quarters of the x range, and the amplitude pair by the member's rule.
  static bool startVector(const Member& m, const CurvePoints& c, const BaselinePairs& b,
                          const Estimate& e, real_T RT, real_T* start);
  // The split members, SplitAt cutting at the estimate's midpoints.
  static void splitAttempt(const Member& m, const CurvePoints& c, real_T RT, const Estimate& e,
                           real_T* result);

  // ---- Strategy.
  // Slots 0 to 23: the members of the same numbers, the splits at the slope
  // peaks last; 24 to 27: the splits at the best start's midpoints; 28 to 31:
  // the members holding both amplitudes, from those of the best split.
  using StartTable = AttemptTable<13, 32>;
  using HeldTable = AttemptTable<13, 16>;
  static constexpr int kHeldScored = 16;
  // Slots 24 to 31 join the walk at 0.0, so some start always counts.
  static constexpr int kBestWalkEnd = 32;
  static constexpr bool kBothHeldEvery = false;
  static constexpr FlatCurve kFlatCurve = FlatCurve::HasNoChange;
  static constexpr bool kTrimsEnds = false;

  static constexpr Attempt kNativeHeld[16] = {
      Attempt::KeepNative,                Attempt::KeepNativeHoldAmp1,
      Attempt::KeepNativeHoldAmp2,        Attempt::KeepNativeHoldAmps,
      Attempt::NativeThreePointCore,      Attempt::NativeThreePointCoreAmp1,
      Attempt::NativeThreePointCoreAmp2,  Attempt::NativeThreePointCoreAmps,
      Attempt::NativeFlatCore,            Attempt::NativeFlatCoreAmp1,
      Attempt::NativeFlatCoreAmp2,        Attempt::NativeFlatCoreAmps,
      Attempt::NativeSegmentCore,         Attempt::NativeSegmentCoreAmp1,
      Attempt::NativeSegmentCoreAmp2,     Attempt::NativeSegmentCoreAmps};
  static constexpr Attempt kUnfoldedHeld[16] = {
      Attempt::KeepUnfolded,                Attempt::KeepUnfoldedHoldAmp1,
      Attempt::KeepUnfoldedHoldAmp2,        Attempt::KeepUnfoldedHoldAmps,
      Attempt::UnfoldedThreePointCore,      Attempt::UnfoldedThreePointCoreAmp1,
      Attempt::UnfoldedThreePointCoreAmp2,  Attempt::UnfoldedThreePointCoreAmps,
      Attempt::UnfoldedFlatCore,            Attempt::UnfoldedFlatCoreAmp1,
      Attempt::UnfoldedFlatCoreAmp2,        Attempt::UnfoldedFlatCoreAmps,
      Attempt::UnfoldedSegmentCore,         Attempt::UnfoldedSegmentCoreAmp1,
      Attempt::UnfoldedSegmentCoreAmp2,     Attempt::UnfoldedSegmentCoreAmps};
  static constexpr Attempt kBothHeld[4] = {Attempt::BothCore, Attempt::BothCoreAmp1,
                                           Attempt::BothCoreAmp2, Attempt::BothCoreAmps};

  // No pass without end points: a masked fit only drops an end point when no
  // start counts, which cannot happen here.
  //                 bad      no       flat     no       both     native   unfolded nothing
  //                 input    change   x        start    held     held     held     passed
  static constexpr PassCodes kCodes[3] = {
      /* Main     */ {1,       32,      32,      33,      2,       3,       4,       34},
      /* TrimOne  */ {kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit},
      /* TrimBoth */ {kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit, kNoExit}};

  // Codes 32 to 34 name failures, so the ladder goes from 31 to 35.
  //                                      slot  margin    codes: native unf.
  static constexpr PairRung kPairRungs[16] = {{12,  0.0,     {5,  6},   {kNoExit, kNoExit}},
                                              {15,  0.0,     {7,  8},   {kNoExit, kNoExit}},
                                              {13,  0.0,     {9,  10},  {kNoExit, kNoExit}},
                                              {14,  0.0,     {11, 12},  {kNoExit, kNoExit}},
                                              {4,  -0.0005,  {13, 14},  {kNoExit, kNoExit}},
                                              {7,  -0.0005,  {15, 16},  {kNoExit, kNoExit}},
                                              {5,  -0.0005,  {17, 18},  {kNoExit, kNoExit}},
                                              {6,  -0.0005,  {19, 20},  {kNoExit, kNoExit}},
                                              {8,   0.0,     {21, 22},  {kNoExit, kNoExit}},
                                              {11,  0.0,     {23, 24},  {kNoExit, kNoExit}},
                                              {9,   0.0,     {25, 26},  {kNoExit, kNoExit}},
                                              {10,  0.0,     {27, 28},  {kNoExit, kNoExit}},
                                              {0,   0.001,   {29, 30},  {kNoExit, kNoExit}},
                                              {3,   0.001,   {31, 35},  {kNoExit, kNoExit}},
                                              {1,   0.001,   {36, 37},  {kNoExit, kNoExit}},
                                              {2,   0.001,   {38, 39},  {kNoExit, kNoExit}}};
  // The order of the last ladder over the start table, in slots counted from
  // 1; place p (from 0) writes code p + 40.
  static constexpr int kFinalLadderOrder[32] = {13, 16, 15, 14, 29, 32, 31, 30, 25, 28, 27,
                                                26, 1,  4,  3,  2,  5,  8,  7,  6,  9,  12,
                                                11, 10, 21, 24, 23, 22, 17, 20, 19, 18};
  static constexpr std::array<FirstPassRung, 32> kFirstPassRungs = [] {
    std::array<FirstPassRung, 32> rungs{};
    for (int p = 0; p < 32; ++p) rungs[p] = {kFinalLadderOrder[p] - 1, p + 40};
    return rungs;
  }();

  // The held stages always take the amplitudes, each member by its rule.
  static bool estimateUsable(const Estimate&) { return true; }
  // The first amplitudes, from the means of neighbouring slope-peak
  // midpoints: outside [0.01, 0.99] amp1 is 0.35 and amp2 0.3.
  static void peakAmplitudes(const real_T midpoints[3], real_T amplitudes[2]);
  // The start slot whose amplitudes follow the first round: the best split
  // (16 to 27) if it scored above 0.0, else the best other start; slot 0 where
  // no score counts.
  static int amplitudeSlot(const real_T* scores);
  // Whether the members holding both amplitudes run in slots 28 to 31: each
  // strictly inside (0, 0.99).
  static bool amplitudesFillStartTable(const real_T amplitudes[2]) {
    return !(amplitudes[0] <= 0.0 || amplitudes[0] >= 0.99 || amplitudes[1] <= 0.0 ||
             amplitudes[1] >= 0.99);
  }

  static void startAttempts(const CurvePoints& c, real_T RT, StartTable& t, Estimate& e);
  static void completeStartTable(const CurvePoints& c, real_T RT, int best, StartTable& t,
                                 Estimate& e);
  // The mean amplitudes of the good starts that meet an end of the curve
  // replace the estimate when they sum to between 0 and 1.
  static void reviseEstimate(const CurvePoints& c, const StartTable& t, Estimate& e);
  static void refineHeldTable(const CurvePoints&, const int32_T*, HeldTable&) {}
};

using ThreeTransitionFamily = Family<3>;

}  // namespace quent
