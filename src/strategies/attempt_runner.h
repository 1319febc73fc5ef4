// The one procedure behind every attempt member of every family: start
// baselines of the member's form, with the pairs it takes replaced where they
// are given; a start vector from the family; a held fit under the mask that
// the member names for its case; then canonical order and plausibility, so
// that a refused fit comes back as a failed vector.  Members of the split
// form run their family's own procedure instead.
#pragma once

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "models/plausibility.h"
#include "strategies/attempt_member.h"
#include "strategies/family.h"
#include "strategies/start_forms.h"

namespace quent {

// A pair that counts as absent.
inline constexpr real_T kAbsentPair[2] = {0.0, 0.0};

// The start vector of member `id` of family F (not of the split form) on the
// points of c (x ascending, n >= 3), and the mask it is fitted under.  The
// estimate is read by the members that take one, a pair (intercept, slope)
// only by the members that take it.
template <class F>
HeldMask<F::Layout::kParams> startOf(typename F::Attempt id, const CurvePoints& c, real_T RT,
                                     const typename F::Estimate& e, const real_T nativePair[2],
                                     const real_T unfoldedPair[2], real_T* start) {
  const auto& m = F::kAttempts[static_cast<int>(id)];
  const bool nativeGiven = m.native == PairFrom::Given && pairGiven(nativePair);
  const bool unfoldedGiven = m.unfolded == PairFrom::Given && pairGiven(unfoldedPair);

  // The form's baselines are formed in full even where a given pair replaces
  // them, so a given pair bypasses their zero guards.
  BaselinePairs b = startBaselines(m.form, c.x, c.y, c.n);
  if (nativeGiven) {
    b.nativeIntercept = nativePair[0];
    b.nativeSlope = nativePair[1];
  }
  if (unfoldedGiven) {
    b.unfoldedIntercept = unfoldedPair[0];
    b.unfoldedSlope = unfoldedPair[1];
  }
  if (m.form == StartForm::Flat) guardFlatStart(b, nativeGiven, unfoldedGiven, c.y, c.n);
  const bool usable = F::startVector(m, c, b, e, RT, start);
  return m.mask[usable][nativeGiven][unfoldedGiven];
}

// Runs member `id` of family F on the points of c, as startOf reads them.
template <class F>
void runAttempt(typename F::Attempt id, const CurvePoints& c, real_T RT,
                const typename F::Estimate& e, const real_T nativePair[2],
                const real_T unfoldedPair[2], real_T* result) {
  if constexpr (requires(const typename F::Member& m) { F::splitAttempt(m, c, RT, e, result); }) {
    const auto& m = F::kAttempts[static_cast<int>(id)];
    if (m.form == StartForm::Split) {
      F::splitAttempt(m, c, RT, e, result);
      return;
    }
  }
  real_T start[F::Layout::kParams];
  const auto mask = startOf<F>(id, c, RT, e, nativePair, unfoldedPair, start);
  heldFit<TransitionModel<F::T>>(c.x, c.y, c.n, start, mask, result);
  keepIfPlausible<F::T>(result, c.x, c.n);
}

// A member as the test of a usable curve runs it: at 25 degrees, without an
// estimate or a baseline pair.
template <class F>
void runFixedRT(typename F::Attempt id, const CurvePoints& c, real_T* result) {
  runAttempt<F>(id, c, kFixedRT, F::kNoEstimate, kAbsentPair, kAbsentPair, result);
}

}  // namespace quent
