// Columns of a fit result row and where each entry of a T-transition
// parameter vector stands in it.  Rows put the baselines first and, with three
// transitions, amp1 between the second and third energy; readers of a row
// (the fraction error, the drivers) rebuild the vector through the same table.
#pragma once

#include "frame/limits.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"

namespace quent {

constexpr int kColRT = 12;         // RT of a fit; -1 marks a row without one
constexpr int kColCode = 13;       // number of the exit that wrote the row
constexpr int kColRSquared = 14;   // R squared on the points fitted, or -1
constexpr int kColEnergyError = 15;  // 15 + t: e times the energy of transition t
constexpr int kColConstant = 18;     // 18 + t: exp(-(dG_t / RT)) * 1e6

// Row column of each entry of the parameter vector, in vector order.
template <int T> struct RowColumns;
template <> struct RowColumns<1> {
  //                                   dG Cm   a  b  c  d  RT
  static constexpr int of[7] = {        4, 5,  0, 1, 2, 3, 12};
};
template <> struct RowColumns<2> {
  //                                   dG1 Cm1 dG2 Cm2 amp1  a  b  c  d  RT
  static constexpr int of[10] = {       4,  5,  6,  7,  8,   0, 1, 2, 3, 12};
};
template <> struct RowColumns<3> {
  //                                   dG1 Cm1 dG2 Cm2 dG3 Cm3 amp1 amp2  a  b  c  d  RT
  static constexpr int of[13] = {       4,  5,  6,  7,  9, 10,  8,  11,  0, 1, 2, 3, 12};
};

// Columns 0 .. kParamColumns - 1 are what a T-transition fit fills besides RT:
// 6, 9 or 12.  The rest up to column 11 stay 0.
template <int T>
constexpr int kParamColumns = TransitionLayout<T>::kParams - 1;

// Vector from a row whose column c is row[rowStride * c] (1 for a plain row).
template <int T>
inline void paramsFromRow(const real_T* row, int32_T rowStride, real_T* params) {
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k)
    params[k] = row[static_cast<long long>(rowStride) * RowColumns<T>::of[k]];
}

// Columns 0 to 12 of a plain row from a vector; unused parameter columns get 0.
template <int T>
inline void paramsToRow(const real_T* params, real_T* row) {
  for (int c = kParamColumns<T>; c < kColRT; ++c) row[c] = 0.0;
  for (int k = 0; k < TransitionLayout<T>::kParams; ++k) row[RowColumns<T>::of[k]] = params[k];
}

}  // namespace quent
