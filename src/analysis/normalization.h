// Scaling of a curve before it is fitted.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

void normalization(const real_T* values, const int32_T* valuesSize, real_T reference,
                   real_T target, real_T* scaled, int32_T* scaledSize);

}  // namespace quent
