// The attempts of one stage of a strategy, side by side in numbered slots,
// each with its score and its agreement with the two ends of the curve.
// Vectors are stored slot-fastest (entry p of slot s at [p * Slots + s]):
// the refinement of a ranked table starts from its first numbers as stored,
// which are the energies of its leading slots.
#pragma once

#include <algorithm>

#include "frame/limits.h"
#include "quent_dgtrend.h"

namespace quent {

template <int Params, int Slots>
struct AttemptTable {
  static constexpr int kParams = Params;
  static constexpr int kSlots = Slots;

  real_T value[Params * Slots];
  real_T score[Slots];         // R squared of each slot
  real_T nativeFlag[Slots];    // 1.0 where the fit meets the first points of the curve
  real_T unfoldedFlag[Slots];  // 1.0 where it meets the last points

  void get(int s, real_T* v) const {
    for (int p = 0; p < Params; ++p) v[p] = value[p * Slots + s];
  }
  void set(int s, const real_T* v) {
    for (int p = 0; p < Params; ++p) value[p * Slots + s] = v[p];
  }
  // A slot whose attempt was not run holds a failed vector.
  void fail(int s) {
    real_T failed[Params];
    std::fill_n(failed, Params, kFailed);
    set(s, failed);
  }
  real_T at(int s, int p) const { return value[p * Slots + s]; }
};

}  // namespace quent
