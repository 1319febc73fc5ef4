// The start vector is the row read back in model order; the slopes of both
// baselines and RT stay at the reference's values, and with amplitudes held
// so do the shares of the transitions.
#include "primary/refit_from_row.h"

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/plausibility.h"
#include "models/r_squared.h"

namespace quent {
namespace {

constexpr real_T kMinRSquared = 0.95;

// Held entries (1) of each member in vector order: both baseline slopes and
// RT, and in the held form also the shares.  The vectors are
//   T = 1: dG Cm a b c d RT
//   T = 2: dG1 Cm1 dG2 Cm2 amp1 a b c d RT
//   T = 3: dG1 Cm1 dG2 Cm2 dG3 Cm3 amp1 amp2 a b c d RT
template <int T> struct RefitMasks;
template <> struct RefitMasks<1> {
  static constexpr HeldMask<7> free = heldMask("0001011");
  static constexpr HeldMask<7> held = free;  // no shares to hold
};
template <> struct RefitMasks<2> {
  static constexpr HeldMask<10> free = heldMask("0000001011");
  static constexpr HeldMask<10> held = heldMask("0000101011");
};
template <> struct RefitMasks<3> {
  static constexpr HeldMask<13> free = heldMask("0000000001011");
  static constexpr HeldMask<13> held = heldMask("0000001101011");
};

template <int T>
void canonicalOrder(real_T* params) {
  if constexpr (T == 2) canonicalOrder2(params);
  if constexpr (T == 3) canonicalOrder3(params);
}

template <int T>
void fail(real_T* params) {
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k) params[k] = kFailed;
}

// Kept points of a whole curve.
thread_local real_T keptX[kMaxCurvePoints];
thread_local real_T keptY[kMaxCurvePoints];

}  // namespace

template <int T>
void refitFromRow(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                  bool amplitudesHeld, real_T* params) {
  using Masks = RefitMasks<T>;
  real_T start[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, 1, start);
  heldFit<TransitionModel<T>>(x, y, n, start, amplitudesHeld ? Masks::held : Masks::free, params);
  canonicalOrder<T>(params);
  if (plausible<T>(params, x, n) == 0.0) fail<T>(params);
  if (params[0] == -1.0) return;
  if (rSquaredOfFit<T>(x, y, n, params) < kMinRSquared) fail<T>(params);
}

template <int T>
void refitMasked(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                 const int32_T* mask, bool amplitudesHeld, real_T* params) {
  int32_T kept = 0;
  for (int32_T i = 0; i < n; ++i) kept += mask[i] == 1 ? 1 : 0;
  if (kept < 8 * T || kept > kMaxCurvePoints) {
    fail<T>(params);
    return;
  }
  int32_T k = 0;
  for (int32_T i = 0; i < n; ++i)
    if (mask[i] == 1) keptX[k] = x[i], keptY[k] = y[i], ++k;
  refitFromRow<T>(keptX, keptY, kept, row, amplitudesHeld, params);
}

template void refitFromRow<1>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitFromRow<2>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitFromRow<3>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitMasked<1>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);
template void refitMasked<2>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);
template void refitMasked<3>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);

}  // namespace quent
