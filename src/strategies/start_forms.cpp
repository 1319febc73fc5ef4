// Start baselines by form.  Every value is formed in the order its formula is
// written: starts decide which minimum a fit finds, and results are compared
// bit for bit.
#include "strategies/start_forms.h"

namespace quent {
namespace {

constexpr real_T kTokenSlope = 0.001;

}  // namespace

BaselinePairs startBaselines(StartForm form, const real_T* x, const real_T* y, int32_T n) {
  switch (form) {
    case StartForm::ThreePoint:
      return {firstMean(y), firstSlope(x, y), lastIntercept(x, y, n), lastSlope(x, y, n)};
    case StartForm::Flat:
      return {y[0], kTokenSlope, y[n - 1], kTokenSlope};
    case StartForm::FlatExchanged:
      return {y[0], kTokenSlope, kTokenSlope, y[n - 1]};
    case StartForm::Segment:
    case StartForm::Split:
      break;
  }
  return segmentBaselines(x, y, n);
}

void guardFlatStart(BaselinePairs& b, bool nativeGiven, bool unfoldedGiven, const real_T* y,
                    int32_T n) {
  if (nativeGiven && b.nativeSlope == 0.0) b.nativeSlope = kTokenSlope;
  if (unfoldedGiven && b.unfoldedSlope == 0.0) b.unfoldedSlope = kTokenSlope;
  // A slope is the flat one, 0.001, or a given one just guarded: only an
  // intercept can still be 0.0 here.
  if (b.nativeIntercept == 0.0) b.nativeIntercept = y[0];
  if (b.unfoldedIntercept == 0.0) b.unfoldedIntercept = y[n - 1];
}

}  // namespace quent
