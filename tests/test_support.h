// Small helpers for the tests: owned records and bit-exact comparison.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/array.h"
#include "quent_dgtrend.h"

namespace quent::test {

// A record made by arrayInit and freed at the end of the scope.
template <class Record>
struct OwnedArray {
  Record* a = nullptr;
  OwnedArray() { arrayInit(&a, 2); }
  ~OwnedArray() { arrayFree(&a); }
  OwnedArray(const OwnedArray&) = delete;
  OwnedArray& operator=(const OwnedArray&) = delete;
  Record* operator->() const { return a; }
  Record* get() const { return a; }
  int32_T count() const { return arrayElementCount(a); }
};

inline std::uint64_t bits(double x) {
  std::uint64_t b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

}  // namespace quent::test
