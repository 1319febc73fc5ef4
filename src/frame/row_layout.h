// Columns of a fit result row, and where each entry of a T-transition
// parameter vector stands in it.  The row is the same for every model: the
// baselines first, then energy and midpoint of each transition, with the
// amplitude shares after the second and the third transition; a model leaves
// the columns of transitions it does not have at 0.  Every reader and writer
// of a row names its columns here.
#pragma once

#include <array>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"

namespace quent {

constexpr int kColNativeIntercept = 0;
constexpr int kColNativeSlope = 1;
constexpr int kColUnfoldedIntercept = 2;
constexpr int kColUnfoldedSlope = 3;
// Energy and midpoint of transition t (from 0), share of amplitude s (from 0).
constexpr int kColEnergy[3] = {4, 6, 9};
constexpr int kColMidpoint[3] = {5, 7, 10};
constexpr int kColShare[2] = {8, 11};
constexpr int kColRT = 12;           // RT of a fit; -1 marks a row without one
constexpr int kColCode = 13;         // number of the exit that wrote the row
constexpr int kColRSquared = 14;     // R squared on the points fitted, or -1
constexpr int kColEnergyError = 15;  // 15 + t: the fraction error times energy t
constexpr int kColConstant = 18;     // 18 + t: exp(-(energy t / RT)) * 1e6

// Row column of entry k of a T-transition parameter vector.
template <int T>
constexpr int rowColumnOf(int k) {
  using L = TransitionLayout<T>;
  for (int t = 0; t < T; ++t) {
    if (k == L::dG(t)) return kColEnergy[t];
    if (k == L::Cm(t)) return kColMidpoint[t];
  }
  for (int s = 0; s + 1 < T; ++s)
    if (k == L::amp(s)) return kColShare[s];
  if (k == L::RT) return kColRT;
  return kColNativeIntercept + (k - L::nativeIntercept);
}

template <int T>
inline constexpr auto kRowColumnOf = [] {
  std::array<int, TransitionLayout<T>::kParams> columns{};
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k) columns[k] = rowColumnOf<T>(k);
  return columns;
}();

// Columns 0 .. kParamColumns - 1 are what a T-transition fit fills besides RT:
// 6, 9 or 12.  The rest up to column 11 stay 0.
template <int T>
constexpr int kParamColumns = TransitionLayout<T>::kParams - 1;

// Vector from a row whose column c is row[rowStride * c] (1 for a plain row).
template <int T>
inline void paramsFromRow(const real_T* row, int32_T rowStride, real_T* params) {
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k)
    params[k] = row[static_cast<long long>(rowStride) * kRowColumnOf<T>[k]];
}

// Columns 0 to 12 of a plain row from a vector; unused parameter columns get 0.
template <int T>
inline void paramsToRow(const real_T* params, real_T* row) {
  for (int c = kParamColumns<T>; c < kColRT; ++c) row[c] = 0.0;
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k) row[kRowColumnOf<T>[k]] = params[k];
}

// Which model a row carries, read from the row alone: one transition when
// the columns of the second (energy, midpoint, first share) are all exactly 0,
// else two when those of the third are, else three.
inline int transitionsOfRow(const real_T* row) {
  if (row[kColEnergy[1]] == 0.0 && row[kColMidpoint[1]] == 0.0 && row[kColShare[0]] == 0.0)
    return 1;
  if (row[kColEnergy[2]] == 0.0 && row[kColMidpoint[2]] == 0.0 && row[kColShare[1]] == 0.0)
    return 2;
  return 3;
}

}  // namespace quent
