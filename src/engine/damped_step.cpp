#include "engine/damped_step.h"

#include <cmath>

namespace quent {

void lmStep(const real_T* J, int32_T rows, int32_T cols, const real_T* r, real_T damping,
            real_T* step, const StepWork& work) {
  const long long height = static_cast<long long>(rows) + cols;
  real_T* jplus = work.jplus;

  // Marquardt scale of each column, under J in the damped matrix.  A column
  // of zeros gets a scale of exactly 0.0 and stays a zero column.
  for (int32_T j = 0; j < cols; ++j) {
    const real_T* column = J + static_cast<long long>(rows) * j;
    real_T* target = jplus + height * j;
    real_T sumOfSquares = 0.0;
    for (int32_T i = 0; i < rows; ++i) {
      sumOfSquares += column[i] * column[i];
      target[i] = column[i];
    }
    for (int32_T i = 0; i < cols; ++i) target[rows + i] = 0.0;
    target[rows + j] = std::sqrt(sumOfSquares * damping);
  }
  for (int32_T i = 0; i < rows; ++i) work.rplus[i] = r[i];
  for (int32_T i = 0; i < cols; ++i) work.rplus[rows + i] = 0.0;

  // Guard: a NaN in the matrix (seen through its column sums, so an infinity
  // passes unless its column also holds the opposite one) or in the
  // right-hand side gives no step at all.
  int32_T nanCount = 0;
  for (int32_T j = 0; j < cols; ++j) {
    const real_T* column = jplus + height * j;
    real_T sum = 0.0;
    for (long long i = 0; i < height; ++i) sum += column[i];
    if (std::isnan(sum)) ++nanCount;
  }
  for (long long i = 0; i < height; ++i)
    if (std::isnan(work.rplus[i])) ++nanCount;
  if (nanCount >= 1) {
    for (int32_T j = 0; j < cols; ++j) step[j] = 0.0;
    return;
  }
  leftDivide(jplus, static_cast<int32_T>(height), cols, work.rplus, step, work.divide);
}

}  // namespace quent
