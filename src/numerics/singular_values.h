// Singular values without singular vectors, and the matrix 2-norm the engine
// measures its free block with on every pass (stopping test and the
// difference increment of a zero parameter).
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Singular values of the column-major m-by-n matrix a (left unchanged), in
// descending order; writes and returns min(m, n) values (0 when either
// dimension is below 1).
int32_T singularValues(const real_T* a, int32_T m, int32_T n, real_T* s);

// Largest singular value; the 2-norm for a vector (NaN if it holds one) and
// 0.0 for an empty array or a matrix that is all zero or holds a NaN, so that
// a block gone NaN reads as a zero step.
real_T matrixNorm(const real_T* a, int32_T m, int32_T n);

}  // namespace quent
