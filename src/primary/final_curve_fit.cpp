// A held fit that reaches both plateaus (the end agreement at both ends) is
// taken as it is; otherwise the free fit gets its chance, and the held fit
// stays the fallback whenever it succeeded.
#include "primary/final_curve_fit.h"

#include <algorithm>

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "models/end_agreement.h"
#include "primary/refit_from_row.h"
#include "primary/row_codes.h"
#include "strategies/families.h"

namespace quent {
namespace {

// Whether a fit reaches the plateaus at both ends: the sum of the two end
// agreements above 1.0, each being 1.0 or 0.0.
template <int T>
bool reachesBothPlateaus(const real_T* x, const real_T* y, int32_T n, const real_T* params) {
  real_T flags[2];
  endAgreement<T>(x, n, y, n, params, flags);
  return flags[0] == 1.0 && flags[1] == 1.0;
}

template <int T>
void refitRow(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
              bool amplitudesHeld, real_T code, real_T* params, real_T* row) {
  refitFromRow<T>(x, y, n, referenceRow, amplitudesHeld, params);
  writeFitRow<T>(x, y, n, params, code, row);
}

void copyRow(const real_T* from, real_T* to) { std::copy_n(from, kRowColumns, to); }

}  // namespace

template <int T>
void finalCurveFit(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
                   bool chosen, real_T* row) {
  using F = Family<T>;
  writeBlankRow(row);
  if (n < F::kMinPoints) return;
  // A curve left out is not fitted.  Its refits' failed rows stand in for
  // them, and the plateau check on their zero parameters finds nothing.
  if (!chosen) {
    if constexpr (T > 1) writeFailedRow<T>(kUnchosenFreeCode, row);
    return;
  }

  real_T heldParams[TransitionLayout<T>::kParams];
  real_T heldRow[kRowColumns];
  refitRow<T>(x, y, n, referenceRow, true, F::kHeldRefitCode, heldParams, heldRow);
  if constexpr (T == 1) {
    if (rowHasFit(heldRow)) copyRow(heldRow, row);
  } else {
    if (reachesBothPlateaus<T>(x, y, n, heldParams)) {
      if (rowHasFit(heldRow)) copyRow(heldRow, row);
      return;
    }
    real_T freeParams[TransitionLayout<T>::kParams];
    refitRow<T>(x, y, n, referenceRow, false, F::kFreeRefitCode, freeParams, row);
    const bool freeStands = reachesBothPlateaus<T>(x, y, n, freeParams) &&
                            F::finalSharesClose(row, referenceRow);
    if (!freeStands && rowHasFit(heldRow)) copyRow(heldRow, row);
  }
}

template void finalCurveFit<1>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void finalCurveFit<2>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void finalCurveFit<3>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);

}  // namespace quent
