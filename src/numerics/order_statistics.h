// Two small statistics that the screening of curves and the reduction of fit
// rows read: the sample standard deviation and the mean of five neighbours.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Sample standard deviation (divisor n - 1); 0.0 for zero or one entry.
real_T sampleStdDev(const real_T* v, int32_T n);

// Mean of v[0..5), summed in order.
real_T meanOfFive(const real_T* v);

}  // namespace quent
