// The judgement is made on the points the mask keeps, but the new mask is
// built over the whole curve: a point the mask had dropped comes back unless
// it shares its denaturant value with a point that fails here.
#include "primary/revise_mask.h"

#include <cmath>

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

// Population standard deviation: the root of the mean squared deviation.
real_T populationStdDev(const real_T* v, int32_T n) {
  real_T sum = 0.0;
  for (int32_T i = 0; i < n; ++i) sum += v[i];
  const real_T mean = sum / static_cast<real_T>(n);
  real_T squares = 0.0;
  for (int32_T i = 0; i < n; ++i) {
    const real_T d = v[i] - mean;
    squares += d * d;
  }
  return std::sqrt(squares / static_cast<real_T>(n));
}

}  // namespace

void reviseMask(const real_T* x, const real_T* y, int32_T n, const real_T* row, int32_T* mask) {
  if (n > kMaxFitPoints) n = kMaxFitPoints;
  if (row[kColRT] == -1.0) return;

  real_T xs[kMaxFitPoints], ys[kMaxFitPoints], fitted[kMaxFitPoints];
  const int32_T m = gatherKept(x, y, mask, n, xs, ys);

  const real_T limit = 0.15 * populationStdDev(ys, m);
  kRowModels[transitionsOfRow(row) - 1](row, xs, m, fitted);
  bool keep[kMaxFitPoints];
  for (int32_T j = 0; j < m; ++j) keep[j] = !(std::fabs(fitted[j] - ys[j]) > limit);

  int32_T revised[kMaxFitPoints];
  if (m == n) {
    for (int32_T i = 0; i < n; ++i) revised[i] = keep[i] ? 1 : 0;
  } else {
    for (int32_T i = 0; i < n; ++i) {
      revised[i] = 1;
      for (int32_T j = 0; j < m; ++j)
        if (x[i] == xs[j] && !keep[j]) revised[i] = 0;
    }
  }

  int32_T zeros = 0;
  for (int32_T i = 0; i < n; ++i) zeros += revised[i] == 0 ? 1 : 0;
  if (100.0 * static_cast<real_T>(zeros) / static_cast<real_T>(n) > 25.0) return;
  for (int32_T i = 0; i < n; ++i) mask[i] = revised[i];
}

}  // namespace quent
