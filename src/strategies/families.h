// The families a host can name, and the one place where its state count
// becomes a family.  A family answers to its state count once it is listed
// below; every value that names no listed family is fitted as one transition.
#pragma once

#include <concepts>
#include <iterator>

#include "quent_dgtrend.h"
#include "strategies/one_transition_family.h"
#include "strategies/three_transition_family.h"
#include "strategies/two_transition_family.h"

namespace quent {

template <class... Families>
struct FamilyList {};

// Each family is named by its transitions plus one.
static_assert(Family<1>::T == 1 && Family<2>::T == 2 && Family<3>::T == 3);
static_assert(Family<1>::kStateCount == 2 && Family<2>::kStateCount == 3 &&
              Family<3>::kStateCount == 4);

// One transition first: it is the family of every state count not listed.
using RegisteredFamilies = FamilyList<Family<1>, Family<2>, Family<3>>;

// A family whose strategies are in the library.
template <class F>
concept FittedFamily = requires(const CurvePoints& c, real_T RT, int best, int32_T* order,
                                typename F::StartTable& start, typename F::HeldTable& held,
                                typename F::Estimate& e) {
  { F::kStateCount } -> std::convertible_to<int32_T>;
  std::size(F::kAttempts);
  std::size(F::kUsableAttempts);
  std::size(F::kNativeHeld);
  std::size(F::kUnfoldedHeld);
  std::size(F::kBothHeld);
  std::size(F::kPairRungs);
  std::size(F::kFirstPassRungs);
  std::size(F::kCodes);
  { F::estimateUsable(e) } -> std::same_as<bool>;
  F::startAttempts(c, RT, start, e);
  F::completeStartTable(c, RT, best, start, e);
  F::reviseEstimate(c, start, e);
  F::refineHeldTable(c, order, held);
};

namespace detail {

template <class Default, class Fn>
decltype(auto) pickFamily(int32_T, Fn& fn, FamilyList<>) {
  return fn.template operator()<Default>();
}

template <class Default, class Fn, class Next, class... Rest>
decltype(auto) pickFamily(int32_T stateCount, Fn& fn, FamilyList<Next, Rest...>) {
  if (stateCount == Next::kStateCount) return fn.template operator()<Next>();
  return pickFamily<Default>(stateCount, fn, FamilyList<Rest...>{});
}

template <class Fn, class Default, class... Others>
decltype(auto) withFamilyIn(int32_T stateCount, Fn& fn, FamilyList<Default, Others...>) {
  static_assert((FittedFamily<Default> && ... && FittedFamily<Others>));
  return pickFamily<Default>(stateCount, fn, FamilyList<Others...>{});
}

}  // namespace detail

// fn.template operator()<F>() for the family F of a host's state count.
template <class Fn>
decltype(auto) withFamily(int32_T stateCount, Fn&& fn) {
  return detail::withFamilyIn(stateCount, fn, RegisteredFamilies{});
}

}  // namespace quent
