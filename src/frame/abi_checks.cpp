// Compile-time checks of the layout of the records that hosts share with the
// library.  A change here breaks every host built against an older header.
#include <cstddef>

#include "quent_dgtrend.h"

namespace {

template <class Record, class Element>
constexpr bool hasArrayLayout() {
  static_assert(sizeof(Element*) == 8, "64-bit hosts only");
  static_assert(offsetof(Record, data) == 0);
  static_assert(offsetof(Record, size) == 8);
  static_assert(offsetof(Record, allocatedSize) == 16);
  static_assert(offsetof(Record, numDimensions) == 20);
  static_assert(offsetof(Record, canFreeData) == 24);
  static_assert(sizeof(Record) == 32);
  return true;
}

static_assert(sizeof(real_T) == 8 && sizeof(int32_T) == 4 && sizeof(bool) == 1);
static_assert(hasArrayLayout<RealArray, real_T>());
static_assert(hasArrayLayout<Int32Array, int32_T>());
static_assert(hasArrayLayout<BoolArray, bool>());

}  // namespace
