// Forward models of a denaturation curve.  A transition of energy G and
// midpoint C has the equilibrium constant K = exp(-(G (1 - x / C)) / RT); the
// signal is a weighted mean of whole two-state curves that share one native
// and one unfolded baseline.  The order of every operation is fixed: hosts
// compare these numbers bit for bit.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Where the entries of a T-transition parameter vector stand:
// dG_t at 2t, Cm_t at 2t + 1, the T - 1 amplitudes from 2T, the four baseline
// entries from 3T - 1, RT last.
template <int T>
struct TransitionLayout {
  static_assert(T >= 1 && T <= 3);
  static constexpr int kTransitions = T;
  static constexpr int kParams = 3 * T + 4;  // 7, 10, 13
  static constexpr int dG(int t) { return 2 * t; }
  static constexpr int Cm(int t) { return 2 * t + 1; }
  static constexpr int amp(int t) { return 2 * T + t; }
  static constexpr int nativeIntercept = 3 * T - 1;
  static constexpr int nativeSlope = 3 * T;
  static constexpr int unfoldedIntercept = 3 * T + 1;
  static constexpr int unfoldedSlope = 3 * T + 2;
  static constexpr int RT = 3 * T + 3;
};

// Signal of the T-transition model at n points: y[i] for x[i].  x is not
// capped in length.  No allocation.
template <int T>
void curveModel(const real_T* params, const real_T* x, int32_T n, real_T* y);

inline void curveModel1(const real_T* p, const real_T* x, int32_T n, real_T* y) { curveModel<1>(p, x, n, y); }
inline void curveModel2(const real_T* p, const real_T* x, int32_T n, real_T* y) { curveModel<2>(p, x, n, y); }
inline void curveModel3(const real_T* p, const real_T* x, int32_T n, real_T* y) { curveModel<3>(p, x, n, y); }

// Fraction unfolded of the T-transition model (the model without baselines)
// for the first min(xCols, 384) points of x, into a caller's buffer of 384.
// Returns the number of points written (0 when xCols is below 1).  The
// three-transition form reads point i of x at xRows * i, so that it takes the
// first row of a matrix; the other two read element i.
template <int T>
int32_T unfoldedFraction(const real_T* params, const real_T* x, int32_T xRows, int32_T xCols,
                         real_T* out);

inline int32_T unfoldedFraction1(const real_T* p, const real_T* x, int32_T xRows, int32_T xCols, real_T* out) { return unfoldedFraction<1>(p, x, xRows, xCols, out); }
inline int32_T unfoldedFraction2(const real_T* p, const real_T* x, int32_T xRows, int32_T xCols, real_T* out) { return unfoldedFraction<2>(p, x, xRows, xCols, out); }
inline int32_T unfoldedFraction3(const real_T* p, const real_T* x, int32_T xRows, int32_T xCols, real_T* out) { return unfoldedFraction<3>(p, x, xRows, xCols, out); }

// Sum of P Gaussian peaks, params (h, c, s) per peak, at n points.
template <int P>
void gaussianSum(const real_T* params, const real_T* x, int32_T n, real_T* y);

inline void gaussianSum1(const real_T* p, const real_T* x, int32_T n, real_T* y) { gaussianSum<1>(p, x, n, y); }
inline void gaussianSum2(const real_T* p, const real_T* x, int32_T n, real_T* y) { gaussianSum<2>(p, x, n, y); }
inline void gaussianSum3(const real_T* p, const real_T* x, int32_T n, real_T* y) { gaussianSum<3>(p, x, n, y); }

extern template void curveModel<1>(const real_T*, const real_T*, int32_T, real_T*);
extern template void curveModel<2>(const real_T*, const real_T*, int32_T, real_T*);
extern template void curveModel<3>(const real_T*, const real_T*, int32_T, real_T*);
extern template int32_T unfoldedFraction<1>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
extern template int32_T unfoldedFraction<2>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
extern template int32_T unfoldedFraction<3>(const real_T*, const real_T*, int32_T, int32_T, real_T*);
extern template void gaussianSum<1>(const real_T*, const real_T*, int32_T, real_T*);
extern template void gaussianSum<2>(const real_T*, const real_T*, int32_T, real_T*);
extern template void gaussianSum<3>(const real_T*, const real_T*, int32_T, real_T*);

}  // namespace quent
