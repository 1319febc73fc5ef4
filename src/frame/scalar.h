// Small scalar routines that every subsystem uses: absolute value, NaN test,
// rounding with halves away from zero, and the clipped conversion to int32_T
// that all index arithmetic on curve offsets goes through.
#pragma once

#include <cmath>

#include "quent_dgtrend.h"

namespace quent {

inline real_T absValue(real_T x) { return std::fabs(x); }

inline bool isNaNValue(real_T x) { return x != x; }

// Halves go away from zero; magnitudes of 2^52 and more are integers already
// and come back unchanged, as does a NaN.  -0.49 rounds to a negative zero.
inline real_T roundHalfAway(real_T x) {
  if (!(std::fabs(x) < 4503599627370496.0)) return x;
  if (x >= 0.5) return std::floor(x + 0.5);
  if (x > -0.5) return x * 0.0;
  return std::ceil(x - 0.5);
}

// Truncation toward zero, clipped to the range of int32_T; NaN gives 0.
inline int32_T saturatingInt32(real_T x) {
  if (x >= 2147483648.0) return 2147483647;
  if (x < -2147483648.0) return (-2147483647 - 1);
  if (isNaNValue(x)) return 0;
  return static_cast<int32_T>(x);
}

// Sum and product of int32_T with the same clipping, for curve offsets.
inline int32_T saturatingAdd(int32_T a, int32_T b) {
  const long long s = static_cast<long long>(a) + b;
  if (s > 2147483647LL) return 2147483647;
  if (s < -2147483648LL) return (-2147483647 - 1);
  return static_cast<int32_T>(s);
}

inline int32_T saturatingMul(int32_T a, int32_T b) {
  const long long p = static_cast<long long>(a) * b;
  if (p > 2147483647LL) return 2147483647;
  if (p < -2147483648LL) return (-2147483647 - 1);
  return static_cast<int32_T>(p);
}

}  // namespace quent
