// Read-only view of a vector handed over by a host as a data pointer and a
// pair of dimension lengths.  Entry i is data[size[0] * i], so a matrix shows
// its first row; the length is the second dimension.  A view whose first
// dimension is below 1 is empty, so that nothing is read from a buffer that
// holds no elements.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

template <class T>
struct VectorView {
  const T* data = nullptr;
  int32_T stride = 1;
  int32_T length = 0;

  T operator[](int32_T i) const { return data[static_cast<long long>(stride) * i]; }
  // The view from entry `first` on.
  VectorView from(int32_T first) const {
    return {data + static_cast<long long>(stride) * first, stride, length - first};
  }
};

template <class T>
VectorView<T> vectorView(const T* data, const int32_T* size) {
  VectorView<T> v;
  v.data = data;
  if (data == nullptr || size == nullptr || size[0] < 1 || size[1] < 1) return v;
  v.stride = size[0];
  v.length = size[1];
  return v;
}

template <class Record>
auto vectorView(const Record* a) {
  return vectorView(a->data, a->size);
}

}  // namespace quent
