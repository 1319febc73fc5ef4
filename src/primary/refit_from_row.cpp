// The start vector is the row read back in model order; the slopes of both
// baselines and RT stay at the reference's values, and with amplitudes held
// so do the shares of the transitions.
#include "primary/refit_from_row.h"

#include "engine/levenberg_marquardt.h"
#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "frame/thread_scratch.h"
#include "models/plausibility.h"
#include "models/r_squared.h"
#include "strategies/families.h"

namespace quent {
namespace {

constexpr real_T kMinRSquared = 0.95;

template <int T>
void fail(real_T* params) {
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k) params[k] = kFailed;
}

// Kept points of a whole curve.
struct Kept {
  real_T x[kMaxCurvePoints];
  real_T y[kMaxCurvePoints];
};

}  // namespace

template <int T>
void refitFromRow(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                  bool amplitudesHeld, real_T* params) {
  using F = Family<T>;
  real_T start[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, 1, start);
  heldFit<TransitionModel<T>>(x, y, n, start, amplitudesHeld ? F::kRefitHeld : F::kRefitFree,
                              params);
  keepIfPlausible<T>(params, x, n);
  // A refused fit is failed already; a plausible one must also explain its points.
  if (params[TransitionLayout<T>::dG(0)] != kFailed &&
      rSquaredOfFit<T>(x, y, n, params) < kMinRSquared)
    fail<T>(params);
}

template <int T>
void refitMasked(const real_T* x, const real_T* y, int32_T n, const real_T* row,
                 const int32_T* mask, bool amplitudesHeld, real_T* params) {
  const int32_T kept = countKept(mask, n);
  Kept* s = threadScratch<Kept>();
  if (kept < Family<T>::kMinPoints || kept > kMaxCurvePoints || s == nullptr) {
    fail<T>(params);
    return;
  }
  gatherKept(x, y, mask, n, s->x, s->y);
  refitFromRow<T>(s->x, s->y, kept, row, amplitudesHeld, params);
}
template void refitFromRow<1>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitFromRow<2>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitFromRow<3>(const real_T*, const real_T*, int32_T, const real_T*, bool, real_T*);
template void refitMasked<1>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);
template void refitMasked<2>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);
template void refitMasked<3>(const real_T*, const real_T*, int32_T, const real_T*, const int32_T*, bool, real_T*);

}  // namespace quent
