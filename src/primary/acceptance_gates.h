// The last word on a row: a fitted row must explain its points (R squared
// 0.95), have no negative energy, and know its first energy to within a
// quarter; a row that fails keeps only RT at -1 and its code.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Whether a fitted row (RT 0 or above) fails a gate.  A NaN fails none.
bool failsAcceptanceGates(const real_T* row);

// Judges a row of RT 0 or above and clears it to code 12 when it fails; then
// blanks a row of RT below 0 but columns 12 and 13.  Returns true when the
// row ends failed: its curve then reports all of its points as kept.
bool applyAcceptanceGates(real_T* row);

}  // namespace quent
