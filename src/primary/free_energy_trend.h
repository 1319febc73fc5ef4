// The trend of the free energies over concentration: each transition's free
// energy in a fitted row is replaced by its midpoint times the m value that a
// straight line through the m values (dG / Cm) of all valid curves gives at
// the logarithm of the curve's concentration.
#pragma once

#include "frame/vector_view.h"
#include "quent_dgtrend.h"

namespace quent {

// rows: 24 columns for each of curveCount curves, changed in place.  Valid
// curves have column 12 at 0 or above (and flag 1 when curveFlags is given);
// the rest end with -1 in column 12.  The transitions followed are those any
// row shows (column 6 or 9 above 0), whatever the family.
void freeEnergyTrend(const VectorView<real_T>& sampleConc, int32_T curveCount,
                     const VectorView<int32_T>* curveFlags, real_T* rows);

}  // namespace quent
