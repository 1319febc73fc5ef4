// A call is refused before anything is read when its vectors could not be
// walked safely; within those limits a disagreement of the counts is the
// failure of the whole call, shaped as the curves of the denaturant say.
#include "primary/primary_call.h"

#include <algorithm>

#include "frame/array.h"
#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/row_layout.h"

namespace quent {
namespace {

constexpr int32_T kInt32Max = 2147483647;

// The host's vector claims more elements than int32_T counts.
bool beyondInt32(const int32_T* size) {
  return size != nullptr &&
         static_cast<long long>(size[0]) * static_cast<long long>(size[1]) > kInt32Max;
}

int32_T curvesIn(int32_T entries, int32_T pointsPerCurve) {
  return saturatingInt32(
      roundHalfAway(static_cast<real_T>(entries) / static_cast<real_T>(pointsPerCurve)));
}

int32_T atMost(int32_T value, int32_T cap) { return std::min(value, cap); }

}  // namespace

void CallCurves::copy(int32_T curve, real_T* x, real_T* y) const {
  const int32_T first = at(curve, 0);
  for (int32_T i = 0; i < pointsPerCurve; ++i) {
    x[i] = denaturant[first + i];
    y[i] = signal[first + i];
  }
}

int32_T CallCurves::gatherKept(int32_T curve, const VectorView<int32_T>& mask, real_T* x,
                               real_T* y) const {
  const int32_T first = at(curve, 0);
  return quent::gatherKept(denaturant.from(first), signal.from(first), mask.from(first),
                           pointsPerCurve, x, y);
}

CallCheck checkCall(int32_T pointsPerCurve, const real_T* denaturant,
                    const int32_T* denaturantSize, const real_T* signal, const int32_T* signalSize,
                    const real_T* sampleConc, const int32_T* sampleConcSize) {
  CallCheck check;
  CallCurves& c = check.curves;
  c.denaturant = vectorView(denaturant, denaturantSize);
  c.signal = vectorView(signal, signalSize);
  c.sampleConc = vectorView(sampleConc, sampleConcSize);
  c.pointsPerCurve = pointsPerCurve;
  if (beyondInt32(denaturantSize) || beyondInt32(signalSize) || beyondInt32(sampleConcSize) ||
      pointsPerCurve < 1 || pointsPerCurve > kMaxCurvePoints)
    return check;

  c.curveCount = curvesIn(c.denaturant.length, pointsPerCurve);
  const int32_T signalCurves = curvesIn(c.signal.length, pointsPerCurve);
  if (c.curveCount != signalCurves || c.curveCount != c.sampleConc.length) {
    check.verdict = CallVerdict::kMismatch;
    return check;
  }
  if (c.curveCount > kMaxCurves) return check;
  if (c.curveCount == 0) {
    check.verdict = CallVerdict::kEmpty;
    return check;
  }
  // A count rounded up leaves the last curve short of points.
  const int32_T needed = c.curveCount * pointsPerCurve;
  if (needed > c.denaturant.length || needed > c.signal.length) return check;
  check.verdict = CallVerdict::kFit;
  return check;
}

void writeCallFailure(int32_T rowCount, int32_T maskCount, RealArray* fitRows,
                      Int32Array* pointMask) {
  const int32_T columns = saturatingMul(kRowColumns, rowCount);
  if (arrayResizeRowFill(fitRows, columns, 0.0))
    for (int32_T r = 0; r < columns / kRowColumns; ++r) fitRows->data[kRowColumns * r + kColRT] = kFailed;
  if (pointMask != nullptr) arrayResizeRowFill(pointMask, maskCount, 1);
}

void answerUnfittedCall(const CallCheck& check, RealArray* fitRows, Int32Array* pointMask) {
  const CallCurves& c = check.curves;
  switch (check.verdict) {
    case CallVerdict::kEmpty:
      writeCallFailure(0, 0, fitRows, pointMask);
      return;
    case CallVerdict::kMismatch:
      writeCallFailure(atMost(c.curveCount, kMaxRefusalEntries / kRowColumns),
                       atMost(saturatingMul(c.curveCount, c.pointsPerCurve), kMaxRefusalEntries),
                       fitRows, pointMask);
      return;
    default:
      writeCallFailure(atMost(c.sampleConc.length, kMaxRefusalEntries / kRowColumns),
                       atMost(c.denaturant.length, kMaxRefusalEntries), fitRows, pointMask);
  }
}

}  // namespace quent
