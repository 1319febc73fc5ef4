// The slope is taken between neighbouring points and placed at their middle;
// its largest value (not its largest magnitude: on a falling curve that is
// the least negative slope) is the start height of every peak.
#include "models/derivative_peaks.h"

#include "engine/levenberg_marquardt.h"
#include "frame/limits.h"
#include "numerics/extremes.h"
#include "numerics/sort.h"

namespace quent {
namespace {

// Start centres and widths as fractions of the last slope position, one row
// per peak count.
constexpr real_T kStartCentre[3][3] = {{0.5}, {0.33, 0.66}, {0.3, 0.5, 0.7}};
constexpr real_T kStartWidth[3] = {0.4, 0.25, 0.25};

}  // namespace

template <int P>
void derivativePeaks(const real_T* x, const real_T* y, int32_T n, real_T* out) {
  for (int k = 0; k < P; ++k) out[k] = kFailed;
  const int32_T slopes = n > kMaxFitPoints ? kMaxFitPoints - 1 : n - 1;
  if (slopes < 1) return;
  real_T midpoint[kMaxFitPoints - 1], slope[kMaxFitPoints - 1];
  for (int32_T i = 0; i < slopes; ++i) {
    midpoint[i] = (x[i] + x[i + 1]) / 2.0;
    slope[i] = (y[i] - y[i + 1]) / (x[i] - x[i + 1]);
  }
  const real_T h = nanSkippingMax(slope, slopes).value;
  const real_T L = midpoint[slopes - 1];
  real_T peaks[3 * P];
  for (int k = 0; k < P; ++k) {
    peaks[3 * k] = h;
    peaks[3 * k + 1] = kStartCentre[P - 1][k] * L;
    peaks[3 * k + 2] = kStartWidth[P - 1] * L;
  }
  constexpr HeldMask<3 * P> nothingHeld{};
  heldFit<PeakModel<P>>(midpoint, slope, slopes, peaks, nothingHeld, peaks);

  // A centre outside the measured range, or NaN, loses every peak.
  for (int k = 0; k < P; ++k) {
    const real_T c = peaks[3 * k + 1];
    if (c != c || c < x[0] || c > x[n - 1]) return;
  }
  for (int k = 0; k < P; ++k) out[k] = peaks[3 * k + 1];
  if constexpr (P == 2) sortTwoAscending(out);
  if constexpr (P == 3) sortThreeAscending(out);
}

template void derivativePeaks<1>(const real_T*, const real_T*, int32_T, real_T*);
template void derivativePeaks<2>(const real_T*, const real_T*, int32_T, real_T*);
template void derivativePeaks<3>(const real_T*, const real_T*, int32_T, real_T*);

}  // namespace quent
