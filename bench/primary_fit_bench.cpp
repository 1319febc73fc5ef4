// Cost of a whole primary fit through the export: a plate of 96 curves (12
// concentrations, 8 replicates) of one transition and one of 48 curves (6
// concentrations) of two, 96 points per curve, and one of 24 curves (3
// concentrations) of three with 120 points; each with a small deterministic
// ripple and a spike in every fifth curve.  The "per_curve"
// counter is the time of one call divided by its curves.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"

namespace quent {
namespace {

// The plate's curves: transitions T, the free energies rising with ln(sample
// concentration) at m values of 1900 (one) or 2400 (two and three).
template <int T>
void plate(int32_T curves, int32_T n, std::vector<real_T>& den, std::vector<real_T>& sig,
           std::vector<real_T>& conc) {
  for (int32_T c = 0; c < curves; ++c) {
    const real_T sample = std::pow(2.0, c / 8 - 4);
    real_T p[TransitionLayout<T>::kParams];
    if constexpr (T == 1) {
      const real_T dG = 5200.0 + 650.0 * std::log(sample);
      const real_T one[7] = {dG, dG / 1900.0, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
      std::copy(one, one + 7, p);
    } else if constexpr (T == 2) {
      const real_T dG1 = 6000.0 + 300.0 * std::log(sample), dG2 = 13200.0 + 500.0 * std::log(sample);
      const real_T two[10] = {dG1, dG1 / 2400.0, dG2, dG2 / 2400.0, 0.4, 100.0, 0.0, 42.0, 0.0,
                              rtFromCelsius(25.0)};
      std::copy(two, two + 10, p);
    } else {
      const real_T dG1 = 4000.0 + 300.0 * std::log(sample), dG2 = 9600.0 + 400.0 * std::log(sample),
                   dG3 = 15000.0 + 500.0 * std::log(sample);
      const real_T three[13] = {dG1,  dG1 / 2400.0, dG2,  dG2 / 2400.0, dG3, dG3 / 2400.0, 0.3,
                                0.35, 100.0,        0.0,  42.0,         0.0, rtFromCelsius(25.0)};
      std::copy(three, three + 13, p);
    }
    std::vector<real_T> x(n), y(n);
    for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
    curveModel<T>(p, x.data(), n, y.data());
    for (int32_T i = 0; i < n; ++i) y[i] += 0.1 * std::sin(1.7 * i + 2.9 * c);
    if (c % 5 == 0) y[10 + c % 70] += 8.0;
    den.insert(den.end(), x.begin(), x.end());
    sig.insert(sig.end(), y.begin(), y.end());
    conc.push_back(sample);
  }
}

template <int T>
void primaryFitPlate(benchmark::State& state, int32_T curves, int32_T n = 96) {
  std::vector<real_T> den, sig, conc;
  plate<T>(curves, n, den, sig, conc);
  const int32_T pointsSize[2] = {1, curves * n}, concSize[2] = {1, curves};
  std::vector<real_T> rowBuffer(24 * curves);
  std::vector<int32_T> maskBuffer(curves * n);
  RealArray* rows = QUENT_emxCreateWrapper_real_T(rowBuffer.data(), 1, 24 * curves);
  Int32Array* mask = QUENT_emxCreateWrapper_int32_T(maskBuffer.data(), 1, curves * n);
  for (auto _ : state) {
    QUENT_dGtrend_primaryFit(n, den.data(), pointsSize, sig.data(), pointsSize, conc.data(),
                             concSize, T + 1, 25.0, rows, mask);
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

void PrimaryFit96CurvesOf96Points(benchmark::State& state) { primaryFitPlate<1>(state, 96); }
void PrimaryFit48TwoTransitionCurvesOf96Points(benchmark::State& state) {
  primaryFitPlate<2>(state, 48);
}
void PrimaryFit24ThreeTransitionCurvesOf120Points(benchmark::State& state) {
  primaryFitPlate<3>(state, 24, 120);
}
// A plate on which nothing fits: 96 straight lines of 384 points (the most a
// strategy takes), rising with the curve.  No group round fits, so the call
// falls back to fitting curve after curve before it gives up.
void PrimaryFit96StraightLinesOf384Points(benchmark::State& state) {
  constexpr int32_T curves = 96, n = 384;
  std::vector<real_T> den, sig, conc;
  for (int32_T c = 0; c < curves; ++c) {
    for (int32_T i = 0; i < n; ++i) {
      den.push_back(8.0 * i / (n - 1));
      sig.push_back(50.0 + 0.5 * c + 2.0 * den.back() + 0.1 * std::sin(1.7 * i + 2.9 * c));
    }
    conc.push_back(std::pow(2.0, c / 8 - 4));
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
  std::free(rows->size), std::free(rows), std::free(mask->size), std::free(mask);
}

BENCHMARK(PrimaryFit96CurvesOf96Points)->Unit(benchmark::kMillisecond);
BENCHMARK(PrimaryFit96StraightLinesOf384Points)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(PrimaryFit48TwoTransitionCurvesOf96Points)->Unit(benchmark::kMillisecond);
BENCHMARK(PrimaryFit24ThreeTransitionCurvesOf120Points)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quent
