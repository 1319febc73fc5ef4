// Residual screening of a curve under a fitted row: points that the row's
// model misses by more than 0.15 of the signal's spread are dropped, unless
// that would cost more than a quarter of the curve.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Revises mask (n entries, 1 = kept) for the curve x, y under the 24-column
// row.  Only the first 384 points take part; entries beyond them are never
// written.  A failed row (column 12 exactly -1) leaves the mask alone.
void reviseMask(const real_T* x, const real_T* y, int32_T n, const real_T* row, int32_T* mask);

}  // namespace quent
