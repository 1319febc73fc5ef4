// The start attempts of the two-transition fit, as rows of one table.  "Amp"
// members take the estimate of amp1, the share of the signal change that the
// first transition makes; Native, Unfolded, Both and Keep members the named
// baseline pairs.  The two split members cut the curve where the transitions
// meet and fit one transition to each part (two_transition_split.h).
#pragma once

#include <iterator>

#include "engine/held_mask.h"
#include "strategies/attempt_member.h"

namespace quent {
namespace attempts2 {

using Mask = HeldMask<10>;

// Held entries, index 0 first: dG1, Cm1, dG2, Cm2, amp1, native intercept
// and slope, unfolded intercept and slope, RT.
constexpr Mask hold2RT = heldMask("0000000001");
constexpr Mask hold2Amp = heldMask("0000100001");
constexpr Mask hold2Baselines = heldMask("0000011111");
constexpr Mask hold2AmpBaselines = heldMask("0000111111");
constexpr Mask hold2Unfolded = heldMask("0000000111");
constexpr Mask hold2Native = heldMask("0000011001");
constexpr Mask hold2AmpUnfolded = heldMask("0000100111");
constexpr Mask hold2AmpNative = heldMask("0000111001");

// The members, in the order of the table below.
enum class Attempt : int {
  ThreePointFull, ThreePointCore, FlatCore, SegmentCore, SplitHalf, SplitAt,
  ThreePointFullAmp, ThreePointCoreAmp, FlatCoreAmp, SegmentCoreAmp,
  KeepNative, KeepNativeAmp, KeepUnfolded, KeepUnfoldedAmp,
  NativeThreePointCore, NativeThreePointCoreAmp, UnfoldedThreePointCore, UnfoldedThreePointCoreAmp,
  BothCore, BothCoreAmp,
  NativeFlatCore, NativeFlatCoreAmp, UnfoldedFlatCore, UnfoldedFlatCoreAmp,
  NativeSegmentCore, NativeSegmentCoreAmp, UnfoldedSegmentCore, UnfoldedSegmentCoreAmp,
};

using enum StartForm;
using enum PairFrom;
using member::always;
using member::taking;
using member::withEstimate;
constexpr Takes Amp = Takes::Amplitude;
constexpr Takes AmpAsGiven = Takes::AmplitudeAsGiven;

//                                                   start       native unfolded        mask (amp usable; not)
constexpr AttemptMember<10> kMembers[] = {
    always("attempt2ThreePointFull",                 ThreePoint, Curve, Curve,      hold2RT),
    always("attempt2ThreePointCore",                 ThreePoint, Curve, Curve,      hold2Baselines),
    always("attempt2FlatCore",                       Flat,       Curve, Curve,      hold2Baselines),
    always("attempt2SegmentCore",                    Segment,    Curve, Curve,      hold2Baselines),
    // The split members choose their masks themselves.
    always("attempt2SplitHalf",                      Split,      Curve, Curve,      hold2RT),
    taking("attempt2SplitAt",                        Split,      Takes::Midpoints,  hold2RT),
    // The start table runs these only with an amplitude strictly inside (0, 0.99).
    taking("attempt2ThreePointFullAmp",              ThreePoint, AmpAsGiven,        hold2Amp),
    taking("attempt2ThreePointCoreAmp",              ThreePoint, AmpAsGiven,        hold2AmpBaselines),
    taking("attempt2FlatCoreAmp",                    Flat,       AmpAsGiven,        hold2AmpBaselines),
    taking("attempt2SegmentCoreAmp",                 Segment,    AmpAsGiven,        hold2AmpBaselines),
    // Without its native pair, keeping the native end means fitting it, with
    // the unfolded end held at the curve's three-point line.
    //                                                           pair given, amp usable; pair absent, usable;
    //                                                           given, not usable; absent, not usable
    member::keepingNative("attempt2KeepNative",      ThreePoint, Takes::Nothing,
                          hold2Native, hold2Unfolded, hold2Native, hold2Unfolded),
    member::keepingNative("attempt2KeepNativeAmp",   ThreePoint, Amp,
                          hold2AmpNative, hold2AmpUnfolded, hold2Native, hold2Unfolded),
    always("attempt2KeepUnfolded",                   ThreePoint, Curve, Given,      hold2Unfolded),
    withEstimate("attempt2KeepUnfoldedAmp",          ThreePoint, Curve, Given, Amp, hold2AmpUnfolded, hold2Unfolded),
    always("attempt2NativeThreePointCore",           ThreePoint, Given, Curve,      hold2Baselines),
    withEstimate("attempt2NativeThreePointCoreAmp",  ThreePoint, Given, Curve, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2UnfoldedThreePointCore",         ThreePoint, Curve, Given,      hold2Baselines),
    withEstimate("attempt2UnfoldedThreePointCoreAmp", ThreePoint, Curve, Given, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2BothCore",                       Flat,       Given, Given,      hold2Baselines),
    withEstimate("attempt2BothCoreAmp",              Flat,       Given, Given, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2NativeFlatCore",                 Flat,       Given, Curve,      hold2Baselines),
    withEstimate("attempt2NativeFlatCoreAmp",        Flat,       Given, Curve, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2UnfoldedFlatCore",               Flat,       Curve, Given,      hold2Baselines),
    withEstimate("attempt2UnfoldedFlatCoreAmp",      Flat,       Curve, Given, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2NativeSegmentCore",              Segment,    Given, Curve,      hold2Baselines),
    withEstimate("attempt2NativeSegmentCoreAmp",     Segment,    Given, Curve, Amp, hold2AmpBaselines, hold2Baselines),
    always("attempt2UnfoldedSegmentCore",            Segment,    Curve, Given,      hold2Baselines),
    withEstimate("attempt2UnfoldedSegmentCoreAmp",   Segment,    Curve, Given, Amp, hold2AmpBaselines, hold2Baselines),
};
static_assert(std::size(kMembers) == static_cast<std::size_t>(Attempt::UnfoldedSegmentCoreAmp) + 1);

}  // namespace attempts2
}  // namespace quent
