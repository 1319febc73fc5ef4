// Caps that hold across the library: they size every fixed buffer.
#pragma once

#include <limits>

#include "quent_dgtrend.h"

namespace quent {

constexpr int32_T kMaxFitPoints = 384;     // points of one curve in any fit
constexpr int32_T kMaxCurvePoints = 2304;  // points of one curve in a call
constexpr int32_T kMaxCurves = 96;         // curves in one call
constexpr int32_T kMaxDrawPoints = 100000; // points of a drawn trend or fraction
constexpr int32_T kRowColumns = 24;        // columns of a fit result row

// Every element of a failed parameter vector, and the failure value of every
// quality measure.
constexpr real_T kFailed = -1.0;

// The spacing of doubles at 1.0, 2^-52: the relative rounding unit of every
// tolerance of the dense numerics and the floor of the damping.
constexpr real_T kMachineEpsilon = std::numeric_limits<real_T>::epsilon();

// RT at 25 degrees Celsius, used by the refits that are given no temperature.
constexpr real_T kFixedRT = 592.4836799999999;

inline real_T rtFromCelsius(real_T temperatureC) {
  return (temperatureC + 273.15) * 1.9872;
}

}  // namespace quent
