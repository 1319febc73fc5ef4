// The energies of single curves scatter more than their midpoints do; the
// line of m value over ln(concentration) shares the information of all curves.
// A concentration of 0 or below has no logarithm: its NaN or infinite values
// go through as they fall and fail the acceptance gates later.
#include "primary/free_energy_trend.h"

#include <cmath>

#include "frame/limits.h"
#include "frame/row_layout.h"
#include "numerics/line_fit.h"

namespace quent {
namespace {

constexpr real_T kConstantScale = 1e6;

}  // namespace

void freeEnergyTrend(const VectorView<real_T>& sampleConc, int32_T curveCount,
                     const VectorView<int32_T>* curveFlags, real_T* rows) {
  const auto row = [&](int32_T c) { return rows + kRowColumns * c; };
  const auto chosen = [&](int32_T c) { return curveFlags == nullptr || (*curveFlags)[c] == 1; };

  int32_T valid[kMaxCurves];
  real_T lnConc[kMaxCurves];
  int32_T validCount = 0;
  for (int32_T c = 0; c < curveCount; ++c) {
    if (!(row(c)[kColRT] >= 0.0 && chosen(c))) continue;
    valid[validCount] = c;
    lnConc[validCount] = std::log(sampleConc[c]);
    ++validCount;
  }

  bool second = false, third = false;
  for (int32_T c = 0; c < curveCount; ++c) {
    second = second || row(c)[kColEnergy[1]] > 0.0;
    third = third || row(c)[kColEnergy[2]] > 0.0;
  }
  const int lastTransition = third ? 2 : second ? 1 : 0;

  real_T mValues[kMaxCurves];
  for (int t = 0; t <= lastTransition; ++t) {
    const int energy = kColEnergy[t], midpoint = kColMidpoint[t];
    for (int32_T k = 0; k < validCount; ++k) mValues[k] = row(valid[k])[energy] / row(valid[k])[midpoint];
    const LineCoefficients line = lineFit(lnConc, mValues, validCount);
    for (int32_T c = 0; c < curveCount; ++c) {
      real_T* r = row(c);
      if (r[kColRT] < 0.0 || !chosen(c)) {
        r[kColRT] = kFailed;
        continue;
      }
      const real_T dG = r[midpoint] * (std::log(sampleConc[c]) * line.slope + line.intercept);
      r[energy] = dG;
      r[kColConstant + t] = std::exp(-(dG / r[kColRT])) * kConstantScale;
    }
  }
}

}  // namespace quent
