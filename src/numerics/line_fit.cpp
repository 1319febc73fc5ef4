// Straight-line fits through the pivoted QR of the n-by-2 matrix [x 1]: the
// ordinates get the reflectors and the two coefficients come from back
// substitution in pivot order.
#include "numerics/line_fit.h"

#include <cstdlib>

#include "frame/allocation.h"
#include "frame/limits.h"
#include "numerics/pivoted_qr.h"

namespace quent {
namespace {

// qr holds 2n entries and b n entries of working space.
LineCoefficients fitInto(const real_T* x, const real_T* y, int32_T n, real_T* qr, real_T* b) {
  for (int32_T i = 0; i < n; ++i) {
    qr[i] = x[i];
    qr[n + i] = 1.0;
    b[i] = y[i];
  }
  real_T tau[2];
  int32_T jpvt[2];
  pivotedQr(qr, n, 2, tau, jpvt);
  applyQrReflectors(qr, n, 2, tau, b);
  // One point reaches one coefficient; the other stays 0.0.
  const int32_T reached = n < 2 ? n : 2;
  real_T coef[2] = {0.0, 0.0};
  for (int32_T i = 0; i < reached; ++i) coef[jpvt[i] - 1] = b[i];
  for (int32_T j = reached - 1; j >= 0; --j) {
    real_T& cj = coef[jpvt[j] - 1];
    cj = cj / qr[j + j * n];
    for (int32_T i = 0; i < j; ++i) coef[jpvt[i] - 1] = coef[jpvt[i] - 1] - cj * qr[i + j * n];
  }
  return {coef[0], coef[1]};
}

}  // namespace

LineCoefficients lineFit(const real_T* x, const real_T* y, int32_T n) {
  if (n < 1) return {0.0, 0.0};
  // Baseline stretches and concentration trends are short; a longer line
  // takes its working space from the heap.
  if (n <= kMaxFitPoints) {
    real_T work[3 * kMaxFitPoints];
    return fitInto(x, y, n, work, work + 2 * n);
  }
  real_T* work = static_cast<real_T*>(allocate(3 * static_cast<std::size_t>(n) * sizeof(real_T)));
  if (work == nullptr) return {__builtin_nan(""), __builtin_nan("")};
  const LineCoefficients c = fitInto(x, y, n, work, work + 2 * n);
  std::free(work);
  return c;
}

LineCoefficients lineFit3(const real_T* x, const real_T* y) {
  real_T qr[6], b[3];
  return fitInto(x, y, 3, qr, b);
}

}  // namespace quent
