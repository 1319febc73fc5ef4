// What every test program includes: GoogleTest, the row layout and models,
// owned records, bit-exact comparison, and the grids curves are drawn on.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "frame/array.h"
#include "frame/row_layout.h"  // row columns, limits, curve models
#include "quent_dgtrend.h"

namespace quent::test {

// A record made by arrayInit and freed at the end of the scope.
template <class Record>
struct OwnedArray {
  Record* a = nullptr;
  OwnedArray() { arrayInit(&a, 2); }
  ~OwnedArray() { arrayFree(&a); }
  OwnedArray(const OwnedArray&) = delete;
  OwnedArray& operator=(const OwnedArray&) = delete;
  Record* operator->() const { return a; }
  Record* get() const { return a; }
  int32_T count() const { return arrayElementCount(a); }
};

inline std::uint64_t bits(double x) {
  std::uint64_t b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

// Bit for bit, so -0.0 differs from 0.0; any NaN equals any NaN, since the
// sign of a NaN follows the operand order the compiler picks.
inline bool sameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || bits(a) == bits(b);
}

// An entry of an expected list that is not checked.
inline constexpr double kAny = -7.0;

inline void expectList(const double* got, std::size_t count, const std::vector<double>& want,
                       const char* what = "") {
  ASSERT_EQ(count, want.size()) << what;
  for (std::size_t i = 0; i < count; ++i) {
    if (want[i] == kAny) continue;
    EXPECT_TRUE(sameBits(got[i], want[i])) << what << " [" << i << "] " << got[i] << " for " << want[i];
  }
}

// Uniform pseudo-noise in [-1, 1], the same on every platform.
inline real_T noise(int32_T i, unsigned seed) {
  unsigned s = static_cast<unsigned>(i + 1) * 2654435761u ^ seed * 40503u;
  s ^= s >> 13;
  s *= 0x5bd1e995u;
  s ^= s >> 15;
  return static_cast<real_T>(s % 20001u) / 10000.0 - 1.0;
}

// n points evenly from low to high.
inline std::vector<real_T> grid(int32_T n, real_T low, real_T high) {
  std::vector<real_T> x(n);
  for (int32_T i = 0; i < n; ++i) x[i] = low + (high - low) * i / (n - 1);
  return x;
}

// A model (curveModel1, gaussianSum2, ...) evaluated at every x.
using ModelFunction = void (*)(const real_T*, const real_T*, int32_T, real_T*);
inline std::vector<real_T> evaluated(ModelFunction model, const real_T* p, const std::vector<real_T>& x) {
  std::vector<real_T> y(x.size());
  model(p, x.data(), static_cast<int32_T>(x.size()), y.data());
  return y;
}

// Noise-free curves of one, two and three transitions on x from 0 to 6 (m
// values 2000 to 2700, shares at least 0.3), with their rows.
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
