// The search for start values happens once, on a group mean; single curves
// only refit from it.  The rows of mask building have done their work once
// the masks are known: only pointMask goes on to the final fit.
#include "primary/primary_fit.h"

#include <algorithm>

#include "frame/allocation.h"
#include "frame/array.h"
#include "frame/fit_row.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "frame/thread_scratch.h"
#include "primary/concentration_groups.h"
#include "primary/curve_point_mask.h"
#include "primary/finish_primary_fit.h"
#include "primary/group_scan.h"
#include "primary/primary_call.h"
#include "strategies/families.h"

namespace quent {
namespace {

// A copy of the curve whose mask is being built.
struct MaskCurve {
  real_T x[kMaxCurvePoints];
  real_T y[kMaxCurvePoints];
};

// Rows and point masks of every curve under the reference row.  A curve whose
// row failed reports no discarded points: a pass that never fitted leaves
// its mask all ones.
void buildPointMasks(const CallCurves& curves, int32_T stateCount, const real_T* referenceRow,
                     real_T* rows, int32_T* mask) {
  MaskCurve* curve = threadScratch<MaskCurve>();
  if (curve == nullptr) return;
  real_T* const maskCurveX = curve->x;
  real_T* const maskCurveY = curve->y;
  const int32_T n = curves.pointsPerCurve;
  for (int32_T c = 0; c < curves.curveCount; ++c) {
    curves.copy(c, maskCurveX, maskCurveY);
    real_T* row = rows + kRowColumns * c;
    int32_T* curveMask = mask + curves.at(c, 0);
    withFamily(stateCount, [&]<class F>() {
      buildCurveMask<F::T>(maskCurveX, maskCurveY, n, referenceRow, row, curveMask);
    });
  }
}

// The fit of curves that passed the entry checks.
void fitCurves(const CallCurves& curves, int32_T stateCount, real_T temperatureC,
               RealArray* fitRows, Int32Array* pointMask) {
  const int32_T curveCount = curves.curveCount;
  ConcentrationGroups groups;
  sortOutConcentrations(curves.sampleConc, curveCount, groups);

  real_T referenceRow[kRowColumns];
  const ScanSource firstScan;  // before any mask exists
  groupScan(curves, groups, firstScan, stateCount, temperatureC, referenceRow);
  if (!rowHasFit(referenceRow))
    fallbackScan(curves, firstScan, stateCount, temperatureC, referenceRow);
  if (!rowHasFit(referenceRow)) {
    writeCallFailure(curveCount, saturatingMul(curveCount, curves.pointsPerCurve), fitRows,
                     pointMask);
    return;
  }

  if (!arrayResizeRow(fitRows, kRowColumns * curveCount) ||
      !arrayResizeRow(pointMask, curveCount * curves.pointsPerCurve))
    return;
  buildPointMasks(curves, stateCount, referenceRow, fitRows->data, pointMask->data);

  ScanSource masked;
  masked.masked = true;
  masked.pointMask = vectorView(pointMask);
  finishPrimaryFit(curves, groups, masked, stateCount, temperatureC, fitRows, pointMask);
}

}  // namespace

void primaryFit(int32_T pointsPerCurve, const real_T* denaturant, const int32_T* denaturantSize,
                const real_T* signal, const int32_T* signalSize, const real_T* sampleConc,
                const int32_T* sampleConcSize, int32_T stateCount, real_T temperatureC,
                RealArray* fitRows, Int32Array* pointMask) {
  if (fitRows == nullptr || pointMask == nullptr) return;
  const CallCheck check = checkCall(pointsPerCurve, denaturant, denaturantSize, signal,
                                    signalSize, sampleConc, sampleConcSize);
  if (check.verdict != CallVerdict::kFit) {
    answerUnfittedCall(check, fitRows, pointMask);
    return;
  }
  const CallMemory memory;
  fitCurves(check.curves, stateCount, temperatureC, fitRows, pointMask);
  if (memory.failed())
    writeCallFailure(check.curves.curveCount,
                     saturatingMul(check.curves.curveCount, pointsPerCurve), fitRows, pointMask);
}

}  // namespace quent
