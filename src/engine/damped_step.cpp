#include "engine/damped_step.h"

#include <cmath>
#include <cstring>

#include "numerics/bit_tests.h"

namespace quent {

void lmStep(const real_T* J, int32_T rows, int32_T cols, const real_T* r, real_T damping,
            real_T* step, const StepWork& work) {
  const long long height = static_cast<long long>(rows) + cols;
  real_T* jplus = work.jplus;

  // Marquardt scale of each column, under J in the damped matrix.  A column
  // of zeros gets a scale of exactly 0.0 and stays a zero column.
  //
  // Guard: a NaN in the damped matrix, seen through its column sums (so an
  // infinity passes unless the column also holds the opposite one, perhaps
  // reached by overflow), or in the right-hand side gives no step at all.
  // A column of finite entries cannot sum to NaN, and a column of zeros
  // sums to zero: only columns holding an infinity or a NaN are summed.
  int32_T nanCount = 0;
  for (int32_T j = 0; j < cols; ++j) {
    const real_T* column = J + static_cast<long long>(rows) * j;
    real_T* target = jplus + height * j;
    if (rows > 0) std::memcpy(target, column, sizeof(real_T) * static_cast<std::size_t>(rows));
    std::memset(target + rows, 0, sizeof(real_T) * static_cast<std::size_t>(cols));
    if (allZero(column, rows)) continue;  // scale sqrt(+0 * damping) = +0
    real_T sumOfSquares = 0.0;
    for (int32_T i = 0; i < rows; ++i) sumOfSquares += column[i] * column[i];
    target[rows + j] = std::sqrt(sumOfSquares * damping);
    if (allFinite(target, height)) continue;
    real_T sum = 0.0;
    for (long long i = 0; i < height; ++i) sum += target[i];
    if (std::isnan(sum)) ++nanCount;
  }
  for (int32_T i = 0; i < rows; ++i) {
    work.rplus[i] = r[i];
    if (std::isnan(r[i])) ++nanCount;
  }
  for (int32_T i = 0; i < cols; ++i) work.rplus[rows + i] = 0.0;
  if (nanCount >= 1) {
    for (int32_T j = 0; j < cols; ++j) step[j] = 0.0;
    return;
  }
  leftDivide(jplus, static_cast<int32_T>(height), cols, work.rplus, step, work.divide);
}

}  // namespace quent
