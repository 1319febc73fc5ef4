// Cost of fitting one curve with the strategy of each family: all start
// attempts, the held tables and the ladders, on a 96-point noisy curve (120
// points for three transitions).
#include <benchmark/benchmark.h>

#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"
#include "strategies/three_transition_family.h"
#include "strategies/two_transition_family.h"

namespace quent {
namespace {

void FitOneTransition96NoisyPoints(benchmark::State& state) {
  constexpr int32_T n = 96;
  std::vector<real_T> x(n), y(n);
  for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
  const real_T truth[7] = {5200.0, 3.6, 10.0, -0.05, 2.0, 0.02, rtFromCelsius(25.0)};
  curveModel1(truth, x.data(), n, y.data());
  // About 1% of the amplitude, deterministic.
  for (int32_T i = 0; i < n; ++i) y[i] += 0.08 * ((i * 7919) % 13 - 6) / 6.0;
  real_T row[24];
  for (auto _ : state) {
    strategy::fitWhole<OneTransitionFamily>(x.data(), n, y.data(), n, 25.0, row);
    benchmark::DoNotOptimize(row);
  }
  state.counters["code"] = row[13];
}
BENCHMARK(FitOneTransition96NoisyPoints)->Unit(benchmark::kMillisecond);

void FitTwoTransitions96NoisyPoints(benchmark::State& state) {
  constexpr int32_T n = 96;
  std::vector<real_T> x(n), y(n);
  for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
  const real_T truth[10] = {6000.0, 2.5, 13200.0, 5.5, 0.4, 10.0, -0.05, 2.0, 0.02,
                            rtFromCelsius(25.0)};
  curveModel2(truth, x.data(), n, y.data());
  for (int32_T i = 0; i < n; ++i) y[i] += 0.08 * ((i * 7919) % 13 - 6) / 6.0;
  real_T row[24];
  for (auto _ : state) {
    strategy::fitWhole<TwoTransitionFamily>(x.data(), n, y.data(), n, 25.0, row);
    benchmark::DoNotOptimize(row);
  }
  state.counters["code"] = row[13];
}
BENCHMARK(FitTwoTransitions96NoisyPoints)->Unit(benchmark::kMillisecond);

void FitThreeTransitions120NoisyPoints(benchmark::State& state) {
  constexpr int32_T n = 120;
  std::vector<real_T> x(n), y(n);
  for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
  const real_T truth[13] = {3600.0, 1.5, 8400.0, 3.5, 13200.0, 5.5, 0.3, 0.35, 10.0, -0.05, 2.0,
                            0.02,   rtFromCelsius(25.0)};
  curveModel3(truth, x.data(), n, y.data());
  for (int32_T i = 0; i < n; ++i) y[i] += 0.08 * ((i * 7919) % 13 - 6) / 6.0;
  real_T row[24];
  for (auto _ : state) {
    strategy::fitWhole<ThreeTransitionFamily>(x.data(), n, y.data(), n, 25.0, row);
    benchmark::DoNotOptimize(row);
  }
  state.counters["code"] = row[13];
}
BENCHMARK(FitThreeTransitions120NoisyPoints)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quent
