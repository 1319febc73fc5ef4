#include "analysis/linear_grid.h"

#include <cmath>

#include "frame/array.h"

namespace quent {

bool linearGrid(real_T low, real_T high, int32_T n, RealArray* grid) {
  if (!arrayResizeRow(grid, n)) return false;
  real_T* y = grid->data;
  y[n - 1] = high;
  if (n >= 2) y[0] = low;
  if (n >= 3) {
    const real_T last = static_cast<real_T>(n - 1);
    // Ends of opposite sign and a magnitude above half the largest double:
    // (high - low) could overflow, so each end is divided first.
    const real_T huge = 8.988465674311579e307;
    if ((low < 0.0) != (high < 0.0) && (std::fabs(low) > huge || std::fabs(high) > huge)) {
      const real_T a = low / last;
      const real_T b = high / last;
      for (int32_T k = 1; k <= n - 2; ++k) {
        const real_T kk = static_cast<real_T>(k);
        y[k] = low + b * kk - a * kk;
      }
    } else {
      const real_T step = (high - low) / last;
      for (int32_T k = 1; k <= n - 2; ++k) y[k] = low + static_cast<real_T>(k) * step;
    }
  }
  return true;
}

}  // namespace quent
