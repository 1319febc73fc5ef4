// Largest and smallest value of a list with NaNs passed over.  The scan starts
// at the first element that is not NaN; a later element replaces the running
// value only when strictly beyond it, so the first of equal values stands.
// An all-NaN list gives its first element (NaN) at index 0; an empty list
// gives NaN at index -1.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

struct Extreme {
  real_T value;
  int32_T index;  // position of the value, from 0
};

template <bool Largest, class Vector>
Extreme nanSkippingExtreme(const Vector& v, int32_T n) {
  if (n < 1) return {__builtin_nan(""), -1};
  Extreme e{v[0], 0};
  int32_T start = 0;
  while (start < n && v[start] != v[start]) ++start;
  if (start == n) return e;
  e = {v[start], start};
  for (int32_T i = start + 1; i < n; ++i) {
    const real_T x = v[i];
    if (Largest ? x > e.value : x < e.value) e = {x, i};
  }
  return e;
}

template <class Vector>
Extreme nanSkippingMax(const Vector& v, int32_T n) { return nanSkippingExtreme<true>(v, n); }
template <class Vector>
Extreme nanSkippingMin(const Vector& v, int32_T n) { return nanSkippingExtreme<false>(v, n); }

}  // namespace quent
