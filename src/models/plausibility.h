// Whether a fitted parameter vector describes a physically sensible curve, and
// the canonical order of its transitions (ascending midpoint).  Strategies run
// the order first, then the test, and turn a refused vector into all -1.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// m-value (dG / Cm, cal/(mol unit of x)) of every transition.
constexpr real_T mValueMin = 100.0;
constexpr real_T mValueMax = 15000.0;

// 1.0 for a plausible T-transition vector on the curve x[0..n-1] (ascending,
// so x[n-1] is the largest concentration), else 0.0.  Every bound is
// inclusive and a NaN fails.  An empty x gives 0.0.  The bounds of the
// amplitude shares are those of the family.
template <int T>
real_T plausible(const real_T* params, const real_T* x, int32_T n);

inline real_T plausible1(const real_T* p, const real_T* x, int32_T n) { return plausible<1>(p, x, n); }
inline real_T plausible2(const real_T* p, const real_T* x, int32_T n) { return plausible<2>(p, x, n); }
inline real_T plausible3(const real_T* p, const real_T* x, int32_T n) { return plausible<3>(p, x, n); }

// Put the transitions in ascending order of midpoint, each keeping its energy
// and share of the amplitude, so the curve is unchanged.  Equal midpoints stay.
// canonicalOrder2 leaves a failed vector (dG1 = -1) alone; canonicalOrder3
// needs no such test since a failed vector has equal midpoints.
void canonicalOrder2(real_T* params);
void canonicalOrder3(real_T* params);

// The canonical order of T transitions; one transition has no order to make.
template <int T>
void canonicalOrder(real_T* params) {
  if constexpr (T == 2) canonicalOrder2(params);
  if constexpr (T == 3) canonicalOrder3(params);
}

// The ending of every fit a strategy or a refit makes: canonical order, then
// a refused vector becomes all -1.
template <int T>
void keepIfPlausible(real_T* params, const real_T* x, int32_T n);

extern template real_T plausible<1>(const real_T*, const real_T*, int32_T);
extern template real_T plausible<2>(const real_T*, const real_T*, int32_T);
extern template real_T plausible<3>(const real_T*, const real_T*, int32_T);
extern template void keepIfPlausible<1>(real_T*, const real_T*, int32_T);
extern template void keepIfPlausible<2>(real_T*, const real_T*, int32_T);
extern template void keepIfPlausible<3>(real_T*, const real_T*, int32_T);

}  // namespace quent
