// Solution of A X = B for the damped Levenberg-Marquardt system: least squares
// through Householder QR with column pivoting when A is rectangular, LU with
// partial pivoting when it is square.  One right-hand-side column.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Working storage of leftDivide for an m-by-n system: tau and jpvt of n
// entries each, and m entries for the transformed right-hand side.
struct LeftDivideWork {
  real_T* tau;
  int32_T* jpvt;
  real_T* rhs;
};

// X (n entries) := A \ B.  A (m-by-n, column-major) is overwritten by its
// factors; B (m entries) is read only.  An empty A gives zeros.
void leftDivide(real_T* a, int32_T m, int32_T n, const real_T* b, real_T* x,
                const LeftDivideWork& work);

// X (n entries) := A \ B for a square A (n-by-n, overwritten), with the pivot
// rows in `pivots` (n entries).  No test for singularity: a zero pivot is
// passed over and yields infinities.
void luSolve(real_T* a, int32_T n, const real_T* b, real_T* x, int32_T* pivots);

}  // namespace quent
