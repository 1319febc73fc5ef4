// The start attempts of the three-transition fit, as rows of one table.  Most
// attempts come in four hold forms, in this order: both amplitudes free, the
// first held, the second held, both held; the form is the mask column.
// Members of the start table take the amplitude pair by the first rule,
// members given a baseline by the second (attempt_member.h).  The split
// members cut the curve in three stretches (three_transition_split.h).
#pragma once

#include <iterator>

#include "engine/held_mask.h"
#include "strategies/attempt_member.h"

namespace quent {
namespace attempts3 {

using Mask = HeldMask<13>;

// Held entries, index 0 first: dG1, Cm1, dG2, Cm2, dG3, Cm3, amp1, amp2,
// native intercept and slope, unfolded intercept and slope, RT.  The masks
// named for amp1 hold entry 7, which is amp2, and those named for amp2 hold
// entry 6: the names were given the other way round, and the strings are
// what the fits were tuned with.
constexpr Mask hold3RT = heldMask("0000000000001");
constexpr Mask hold3Amp1 = heldMask("0000000100001");
constexpr Mask hold3Amp2 = heldMask("0000001000001");
constexpr Mask hold3Amps = heldMask("0000001100001");
constexpr Mask hold3Baselines = heldMask("0000000011111");
constexpr Mask hold3Amp1Baselines = heldMask("0000000111111");
constexpr Mask hold3Amp2Baselines = heldMask("0000001011111");
constexpr Mask hold3AmpsBaselines = heldMask("0000001111111");
constexpr Mask hold3Native = heldMask("0000000011001");
constexpr Mask hold3Amp1Native = heldMask("0000000111001");
constexpr Mask hold3Amp2Native = heldMask("0000001011001");
constexpr Mask hold3AmpsNative = heldMask("0000001111001");
constexpr Mask hold3Unfolded = heldMask("0000000000111");
constexpr Mask hold3Amp1Unfolded = heldMask("0000000100111");
constexpr Mask hold3Amp2Unfolded = heldMask("0000001000111");
constexpr Mask hold3AmpsUnfolded = heldMask("0000001100111");

// The members, in the order of the table below; a member in four hold forms
// has four consecutive ids.
enum class Attempt : int {
  ThreePointFull, ThreePointHoldAmp1, ThreePointHoldAmp2, ThreePointHoldAmps,
  ThreePointCore, ThreePointCoreAmp1, ThreePointCoreAmp2, ThreePointCoreAmps,
  FlatCore, FlatCoreAmp1, FlatCoreAmp2, FlatCoreAmps,
  SegmentCore, SegmentCoreAmp1, SegmentCoreAmp2, SegmentCoreAmps,
  Split, SplitAmp1, SplitAmp2, SplitAmps,
  SplitAt, SplitAtAmp1, SplitAtAmp2, SplitAtAmps,
  KeepNative, KeepNativeHoldAmp1, KeepNativeHoldAmp2, KeepNativeHoldAmps,
  NativeThreePointCore, NativeThreePointCoreAmp1, NativeThreePointCoreAmp2, NativeThreePointCoreAmps,
  NativeFlatCore, NativeFlatCoreAmp1, NativeFlatCoreAmp2, NativeFlatCoreAmps,
  NativeSegmentCore, NativeSegmentCoreAmp1, NativeSegmentCoreAmp2, NativeSegmentCoreAmps,
  KeepUnfolded, KeepUnfoldedHoldAmp1, KeepUnfoldedHoldAmp2, KeepUnfoldedHoldAmps,
  UnfoldedThreePointCore, UnfoldedThreePointCoreAmp1, UnfoldedThreePointCoreAmp2, UnfoldedThreePointCoreAmps,
  UnfoldedFlatCore, UnfoldedFlatCoreAmp1, UnfoldedFlatCoreAmp2, UnfoldedFlatCoreAmps,
  UnfoldedSegmentCore, UnfoldedSegmentCoreAmp1, UnfoldedSegmentCoreAmp2, UnfoldedSegmentCoreAmps,
  BothCore, BothCoreAmp1, BothCoreAmp2, BothCoreAmps,
};

// The hold form k (0 to 3) of a member whose first form is `first`.
constexpr Attempt inHoldForm(Attempt first, int k) {
  return static_cast<Attempt>(static_cast<int>(first) + k);
}

using enum StartForm;
using enum PairFrom;
using member::always;
using member::byPairs;
constexpr Takes A = Takes::AmplitudePair;
constexpr Takes B = Takes::AmplitudePairBounded;
constexpr Takes Mid = Takes::Midpoints;

//                                                        start          native unfolded     mask
constexpr AttemptMember<13> kMembers[] = {
    always("attempt3ThreePointFull",                      ThreePoint,    Curve, Curve,       hold3RT, A),
    always("attempt3ThreePointHoldAmp1",                  ThreePoint,    Curve, Curve,       hold3Amp1, A),
    always("attempt3ThreePointHoldAmp2",                  ThreePoint,    Curve, Curve,       hold3Amp2, A),
    always("attempt3ThreePointHoldAmps",                  ThreePoint,    Curve, Curve,       hold3Amps, A),
    always("attempt3ThreePointCore",                      ThreePoint,    Curve, Curve,       hold3Baselines, A),
    always("attempt3ThreePointCore",                      ThreePoint,    Curve, Curve,       hold3Amp1Baselines, A),
    always("attempt3ThreePointCore",                      ThreePoint,    Curve, Curve,       hold3Amp2Baselines, A),
    always("attempt3ThreePointCore",                      ThreePoint,    Curve, Curve,       hold3AmpsBaselines, A),
    always("attempt3FlatCore",                            Flat,          Curve, Curve,       hold3Baselines, A),
    always("attempt3FlatCore",                            Flat,          Curve, Curve,       hold3Amp1Baselines, A),
    always("attempt3FlatCore",                            Flat,          Curve, Curve,       hold3Amp2Baselines, A),
    always("attempt3FlatCore",                            Flat,          Curve, Curve,       hold3AmpsBaselines, A),
    always("attempt3SegmentCore",                         Segment,       Curve, Curve,       hold3Baselines, A),
    always("attempt3SegmentCore",                         Segment,       Curve, Curve,       hold3Amp1Baselines, A),
    always("attempt3SegmentCore",                         Segment,       Curve, Curve,       hold3Amp2Baselines, A),
    always("attempt3SegmentCore",                         Segment,       Curve, Curve,       hold3AmpsBaselines, A),
    // The split members find their amplitudes themselves; the mask is the
    // hold form of the fit of the whole curve from the stretches.
    always("attempt3Split",                               Split,         Curve, Curve,       hold3Baselines),
    always("attempt3Split",                               Split,         Curve, Curve,       hold3Amp1Baselines),
    always("attempt3Split",                               Split,         Curve, Curve,       hold3Amp2Baselines),
    always("attempt3Split",                               Split,         Curve, Curve,       hold3AmpsBaselines),
    always("attempt3SplitAt",                             Split,         Curve, Curve,       hold3Baselines, Mid),
    always("attempt3SplitAt",                             Split,         Curve, Curve,       hold3Amp1Baselines, Mid),
    always("attempt3SplitAt",                             Split,         Curve, Curve,       hold3Amp2Baselines, Mid),
    always("attempt3SplitAt",                             Split,         Curve, Curve,       hold3AmpsBaselines, Mid),
    //                                                                                       neither, native only, unfolded only, both
    byPairs("attempt3KeepNative",                         ThreePoint,    Given, Curve, B,    hold3RT, hold3Native, hold3RT, hold3Native),
    byPairs("attempt3KeepNativeHoldAmp1",                 ThreePoint,    Given, Curve, B,    hold3Amp1, hold3Amp1Native, hold3Amp1, hold3Amp1Native),
    byPairs("attempt3KeepNativeHoldAmp2",                 ThreePoint,    Given, Curve, B,    hold3Amp2, hold3Amp2Native, hold3Amp2, hold3Amp2Native),
    byPairs("attempt3KeepNativeHoldAmps",                 ThreePoint,    Given, Curve, B,    hold3Amps, hold3AmpsNative, hold3Amps, hold3AmpsNative),
    always("attempt3NativeThreePointCore",                ThreePoint,    Given, Curve,       hold3Baselines, B),
    always("attempt3NativeThreePointCore",                ThreePoint,    Given, Curve,       hold3Amp1Baselines, B),
    always("attempt3NativeThreePointCore",                ThreePoint,    Given, Curve,       hold3Amp2Baselines, B),
    always("attempt3NativeThreePointCore",                ThreePoint,    Given, Curve,       hold3AmpsBaselines, B),
    always("attempt3NativeFlatCore",                      FlatExchanged, Given, Curve,       hold3Baselines, B),
    always("attempt3NativeFlatCore",                      FlatExchanged, Given, Curve,       hold3Amp1Baselines, B),
    always("attempt3NativeFlatCore",                      FlatExchanged, Given, Curve,       hold3Amp2Baselines, B),
    always("attempt3NativeFlatCore",                      FlatExchanged, Given, Curve,       hold3AmpsBaselines, B),
    always("attempt3NativeSegmentCore",                   Segment,       Given, Curve,       hold3Baselines, B),
    always("attempt3NativeSegmentCore",                   Segment,       Given, Curve,       hold3Amp1Baselines, B),
    always("attempt3NativeSegmentCore",                   Segment,       Given, Curve,       hold3Amp2Baselines, B),
    always("attempt3NativeSegmentCore",                   Segment,       Given, Curve,       hold3AmpsBaselines, B),
    byPairs("attempt3KeepUnfolded",                       ThreePoint,    Given, Given, B,    hold3RT, hold3Native, hold3Unfolded, hold3Baselines),
    byPairs("attempt3KeepUnfoldedHoldAmp1",               ThreePoint,    Curve, Given, B,    hold3Amp1, hold3Amp1, hold3Amp1Unfolded, hold3Amp1Unfolded),
    byPairs("attempt3KeepUnfoldedHoldAmp2",               ThreePoint,    Curve, Given, B,    hold3Amp2, hold3Amp2, hold3Amp2Unfolded, hold3Amp2Unfolded),
    byPairs("attempt3KeepUnfoldedHoldAmps",               ThreePoint,    Curve, Given, B,    hold3Amps, hold3Amps, hold3AmpsUnfolded, hold3AmpsUnfolded),
    always("attempt3UnfoldedThreePointCore",              ThreePoint,    Curve, Given,       hold3Baselines, B),
    always("attempt3UnfoldedThreePointCore",              ThreePoint,    Curve, Given,       hold3Amp1Baselines, B),
    always("attempt3UnfoldedThreePointCore",              ThreePoint,    Curve, Given,       hold3Amp2Baselines, B),
    always("attempt3UnfoldedThreePointCore",              ThreePoint,    Curve, Given,       hold3AmpsBaselines, B),
    always("attempt3UnfoldedFlatCore",                    FlatExchanged, Curve, Given,       hold3Baselines, B),
    always("attempt3UnfoldedFlatCore",                    FlatExchanged, Curve, Given,       hold3Amp1Baselines, B),
    always("attempt3UnfoldedFlatCore",                    FlatExchanged, Curve, Given,       hold3Amp2Baselines, B),
    always("attempt3UnfoldedFlatCore",                    FlatExchanged, Curve, Given,       hold3AmpsBaselines, B),
    always("attempt3UnfoldedSegmentCore",                 Segment,       Curve, Given,       hold3Baselines, B),
    always("attempt3UnfoldedSegmentCore",                 Segment,       Curve, Given,       hold3Amp1Baselines, B),
    always("attempt3UnfoldedSegmentCore",                 Segment,       Curve, Given,       hold3Amp2Baselines, B),
    always("attempt3UnfoldedSegmentCore",                 Segment,       Curve, Given,       hold3AmpsBaselines, B),
    always("attempt3BothCore",                            FlatExchanged, Given, Given,       hold3Baselines, B),
    always("attempt3BothCore",                            FlatExchanged, Given, Given,       hold3Amp1Baselines, B),
    always("attempt3BothCore",                            FlatExchanged, Given, Given,       hold3Amp2Baselines, B),
    always("attempt3BothCore",                            FlatExchanged, Given, Given,       hold3AmpsBaselines, B),
};
static_assert(std::size(kMembers) == static_cast<std::size_t>(Attempt::BothCoreAmps) + 1);

}  // namespace attempts3
}  // namespace quent
