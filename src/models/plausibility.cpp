// Plausibility bounds of a fit and the sorting of its transitions.  All
// comparisons are written so that a NaN fails them.
#include "models/plausibility.h"

#include <utility>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "strategies/families.h"

namespace quent {
namespace {

// A midpoint at 0 fails by its m-value (infinite or NaN); one at xLast passes.
inline bool transitionPlausible(real_T dG, real_T Cm, real_T xLast) {
  if (!(Cm >= 0.0) || !(xLast >= Cm)) return false;
  const real_T m = dG / Cm;
  return m >= mValueMin && m <= mValueMax;
}

}  // namespace

template <int T>
real_T plausible(const real_T* p, const real_T* x, int32_T n) {
  using L = TransitionLayout<T>;
  using F = Family<T>;
  if (n < 1) return 0.0;
  const real_T xLast = x[n - 1];
  for (int t = 0; t < T; ++t)
    if (!transitionPlausible(p[L::dG(t)], p[L::Cm(t)], xLast)) return 0.0;
  // Only the first T - 1 shares are parameters; the last is tested, if at
  // all, through their sum.
  if constexpr (T > 1) {
    for (int t = 0; t < T - 1; ++t) {
      const real_T share = p[L::amp(t)];
      if (!(share >= F::kShareMin && share <= F::kShareMax)) return 0.0;
    }
    if constexpr (F::kSharesSumBelowOne) {
      const real_T s = p[L::amp(0)] + p[L::amp(1)];
      if (!(s > 0.0 && s < 1.0)) return 0.0;
    }
  }
  return 1.0;
}

template <int T>
void keepIfPlausible(real_T* params, const real_T* x, int32_T n) {
  canonicalOrder<T>(params);
  if (plausible<T>(params, x, n) == 0.0)
    for (int k = 0; k < TransitionLayout<T>::kParams; ++k) params[k] = kFailed;
}

void canonicalOrder2(real_T* p) {
  using L = TransitionLayout<2>;
  constexpr int dG1 = L::dG(0), Cm1 = L::Cm(0), dG2 = L::dG(1), Cm2 = L::Cm(1), amp1 = L::amp(0);
  if (p[Cm2] < p[Cm1] && p[dG1] != -1.0) {
    std::swap(p[dG1], p[dG2]);
    std::swap(p[Cm1], p[Cm2]);
    p[amp1] = 1.0 - p[amp1];
  }
}

// A sorting network of three comparisons; the third share (1 - amp1) - amp2
// is formed only where it has to take a named place.
void canonicalOrder3(real_T* p) {
  using L = TransitionLayout<3>;
  constexpr int dG1 = L::dG(0), Cm1 = L::Cm(0), dG2 = L::dG(1), Cm2 = L::Cm(1), dG3 = L::dG(2),
                Cm3 = L::Cm(2), amp1 = L::amp(0), amp2 = L::amp(1);
  if (p[Cm1] > p[Cm2]) {
    std::swap(p[dG1], p[dG2]);
    std::swap(p[Cm1], p[Cm2]);
    std::swap(p[amp1], p[amp2]);
  }
  if (p[Cm1] > p[Cm3]) {
    // Transition 3 comes first, 1 and 2 move up one place.
    const real_T g3 = p[dG3], c3 = p[Cm3], a1 = p[amp1];
    p[dG3] = p[dG2];
    p[Cm3] = p[Cm2];
    p[dG2] = p[dG1];
    p[Cm2] = p[Cm1];
    p[dG1] = g3;
    p[Cm1] = c3;
    p[amp1] = (1.0 - a1) - p[amp2];
    p[amp2] = a1;
  } else if (p[Cm2] > p[Cm3]) {
    std::swap(p[dG2], p[dG3]);
    std::swap(p[Cm2], p[Cm3]);
    p[amp2] = (1.0 - p[amp1]) - p[amp2];
  }
}

template real_T plausible<1>(const real_T*, const real_T*, int32_T);
template real_T plausible<2>(const real_T*, const real_T*, int32_T);
template real_T plausible<3>(const real_T*, const real_T*, int32_T);
template void keepIfPlausible<1>(real_T*, const real_T*, int32_T);
template void keepIfPlausible<2>(real_T*, const real_T*, int32_T);
template void keepIfPlausible<3>(real_T*, const real_T*, int32_T);

}  // namespace quent
