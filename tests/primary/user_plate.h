// A plate for the primary fits of every family: six curves that every fit
// accepts, with a spike the automatic mask drops.
#pragma once

#include <cmath>
#include <vector>

#include "frame/allocation.h"
#include "test_support.h"

namespace quent::test {

// Three concentrations of two curves each, with the energies rising with
// ln(c) at one m value (eight times as steep for curve `steep`); a little
// noise, and a spike of 6 in curve 4 at point 20 that the automatic fit
// drops.  Signals stay positive.
template <int T>
struct UserPlate {
  static constexpr int32_T kPoints = 16 * T + 32;
  static constexpr int32_T kStateCount = T + 1;
  std::vector<real_T> den, sig, conc;
  explicit UserPlate(const std::vector<int>& curves = {0, 1, 2, 3, 4, 5}, int steep = -1) {
    constexpr real_T dG1[3] = {5200.0, 4000.0, 4000.0}, dG2[3] = {0.0, 11000.0, 9600.0};
    for (const int c : curves) {
      const real_T lnc = std::log(std::pow(2.0, c / 2)), k = c == steep ? 8.0 : 1.0;
      const real_T m = (T == 1 ? 1900.0 : 2400.0) * k;
      const real_T g[3] = {(dG1[T - 1] + 300.0 * lnc) * k, (dG2[T - 1] + 400.0 * lnc) * k,
                           (15000.0 + 500.0 * lnc) * k};
      real_T p[13];
      if constexpr (T == 1) {
        const real_T one[7] = {g[0], g[0] / m, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
        std::copy(one, one + 7, p);
      } else if constexpr (T == 2) {
        const real_T two[10] = {g[0], g[0] / m, g[1], g[1] / m, 0.4, 100.0, 0.0, 42.0, 0.0,
                                rtFromCelsius(25.0)};
        std::copy(two, two + 10, p);
      } else {
        const real_T three[13] = {g[0], g[0] / m, g[1], g[1] / m, g[2], g[2] / m, 0.3,
                                  0.35, 100.0,    0.0,  42.0,     0.0,  rtFromCelsius(25.0)};
        std::copy(three, three + 13, p);
      }
      const std::vector<real_T> x = grid(kPoints, 0.0, 8.0);
      std::vector<real_T> y = evaluated(curveModel<T>, p, x);
      for (int32_T i = 0; i < kPoints; ++i) y[i] += 0.1 * noise(i, 3 + c);
      if (c == 4) y[20] += 6.0;
      den.insert(den.end(), x.begin(), x.end());
      sig.insert(sig.end(), y.begin(), y.end());
      conc.push_back(std::pow(2.0, c / 2));
    }
  }
  int32_T curves() const { return static_cast<int32_T>(conc.size()); }

  // allocationLimit: allocations the call may make before memory runs out
  // (negative: no limit).
  std::vector<real_T> automatic(std::vector<int32_T>& mask, long allocationLimit = -1) const {
    OwnedArray<RealArray> rows;
    OwnedArray<Int32Array> m;
    const int32_T size[2] = {1, static_cast<int32_T>(den.size())}, concSize[2] = {1, curves()};
    failAllocationsAfter(allocationLimit);
    QUENT_dGtrend_primaryFit(kPoints, den.data(), size, sig.data(), size, conc.data(), concSize,
                             kStateCount, 25.0, rows.get(), m.get());
    failAllocationsAfter(-1);
    mask.assign(m->data, m->data + m.count());
    return {rows->data, rows->data + rows.count()};
  }
  // maskStride 2: the mask is the first row of a 2-row host matrix.
  std::vector<real_T> user(const std::vector<int32_T>& mask, const std::vector<int32_T>& flags,
                           int32_T maskStride = 1, long allocationLimit = -1) const {
    OwnedArray<RealArray> rows;
    const int32_T size[2] = {1, static_cast<int32_T>(den.size())}, concSize[2] = {1, curves()};
    std::vector<int32_T> matrix(mask.size() * maskStride, 7);
    for (size_t i = 0; i < mask.size(); ++i) matrix[maskStride * i] = mask[i];
    const int32_T maskSize[2] = {maskStride, static_cast<int32_T>(mask.size())};
    const int32_T flagSize[2] = {1, static_cast<int32_T>(flags.size())};
    failAllocationsAfter(allocationLimit);
    QUENT_dGtrend_user_primaryFit(kPoints, den.data(), size, sig.data(), size, conc.data(),
                                  concSize, matrix.data(), maskSize, flags.data(), flagSize,
                                  kStateCount, 25.0, rows.get());
    failAllocationsAfter(-1);
    return {rows->data, rows->data + rows.count()};
  }
};

}  // namespace quent::test
