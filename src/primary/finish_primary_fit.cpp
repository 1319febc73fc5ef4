// Nothing of the mask-building rows survives: every curve is fitted again
// from the new reference.  A reference row that no round touched (no group
// had enough kept points) is all zeros with RT 0; it passes as a reference,
// and the curves fitted from it fail on their own.
#include "primary/finish_primary_fit.h"

#include <algorithm>

#include "frame/array.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "frame/thread_scratch.h"
#include "primary/acceptance_gates.h"
#include "primary/final_curve_fit.h"
#include "primary/fit_statistics.h"
#include "primary/free_energy_trend.h"
#include "strategies/families.h"

namespace quent {
namespace {

// The kept points of one curve.
struct Kept {
  real_T x[kMaxCurvePoints];
  real_T y[kMaxCurvePoints];
};

}  // namespace

void finishPrimaryFit(const CallCurves& curves, const ConcentrationGroups& groups,
                      const ScanSource& source, int32_T stateCount, real_T temperatureC,
                      RealArray* fitRows, Int32Array* pointMask) {
  const int32_T curveCount = curves.curveCount;
  Kept* kept = threadScratch<Kept>();
  if (kept == nullptr) {
    writeCallFailure(curveCount, 0, fitRows, nullptr);
    return;
  }
  real_T* const keptX = kept->x;
  real_T* const keptY = kept->y;
  real_T referenceRow[kRowColumns];
  groupScan(curves, groups, source, stateCount, temperatureC, referenceRow);
  if (referenceRow[kColRT] < 0.0)
    fallbackScan(curves, source, stateCount, temperatureC, referenceRow);
  if (referenceRow[kColRT] < 0.0) {
    writeCallFailure(curveCount, 0, fitRows, nullptr);
    return;
  }

  if (!arrayResizeRow(fitRows, kRowColumns * curveCount)) return;  // every row is written
  real_T* const rows = fitRows->data;
  const auto row = [&](int32_T c) { return rows + kRowColumns * c; };
  for (int32_T c = 0; c < curveCount; ++c) {
    const int32_T n = curves.gatherKept(c, source.pointMask, keptX, keptY);
    const bool chosen = source.chosen(c);
    withFamily(stateCount, [&]<class F>() {
      finalCurveFit<F::T>(keptX, keptY, n, referenceRow, chosen, row(c));
    });
  }

  freeEnergyTrend(curves.sampleConc, curveCount, source.curveFlags, rows);

  for (int32_T c = 0; c < curveCount; ++c) {
    if (!source.chosen(c)) continue;
    const int32_T n = curves.gatherKept(c, source.pointMask, keptX, keptY);
    refreshFitStatistics(stateCount, keptX, keptY, n, row(c));
  }

  for (int32_T c = 0; c < curveCount; ++c) {
    if (!applyAcceptanceGates(row(c)) || pointMask == nullptr) continue;
    std::fill_n(pointMask->data + curves.at(c, 0), curves.pointsPerCurve, 1);
  }
}

}  // namespace quent
