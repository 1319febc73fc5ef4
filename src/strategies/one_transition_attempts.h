// The start attempts of the one-transition fit, as rows of one table: one
// held least-squares fit from a start vector built from the curve, with given
// baselines or a given midpoint where the member takes them.  "At" members
// take the midpoint; Native, Unfolded, Both and Keep members the named pairs.
#pragma once

#include "engine/held_mask.h"
#include "strategies/attempt_member.h"

namespace quent {
namespace attempts1 {

using Mask = HeldMask<7>;

// Held entries, index 0 first: dG, Cm, native intercept and slope, unfolded
// intercept and slope, RT.
constexpr Mask holdRT = heldMask("0000001");
constexpr Mask holdBaselines = heldMask("0011111");
constexpr Mask holdCmBaselines = heldMask("0111111");
constexpr Mask holdSlopes = heldMask("0001011");
constexpr Mask holdUnfolded = heldMask("0000111");
constexpr Mask holdNative = heldMask("0011001");
constexpr Mask holdCmUnfolded = heldMask("0100111");
constexpr Mask holdCm = heldMask("0100001");
constexpr Mask holdCmNative = heldMask("0111001");

// The members, in the order of the table below.
enum class Attempt : int {
  ThreePointFull, ThreePointCore, FlatCore, SegmentCore,
  ThreePointFullAt, ThreePointCoreAt, FlatCoreAt, SegmentCoreAt,
  KeepNative, KeepNativeAt, KeepUnfolded, KeepUnfoldedAt,
  NativeThreePointCore, NativeThreePointCoreAt, UnfoldedThreePointCore, UnfoldedThreePointCoreAt,
  BothCore, BothCoreAt,
  NativeFlatCore, NativeFlatCoreAt, UnfoldedFlatCore, UnfoldedFlatCoreAt,
  NativeSegmentCore, NativeSegmentCoreAt, UnfoldedSegmentCore, UnfoldedSegmentCoreAt,
};

using enum StartForm;
using enum PairFrom;
using member::always;
using member::withEstimate;
constexpr Takes At = Takes::Midpoint;

//                                                  start       native unfolded       mask (midpoint usable; not)
constexpr AttemptMember<7> kMembers[] = {
    always("attemptThreePointFull",                 ThreePoint, Curve, Curve,     holdRT),
    always("attemptThreePointCore",                 ThreePoint, Curve, Curve,     holdBaselines),
    always("attemptFlatCore",                       Flat,       Curve, Curve,     holdBaselines),
    always("attemptSegmentCore",                    Segment,    Curve, Curve,     holdBaselines),
    withEstimate("attemptThreePointFullAt",         ThreePoint, Curve, Curve, At, holdCm, holdRT),
    withEstimate("attemptThreePointCoreAt",         ThreePoint, Curve, Curve, At, holdCmBaselines, holdBaselines),
    withEstimate("attemptFlatCoreAt",               Flat,       Curve, Curve, At, holdCmBaselines, holdBaselines),
    withEstimate("attemptSegmentCoreAt",            Segment,    Curve, Curve, At, holdCmBaselines, holdBaselines),
    // Without its native pair, keeping the native end means fitting it, with
    // the unfolded end held at the curve's three-point line.
    //                                                          pair given, midpoint usable; pair absent, usable;
    //                                                          given, not usable; absent, not usable
    member::keepingNative("attemptKeepNative",      ThreePoint, Takes::Nothing,
                          holdNative, holdUnfolded, holdNative, holdUnfolded),
    member::keepingNative("attemptKeepNativeAt",    ThreePoint, At,
                          holdCmNative, holdCmUnfolded, holdNative, holdUnfolded),
    always("attemptKeepUnfolded",                   ThreePoint, Curve, Given,     holdUnfolded),
    withEstimate("attemptKeepUnfoldedAt",           ThreePoint, Curve, Given, At, holdCmUnfolded, holdUnfolded),
    always("attemptNativeThreePointCore",           ThreePoint, Given, Curve,     holdBaselines),
    withEstimate("attemptNativeThreePointCoreAt",   ThreePoint, Given, Curve, At, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedThreePointCore",         ThreePoint, Curve, Given,     holdBaselines),
    withEstimate("attemptUnfoldedThreePointCoreAt", ThreePoint, Curve, Given, At, holdCmBaselines, holdBaselines),
    always("attemptBothCore",                       Flat,       Given, Given,     holdBaselines),
    withEstimate("attemptBothCoreAt",               Flat,       Given, Given, At, holdCmBaselines, holdBaselines),
    always("attemptNativeFlatCore",                 Flat,       Given, Curve,     holdBaselines),
    withEstimate("attemptNativeFlatCoreAt",         Flat,       Given, Curve, At, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedFlatCore",               Flat,       Curve, Given,     holdBaselines),
    withEstimate("attemptUnfoldedFlatCoreAt",       Flat,       Curve, Given, At, holdCmBaselines, holdBaselines),
    always("attemptNativeSegmentCore",              Segment,    Given, Curve,     holdBaselines),
    withEstimate("attemptNativeSegmentCoreAt",      Segment,    Given, Curve, At, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedSegmentCore",            Segment,    Curve, Given,     holdBaselines),
    withEstimate("attemptUnfoldedSegmentCoreAt",    Segment,    Curve, Given, At, holdCmBaselines, holdBaselines),
};

}  // namespace attempts1
}  // namespace quent
