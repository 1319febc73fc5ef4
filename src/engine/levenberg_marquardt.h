// Levenberg-Marquardt least squares with Marquardt's column scaling, the one
// procedure behind every curve fit of the library, and the held fit that
// splits a parameter vector into fitted and held entries around it.
//
// The fitted parameters live in the first column of a square f-by-f "free
// block" whose other entries start at 1.0.  The iteration treats all f * f
// entries as unknowns: the Jacobian has f * f columns, the damped system
// f * f extra rows, and the stopping test measures the block by its largest
// singular value.  The extra entries never move (their columns are zero), but
// they shape the numbers, and results are compared bit for bit.
#pragma once

#include "engine/held_mask.h"
#include "engine/model_bindings.h"
#include "quent_dgtrend.h"

namespace quent {

// Fits the free block (f-by-f, column-major, updated in place) to y at the n
// points x, holding the entries that `mask` flags at heldValues (in vector
// order).  fullVector (Model::kParams entries) is working storage and holds
// the last assembled vector on return.  Reports nothing: a caller judges the
// result.  A NaN in y or in the model at the start leaves the block as given.
template <class Model>
void lmFit(const real_T* x, const real_T* y, int32_T n, real_T* fullVector,
           const HeldMask<Model::kParams>& mask, const real_T* heldValues, real_T* block,
           int32_T f);

// Fits `start` to y at x with the entries flagged by `mask` held, into
// `result` (both Model::kParams entries; they may be the same storage).
template <class Model>
void heldFit(const real_T* x, const real_T* y, int32_T n, const real_T* start,
             const HeldMask<Model::kParams>& mask, real_T* result);

#define QUENT_DECLARE_FIT(Model)                                                              \
  extern template void lmFit<Model>(const real_T*, const real_T*, int32_T, real_T*,           \
                                    const HeldMask<Model::kParams>&, const real_T*, real_T*,  \
                                    int32_T);                                                 \
  extern template void heldFit<Model>(const real_T*, const real_T*, int32_T, const real_T*,   \
                                      const HeldMask<Model::kParams>&, real_T*);
QUENT_DECLARE_FIT(OneTransitionModel)
QUENT_DECLARE_FIT(TwoTransitionModel)
QUENT_DECLARE_FIT(ThreeTransitionModel)
QUENT_DECLARE_FIT(OnePeakModel)
QUENT_DECLARE_FIT(TwoPeakModel)
QUENT_DECLARE_FIT(ThreePeakModel)
#undef QUENT_DECLARE_FIT

}  // namespace quent
