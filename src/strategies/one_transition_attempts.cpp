// All one-transition attempts are one procedure; a member is a row of the
// table below: how its start baselines are formed, which pairs it takes, and
// which parameters it holds depending on whether its midpoint is usable and
// its pair given.
#include "strategies/one_transition_attempts.h"

#include "engine/held_mask.h"
#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "models/params.h"
#include "models/plausibility.h"
#include "strategies/start_forms.h"

namespace quent {
namespace {

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

enum class Pair : unsigned char { Curve, Given };  // Given: the pair handed in, else the curve's

struct Member {
  const char* name;
  StartForm form;
  Pair native;
  Pair unfolded;
  bool takesMidpoint;
  Mask mask[2][2];  // [midpoint usable][pair given]
};

constexpr Member always(const char* name, StartForm f, Pair nat, Pair unf, Mask m) {
  return {name, f, nat, unf, false, {{m, m}, {m, m}}};
}
constexpr Member at(const char* name, StartForm f, Pair nat, Pair unf, Mask usable, Mask otherwise) {
  return {name, f, nat, unf, true, {{otherwise, otherwise}, {usable, usable}}};
}

using enum StartForm;
using enum Pair;

//                 member                              start       native  unfolded  mask (midpoint usable; not)
constexpr Member kMembers[] = {
    always("attemptThreePointFull",           ThreePoint, Curve, Curve, holdRT),
    always("attemptThreePointCore",           ThreePoint, Curve, Curve, holdBaselines),
    always("attemptFlatCore",                 Flat,       Curve, Curve, holdBaselines),
    always("attemptSegmentCore",              Segment,    Curve, Curve, holdBaselines),
    at    ("attemptThreePointFullAt",         ThreePoint, Curve, Curve, holdCm, holdRT),
    at    ("attemptThreePointCoreAt",         ThreePoint, Curve, Curve, holdCmBaselines, holdBaselines),
    at    ("attemptFlatCoreAt",               Flat,       Curve, Curve, holdCmBaselines, holdBaselines),
    at    ("attemptSegmentCoreAt",            Segment,    Curve, Curve, holdCmBaselines, holdBaselines),
    // Without its native pair, keeping the native end means fitting it, with
    // the unfolded end held at the curve's three-point line.
    {"attemptKeepNative", ThreePoint, Given, Curve, false,
     {{holdUnfolded, holdNative}, {holdUnfolded, holdNative}}},
    {"attemptKeepNativeAt", ThreePoint, Given, Curve, true,
     {{holdUnfolded, holdNative}, {holdCmUnfolded, holdCmNative}}},
    always("attemptKeepUnfolded",             ThreePoint, Curve, Given, holdUnfolded),
    at    ("attemptKeepUnfoldedAt",           ThreePoint, Curve, Given, holdCmUnfolded, holdUnfolded),
    always("attemptNativeThreePointCore",     ThreePoint, Given, Curve, holdBaselines),
    at    ("attemptNativeThreePointCoreAt",   ThreePoint, Given, Curve, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedThreePointCore",   ThreePoint, Curve, Given, holdBaselines),
    at    ("attemptUnfoldedThreePointCoreAt", ThreePoint, Curve, Given, holdCmBaselines, holdBaselines),
    always("attemptBothCore",                 Flat,       Given, Given, holdBaselines),
    at    ("attemptBothCoreAt",               Flat,       Given, Given, holdCmBaselines, holdBaselines),
    always("attemptNativeFlatCore",           Flat,       Given, Curve, holdBaselines),
    at    ("attemptNativeFlatCoreAt",         Flat,       Given, Curve, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedFlatCore",         Flat,       Curve, Given, holdBaselines),
    at    ("attemptUnfoldedFlatCoreAt",       Flat,       Curve, Given, holdCmBaselines, holdBaselines),
    always("attemptNativeSegmentCore",        Segment,    Given, Curve, holdBaselines),
    at    ("attemptNativeSegmentCoreAt",      Segment,    Given, Curve, holdCmBaselines, holdBaselines),
    always("attemptUnfoldedSegmentCore",      Segment,    Curve, Given, holdBaselines),
    at    ("attemptUnfoldedSegmentCoreAt",    Segment,    Curve, Given, holdCmBaselines, holdBaselines),
};
static_assert(sizeof kMembers / sizeof kMembers[0] == static_cast<int>(Attempt1::Count));

constexpr real_T startEnergy(StartForm form) { return form == Segment ? 10000.0 : 6000.0; }

void rejectImplausible(real_T* v, const real_T* x, int32_T n) {
  if (plausible1(v, x, n) == 0.0)
    for (int k = 0; k < p1::count; ++k) v[k] = kFailed;
}

}  // namespace

const char* attempt1Name(Attempt1 member) { return kMembers[static_cast<int>(member)].name; }

void runAttempt1(Attempt1 member, const real_T* x, const real_T* y, int32_T n, real_T RT,
                 real_T midpoint, const real_T nativePair[2], const real_T unfoldedPair[2],
                 real_T result[7]) {
  const Member& m = kMembers[static_cast<int>(member)];
  const bool nativeGiven = m.native == Given && pairGiven(nativePair);
  const bool unfoldedGiven = m.unfolded == Given && pairGiven(unfoldedPair);

  // The form's baselines are formed in full even where a given pair replaces
  // them, so a given pair bypasses their zero guards.
  BaselinePairs b = startBaselines(m.form, x, y, n);
  if (nativeGiven) {
    b.nativeIntercept = nativePair[0];
    b.nativeSlope = nativePair[1];
  }
  if (unfoldedGiven) {
    b.unfoldedIntercept = unfoldedPair[0];
    b.unfoldedSlope = unfoldedPair[1];
  }
  if (m.form == Flat) guardFlatStart(b, nativeGiven, unfoldedGiven, y, n);

  // A midpoint exactly at the last x still seeds Cm but is not held there.
  const real_T xLast = x[n - 1];
  const bool seeds = m.takesMidpoint && 0.0 < midpoint && midpoint <= xLast;
  const bool usable = m.takesMidpoint && 0.0 < midpoint && midpoint < xLast;
  const bool given = m.native == Given ? nativeGiven : unfoldedGiven;

  const real_T start[7] = {startEnergy(m.form), seeds ? midpoint : midX(x, n),
                           b.nativeIntercept,   b.nativeSlope,
                           b.unfoldedIntercept, b.unfoldedSlope,
                           RT};
  heldFit<OneTransitionModel>(x, y, n, start, m.mask[usable][given], result);
  rejectImplausible(result, x, n);
}

void refineBest(const real_T* x, const real_T* y, int32_T n, real_T vector[7]) {
  heldFit<OneTransitionModel>(x, y, n, vector, holdSlopes, vector);
  rejectImplausible(vector, x, n);
}

void refineRanked(const real_T* x, const real_T* y, int32_T n, const real_T* table,
                  real_T result[7]) {
  heldFit<OneTransitionModel>(x, y, n, table, holdSlopes, result);
  rejectImplausible(result, x, n);
}

void attemptThreePointFullFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]) {
  runAttempt1(Attempt1::ThreePointFull, x, y, n, kFixedRT, kFailed, kAbsentPair, kAbsentPair, result);
}
void attemptThreePointCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]) {
  runAttempt1(Attempt1::ThreePointCore, x, y, n, kFixedRT, kFailed, kAbsentPair, kAbsentPair, result);
}
void attemptFlatCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]) {
  runAttempt1(Attempt1::FlatCore, x, y, n, kFixedRT, kFailed, kAbsentPair, kAbsentPair, result);
}
void attemptSegmentCoreFixedRT(const real_T* x, const real_T* y, int32_T n, real_T result[7]) {
  runAttempt1(Attempt1::SegmentCore, x, y, n, kFixedRT, kFailed, kAbsentPair, kAbsentPair, result);
}

}  // namespace quent
