// The rows a host receives come from a handful of steps only: the refits
// from the plate's reference fit, and the blank, rejected and left-out rows
// of the drivers.  The strategies' own exit codes stay inside a fit.
#include "primary/code_text.h"

#include "frame/row_layout.h"
#include "primary/row_codes.h"
#include "strategies/families.h"

namespace quent {
namespace {

struct CodeText {
  int transitions;  // 0: any family
  bool fitted;
  real_T code;
  const char* text;
};

constexpr CodeText kTexts[] = {
    {1, true, Family<1>::kHeldRefitCode,
     "fitted: one transition, refitted from the plate's reference fit with the baseline "
     "slopes held"},
    {2, true, Family<2>::kHeldRefitCode,
     "fitted: two transitions, refitted from the plate's reference fit with its amplitude "
     "share and the baseline slopes held"},
    {2, true, Family<2>::kFreeRefitCode,
     "fitted: two transitions, amplitude share fitted freely, since the fit with the share "
     "held missed a plateau at an end of the curve"},
    {3, true, Family<3>::kHeldRefitCode,
     "fitted: three transitions, refitted from the plate's reference fit with its amplitude "
     "shares and the baseline slopes held"},
    {3, true, Family<3>::kFreeRefitCode,
     "fitted: three transitions, amplitude shares fitted freely, since the fit with the "
     "shares held missed a plateau at an end of the curve"},
    {1, false, 0.0,
     "not fitted: the curve kept fewer than 8 points, the host left it out, the call failed "
     "(refused for its shapes, limits, temperature or memory, or no fit of the plate's "
     "reference succeeded), or the refit found no transition of plausible shape that "
     "explained the kept points (a flat or badly shaped curve)"},
    {2, false, 0.0,
     "not fitted: the curve kept fewer than 16 points, or the call failed (refused for its "
     "shapes, limits, temperature or memory, or no fit of the plate's reference succeeded)"},
    {3, false, 0.0,
     "not fitted: the curve kept fewer than 24 points, or the call failed (refused for its "
     "shapes, limits, temperature or memory, or no fit of the plate's reference succeeded)"},
    {2, false, Family<2>::kFreeRefitCode,
     "not fitted: both refits found no two transitions of plausible shape that explained the "
     "kept points (a flat or badly shaped curve, or one without a second transition), or no "
     "mean curve of the plate kept enough points to start them from"},
    {3, false, Family<3>::kFreeRefitCode,
     "not fitted: both refits found no three transitions of plausible shape that explained "
     "the kept points (a flat or badly shaped curve, or one with fewer transitions), or no "
     "mean curve of the plate kept enough points to start them from"},
    {0, false, kRejectedCode,
     "rejected at the quality gates once the trend over concentration set the energies: R "
     "squared below 0.95, a negative free energy, or an uncertainty of dG1 above a quarter "
     "of dG1"},
    {2, false, kUnchosenFreeCode, "not fitted: the host left the curve out"},
    {3, false, kUnchosenFreeCode, "not fitted: the host left the curve out"},
};

constexpr const char* kUnknownFitted =
    "fitted, with a code the fitting functions do not write for this number of states";
constexpr const char* kUnknownFailed =
    "not fitted, with a code the fitting functions do not write for this number of states";

}  // namespace

const char* codeText(const real_T* row, int32_T stateCount) {
  if (row == nullptr) return "no row";
  const int transitions = withFamily(stateCount, []<class F>() { return F::T; });
  const bool fitted = row[kColRT] > 0.0;
  for (const CodeText& entry : kTexts)
    if ((entry.transitions == 0 || entry.transitions == transitions) &&
        entry.fitted == fitted && entry.code == row[kColCode])
      return entry.text;
  return fitted ? kUnknownFitted : kUnknownFailed;
}

}  // namespace quent
