// The curves a host hands to a primary fit, read through the stride of its
// vectors; the checks at the entry, and the answer of a call that fits
// nothing.
#pragma once

#include "frame/scalar.h"
#include "frame/vector_view.h"
#include "quent_dgtrend.h"

namespace quent {

// All curves one after the other; curve c holds entries c * pointsPerCurve
// to (c + 1) * pointsPerCurve - 1 of denaturant and signal.
struct CallCurves {
  VectorView<real_T> denaturant;
  VectorView<real_T> signal;
  VectorView<real_T> sampleConc;
  int32_T pointsPerCurve{};
  int32_T curveCount{};

  int32_T at(int32_T curve, int32_T point) const {
    return saturatingAdd(saturatingMul(curve, pointsPerCurve), point);
  }
  // Copies curve c to x and y, pointsPerCurve entries each.
  void copy(int32_T curve, real_T* x, real_T* y) const;
  // Copies the points of curve c that mask (all curves) keeps; returns their count.
  int32_T gatherKept(int32_T curve, const VectorView<int32_T>& mask, real_T* x, real_T* y) const;
};

enum class CallVerdict {
  kFit,       // the curves can be fitted
  kEmpty,     // no curve: both outputs empty
  kMismatch,  // denaturant, signal and sampleConc disagree on the curve count
  kRefused,   // beyond what a call may hold, or curves running past the vectors
};

struct CallCheck {
  CallVerdict verdict = CallVerdict::kRefused;
  CallCurves curves;
};

// The shape check of a call, with its refusals: pointsPerCurve outside 1 to
// 2304, a vector of more elements than int32_T counts, more than 96 curves
// (when denaturant, signal and sampleConc agree on the count), or a last
// curve that would read past the end of denaturant or signal.
CallCheck checkCall(int32_T pointsPerCurve, const real_T* denaturant,
                    const int32_T* denaturantSize, const real_T* signal, const int32_T* signalSize,
                    const real_T* sampleConc, const int32_T* sampleConcSize);

// The failure of a whole call: rowCount rows of zeros with -1 in column 12,
// and maskCount mask entries of 1 (pointMask null: no mask output).
void writeCallFailure(int32_T rowCount, int32_T maskCount, RealArray* fitRows,
                      Int32Array* pointMask);

// The answer to a call that fits nothing (any verdict but kFit).  A mismatch
// is shaped by the curve count of the denaturant, as far as kMaxRefusalEntries
// allows; a refusal by the host's
// vectors, 24 columns per concentration and one mask entry per denaturant
// entry, neither beyond kMaxRefusalEntries; no curve gives empty outputs.
void answerUnfittedCall(const CallCheck& check, RealArray* fitRows, Int32Array* pointMask);

// Outputs of a refused call grow no further than the largest mask a call
// within the limits returns (96 curves of 2304 points): an absurd size is
// answered without an absurd allocation.
constexpr int32_T kMaxRefusalEntries = 96 * 2304;

}  // namespace quent
