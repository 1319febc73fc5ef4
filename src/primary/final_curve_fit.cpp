// A held fit that reaches both plateaus (the end agreement at both ends) is
// taken as it is; otherwise the free fit gets its chance, and the held fit
// stays the fallback whenever it succeeded.
#include "primary/final_curve_fit.h"

#include <algorithm>

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "models/end_agreement.h"
#include "primary/refit_from_row.h"
#include "strategies/families.h"

namespace quent {
namespace {

// Rows of a curve the host left out, in place of its two refits.
constexpr real_T kUnchosenHeldCode = 34.0;
constexpr real_T kUnchosenFreeCode = 35.0;

template <int T>
real_T plateauFlags(const real_T* x, const real_T* y, int32_T n, const real_T* params) {
  real_T flags[2];
  endAgreement<T>(x, n, y, n, params, flags);
  return flags[0] + flags[1];
}

template <int T>
void refitRow(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
              bool chosen, bool amplitudesHeld, real_T code, real_T unchosenCode,
              real_T* params, real_T* row) {
  if (!chosen) {
    for (int k = 0; k < TransitionLayout<T>::kParams; ++k) params[k] = 0.0;
    writeFailedRow<T>(unchosenCode, row);
    return;
  }
  refitFromRow<T>(x, y, n, referenceRow, amplitudesHeld, params);
  writeFitRow<T>(x, y, n, params, code, row);
}

void copyRow(const real_T* from, real_T* to) { std::copy_n(from, kRowColumns, to); }

}  // namespace

template <int T>
void finalCurveFit(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
                   bool chosen, real_T* row) {
  using F = Family<T>;
  writeClearedRow(0.0, row);
  if (n < F::kMinPoints) return;

  real_T heldParams[TransitionLayout<T>::kParams];
  real_T heldRow[kRowColumns];
  refitRow<T>(x, y, n, referenceRow, chosen, true, F::kHeldRefitCode, kUnchosenHeldCode,
              heldParams, heldRow);
  if constexpr (T == 1) {
    if (heldRow[kColRT] > 0.0) copyRow(heldRow, row);
  } else {
    if (plateauFlags<T>(x, y, n, heldParams) > 1.0) {
      if (heldRow[kColRT] > 0.0) copyRow(heldRow, row);
      return;
    }
    real_T freeParams[TransitionLayout<T>::kParams];
    refitRow<T>(x, y, n, referenceRow, chosen, false, F::kFreeRefitCode, kUnchosenFreeCode,
                freeParams, row);
    const bool freeStands = plateauFlags<T>(x, y, n, freeParams) > 1.0 &&
                            F::finalSharesClose(row, referenceRow);
    if (!freeStands && heldRow[kColRT] > 0.0) copyRow(heldRow, row);
  }
}

template void finalCurveFit<1>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void finalCurveFit<2>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void finalCurveFit<3>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);

}  // namespace quent
