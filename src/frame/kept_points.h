// The points of a curve that a point mask keeps (entry exactly 1), gathered in
// order: what every masked fit, test and revision works on.
#pragma once

#include <algorithm>

#include "quent_dgtrend.h"

namespace quent {

// Copies the points i < n whose mask entry is 1 to keptX, keptY, stopping
// once `cap` are gathered; returns their count.  x, y and mask are anything
// indexed like an array: pointers, or views of a host's vectors.
template <class X, class Y, class Mask>
int32_T gatherKept(const X& x, const Y& y, const Mask& mask, int32_T n, real_T* keptX,
                   real_T* keptY, int32_T cap = 2147483647) {
  int32_T kept = 0;
  for (int32_T i = 0; i < n && kept < cap; ++i) {
    if (mask[i] != 1) continue;
    keptX[kept] = x[i];
    keptY[kept] = y[i];
    ++kept;
  }
  return kept;
}

// A curve whose first and last abscissas are equal spans no width in x.
inline bool spansNoWidth(const real_T* x, int32_T n) { return x[0] == x[n - 1]; }

// Whether two masks of n points agree entry by entry.
inline bool sameMask(const int32_T* a, const int32_T* b, int32_T n) {
  return std::equal(a, a + n, b);
}

// How many of the first n points a mask keeps.
template <class Mask>
int32_T countKept(const Mask& mask, int32_T n) {
  int32_T kept = 0;
  for (int32_T i = 0; i < n; ++i) kept += mask[i] == 1 ? 1 : 0;
  return kept;
}

}  // namespace quent
