// The masked strategy of each family: a fit of a whole curve from a blank
// start on the points a mask keeps, which may drop further end points and
// reports the mask it used.
#pragma once

#if __has_include("strategies/one_transition_strategy.h")
#include "strategies/one_transition_strategy.h"
#define QUENT_HAVE_MASKED_STRATEGIES 1
#else
// Until the strategies are in the tree, whatever is built on them is left out
// of the build (guarded by QUENT_HAVE_MASKED_STRATEGIES), so that the library
// links.
#include "quent_dgtrend.h"
namespace quent {
void fitOneTransitionMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                            const int32_T* mask, int32_T maskCount, real_T temperature,
                            real_T row[24], int32_T* maskOut);
}  // namespace quent
#define QUENT_HAVE_MASKED_STRATEGIES 0
#endif

namespace quent {

// Fits the n points x, y under mask (n entries) for the family of stateCount
// (3: two transitions, 4: three, anything else one) into row, and writes the
// mask the fit used to maskOut (n entries).
inline void fitMaskedStrategy(real_T stateCount, const real_T* x, const real_T* y, int32_T n,
                              const int32_T* mask, real_T temperatureC, real_T* row,
                              int32_T* maskOut) {
  // The two- and three-transition masked strategies (stateCount 3 and 4) are
  // not written yet; until they are, every family gets the one-transition fit.
  (void)stateCount;
  fitOneTransitionMasked(x, n, y, n, mask, n, temperatureC, row, maskOut);
}

}  // namespace quent
