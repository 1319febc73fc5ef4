// What the code in column 13 of a returned row means, in words a host can
// show its user: the step that wrote a fitted row, or why a curve has none.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// A static text for row (24 values, as a fitting export returned it) of the
// family of stateCount; column 12 above 0 tells a fitted row.  Never null: a
// code that the fitting exports do not write for that family, or a null row,
// has a text that says so.
const char* codeText(const real_T* row, int32_T stateCount);

}  // namespace quent
