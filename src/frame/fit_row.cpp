// A fitted row carries R squared and the fraction error on the points the fit
// used.  The fraction error reads its parameters back from the row, so the
// parameter columns and column 14 are in place before it runs.
#include "frame/fit_row.h"

#include <cmath>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "models/fraction_error.h"
#include "models/r_squared.h"

namespace quent {
namespace {

constexpr real_T kConstantScale = 1e6;  // equilibrium constants in millionths

}  // namespace

template <int T>
void writeFailedRow(real_T code, real_T* row) {
  for (int c = 0; c < kRowColumns; ++c) row[c] = 0.0;
  for (int c = 0; c < kParamColumns<T>; ++c) row[c] = kFailed;
  row[kColRT] = kFailed;
  row[kColCode] = code;
  row[kColRSquared] = kFailed;
}

void writeClearedRow(real_T code, real_T* row) {
  for (int c = 0; c < kRowColumns; ++c) row[c] = 0.0;
  row[kColRT] = kFailed;
  row[kColCode] = code;
}

template <int T>
void writeFitRow(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
                 real_T* row) {
  if (!(params[TransitionLayout<T>::dG(0)] >= 0.0)) {
    writeFailedRow<T>(code, row);
    return;
  }
  writeFittedRow<T>(x, y, n, params, code, row);
}

template <int T>
void writeFittedRow(const real_T* x, const real_T* y, int32_T n, const real_T* params,
                    real_T code, real_T* row) {
  using L = TransitionLayout<T>;
  const real_T r2 = rSquaredOfFit<T>(x, y, n, params);
  paramsToRow<T>(params, row);
  row[kColCode] = code;
  row[kColRSquared] = r2;
  for (int c = kColEnergyError; c < kRowColumns; ++c) row[c] = 0.0;

  const real_T e = fractionError<T>(x, n, y, n, row, 1);
  const real_T RT = params[L::RT];
  for (int t = 0; t < T; ++t) {
    const real_T energy = params[L::dG(t)];
    row[kColEnergyError + t] = energy * e;
    row[kColConstant + t] = std::exp(-(energy / RT)) * kConstantScale;
  }
}

template void writeFitRow<1>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFitRow<2>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFitRow<3>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFittedRow<1>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFittedRow<2>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFittedRow<3>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
template void writeFailedRow<1>(real_T, real_T*);
template void writeFailedRow<2>(real_T, real_T*);
template void writeFailedRow<3>(real_T, real_T*);

}  // namespace quent
