// Whole-stretch tests on the bit patterns of doubles: every entry a zero of
// either sign, every entry finite.  Integer steps only, so the scans
// vectorise; the damped systems of the engine are long and mostly zero.
#pragma once

#include <cstdint>
#include <cstring>

#include "quent_dgtrend.h"

namespace quent {

inline std::uint64_t bitsOf(const real_T* p) {
  std::uint64_t b;
  std::memcpy(&b, p, sizeof b);
  return b;
}

// Every entry +0 or -0: the bits without the sign are all zero.  A block at
// a time, so a long stretch stops early at its first nonzero block.
inline bool allZero(const real_T* x, long long count) {
  long long i = 0;
  for (; i + 16 <= count; i += 16) {
    std::uint64_t any = 0;
    for (int u = 0; u < 16; ++u) any |= bitsOf(x + i + u) << 1;
    if (any != 0) return false;
  }
  for (; i < count; ++i)
    if ((bitsOf(x + i) << 1) != 0) return false;
  return true;
}

// Every entry finite: an all-ones exponent (infinity or NaN) carries into the
// top bit when one is added to it.
inline bool allFinite(const real_T* x, long long count) {
  constexpr std::uint64_t kExponent = 0x7ff0000000000000ull, kExponentOne = 1ull << 52;
  std::uint64_t carry = 0;
  for (long long i = 0; i < count; ++i) carry |= (bitsOf(x + i) & kExponent) + kExponentOne;
  return (carry >> 63) == 0;
}

}  // namespace quent
