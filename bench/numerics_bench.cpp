// Timings of the dense numerics in the shapes the engine calls them with: the
// damped system of a fit step (residual rows over a diagonal block, the
// unread parameters of the free block giving zero columns and zero rows) and
// the norm of a 12-by-12 free block.  The literal factorisation is timed
// beside the library's for comparison.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "../tests/numerics/literal_qr.h"
#include "numerics/pivoted_qr.h"
#include "numerics/singular_values.h"

namespace {

// (m + f*f)-by-(f*f); the read parameters sit on the block's diagonal.
std::vector<double> dampedSystem(int m, int f) {
  const int n = f * f, rows = m + n;
  std::vector<double> a(static_cast<size_t>(rows) * n, 0.0);
  for (int p = 0; p < f; ++p) {
    const int j = p * (f + 1);
    double sum = 0.0;
    for (int i = 0; i < m; ++i) {
      const double x = std::sin(0.37 * i * (p + 1)) / (1.0 + 0.01 * i * p);
      a[i + static_cast<size_t>(j) * rows] = x;
      sum += x * x;
    }
    a[m + j + static_cast<size_t>(j) * rows] = std::sqrt(1e-3 * sum);
  }
  return a;
}

template <bool kLiteral>
void BM_PivotedQrDamped(benchmark::State& state) {
  const int m = static_cast<int>(state.range(0)), f = static_cast<int>(state.range(1));
  const int n = f * f, rows = m + n;
  const std::vector<double> a = dampedSystem(m, f);
  std::vector<double> work(a.size()), tau(n);
  std::vector<int32_T> jpvt(n);
  for (auto _ : state) {
    work = a;  // the engine factors a fresh copy on every step as well
    if (kLiteral)
      quent::test::literalPivotedQr(work.data(), rows, n, tau.data(), jpvt.data());
    else
      quent::pivotedQr(work.data(), rows, n, tau.data(), jpvt.data());
    benchmark::DoNotOptimize(work.data());
  }
}
BENCHMARK(BM_PivotedQrDamped<false>)->ArgsProduct({{96, 384}, {6, 12}})->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PivotedQrDamped<true>)->ArgsProduct({{96, 384}, {6, 12}})->Unit(benchmark::kMicrosecond);

void BM_CopyOnly(benchmark::State& state) {
  const int m = static_cast<int>(state.range(0)), f = static_cast<int>(state.range(1));
  const std::vector<double> a = dampedSystem(m, f);
  std::vector<double> work(a.size());
  for (auto _ : state) {
    work = a;
    benchmark::DoNotOptimize(work.data());
  }
}
BENCHMARK(BM_CopyOnly)->ArgsProduct({{96, 384}, {6, 12}})->Unit(benchmark::kMicrosecond);

void BM_MatrixNormFreeBlock(benchmark::State& state) {
  std::vector<double> block(144, 1.0);
  for (int i = 0; i < 12; ++i) block[i] = 0.3 * i - 1.7;
  for (auto _ : state) benchmark::DoNotOptimize(quent::matrixNorm(block.data(), 12, 12));
}
BENCHMARK(BM_MatrixNormFreeBlock);

}  // namespace
