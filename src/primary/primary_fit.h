// The primary fit of many denaturation curves at once: a reference fit of a
// group mean supplies the start of every single curve, point masks drop the
// spikes and outliers of each curve, and each curve is then fitted for good.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// The work behind QUENT_dGtrend_primaryFit, with its arguments.  Both outputs
// are resized and fully written on every path.
void primaryFit(int32_T pointsPerCurve, const real_T* denaturant, const int32_T* denaturantSize,
                const real_T* signal, const int32_T* signalSize, const real_T* sampleConc,
                const int32_T* sampleConcSize, int32_T stateCount, real_T temperatureC,
                RealArray* fitRows, Int32Array* pointMask);

}  // namespace quent
