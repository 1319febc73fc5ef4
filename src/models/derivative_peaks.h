// Midpoint estimates before any transition model is fitted: Gaussian peaks
// fitted to the slope of the curve between neighbouring points.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Centres of P peaks of the slope of (x, y), n points each (only the first
// 384 points feed the slope).  out gets P centres in ascending order, or all
// -1 when the fit fails or a centre (NaN included) falls outside x[0] to
// x[n - 1].
template <int P>
void derivativePeaks(const real_T* x, const real_T* y, int32_T n, real_T* out);

inline real_T derivativePeaks1(const real_T* x, const real_T* y, int32_T n) {
  real_T centre;
  derivativePeaks<1>(x, y, n, &centre);
  return centre;
}
inline void derivativePeaks2(const real_T* x, const real_T* y, int32_T n, real_T out[2]) { derivativePeaks<2>(x, y, n, out); }
inline void derivativePeaks3(const real_T* x, const real_T* y, int32_T n, real_T out[3]) { derivativePeaks<3>(x, y, n, out); }

extern template void derivativePeaks<1>(const real_T*, const real_T*, int32_T, real_T*);
extern template void derivativePeaks<2>(const real_T*, const real_T*, int32_T, real_T*);
extern template void derivativePeaks<3>(const real_T*, const real_T*, int32_T, real_T*);

}  // namespace quent
