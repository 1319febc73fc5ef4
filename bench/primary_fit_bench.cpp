// Cost of a whole primary fit through the export: a plate of 96 curves (12
// concentrations, 8 replicates), one transition, 96 points per curve, with a
// small deterministic ripple and a spike in every fifth curve.  The
// "per_curve" counter is the time of one call divided by its 96 curves.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"

namespace quent {
namespace {

void PrimaryFit96CurvesOf96Points(benchmark::State& state) {
  constexpr int32_T curves = 96, n = 96;
  std::vector<real_T> den, sig, conc;
  for (int32_T c = 0; c < curves; ++c) {
    const real_T sample = std::pow(2.0, c / 8 - 4);
    const real_T dG = 5200.0 + 650.0 * std::log(sample);
    const real_T p[7] = {dG, dG / 1900.0, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
    std::vector<real_T> x(n), y(n);
    for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
    curveModel<1>(p, x.data(), n, y.data());
    for (int32_T i = 0; i < n; ++i) y[i] += 0.1 * std::sin(1.7 * i + 2.9 * c);
    if (c % 5 == 0) y[10 + c % 70] += 8.0;
    den.insert(den.end(), x.begin(), x.end());
    sig.insert(sig.end(), y.begin(), y.end());
    conc.push_back(sample);
  }
  const int32_T pointsSize[2] = {1, curves * n}, concSize[2] = {1, curves};
  std::vector<real_T> rowBuffer(24 * curves);
  std::vector<int32_T> maskBuffer(curves * n);
  RealArray* rows = QUENT_emxCreateWrapper_real_T(rowBuffer.data(), 1, 24 * curves);
  Int32Array* mask = QUENT_emxCreateWrapper_int32_T(maskBuffer.data(), 1, curves * n);
  for (auto _ : state) {
    QUENT_dGtrend_primaryFit(n, den.data(), pointsSize, sig.data(), pointsSize, conc.data(),
                             concSize, 2, 25.0, rows, mask);
    benchmark::DoNotOptimize(rows->data);
  }
  int32_T accepted = 0;
  for (int32_T c = 0; c < curves; ++c) accepted += rows->data[24 * c + 12] > 0.0 ? 1 : 0;
  state.counters["accepted"] = accepted;
  state.counters["per_curve"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * curves,
      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  // The records stay with the host's buffers, which are large enough.
  std::free(rows->size), std::free(rows), std::free(mask->size), std::free(mask);
}
BENCHMARK(PrimaryFit96CurvesOf96Points)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quent
