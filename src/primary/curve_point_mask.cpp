// Every refit starts from the reference row; the rounds of a pass differ only
// by the mask.  A failed refit costs the curve one end point; a good one
// revises a fresh copy of the spike mask, so that a point dropped by one
// round's residuals can come back in the next.
#include "primary/curve_point_mask.h"

#include <algorithm>

#include "frame/fit_row.h"
#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/thread_scratch.h"
#include "frame/row_layout.h"
#include "primary/finish_row.h"
#include "primary/refit_from_row.h"
#include "primary/revise_mask.h"
#include "primary/screen_spikes.h"
#include "strategies/families.h"

namespace quent {
namespace {

constexpr int kRounds = 5;

// The end points a failed refit may clear, first match still kept; negative
// entries count from the end (-1 the last point).  The held pass may clear
// the two outermost points at each end, the free pass only the outermost.
constexpr int32_T kHeldPassEnds[] = {0, -1, 1, -2};
constexpr int32_T kFreePassEnds[] = {0, -1};

// The spike mask, the mask of the round, the last good mask of each pass, and
// the points a round keeps.
struct Masks {
  int32_T baseMask[kMaxCurvePoints];
  int32_T workMask[kMaxCurvePoints];
  int32_T heldPassMask[kMaxCurvePoints];
  int32_T freePassMask[kMaxCurvePoints];
  real_T keptX[kMaxCurvePoints];
  real_T keptY[kMaxCurvePoints];
};

template <int32_T Count>
void clearFirstKeptEnd(const int32_T (&ends)[Count], int32_T n, int32_T* mask) {
  for (const int32_T end : ends) {
    const int32_T i = end >= 0 ? end : n + end;
    if (i < 0 || i >= n || mask[i] != 1) continue;
    mask[i] = 0;
    return;
  }
}

// One pass of at most five refits from the reference row, starting from the
// spike mask.  passRow and passMask keep the last good round; the pass ends
// when a round leaves the working mask equal to passMask.
template <int T, int32_T EndCount>
void refitPass(const real_T* x, const real_T* y, int32_T n, const real_T* reference,
               bool amplitudesHeld, int codeOffset, const int32_T (&ends)[EndCount],
               real_T* passRow, int32_T* passMask, Masks& s) {
  int32_T* const baseMask = s.baseMask;
  int32_T* const workMask = s.workMask;
  std::copy_n(baseMask, n, workMask);
  for (int r = 1; r <= kRounds; ++r) {
    real_T params[TransitionLayout<T>::kParams];
    real_T candidate[kRowColumns];
    refitMasked<T>(x, y, n, reference, workMask, amplitudesHeld, params);
    const int32_T kept = gatherKept(x, y, workMask, n, s.keptX, s.keptY);
    finishRow<T>(s.keptX, s.keptY, kept, params, r + codeOffset, candidate);
    if (!rowHasFit(candidate)) {
      clearFirstKeptEnd(ends, n, workMask);
    } else {
      std::copy_n(candidate, kRowColumns, passRow);
      std::copy_n(workMask, n, passMask);
      std::copy_n(baseMask, n, workMask);
      reviseMask(x, y, n, candidate, workMask);
    }
    if (sameMask(workMask, passMask, n)) return;
  }
}

void take(const real_T* passRow, const int32_T* passMask, int32_T n, real_T* row,
          int32_T* mask) {
  std::copy_n(passRow, kRowColumns, row);
  std::copy_n(passMask, n, mask);
}

}  // namespace

template <int T>
void buildCurveMask(const real_T* x, const real_T* y, int32_T n, const real_T* referenceRow,
                    real_T* row, int32_T* mask) {
  std::fill_n(mask, n, 1);
  Masks* s = threadScratch<Masks>();
  if (s == nullptr) {
    writeBlankRow(row);
    return;
  }
  int32_T* const heldPassMask = s->heldPassMask;
  int32_T* const freePassMask = s->freePassMask;
  screenSpikes(y, n, s->baseMask);

  // First pass: shares held (one transition has none to hold).
  real_T heldPassRow[kRowColumns];
  writeClearedRow(11.0, heldPassRow);
  std::fill_n(heldPassMask, n, 1);
  refitPass<T>(x, y, n, referenceRow, true, 0, kHeldPassEnds, heldPassRow, heldPassMask, *s);
  if constexpr (T == 1) {
    take(heldPassRow, heldPassMask, n, row, mask);
  } else {
    // The plateau check that picks between the passes, as the fit was
    // settled, measures each pass's row on all-zero points: no plateau is
    // ever found there, so the held pass never ends the curve here, the free
    // pass always runs, and it stands by its shares alone.
    // Second pass: shares free, codes 6 to 10.
    real_T freePassRow[kRowColumns];
    writeBlankRow(freePassRow);
    heldPassRow[kColCode] = 12.0;
    // All points until a round fits: the pass compares each round's mask with it.
    std::fill_n(freePassMask, n, 1);
    refitPass<T>(x, y, n, referenceRow, false, 5, kFreePassEnds, freePassRow, freePassMask, *s);
    if (Family<T>::maskFreePassStands(freePassRow, referenceRow))
      take(freePassRow, freePassMask, n, row, mask);
    else
      take(heldPassRow, heldPassMask, n, row, mask);
  }
}

template void buildCurveMask<1>(const real_T*, const real_T*, int32_T, const real_T*, real_T*, int32_T*);
template void buildCurveMask<2>(const real_T*, const real_T*, int32_T, const real_T*, real_T*, int32_T*);
template void buildCurveMask<3>(const real_T*, const real_T*, int32_T, const real_T*, real_T*, int32_T*);

}  // namespace quent
