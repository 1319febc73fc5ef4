// Which entries of a parameter vector a fit holds at their start value.
// Masks are written as the strings hosts and tables use, index 0 first:
// heldMask("0000001") holds RT alone in a one-transition vector.
#pragma once

#include <cstddef>

namespace quent {

template <int N>
struct HeldMask {
  bool held[N];

  constexpr int heldCount() const {
    int h = 0;
    for (int i = 0; i < N; ++i) h += held[i] ? 1 : 0;
    return h;
  }
  constexpr int freeCount() const { return N - heldCount(); }
};

// Not constexpr on purpose: reaching it while a mask is built is a compile
// error that names the fault.
inline void heldMaskCharacterIsNotZeroOrOne() {}

template <std::size_t L>
consteval HeldMask<static_cast<int>(L) - 1> heldMask(const char (&bits)[L]) {
  HeldMask<static_cast<int>(L) - 1> mask{};
  for (std::size_t i = 0; i + 1 < L; ++i) {
    if (bits[i] != '0' && bits[i] != '1') heldMaskCharacterIsNotZeroOrOne();
    mask.held[i] = bits[i] == '1';
  }
  return mask;
}

}  // namespace quent
