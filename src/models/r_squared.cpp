// R squared of a fit against the measured signal.  Sums run left to right in
// point order; the candidates of a strategy are compared bit for bit.
#include "models/r_squared.h"

#include "frame/limits.h"
#include "frame/thread_scratch.h"
#include "models/curve_models.h"

namespace quent {
namespace {

// Model values of the fit being scored; one curve at most.
struct Fitted {
  real_T values[kMaxCurvePoints];
};

}  // namespace

real_T rSquared(int32_T xCount, const real_T* y, int32_T yCount, const real_T* fitted) {
  real_T sum = 0.0;
  for (int32_T i = 0; i < yCount; ++i) sum += y[i];
  const real_T mean = sum / static_cast<real_T>(yCount);
  if (xCount < 1 || xCount > yCount) return kFailed;
  if (fitted[0] == -1.0) return kFailed;
  real_T sse = 0.0, sst = 0.0;
  for (int32_T i = 0; i < xCount; ++i) {
    const real_T residual = y[i] - fitted[i];
    const real_T spread = y[i] - mean;
    sse += residual * residual;
    sst += spread * spread;
  }
  const real_T r = (sst != 0.0 && sse == sse && sst == sst) ? 1.0 - sse / sst : kFailed;
  return r < 0.0 ? kFailed : r;
}

template <int T>
real_T rSquaredOfFit(const real_T* x, const real_T* y, int32_T n, const real_T* params) {
  Fitted* fitted = threadScratch<Fitted>();
  if (n > kMaxCurvePoints || fitted == nullptr) return kFailed;
  curveModel<T>(params, x, n, fitted->values);
  return rSquared(n, y, n, fitted->values);
}

template real_T rSquaredOfFit<1>(const real_T*, const real_T*, int32_T, const real_T*);
template real_T rSquaredOfFit<2>(const real_T*, const real_T*, int32_T, const real_T*);
template real_T rSquaredOfFit<3>(const real_T*, const real_T*, int32_T, const real_T*);

}  // namespace quent
