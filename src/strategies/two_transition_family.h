// The two-transition family: two transitions in sequence through one
// intermediate state, amp1 being the share of the signal change that the
// first transition makes.  What the library knows of it stands here; its
// attempts and strategy join it when the family is registered (families.h).
#pragma once

#include <cmath>

#include "engine/held_mask.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "quent_dgtrend.h"
#include "strategies/family.h"

namespace quent {

template <>
struct Family<2> {
  static constexpr int T = 2;
  // dG1, Cm1, dG2, Cm2, amp1, native intercept and slope, unfolded intercept
  // and slope, RT.
  using Layout = TransitionLayout<2>;
  static constexpr int32_T kStateCount = 3;
  // Twice the points of one transition.
  static constexpr int32_T kMinPoints = 16;

  static constexpr real_T kShareMin = 0.08;
  static constexpr real_T kShareMax = 0.92;
  static constexpr bool kSharesSumBelowOne = false;

  // Refits from a reference row hold both slopes and RT, and in the held
  // form the share too.
  static constexpr HeldMask<10> kRefitFree = heldMask("0000001011");
  static constexpr HeldMask<10> kRefitHeld = heldMask("0000101011");
  static constexpr real_T kHeldRefitCode = 3.0;
  static constexpr real_T kFreeRefitCode = 6.0;

  // While masks are built the free pass stands unless its share moved from
  // the reference's by more than 0.1 or it failed; a NaN share or RT does not
  // count against it.
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return !(std::fabs(freeRow[kColShare[0]] - reference[kColShare[0]]) > 0.1 ||
             freeRow[kColRT] <= 0.0);
  }
  // In the final fit the bound is strict, and a NaN share fails it.
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[kColShare[0]] - reference[kColShare[0]]) < 0.1;
  }
};

using TwoTransitionFamily = Family<2>;

}  // namespace quent
