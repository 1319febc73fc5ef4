// Assembly of the full parameter vector from the fitted and the held entries,
// and evaluation of the model on it.
#pragma once

#include "engine/held_mask.h"
#include "quent_dgtrend.h"

namespace quent {

// What a fit holds fixed: the mask, the held values in vector order, and the
// curve's abscissas.
template <class Model>
struct FitBinding {
  const HeldMask<Model::kParams>* mask;
  const real_T* heldValues;
  const real_T* x;
  int32_T n;
};

// fullVector := 1.0 everywhere, then (if the block has any entry) each free
// entry from the block in storage order and each held entry from heldValues;
// then the model's value at every x into `out`.  Only the first f entries of
// the block are ever read.
template <class Model>
void bindParameters(real_T* fullVector, const FitBinding<Model>& binding, const real_T* block,
                    int32_T blockCount, real_T* out) {
  constexpr int N = Model::kParams;
  for (int i = 0; i < N; ++i) fullVector[i] = 1.0;
  if (blockCount >= 1) {
    int free = 0, held = 0;
    for (int i = 0; i < N; ++i)
      fullVector[i] = binding.mask->held[i] ? binding.heldValues[held++] : block[free++];
  }
  Model::evaluate(fullVector, binding.x, binding.n, out);
}

}  // namespace quent
