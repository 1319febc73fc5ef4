// Each round revises a fresh copy of the spike mask, not the mask of the last
// round, so a point that one fit could not explain can return under the next.
// The row and mask of the last good round stand.
#include "primary/fit_with_mask_revision.h"

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "frame/scalar.h"
#include "primary/primary_family.h"
#include "primary/revise_mask.h"
#include "primary/screen_spikes.h"

namespace quent {
namespace {

constexpr int kMaxRounds = 5;
constexpr real_T kMaxSpikePercent = 25.0;

// Masks of one curve, too large together for a frame that also runs a fit.
thread_local int32_T spikeMask[kMaxCurvePoints];
thread_local int32_T workMask[kMaxCurvePoints];
thread_local int32_T inputMask[kMaxCurvePoints];
thread_local int32_T revisedMask[kMaxCurvePoints];

bool sameMask(const int32_T* a, const int32_T* b, int32_T n) {
  for (int32_T i = 0; i < n; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

void copyMask(const int32_T* from, int32_T n, int32_T* to) {
  for (int32_T i = 0; i < n; ++i) to[i] = from[i];
}

}  // namespace

void fitWithMaskRevision(const real_T* x, const real_T* y, int32_T n, real_T stateCount,
                         real_T temperatureC, real_T* row, int32_T* mask) {
  writeClearedRow(0.0, row);
  for (int32_T i = 0; i < n; ++i) mask[i] = 1;
  if (n > kMaxCurvePoints) return;

  screenSpikes(y, n, spikeMask);
  int32_T spikes = 0;
  for (int32_T i = 0; i < n; ++i) spikes += spikeMask[i] == 0 ? 1 : 0;
  if (static_cast<real_T>(spikes) / static_cast<real_T>(n) * 100.0 > kMaxSpikePercent) return;

  copyMask(spikeMask, n, workMask);
  const int32_T family = saturatingInt32(stateCount);
  real_T candidate[kRowColumns];
  for (int round = 0; round < kMaxRounds; ++round) {
    copyMask(workMask, n, inputMask);
    fitFamilyMasked(family, x, y, n, inputMask, temperatureC, candidate, workMask);
    if (candidate[kColRT] <= 0.0) return;
    for (int c = 0; c < kRowColumns; ++c) row[c] = candidate[c];
    copyMask(workMask, n, mask);

    copyMask(spikeMask, n, revisedMask);
    reviseMask(x, y, n, candidate, revisedMask);
    if (sameMask(revisedMask, workMask, n)) return;
    copyMask(revisedMask, n, workMask);
  }
}

}  // namespace quent
