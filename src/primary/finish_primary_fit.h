// The second half of a primary fit, with the point masks known: a second
// reference row from the masked curves, the fit of each curve for good, the
// trend of the free energies, the statistics of each row and its acceptance.
#pragma once

#include "primary/concentration_groups.h"
#include "primary/group_scan.h"
#include "primary/primary_call.h"
#include "quent_dgtrend.h"

namespace quent {

// source is a masked scan source over the kept points of every curve.
// fitRows becomes 24 columns per curve.  pointMask, the record source reads
// (null when the mask is the host's), is written only where a row fails:
// such a curve reports all of its points as kept.
void finishPrimaryFit(const CallCurves& curves, const ConcentrationGroups& groups,
                      const ScanSource& source, int32_T stateCount, real_T temperatureC,
                      RealArray* fitRows, Int32Array* pointMask);

}  // namespace quent
