// The sorts behind every ranking in the library: attempt scores, sample
// concentrations and the order statistics of a curve.  One rule holds for all
// of them: NaN counts as larger than every number, and every sort is stable
// (equal values, and NaNs among themselves, keep their input order).  Orders
// are 1-based input positions: order[k] is where the value now at k came from.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

void sortAscending(real_T* v, int32_T n);
void sortAscendingWithOrder(real_T* v, int32_T n, int32_T* order);
void sortDescendingWithOrder(real_T* v, int32_T n, int32_T* order);

void sortTwoDescending(real_T v[2], int32_T order[2]);
void sortDescending4(real_T* v, int32_T* order);
void sortDescending8(real_T* v, int32_T* order);
void sortDescending16(real_T* v, int32_T* order);
void sortTwoAscending(real_T v[2]);
void sortThreeAscending(real_T v[3]);

}  // namespace quent
