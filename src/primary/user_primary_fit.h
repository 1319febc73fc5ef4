// The primary fit under the host's own choice of points and curves: no
// screening and no mask building, only the second half of the automatic fit
// with the host's point mask and curve flags.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// The work behind QUENT_dGtrend_user_primaryFit, with its arguments.  fitRows
// is resized and fully written on every path; the masks are only read.  A
// point mask shorter than the curves, or fewer curve flags than curves, fails
// the whole call as differing curve counts do.
void userPrimaryFit(int32_T pointsPerCurve, const real_T* denaturant,
                    const int32_T* denaturantSize, const real_T* signal,
                    const int32_T* signalSize, const real_T* sampleConc,
                    const int32_T* sampleConcSize, const int32_T* pointMask,
                    const int32_T* pointMaskSize, const int32_T* curveFlags,
                    const int32_T* curveFlagsSize, int32_T stateCount, real_T temperatureC,
                    RealArray* fitRows);

}  // namespace quent
