// Forward-difference Jacobian of the model over every entry of the square
// free block.  Only the block's first column feeds the model, so the columns
// of the other entries are (fitted - fitted) / increment: zero, or NaN where
// the fitted value is NaN.  Those are formed without evaluating the model,
// which gives the same bits as evaluating it.
#pragma once

#include <cmath>

#include "engine/bind_parameters.h"
#include "numerics/singular_values.h"

namespace quent {

constexpr real_T kDifferenceFactor = 6.0555e-06;

// Writes J, (n - nanCount) rows by f * f columns, column-major, and returns
// its row count.  fitted holds the model at `block`; trialBlock (f * f) and
// trialValues (n) are scratch; fullVector is the binding's working vector.
template <class Model>
int32_T lmJacobian(const real_T* block, int32_T f, real_T* fullVector,
                   const FitBinding<Model>& binding, const real_T* fitted, const bool* nanMask,
                   int32_T nanCount, real_T* J, real_T* trialBlock, real_T* trialValues) {
  const int32_T n = binding.n;
  const int32_T entries = f * f;
  if (nanCount == n) return 0;
  const int32_T rows = n - nanCount;

  // The increment of a zero entry scales with the block's norm, which the
  // loop does not change: measure it once.
  real_T zeroIncrement = 0.0;
  bool zeroIncrementKnown = false;
  // A trial block adds 0.0 to every entry but one; that turns a -0.0 into
  // +0.0, and then the untouched entries no longer reproduce the fitted curve.
  bool signedZeroParameter = false;
  for (int32_T j = 0; j < f; ++j) signedZeroParameter |= block[j] == 0.0 && std::signbit(block[j]);
  bool fittedFinite = true;
  for (int32_T i = 0; i < n; ++i) fittedFinite &= std::isfinite(fitted[i]);

  for (int32_T k = 0; k < entries; ++k) {
    real_T increment;
    if (block[k] == 0.0) {
      if (!zeroIncrementKnown) {
        const real_T s = std::sqrt(matrixNorm(block, f, f));
        zeroIncrement = s == 0.0 ? (s + 1.0) * kDifferenceFactor : s * kDifferenceFactor;
        zeroIncrementKnown = true;
      }
      increment = zeroIncrement;
    } else {
      increment = block[k] * kDifferenceFactor;
    }
    real_T* column = J + static_cast<long long>(rows) * k;
    if (k >= f && !signedZeroParameter && fittedFinite) {
      // (fitted - fitted) is +0.0 at every point.
      const real_T value = 0.0 / increment;
      for (int32_T i = 0; i < rows; ++i) column[i] = value;
      continue;
    }
    const real_T* trial = fitted;
    if (k < f || signedZeroParameter) {
      for (int32_T j = 0; j < f; ++j) trialBlock[j] = block[j] + 0.0;
      if (k < f) trialBlock[k] = block[k] + increment;
      bindParameters(fullVector, binding, trialBlock, entries, trialValues);
      trial = trialValues;
    }
    int32_T r = 0;
    for (int32_T i = 0; i < n; ++i)
      if (!nanMask[i]) column[r++] = (trial[i] - fitted[i]) / increment;
  }
  return rows;
}

}  // namespace quent
