#include "analysis/normalization.h"

#include "frame/vector_view.h"

namespace quent {

void normalization(const real_T* values, const int32_T* valuesSize, real_T reference,
                   real_T target, real_T* scaled, int32_T* scaledSize) {
  if (scaled == nullptr || scaledSize == nullptr) return;
  const real_T factor = reference > 0.0 ? target / reference : 1.0;
  const VectorView<real_T> v = vectorView(values, valuesSize);
  scaledSize[0] = 1;
  scaledSize[1] = v.length;
  for (int32_T i = 0; i < v.length; ++i) scaled[i] = 0.0;
  for (int32_T i = 0; i < v.length; ++i) scaled[i] = v[i] * factor;
}

}  // namespace quent
