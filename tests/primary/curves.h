// Noise-free curves of one, two and three transitions on x from 0 to 6 (m
// values 2000 to 2700, shares at least 0.3), with their rows.
#pragma once

#include "test_support.h"

namespace quent::test {

inline const real_T kTruth[3][13] = {{6000, 3, 1, 0.05, 5, 0.1, kFixedRT},
                                     {5000, 2, 12000, 4.5, 0.4, 1, 0.05, 5, 0.1, kFixedRT},
                                     {3000, 1.5, 6000, 3, 12000, 4.5, 0.3, 0.35, 1, 0.05, 5, 0.1, kFixedRT}};

template <int T>
struct Curve {
  real_T p[13], x[128], y[128], row[kRowColumns] = {};
  explicit Curve(int32_T n) {
    std::copy(kTruth[T - 1], kTruth[T - 1] + 13, p);
    for (int32_T i = 0; i < n; ++i) x[i] = 6.0 * i / (n - 1);
    curveModel<T>(p, x, n, y), paramsToRow<T>(p, row);
  }
};

inline bool sameRow(const real_T* a, const real_T* b) { return std::equal(a, a + kRowColumns, b); }

}  // namespace quent::test
