// The host's masks take the place of the masks a primary fit builds: the
// call goes straight to the final fit, which reads them through their
// strides, tests and averages only the chosen curves, and leaves the others
// failed.  Nothing is written back to the masks.
#include "primary/user_primary_fit.h"

#include "frame/allocation.h"
#include "frame/scalar.h"
#include "frame/vector_view.h"
#include "primary/concentration_groups.h"
#include "primary/finish_primary_fit.h"
#include "primary/group_scan.h"
#include "primary/primary_call.h"

namespace quent {

void userPrimaryFit(int32_T pointsPerCurve, const real_T* denaturant,
                    const int32_T* denaturantSize, const real_T* signal,
                    const int32_T* signalSize, const real_T* sampleConc,
                    const int32_T* sampleConcSize, const int32_T* pointMask,
                    const int32_T* pointMaskSize, const int32_T* curveFlags,
                    const int32_T* curveFlagsSize, int32_T stateCount, real_T temperatureC,
                    RealArray* fitRows) {
  if (fitRows == nullptr) return;
  const CallCheck check = checkCall(pointsPerCurve, denaturant, denaturantSize, signal,
                                    signalSize, sampleConc, sampleConcSize);
  if (check.verdict != CallVerdict::kFit) {
    answerUnfittedCall(check, fitRows, nullptr);
    return;
  }
  const CallCurves& curves = check.curves;
  const VectorView<int32_T> flags = vectorView(curveFlags, curveFlagsSize);
  ScanSource source;
  source.masked = true;
  source.pointMask = vectorView(pointMask, pointMaskSize);
  source.curveFlags = &flags;
  // A mask the curves would read past is not guessed at.
  if (source.pointMask.length < saturatingMul(curves.curveCount, pointsPerCurve) ||
      flags.length < curves.curveCount) {
    writeCallFailure(curves.curveCount, 0, fitRows, nullptr);
    return;
  }
  ConcentrationGroups groups;
  sortOutConcentrations(curves.sampleConc, curves.curveCount, groups);
  const CallMemory memory;
  finishPrimaryFit(curves, groups, source, stateCount, temperatureC, fitRows, nullptr);
  if (memory.failed()) writeCallFailure(curves.curveCount, 0, fitRows, nullptr);
}

}  // namespace quent
