// A synthetic plate of one-transition curves on 0..8 M: dG rises with
// ln(sample concentration) at one common m value, so Cm = dG / m; the signal
// falls from a flat native baseline at 100 to a flat unfolded one at 42, with
// a small deterministic ripple and optional spikes.  (Sloped baselines cost
// the strategies' slope estimates, held in every refit, a few percent of dG.)
#pragma once

#include "frame/limits.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"
#include "test_support.h"

namespace quent::test {

struct Plate {
  static constexpr real_T kM = 1900.0, kDGAt1 = 5200.0, kDGPerLn = 650.0;
  struct Spike { int32_T curve, point; real_T size; };

  int32_T points = 0;
  std::vector<real_T> den, sig, conc;

  static real_T dG(real_T c) { return kDGAt1 + kDGPerLn * std::log(c); }

  Plate(const std::vector<real_T>& concs, int replicates, int32_T n, real_T ripple = 0.05,
        const std::vector<Spike>& spikes = {}) : points(n) {
    for (const real_T c : concs)
      for (int r = 0; r < replicates; ++r) {
        const int32_T curve = static_cast<int32_T>(conc.size());
        const real_T p[7] = {dG(c), dG(c) / kM, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
        const std::vector<real_T> x = grid(n, 0.0, 8.0);
        std::vector<real_T> y = evaluated(curveModel1, p, x);
        for (int32_T i = 0; i < n; ++i) y[i] += ripple * std::sin(1.7 * i + 2.9 * curve);
        for (const Spike& s : spikes)
          if (s.curve == curve) y[s.point] += s.size;
        den.insert(den.end(), x.begin(), x.end());
        sig.insert(sig.end(), y.begin(), y.end());
        conc.push_back(c);
      }
  }
  int32_T curves() const { return static_cast<int32_T>(conc.size()); }
};

// Outputs of one call, read back from the records.
struct FitResult {
  std::vector<real_T> rows;
  std::vector<int32_T> mask;
  const real_T* row(int32_T c) const { return rows.data() + 24 * c; }
  // Bit for bit, so that a NaN equals itself and -0.0 differs from 0.0.
  bool operator==(const FitResult& o) const {
    return mask == o.mask && rows.size() == o.rows.size() &&
           std::memcmp(rows.data(), o.rows.data(), rows.size() * sizeof(real_T)) == 0;
  }
};

inline FitResult resultOf(const OwnedArray<RealArray>& rows, const OwnedArray<Int32Array>& mask) {
  return {std::vector<real_T>(rows->data, rows->data + rows.count()),
          std::vector<int32_T>(mask->data, mask->data + mask.count())};
}

inline FitResult primaryFitOf(const Plate& p, int32_T stateCount = 2,
                              real_T temperatureC = 25.0) {
  const int32_T denSize[2] = {1, static_cast<int32_T>(p.den.size())};
  const int32_T concSize[2] = {1, p.curves()};
  OwnedArray<RealArray> rows;
  OwnedArray<Int32Array> mask;
  QUENT_dGtrend_primaryFit(p.points, p.den.data(), denSize, p.sig.data(), denSize,
                           p.conc.data(), concSize, stateCount, temperatureC, rows.get(),
                           mask.get());
  return resultOf(rows, mask);
}

}  // namespace quent::test
