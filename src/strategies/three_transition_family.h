// The three-transition family: three transitions in sequence through two
// intermediate states, amp1 and amp2 being the shares of the signal change
// that the first two make.  What the library knows of it stands here; its
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
struct Family<3> {
  static constexpr int T = 3;
  // dG1, Cm1, dG2, Cm2, dG3, Cm3, amp1, amp2, native intercept and slope,
  // unfolded intercept and slope, RT.
  using Layout = TransitionLayout<3>;
  static constexpr int32_T kStateCount = 4;
  static constexpr int32_T kMinPoints = 24;

  // The third share is tested only through the sum of the first two, so it
  // may be arbitrarily small while they may not.
  static constexpr real_T kShareMin = 0.06;
  static constexpr real_T kShareMax = 0.94;
  static constexpr bool kSharesSumBelowOne = true;

  static constexpr HeldMask<13> kRefitFree = heldMask("0000000001011");
  static constexpr HeldMask<13> kRefitHeld = heldMask("0000001101011");
  static constexpr real_T kHeldRefitCode = 4.0;
  static constexpr real_T kFreeRefitCode = 5.0;

  // While masks are built the free pass stands only when both shares stay
  // within 0.07 of the reference's and it has an RT; a NaN fails.
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return std::fabs(freeRow[kColShare[0]] - reference[kColShare[0]]) <= 0.07 &&
           std::fabs(freeRow[kColShare[1]] - reference[kColShare[1]]) <= 0.07 &&
           freeRow[kColRT] > 0.0;
  }
  // In the final fit the bound is strict.
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[kColShare[0]] - reference[kColShare[0]]) < 0.07 &&
           std::fabs(bestRow[kColShare[1]] - reference[kColShare[1]]) < 0.07;
  }
};

using ThreeTransitionFamily = Family<3>;

}  // namespace quent
