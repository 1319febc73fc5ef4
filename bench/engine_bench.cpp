// Cost of single held fits: the unit of work of every strategy.  Each
// benchmark reports the model evaluations one fit makes.
#include <benchmark/benchmark.h>

#include <vector>

#include "engine/levenberg_marquardt_impl.h"
#include "frame/limits.h"

namespace quent {
namespace {

long long evaluations = 0;

template <int T>
struct CountingModel {
  static constexpr int kParams = TransitionModel<T>::kParams;
  static void evaluate(const real_T* p, const real_T* x, int32_T n, real_T* y) {
    ++evaluations;
    TransitionModel<T>::evaluate(p, x, n, y);
  }
};

template <int T, std::size_t L>
void benchHeldFit(benchmark::State& state, const real_T (&truth)[TransitionLayout<T>::kParams],
                  const real_T (&start)[TransitionLayout<T>::kParams], const char (&mask)[L],
                  int32_T n) {
  std::vector<real_T> x(n), y(n);
  for (int32_T i = 0; i < n; ++i) x[i] = 8.0 * i / (n - 1);
  TransitionModel<T>::evaluate(truth, x.data(), n, y.data());
  // A little deterministic noise so the fit does not end in one pass.
  for (int32_T i = 0; i < n; ++i) y[i] += 0.01 * ((i * 7919) % 13 - 6) / 6.0;
  HeldMask<TransitionLayout<T>::kParams> held{};
  for (std::size_t i = 0; i + 1 < L; ++i) held.held[i] = mask[i] == '1';
  real_T result[TransitionLayout<T>::kParams];
  evaluations = 0;
  for (auto _ : state) {
    heldFit<CountingModel<T>>(x.data(), y.data(), n, start, held, result);
    benchmark::DoNotOptimize(result);
  }
  state.counters["evaluations/fit"] =
      static_cast<double>(evaluations) / static_cast<double>(state.iterations());
}

void OneTransition96Points(benchmark::State& state) {
  const real_T truth[7] = {5200.0, 3.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const real_T start[7] = {6000.0, 4.0, 9.5, -0.2, 2.3, 0.1, kFixedRT};
  benchHeldFit<1>(state, truth, start, "0000001", 96);
}
BENCHMARK(OneTransition96Points);

void TwoTransitionNineFree(benchmark::State& state) {
  const real_T truth[10] = {4000.0, 2.0, 9000.0, 5.0, 0.4, 10.0, -0.2, 2.0, 0.1, kFixedRT};
  const real_T start[10] = {4300.0, 2.2, 8600.0, 4.8, 0.5, 9.8, -0.15, 2.1, 0.12, kFixedRT};
  benchHeldFit<2>(state, truth, start, "0000000001", 96);
}
BENCHMARK(TwoTransitionNineFree);

void ThreeTransitionTwelveFree120Points(benchmark::State& state) {
  const real_T truth[13] = {4000.0, 1.5, 8000.0, 3.5, 12000.0, 6.0, 0.3,
                            0.4,    10.0, -0.2,  2.0,    0.1,  kFixedRT};
  const real_T start[13] = {4200.0, 1.6, 7800.0, 3.4, 12300.0, 6.1, 0.32,
                            0.38,   9.9,  -0.18, 2.05,   0.11, kFixedRT};
  benchHeldFit<3>(state, truth, start, "0000000000001", 120);
}
BENCHMARK(ThreeTransitionTwelveFree120Points);

}  // namespace
}  // namespace quent
