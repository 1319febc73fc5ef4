// G(c) = intercept + slope ln(c) on an even grid between the extreme sample
// concentrations; fd is the fraction unfolded at G, fragg the fraction
// associated relative to the lowest concentration, fraggfd their ratio.
#include "analysis/trend_fractions.h"

#include <cmath>

#include "analysis/linear_grid.h"
#include "frame/array.h"
#include "frame/limits.h"
#include "frame/vector_view.h"
#include "numerics/extremes.h"

namespace quent {
namespace {

// The common start: the grid, and G on it in `curve`.  Returns false when the
// call is answered by the one-element outputs (or storage ran out).
bool trendOnGrid(const real_T* conc, const int32_T* concSize, const real_T* coefficients,
                 int32_T pointCount, RealArray* concGrid, RealArray* curve) {
  if (concGrid == nullptr || curve == nullptr) return false;
  const VectorView<real_T> c = vectorView(conc, concSize);
  if (c.length < 2 || pointCount < 1 || pointCount > kMaxDrawPoints || coefficients == nullptr) {
    // Not a grid: one element of 1.0 in each output marks the refusal.
    arrayResizeRowFill(concGrid, 1, 1.0);
    arrayResizeRowFill(curve, 1, 1.0);
    return false;
  }
  const real_T low = nanSkippingMin(c, c.length).value;
  const real_T high = nanSkippingMax(c, c.length).value;
  if (!linearGrid(low, high, pointCount, concGrid) || !arrayResizeRow(curve, pointCount)) {
    arrayResizeRow(concGrid, 0);
    arrayResizeRow(curve, 0);
    return false;
  }
  const real_T slope = coefficients[0], intercept = coefficients[1];
  for (int32_T i = 0; i < pointCount; ++i)
    curve->data[i] = intercept + slope * std::log(concGrid->data[i]);
  return true;
}

// Fraction associated for a falling (slope below 0) or rising trend.  Kept as
// ((g - 1) + 1): the two roundings do not give back g when (G - G0) / RT is
// large.
real_T associatedFraction(real_T G, real_T G0, real_T RT, bool falling) {
  if (falling) {
    const real_T g = std::exp(-(G - G0) / RT);
    return (g - 1.0) / (((g - 1.0) + 1.0) + std::exp(G0 / RT));
  }
  const real_T g = std::exp((G - G0) / RT);
  return (g - 1.0) / (((g - 1.0) + 1.0) + std::exp(-(G0 / RT)));
}

}  // namespace

void drawTrend(const real_T* conc, const int32_T* concSize, const real_T* coefficients,
               int32_T pointCount, RealArray* concGrid, RealArray* trendCurve) {
  trendOnGrid(conc, concSize, coefficients, pointCount, concGrid, trendCurve);
}

void drawFraction(FractionKind kind, const real_T* conc, const int32_T* concSize,
                  const real_T* coefficients, int32_T pointCount, real_T temperatureC,
                  RealArray* concGrid, RealArray* fractionCurve) {
  if (!trendOnGrid(conc, concSize, coefficients, pointCount, concGrid, fractionCurve)) return;
  real_T* f = fractionCurve->data;  // holds G until overwritten
  const real_T RT = rtFromCelsius(temperatureC);
  const real_T slope = coefficients[0];
  const real_T G0 = f[0];
  for (int32_T i = 0; i < pointCount; ++i) {
    const real_T G = f[i];
    switch (kind) {
      case FractionKind::Unfolded: {
        const real_T K = std::exp(-(G / RT));
        f[i] = K / (K + 1.0);
        break;
      }
      case FractionKind::Associated:
        // A slope of 0 (or NaN) draws no association.
        f[i] = slope > 0.0 || slope < 0.0 ? associatedFraction(G, G0, RT, slope < 0.0) : 0.0;
        break;
      case FractionKind::AssociatedOverUnfolded:
        // The unfolded fraction of the denominator takes exp(-G) without RT:
        // that is the form hosts know.
        f[i] = slope < 0.0 ? associatedFraction(G, G0, RT, true) /
                                 (std::exp(-(G / RT)) / (std::exp(-G) + 1.0))
                           : 0.0;
        break;
    }
  }
}

}  // namespace quent
