// Curve, fraction and peak models.  The weights of a T-transition model are
// amp1, ..., amp(T-1) and, for the last transition, 1 - amp1 - ... formed left
// to right; the weighted terms are added in transition order.  With one
// transition the single weight is 1.0, which multiplies exactly.
#include "models/curve_models.h"

#include <cmath>

#include "frame/limits.h"

namespace quent {
namespace {

// Equilibrium constant of one transition at x, in the fixed order
// x / C, 1 - that, times G, negated, over RT, exp.
inline real_T equilibriumConstant(real_T G, real_T C, real_T x, real_T RT) {
  return std::exp(-(G * (1.0 - x / C)) / RT);
}

template <int T>
struct Weights {
  real_T w[T];
  explicit Weights(const real_T* p) {
    using L = TransitionLayout<T>;
    real_T last = 1.0;
    for (int t = 0; t < T - 1; ++t) {
      w[t] = p[L::amp(t)];
      last = last - p[L::amp(t)];
    }
    w[T - 1] = last;
  }
};

}  // namespace

template <int T>
void curveModel(const real_T* p, const real_T* x, int32_T n, real_T* y) {
  using L = TransitionLayout<T>;
  const Weights<T> weights(p);
  const real_T a = p[L::nativeIntercept], b = p[L::nativeSlope];
  const real_T c = p[L::unfoldedIntercept], d = p[L::unfoldedSlope];
  const real_T RT = p[L::RT];
  for (int32_T i = 0; i < n; ++i) {
    const real_T xi = x[i];
    real_T sum = 0.0;
    for (int t = 0; t < T; ++t) {
      const real_T K = equilibriumConstant(p[L::dG(t)], p[L::Cm(t)], xi, RT);
      const real_T branch = (a + b * xi + (c + d * xi) * K) / (1.0 + K);
      const real_T term = T == 1 ? branch : weights.w[t] * branch;
      sum = t == 0 ? term : sum + term;
    }
    y[i] = sum;
  }
}

template <int T>
int32_T unfoldedFraction(const real_T* p, const real_T* x, int32_T xRows, int32_T xCols,
                         real_T* out) {
  using L = TransitionLayout<T>;
  const int32_T n = xCols < kMaxFitPoints ? xCols : kMaxFitPoints;
  if (n < 1) return 0;
  const int32_T stride = T == 3 ? xRows : 1;
  const Weights<T> weights(p);
  const real_T RT = p[L::RT];
  for (int32_T i = 0; i < n; ++i) {
    const real_T xi = x[static_cast<long long>(stride) * i];
    real_T sum = 0.0;
    for (int t = 0; t < T; ++t) {
      const real_T K = equilibriumConstant(p[L::dG(t)], p[L::Cm(t)], xi, RT);
      const real_T fraction = K / (K + 1.0);
      const real_T term = T == 1 ? fraction : weights.w[t] * fraction;
      sum = t == 0 ? term : sum + term;
    }
    out[i] = sum;
  }
  return n;
}

template <int P>
void gaussianSum(const real_T* p, const real_T* x, int32_T n, real_T* y) {
  for (int32_T i = 0; i < n; ++i) {
    real_T sum = 0.0;
    for (int k = 0; k < P; ++k) {
      const real_T h = p[3 * k], c = p[3 * k + 1], s = p[3 * k + 2];
      const real_T d = x[i] - c;
      const real_T term = h * std::exp(-(d * d / (s * s * 2.0)));
      sum = k == 0 ? term : sum + term;
    }
    y[i] = sum;
  }
}

template void curveModel<1>(const real_T*, const real_T*, int32_T, real_T*);
template void curveModel<2>(const real_T*, const real_T*, int32_T, real_T*);
template void curveModel<3>(const real_T*, const real_T*, int32_T, real_T*);
template int32_T unfoldedFraction<1>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
template int32_T unfoldedFraction<2>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
template int32_T unfoldedFraction<3>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
template void gaussianSum<1>(const real_T*, const real_T*, int32_T, real_T*);
template void gaussianSum<2>(const real_T*, const real_T*, int32_T, real_T*);
template void gaussianSum<3>(const real_T*, const real_T*, int32_T, real_T*);

}  // namespace quent
