// Reduction of the fit rows of many curves to one trend of free energy over
// ln(sample concentration): per-concentration means and spreads of one
// transition's energy, and the line a host draws through them.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// sampleConc, fitRows and curveFlags are host vectors (data, size) read with
// the stride of their first dimension; fitRows holds one 24-column row per
// curve.  transition 2 or 3 picks that transition, any other value the first.
// concOut, trendOut, deviationOut and usedOut become one row per distinct
// concentration; summary receives slope, intercept, R squared and the count
// of distinct concentrations.
void calc(const real_T* sampleConc, const int32_T* sampleConcSize, const real_T* fitRows,
          const int32_T* fitRowsSize, const int32_T* curveFlags, const int32_T* curveFlagsSize,
          int32_T transition, RealArray* concOut, RealArray* trendOut, RealArray* deviationOut,
          Int32Array* usedOut, real_T* summary);

}  // namespace quent
