// Each round revises a fresh copy of the spike mask, not the mask of the last
// round, so a point that one fit could not explain can return under the next.
// The row and mask of the last good round stand.
#include "primary/fit_with_mask_revision.h"

#include <algorithm>

#include "frame/fit_row.h"
#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/thread_scratch.h"
#include "primary/revise_mask.h"
#include "primary/screen_spikes.h"
#include "strategies/families.h"
#include "strategies/strategy_skeleton.h"

namespace quent {
namespace {

constexpr int kMaxRounds = 5;
constexpr real_T kMaxSpikePercent = 25.0;

// Masks of one curve, too large together for a frame that also runs a fit.
struct Masks {
  int32_T spikeMask[kMaxCurvePoints];
  int32_T workMask[kMaxCurvePoints];
  int32_T inputMask[kMaxCurvePoints];
  int32_T revisedMask[kMaxCurvePoints];
};

}  // namespace

void fitWithMaskRevision(const real_T* x, const real_T* y, int32_T n, int32_T stateCount,
                         real_T temperatureC, real_T* row, int32_T* mask) {
  writeBlankRow(row);
  std::fill_n(mask, n, 1);
  Masks* s = threadScratch<Masks>();
  if (n > kMaxCurvePoints || s == nullptr) return;
  int32_T* const spikeMask = s->spikeMask;
  int32_T* const workMask = s->workMask;
  int32_T* const inputMask = s->inputMask;
  int32_T* const revisedMask = s->revisedMask;

  screenSpikes(y, n, spikeMask);
  const auto spikes = std::count(spikeMask, spikeMask + n, 0);
  if (static_cast<real_T>(spikes) / static_cast<real_T>(n) * 100.0 > kMaxSpikePercent) return;

  std::copy_n(spikeMask, n, workMask);
  real_T candidate[kRowColumns];
  for (int round = 0; round < kMaxRounds; ++round) {
    std::copy_n(workMask, n, inputMask);
    withFamily(stateCount, [&]<class F>() {
      strategy::fitMasked<F>(x, n, y, n, inputMask, n, temperatureC, candidate, workMask);
    });
    if (!rowHasFit(candidate)) return;
    std::copy_n(candidate, kRowColumns, row);
    std::copy_n(workMask, n, mask);

    std::copy_n(spikeMask, n, revisedMask);
    reviseMask(x, y, n, candidate, revisedMask);
    if (sameMask(revisedMask, workMask, n)) return;
    std::copy_n(revisedMask, n, workMask);
  }
}

}  // namespace quent
