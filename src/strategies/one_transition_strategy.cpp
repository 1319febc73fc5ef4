// The four one-transition entry points: the strategy skeleton over the
// one-transition family.
#include "strategies/one_transition_strategy.h"

#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"

namespace quent {

using F = OneTransitionFamily;

void fitOneTransition(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                      real_T temperature, real_T row[24]) {
  strategy::fitWhole<F>(x, xCount, y, yCount, temperature, row);
}

void fitOneTransitionMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                            const int32_T* mask, int32_T maskCount, real_T temperature,
                            real_T row[24], int32_T* maskOut) {
  strategy::fitMasked<F>(x, xCount, y, yCount, mask, maskCount, temperature, row, maskOut);
}

void fitOneTransitionTrimOne(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                             const int32_T* mask, int32_T maskCount, real_T temperature,
                             real_T row[24], int32_T* maskOut) {
  strategy::fitTrimmed<F>(Pass::TrimOne, x, xCount, y, yCount, mask, maskCount, temperature, row,
                          maskOut);
}

void fitOneTransitionTrimBoth(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                              const int32_T* mask, int32_T maskCount, real_T temperature,
                              real_T row[24], int32_T* maskOut) {
  strategy::fitTrimmed<F>(Pass::TrimBoth, x, xCount, y, yCount, mask, maskCount, temperature,
                          row, maskOut);
}

}  // namespace quent
