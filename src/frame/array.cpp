// Storage of the dynamic array record.
#include "frame/array.h"

#include <cstdlib>
#include <cstring>

#include "frame/allocation.h"

namespace quent {

int32_T grownCapacity(int32_T allocated, int32_T needed) {
  int32_T capacity = allocated < 16 ? 16 : allocated;
  while (capacity < needed) {
    if (capacity < 0x40000000) capacity *= 2;
    else capacity = 0x7fffffff;
  }
  return capacity;
}

bool arrayEnsureCapacityRaw(void** data, int32_T* allocatedSize, bool* canFreeData,
                            int32_T newCount, int32_T oldCount, std::size_t width) {
  // Only what the storage holds can be copied: a host's record may claim
  // more elements (or negative dimensions) than its buffer has.
  if (oldCount < 0) oldCount = 0;
  if (oldCount > *allocatedSize) oldCount = *allocatedSize;
  if (newCount <= *allocatedSize) return true;
  const int32_T capacity = grownCapacity(*allocatedSize, newCount);
  void* storage = allocateZeroed(static_cast<std::size_t>(capacity), width);
  // Out of memory: the record keeps its old storage and the caller learns it.
  if (storage == nullptr) return false;
  if (*data != nullptr) {
    if (oldCount > 0) std::memcpy(storage, *data, width * static_cast<std::size_t>(oldCount));
    if (*canFreeData) std::free(*data);
  }
  *data = storage;
  *allocatedSize = capacity;
  *canFreeData = true;
  return true;
}

template <class Record>
void arrayInit(Record** a, int32_T numDimensions) {
  Record* r = static_cast<Record*>(allocate(sizeof(Record)));
  *a = r;
  if (r == nullptr) return;
  r->data = nullptr;
  r->numDimensions = numDimensions;
  r->size = static_cast<int32_T*>(
      allocateZeroed(static_cast<std::size_t>(numDimensions), sizeof(int32_T)));
  r->allocatedSize = 0;
  r->canFreeData = true;
}

template <class Record>
void arrayFree(Record** a) {
  if (*a == nullptr) return;
  if ((*a)->data != nullptr && (*a)->canFreeData) std::free((*a)->data);
  std::free((*a)->size);
  std::free(*a);
  *a = nullptr;
}

template <class Record>
void arrayWrap(Record* a, decltype(Record::data) data, int32_T rows, int32_T cols) {
  a->data = data;
  a->size[0] = rows;
  a->size[1] = cols;
  // The capacity a host's buffer can be trusted with: rows * cols, clipped to
  // int32_T, and nothing for a negative dimension.
  const long long capacity = static_cast<long long>(rows) * cols;
  a->allocatedSize = (rows < 0 || cols < 0) ? 0
                     : capacity > 2147483647LL ? 2147483647
                                              : static_cast<int32_T>(capacity);
  a->canFreeData = false;
}

template void arrayWrap<RealArray>(RealArray*, real_T*, int32_T, int32_T);
template void arrayWrap<Int32Array>(Int32Array*, int32_T*, int32_T, int32_T);
template void arrayInit<RealArray>(RealArray**, int32_T);
template void arrayInit<Int32Array>(Int32Array**, int32_T);
template void arrayInit<BoolArray>(BoolArray**, int32_T);
template void arrayFree<RealArray>(RealArray**);
template void arrayFree<Int32Array>(Int32Array**);
template void arrayFree<BoolArray>(BoolArray**);

}  // namespace quent
