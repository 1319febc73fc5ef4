// Refit of one curve from the parameters of a reference row, with the
// baseline slopes and RT held: what keeps a per-curve fit cheap and close to
// the reference.  Written once over the transition count T.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Fits the T-transition model to the n points x, y, starting from the
// 24-column row, into params (3T + 4 entries).  amplitudesHeld also holds the
// amplitude shares (two and three transitions; one transition has none).  The
// result comes back in canonical order, or all -1 when it is implausible or
// its R squared is below 0.95.  Any n up to a whole curve (2304).
template <int T>
void refitFromRow(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                  bool amplitudesHeld, real_T* params);

// The same fit on the points of x, y (n entries) that mask keeps (entry 1).
// Fewer than 8 T kept points, or more than a curve holds: all -1, no fit.
template <int T>
void refitMasked(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                 const int32_T* mask, bool amplitudesHeld, real_T* params);

}  // namespace quent
