// Whether a fitted parameter vector describes a physically sensible curve, and
// the canonical order of its transitions (ascending midpoint).  Strategies run
// the order first, then the test, and turn a refused vector into all -1.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// m-value (dG / Cm, cal/(mol unit of x)) of every transition.
constexpr real_T mValueMin = 100.0;
constexpr real_T mValueMax = 15000.0;
// Share of the amplitude of amp1 with two transitions, of amp1 and amp2 with three.
constexpr real_T ampMin2 = 0.08;
constexpr real_T ampMax2 = 0.92;
constexpr real_T ampMin3 = 0.06;
constexpr real_T ampMax3 = 0.94;

// 1.0 for a plausible T-transition vector on the curve x[0..n-1] (ascending,
// so x[n-1] is the largest concentration), else 0.0.  Every bound is
// inclusive and a NaN fails.  An empty x gives 0.0.
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

extern template real_T plausible<1>(const real_T*, const real_T*, int32_T);
extern template real_T plausible<2>(const real_T*, const real_T*, int32_T);
extern template real_T plausible<3>(const real_T*, const real_T*, int32_T);

}  // namespace quent
