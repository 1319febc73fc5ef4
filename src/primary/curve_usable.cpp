// One procedure for every family; the family names the fewest points a curve
// needs and the fixed-RT attempts tried on it, in order.  The first attempt to
// reach 0.95 settles the question, so a good curve costs a single fit.
#include "primary/curve_usable.h"

#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/thread_scratch.h"
#include "frame/vector_view.h"
#include "models/r_squared.h"
#include "primary/screen_spikes.h"
#include "strategies/acceptance_walks.h"
#include "strategies/attempt_runner.h"
#include "strategies/families.h"

namespace quent {
namespace {

constexpr real_T kMinRSquared = 0.95;
// The attempts read three points of a curve at least (its ends and a middle).
constexpr int32_T kMinKept = 3;

// The points the attempts see, and the spike mask that picks them.
struct Kept {
  real_T x[kMaxFitPoints];
  real_T y[kMaxFitPoints];
  int32_T spikeMask[kMaxFitPoints];
};

bool refusedCurve(const real_T* x, int32_T xCount, int32_T yCount, int32_T minPoints) {
  const int32_T n = xCount;
  return xCount != yCount || n < minPoints || n > kMaxFitPoints || spansNoWidth(x, n);
}

template <class F>
real_T usableOnKept(const real_T* x, const real_T* y, int32_T n, VectorView<int32_T> mask,
                    Kept& s) {
  real_T* const keptX = s.x;
  real_T* const keptY = s.y;
  const int32_T kept = gatherKept(x, y, mask, n < mask.length ? n : mask.length, keptX, keptY);
  if (kept < kMinKept) return 0.0;
  const CurvePoints points{keptX, keptY, kept};
  real_T params[F::Layout::kParams];
  for (const auto attempt : F::kUsableAttempts) {
    runFixedRT<F>(attempt, points, params);
    if (rSquaredOfFit<F::T>(keptX, keptY, kept, params) >= kMinRSquared) return 1.0;
  }
  return 0.0;
}

VectorView<int32_T> plainView(const int32_T* mask, int32_T count) {
  VectorView<int32_T> v;
  v.data = mask;
  v.length = mask == nullptr || count < 0 ? 0 : count;
  return v;
}

// A null mask: keep what a spike screening of y keeps.  The ends must lie a
// standard deviation apart; a flat curve goes on to the attempts and fails
// there.
real_T usable(int32_T stateCount, const real_T* x, int32_T xCount, const real_T* y,
              int32_T yCount, const VectorView<int32_T>* mask) {
  return withFamily(stateCount, [&]<class F>() -> real_T {
    if (refusedCurve(x, xCount, yCount, F::kUsableMinPoints)) return 0.0;
    if (!curveChanges(y, xCount, FlatCurve::GoesOn)) return 0.0;
    Kept* s = threadScratch<Kept>();
    if (s == nullptr) return 0.0;
    if (mask != nullptr) return usableOnKept<F>(x, y, xCount, *mask, *s);
    screenSpikes(y, xCount, s->spikeMask);
    return usableOnKept<F>(x, y, xCount, plainView(s->spikeMask, xCount), *s);
  });
}

}  // namespace

real_T curveUsable(int32_T stateCount, const real_T* x, int32_T xCount, const real_T* y,
                   int32_T yCount) {
  return usable(stateCount, x, xCount, y, yCount, nullptr);
}

real_T curveUsableMasked(int32_T stateCount, const real_T* x, int32_T xCount, const real_T* y,
                         int32_T yCount, const int32_T* mask, int32_T maskCount) {
  const VectorView<int32_T> view = plainView(mask, maskCount);
  return usable(stateCount, x, xCount, y, yCount, &view);
}

real_T curveUsableMaskedPair(int32_T stateCount, const real_T* x, int32_T xCount,
                             const real_T* y, int32_T yCount, const int32_T* maskData,
                             const int32_T* maskSize) {
  const VectorView<int32_T> view = vectorView(maskData, maskSize);
  return usable(stateCount, x, xCount, y, yCount, &view);
}

}  // namespace quent
