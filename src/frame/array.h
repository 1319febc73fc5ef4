// The dynamic array record shared with hosts, and its four operations.
// Records are column-major; the live element count is the product of the size
// entries and is never stored.  Growth doubles from a floor of 16 elements.
#pragma once

#include <cstddef>

#include "quent_dgtrend.h"

namespace quent {

// Capacity that arrayEnsureCapacity grows to from `allocated` so that
// `needed` elements fit: 16 at least, doubling, and one last step to
// 0x7fffffff.  Pure, so the rule can be checked without allocating.
int32_T grownCapacity(int32_T allocated, int32_T needed);

// Live element count: product of the size entries, in int32_T arithmetic
// (wrapping like the hardware, computed in 64 bits to stay defined).
template <class Record>
int32_T arrayElementCount(const Record* a) {
  unsigned long long count = 1;
  for (int32_T k = 0; k < a->numDimensions; ++k)
    count *= static_cast<unsigned long long>(static_cast<long long>(a->size[k]));
  return static_cast<int32_T>(static_cast<unsigned int>(count));
}

// Grows `data` when the size entries ask for more than allocatedSize.  The
// first oldCount elements are copied, the rest of the new storage is zero;
// storage that the record does not own (a host's buffer) is left alone.
// Returns false, with the record unchanged, when no storage could be had.
bool arrayEnsureCapacityRaw(void** data, int32_T* allocatedSize, bool* canFreeData,
                            int32_T newCount, int32_T oldCount, std::size_t width);

template <class Record>
bool arrayEnsureCapacity(Record* a, int32_T oldCount) {
  void* data = a->data;
  const bool ok = arrayEnsureCapacityRaw(&data, &a->allocatedSize, &a->canFreeData,
                                         arrayElementCount(a), oldCount, sizeof(*a->data));
  a->data = static_cast<decltype(a->data)>(data);
  return ok;
}

// Makes a record with numDimensions zero-length dimensions and no storage.
template <class Record>
void arrayInit(Record** a, int32_T numDimensions);
template <class Record>
void arrayFree(Record** a);

// The two-dimensional short forms and the pair of work arrays of the engine.
template <class Record>
void arrayInit(Record** a) { arrayInit(a, 2); }
template <class Record>
void arrayPairInit(Record* (&pair)[2]) { arrayInit(&pair[0], 2); arrayInit(&pair[1], 2); }
template <class Record>
void arrayPairFree(Record* (&pair)[2]) { arrayFree(&pair[0]); arrayFree(&pair[1]); }

// Resizes to one row of n elements; elements past the old count are stale
// unless growth replaced the storage.  When no storage can be had the record
// becomes an empty row and the call returns false.
template <class Record>
bool arrayResizeRow(Record* a, int32_T n) {
  const int32_T oldCount = arrayElementCount(a);
  a->size[0] = 1;
  a->size[1] = n < 0 ? 0 : n;
  if (arrayEnsureCapacity(a, oldCount)) return true;
  a->size[1] = 0;
  return false;
}

// Resizes to one row of n elements and fills them with `value`.
template <class Record, class T>
bool arrayResizeRowFill(Record* a, int32_T n, T value) {
  if (!arrayResizeRow(a, n)) return false;
  for (int32_T i = 0; i < n; ++i) a->data[i] = value;
  return true;
}

// Fills a record with the host's buffer; the record does not own it.
template <class Record>
void arrayWrap(Record* a, decltype(Record::data) data, int32_T rows, int32_T cols);

extern template void arrayInit<RealArray>(RealArray**, int32_T);
extern template void arrayInit<Int32Array>(Int32Array**, int32_T);
extern template void arrayInit<BoolArray>(BoolArray**, int32_T);
extern template void arrayFree<RealArray>(RealArray**);
extern template void arrayFree<Int32Array>(Int32Array**);
extern template void arrayFree<BoolArray>(BoolArray**);

}  // namespace quent
