// The codes that rows returned to a host carry besides those of the refits
// (which each family names: kHeldRefitCode, kFreeRefitCode).  Code 0 is the
// blank row of a curve that was never fitted.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// A fitted row that failed the quality gates once the trend set its energies.
constexpr real_T kRejectedCode = 12.0;
// The row of a curve the host left out of the user-constrained fit: the
// failed row of its free refit.  That of its held refit (code 34) is never
// taken, so it never shows.
constexpr real_T kUnchosenFreeCode = 35.0;

}  // namespace quent
