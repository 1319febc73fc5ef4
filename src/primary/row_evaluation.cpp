// The parameter vector is rebuilt from the row exactly as the statistics of
// a fit rebuild it, so the curve evaluated at the kept points reproduces
// the R squared in column 14 bit for bit.
#include "primary/row_evaluation.h"

#include <algorithm>
#include <limits>

#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "strategies/families.h"

namespace quent {
namespace {

template <int T>
void evaluate(const real_T* row, const real_T* x, int32_T n, real_T* signal,
              real_T* fraction) {
  real_T params[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, 1, params);
  if (signal != nullptr) curveModel<T>(params, x, n, signal);
  if (fraction == nullptr) return;
  // The fraction model takes at most the points of one fit at a time.
  for (long long first = 0; first < n; first += kMaxFitPoints)
    unfoldedFraction<T>(params, x + first, 1,
                        static_cast<int32_T>(std::min<long long>(n - first, kMaxFitPoints)),
                        fraction + first);
}

}  // namespace

void evaluateRow(const real_T* row, int32_T stateCount, const real_T* x, int32_T n,
                 real_T* signal, real_T* fraction) {
  if (x == nullptr || n < 1) return;
  if (row == nullptr || !(row[kColRT] > 0.0)) {
    const real_T nan = std::numeric_limits<real_T>::quiet_NaN();
    if (signal != nullptr) std::fill_n(signal, n, nan);
    if (fraction != nullptr) std::fill_n(fraction, n, nan);
    return;
  }
  withFamily(stateCount, [&]<class F>() { evaluate<F::T>(row, x, n, signal, fraction); });
}

}  // namespace quent
