// The engine for the six models of the library.
#include "engine/levenberg_marquardt_impl.h"

namespace quent {

#define QUENT_INSTANTIATE_FIT(Model)                                                        \
  template void lmFit<Model>(const real_T*, const real_T*, int32_T, real_T*,                \
                             const HeldMask<Model::kParams>&, const real_T*, real_T*, int32_T); \
  template void heldFit<Model>(const real_T*, const real_T*, int32_T, const real_T*,        \
                               const HeldMask<Model::kParams>&, real_T*);
QUENT_INSTANTIATE_FIT(OneTransitionModel)
QUENT_INSTANTIATE_FIT(TwoTransitionModel)
QUENT_INSTANTIATE_FIT(ThreeTransitionModel)
QUENT_INSTANTIATE_FIT(OnePeakModel)
QUENT_INSTANTIATE_FIT(TwoPeakModel)
QUENT_INSTANTIATE_FIT(ThreePeakModel)
#undef QUENT_INSTANTIATE_FIT

}  // namespace quent
