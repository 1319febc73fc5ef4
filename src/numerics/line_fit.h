// Least-squares straight lines through curve points, the tool the fit
// strategies use to estimate baselines and slopes from a few points.  No
// rank test and no NaN handling: equal abscissas give non-finite or huge
// coefficients, a NaN point gives NaN coefficients.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

struct LineCoefficients {
  real_T slope;
  real_T intercept;
};

// Line through the n points (x[i], y[i]); n = 0 gives both 0.0, one point
// gives y / x as slope (or y as intercept when |x| < 1) and 0.0 for the other.
LineCoefficients lineFit(const real_T* x, const real_T* y, int32_T n);

// The same for exactly three points.
LineCoefficients lineFit3(const real_T* x, const real_T* y);

}  // namespace quent
