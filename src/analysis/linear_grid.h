// Evenly spaced grid between two values, the abscissa of every drawn curve.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Resizes grid to one row of n (n >= 1) and fills it from low to high.  The
// last element is high exactly, also for n = 1.  Returns false when no
// storage could be had (grid is then an empty row).
bool linearGrid(real_T low, real_T high, int32_T n, RealArray* grid);

}  // namespace quent
