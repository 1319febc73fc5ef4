// The judgement is made on the points the mask keeps, but the new mask is
// built over the whole curve: a point the mask had dropped comes back unless
// it shares its denaturant value with a point that fails here.
#include "primary/revise_mask.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"

namespace quent {
namespace {

template <int T>
void modelOfRow(const real_T* row, const real_T* x, int32_T n, real_T* fitted) {
  real_T params[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, 1, params);
  curveModel<T>(params, x, n, fitted);
}

// The model of a row is read from the row, whatever family fitted it.
using RowModel = void (*)(const real_T*, const real_T*, int32_T, real_T*);
constexpr RowModel kRowModels[3] = {modelOfRow<1>, modelOfRow<2>, modelOfRow<3>};

// Population standard deviation: the root of the mean squared deviation,
// both sums taken in order.
real_T populationStdDev(std::span<const real_T> v) {
  const real_T n = static_cast<real_T>(v.size());
  real_T sum = 0.0;
  for (const real_T value : v) sum += value;
  const real_T mean = sum / n;
  real_T squares = 0.0;
  for (const real_T value : v) {
    const real_T d = value - mean;
    squares += d * d;
  }
  return std::sqrt(squares / n);
}

}  // namespace

void reviseMask(const real_T* x, const real_T* y, int32_T n, const real_T* row, int32_T* mask) {
  if (n > kMaxFitPoints) n = kMaxFitPoints;
  if (row[kColRT] == -1.0) return;

  real_T xs[kMaxFitPoints], ys[kMaxFitPoints], fitted[kMaxFitPoints];
  const int32_T m = gatherKept(x, y, mask, n, xs, ys);

  const real_T limit = 0.15 * populationStdDev({ys, static_cast<std::size_t>(m)});
  kRowModels[transitionsOfRow(row) - 1](row, xs, m, fitted);
  int32_T keep[kMaxFitPoints];
  std::transform(fitted, fitted + m, ys, keep,
                 [limit](real_T f, real_T v) { return std::fabs(f - v) > limit ? 0 : 1; });

  // Every point whose denaturant value a failed kept point shares goes; with
  // all points kept that is each failed point itself.
  int32_T revised[kMaxFitPoints];
  if (m == n) {
    std::copy_n(keep, n, revised);
  } else {
    std::fill_n(revised, n, 1);
    for (int32_T j = 0; j < m; ++j) {
      if (keep[j] == 1) continue;
      for (int32_T i = 0; i < n; ++i)
        if (x[i] == xs[j]) revised[i] = 0;
    }
  }

  const auto zeros = std::count(revised, revised + n, 0);
  if (100.0 * static_cast<real_T>(zeros) / static_cast<real_T>(n) > 25.0) return;
  std::copy_n(revised, n, mask);
}

}  // namespace quent
