// End agreement of a fit.  The distance is taken from the native intercept
// without its slope at both ends, so a strongly sloped baseline fails, as it
// should: such a fit has not found a flat plateau.
#include "models/end_agreement.h"

#include <cmath>

#include "frame/limits.h"
#include "models/curve_models.h"
#include "numerics/extremes.h"

namespace quent {
namespace {

// Whether a NaN first energy ends the test at once, by transition count.
// With one transition it goes on, and the NaN then spoils every fraction, so
// no point agrees and the answer is the same 0, 0.
//
//   T | stops on NaN dG1
//   1 | no
//   2 | yes
//   3 | yes
template <int T>
constexpr bool kStopsOnNaNEnergy = T != 1;

constexpr int32_T kEndPoints = 5;
constexpr int kAgreeingNeeded = 3;
constexpr real_T kAgreement = 0.02;

}  // namespace

template <int T>
void endAgreement(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                  const real_T* params, real_T out[2]) {
  out[0] = 0.0;
  out[1] = 0.0;
  const real_T first = params[TransitionLayout<T>::dG(0)];
  if (first < 0.0 || (kStopsOnNaNEnergy<T> && first != first)) return;

  real_T fraction[kMaxFitPoints];
  const int32_T m = unfoldedFraction<T>(params, x, 1, xCount, fraction);
  if (m < kEndPoints || fraction[0] <= -1.0 || yCount < kEndPoints || m != yCount) return;

  const real_T top = nanSkippingMax(y, yCount).value;
  const real_T bottom = nanSkippingMin(y, yCount).value;
  const real_T a = params[TransitionLayout<T>::nativeIntercept];
  const auto agrees = [&](int32_T from) {
    int count = 0;
    for (int32_T i = from; i < from + kEndPoints; ++i) {
      const real_T d = std::fabs(std::fabs(y[i] - a) / (top - bottom) - fraction[i]);
      if (d <= kAgreement) ++count;
    }
    return count >= kAgreeingNeeded ? 1.0 : 0.0;
  };
  out[0] = agrees(0);
  out[1] = agrees(m - kEndPoints);
}

template void endAgreement<1>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);
template void endAgreement<2>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);
template void endAgreement<3>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);

}  // namespace quent
