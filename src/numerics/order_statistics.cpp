// Sums run in index order, so a statistic of a curve does not depend on
// anything but its points.
#include "numerics/order_statistics.h"

#include <cmath>

namespace quent {

real_T sampleStdDev(const real_T* v, int32_T n) {
  if (n < 1) return 0.0;
  real_T sum = 0.0;
  for (int32_T i = 0; i < n; ++i) sum = sum + v[i];
  const real_T mean = sum / n;
  // One entry divides by 1 rather than 0, so it has no spread.
  const real_T divisor = n >= 2 ? n - 1 : n;
  real_T squares = 0.0;
  for (int32_T i = 0; i < n; ++i) {
    const real_T d = v[i] - mean;
    squares = squares + d * d;
  }
  return std::sqrt(squares / divisor);
}

real_T meanOfFive(const real_T* v) { return (v[0] + v[1] + v[2] + v[3] + v[4]) / 5.0; }

}  // namespace quent
