// The quantile is taken at n degrees of freedom while the spread divides by
// n - 2; that pairing is what the error columns of every row have always
// carried, and it is kept.
#include "models/fraction_error.h"

#include <cmath>

#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "models/student_t95.h"

namespace quent {
namespace {

// Column that tells a failed row, by transition count.  A fitted
// two-transition row is recognised by its RT; any failed row holds -1 in both.
//
//   T | column tested
//   1 |  5 (Cm)
//   2 | 12 (RT)
//   3 |  5 (Cm1)
template <int T>
constexpr int kFailedRowColumn = T == 2 ? kColRT : kColMidpoint[0];

}  // namespace

template <int T>
real_T fractionError(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                     const real_T* row, int32_T rowStride) {
  const auto column = [row, rowStride](int c) {
    return row[static_cast<long long>(rowStride) * c];
  };
  if (column(kFailedRowColumn<T>) < 0.0) return kFailed;
  if (xCount != yCount) return kFailed;
  const int32_T n = xCount < kMaxFitPoints ? xCount : kMaxFitPoints;
  if (n < 1) return kFailed;

  real_T params[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, rowStride, params);
  real_T fraction[kMaxFitPoints];
  unfoldedFraction<T>(params, x, 1, n, fraction);
  if (fraction[0] <= -1.0) return kFailed;

  const real_T a = column(kColNativeIntercept), b = column(kColNativeSlope);
  const real_T c = column(kColUnfoldedIntercept), d = column(kColUnfoldedSlope);
  real_T sse = 0.0;
  for (int32_T i = 0; i < n; ++i) {
    const real_T native = x[i] * b + a;
    const real_T unfolded = x[i] * d + c;
    const real_T observed = (y[i] - native) / (unfolded - native);
    const real_T residual = observed - fraction[i];
    sse += residual * residual;
  }
  return studentT95[n - 1] * std::sqrt(sse / static_cast<real_T>(n - 2));
}

template real_T fractionError<1>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);
template real_T fractionError<2>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);
template real_T fractionError<3>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);

}  // namespace quent
