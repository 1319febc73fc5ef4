// The trend line of free energy over ln(sample concentration), drawn on a grid
// of concentrations, and the fractions derived from it.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

enum class FractionKind { Unfolded, Associated, AssociatedOverUnfolded };

// concGrid and trendCurve become one row of pointCount values.  Fewer than
// two concentrations, pointCount outside 1 to kMaxDrawPoints or no
// coefficients give one value of 1.0 in each; a null output, nothing.
void drawTrend(const real_T* conc, const int32_T* concSize, const real_T* coefficients,
               int32_T pointCount, RealArray* concGrid, RealArray* trendCurve);

// concGrid and fractionCurve become one row of pointCount values.
void drawFraction(FractionKind kind, const real_T* conc, const int32_T* concSize,
                  const real_T* coefficients, int32_T pointCount, real_T temperatureC,
                  RealArray* concGrid, RealArray* fractionCurve);

}  // namespace quent
