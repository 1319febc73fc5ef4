// Where the start attempts of every family begin: quantities read off the
// ends of a curve and the three ways of forming start baselines from them.
// A family adds its own energies and midpoints.
#pragma once

#include "quent_dgtrend.h"
#include "strategies/segment_baselines.h"

namespace quent {

// three-point: a line through the first three and the last three points;
// flat: the end signals with a token slope; flat, exchanged: the same native
// pair, and the unfolded pair with its entries the other way round (0.001 as
// intercept, the last signal as slope), from which the three-transition fits
// with given pairs were tuned to start; segment: segmentBaselines.
// split: the curve cut in two, one transition fitted to each part, and the
// parts joined into a start of the whole (the family's own procedure).
enum class StartForm : unsigned char { ThreePoint, Flat, FlatExchanged, Segment, Split };

// Quantities of the n points, x ascending (n >= 3).
inline real_T midX(const real_T* x, int32_T n) { return x[0] + (x[n - 1] - x[0]) / 2.0; }
inline real_T firstMean(const real_T* y) { return (y[0] + y[1] + y[2]) / 3.0; }
inline real_T firstSlope(const real_T* x, const real_T* y) { return (y[2] - y[0]) / (x[2] - x[0]); }
inline real_T lastSlope(const real_T* x, const real_T* y, int32_T n) {
  return (y[n - 1] - y[n - 3]) / (x[n - 1] - x[n - 3]);
}
// The unfolded line is carried back to x = 0 by its slope, while the native
// intercept is the plain mean of the first signals: the fits were tuned so.
inline real_T lastIntercept(const real_T* x, const real_T* y, int32_T n) {
  return (y[n - 3] + y[n - 2] + y[n - 1]) / 3.0 - lastSlope(x, y, n) * x[n - 1];
}

// Start baselines of a form, taken from the curve alone.
BaselinePairs startBaselines(StartForm form, const real_T* x, const real_T* y, int32_T n);

// A baseline pair (intercept, slope) handed to an attempt counts as given
// unless its two entries add up to exactly 0.0; a pair never set is (0, 0).
inline bool pairGiven(const real_T pair[2]) { return pair[0] + pair[1] != 0.0; }

// Flat starts with given pairs must not begin on a zero baseline entry: a
// given slope of 0.0 becomes the token slope, then any entry still 0.0 takes
// its flat value.
void guardFlatStart(BaselinePairs& b, bool nativeGiven, bool unfoldedGiven, const real_T* y,
                    int32_T n);

}  // namespace quent
