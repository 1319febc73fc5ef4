// One procedure for every family; a member names the fewest points a curve needs
// and the fixed-RT attempts tried on it, in order.  The first attempt to reach
// 0.95 settles the question, so a good curve costs a single fit.
#include "primary/curve_usable.h"

#include <cmath>

#include "frame/limits.h"
#include "frame/vector_view.h"
#include "models/curve_models.h"
#include "models/r_squared.h"
#include "numerics/order_statistics.h"
#include "primary/screen_spikes.h"
#include "strategies/one_transition_attempts.h"

namespace quent {
namespace {

using Attempt = void (*)(const real_T* x, const real_T* y, int32_T n, real_T* result);

// The members, one per transition count:
//   T | fewest points | attempts, in order
//   1 |       8       | the four free one-transition attempts at the fixed RT
//   2 |      12       | the five two-transition attempts at the fixed RT
//   3 |      16       | the five three-transition attempts at the fixed RT
// A member is added here with its family's attempts; the two- and
// three-transition split attempts then count as failed below 8 kept points.
template <int T> struct UsableMember;
template <> struct UsableMember<1> {
  static constexpr int32_T kMinPoints = 8;
  static constexpr Attempt kAttempts[] = {attemptThreePointFullFixedRT,
                                          attemptThreePointCoreFixedRT, attemptFlatCoreFixedRT,
                                          attemptSegmentCoreFixedRT};
};

constexpr real_T kMinRSquared = 0.95;
constexpr int32_T kEndPoints = 5;
// The attempts read three points of a curve at least (its ends and a middle).
constexpr int32_T kMinKept = 3;

thread_local real_T keptX[kMaxFitPoints];
thread_local real_T keptY[kMaxFitPoints];
thread_local int32_T spikeMask[kMaxFitPoints];

bool refusedCurve(const real_T* x, int32_T xCount, int32_T yCount, int32_T minPoints) {
  const int32_T n = xCount;
  return xCount != yCount || n < minPoints || n > kMaxFitPoints || x[0] == x[n - 1];
}

// The ends must lie a standard deviation apart.  A flat curve has a NaN
// ratio, which is not below 1: it goes on to the attempts and fails there.
bool noTransition(const real_T* y, int32_T n) {
  const real_T tailMean = meanOfFive(y + (n - kEndPoints));
  const real_T headMean = meanOfFive(y);
  const real_T sd = sampleStdDev(y, n);
  return std::fabs(headMean - tailMean) / sd < 1.0;
}

template <int T>
real_T usableOnKept(const real_T* x, const real_T* y, int32_T n, VectorView<int32_T> mask) {
  int32_T kept = 0;
  for (int32_T i = 0; i < n && i < mask.length; ++i)
    if (mask[i] == 1) keptX[kept] = x[i], keptY[kept] = y[i], ++kept;
  if (kept < kMinKept) return 0.0;
  real_T params[TransitionLayout<T>::kParams];
  for (const Attempt attempt : UsableMember<T>::kAttempts) {
    attempt(keptX, keptY, kept, params);
    if (rSquaredOfFit<T>(keptX, keptY, kept, params) >= kMinRSquared) return 1.0;
  }
  return 0.0;
}

VectorView<int32_T> plainView(const int32_T* mask, int32_T count) {
  VectorView<int32_T> v;
  v.data = mask;
  v.length = mask == nullptr || count < 0 ? 0 : count;
  return v;
}

// A null mask: keep what a spike screening of y keeps.
template <int T>
real_T usable(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
              const VectorView<int32_T>* mask) {
  if (refusedCurve(x, xCount, yCount, UsableMember<T>::kMinPoints)) return 0.0;
  if (noTransition(y, xCount)) return 0.0;
  if (mask != nullptr) return usableOnKept<T>(x, y, xCount, *mask);
  screenSpikes(y, xCount, spikeMask);
  return usableOnKept<T>(x, y, xCount, plainView(spikeMask, xCount));
}

}  // namespace

template <int T>
real_T curveUsable(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount) {
  return usable<T>(x, xCount, y, yCount, nullptr);
}

template <int T>
real_T curveUsableMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                         const int32_T* mask, int32_T maskCount) {
  const VectorView<int32_T> view = plainView(mask, maskCount);
  return usable<T>(x, xCount, y, yCount, &view);
}

template <int T>
real_T curveUsableMaskedPair(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                             const int32_T* maskData, const int32_T* maskSize) {
  const VectorView<int32_T> view = vectorView(maskData, maskSize);
  return usable<T>(x, xCount, y, yCount, &view);
}

template real_T curveUsable<1>(const real_T*, int32_T, const real_T*, int32_T);
template real_T curveUsableMasked<1>(const real_T*, int32_T, const real_T*, int32_T, const int32_T*, int32_T);
template real_T curveUsableMaskedPair<1>(const real_T*, int32_T, const real_T*, int32_T, const int32_T*, const int32_T*);

}  // namespace quent
