// The rectangular path decides a numeric rank from the diagonal of R and
// returns the basic solution: unknowns outside the rank stay exactly 0.0.
// That is what keeps the never-read entries of the engine's free block at
// their start value, since their columns are zero and pivot last.
#include "engine/left_divide.h"

#include <cmath>

#include "frame/limits.h"
#include "numerics/pivoted_qr.h"

namespace quent {
namespace {


}  // namespace

void luSolve(real_T* a, int32_T n, const real_T* b, real_T* x, int32_T* pivots) {
  auto A = [&](int32_T i, int32_T j) -> real_T& { return a[i + static_cast<long long>(n) * j]; };
  for (int32_T j = 0; j < n; ++j) pivots[j] = j;
  for (int32_T j = 0; j < n; ++j) {
    int32_T p = j;
    real_T largest = std::fabs(A(j, j));
    for (int32_T i = j + 1; i < n; ++i) {
      const real_T v = std::fabs(A(i, j));
      if (v > largest) {
        largest = v;
        p = i;
      }
    }
    if (A(p, j) != 0.0) {
      if (p != j) {
        pivots[j] = p;
        for (int32_T k = 0; k < n; ++k) {
          const real_T t = A(j, k);
          A(j, k) = A(p, k);
          A(p, k) = t;
        }
      }
      for (int32_T i = j + 1; i < n; ++i) A(i, j) = A(i, j) / A(j, j);
    }
    for (int32_T k = j + 1; k < n; ++k) {
      const real_T multiplier = A(j, k);
      if (multiplier == 0.0) continue;
      for (int32_T i = j + 1; i < n; ++i) A(i, k) += A(i, j) * -multiplier;
    }
  }
  for (int32_T i = 0; i < n; ++i) x[i] = b[i];
  for (int32_T i = 0; i < n; ++i) {
    if (pivots[i] != i) {
      const real_T t = x[i];
      x[i] = x[pivots[i]];
      x[pivots[i]] = t;
    }
  }
  for (int32_T k = 0; k < n; ++k) {
    if (x[k] == 0.0) continue;
    for (int32_T i = k + 1; i < n; ++i) x[i] -= x[k] * A(i, k);
  }
  for (int32_T k = n - 1; k >= 0; --k) {
    if (x[k] == 0.0) continue;
    x[k] = x[k] / A(k, k);
    for (int32_T i = 0; i < k; ++i) x[i] -= x[k] * A(i, k);
  }
}

void leftDivide(real_T* a, int32_T m, int32_T n, const real_T* b, real_T* x,
                const LeftDivideWork& work) {
  if (m < 1 || n < 1) {
    for (int32_T j = 0; j < n; ++j) x[j] = 0.0;
    return;
  }
  if (m == n) {
    luSolve(a, n, b, x, work.jpvt);
    return;
  }
  auto A = [&](int32_T i, int32_T j) -> real_T& { return a[i + static_cast<long long>(m) * j]; };
  pivotedQr(a, m, n, work.tau, work.jpvt);

  // Numeric rank: diagonal entries of R from the first, up to the first one
  // below the tolerance (an entry equal to it still counts).
  const int32_T diagonal = m < n ? m : n;
  const real_T tol = static_cast<real_T>(m > n ? m : n) * std::fabs(A(0, 0)) * kMachineEpsilon;
  int32_T rank = 0;
  while (rank < diagonal && !(std::fabs(A(rank, rank)) < tol)) ++rank;

  for (int32_T i = 0; i < m; ++i) work.rhs[i] = b[i];
  applyQrReflectors(a, m, n, work.tau, work.rhs);

  for (int32_T j = 0; j < n; ++j) x[j] = 0.0;
  for (int32_T i = 0; i < rank; ++i) x[work.jpvt[i] - 1] = work.rhs[i];
  for (int32_T j = rank - 1; j >= 0; --j) {
    const int32_T pj = work.jpvt[j] - 1;
    x[pj] = x[pj] / A(j, j);
    for (int32_T i = 0; i < j; ++i) x[work.jpvt[i] - 1] -= x[pj] * A(i, j);
  }
}

}  // namespace quent
