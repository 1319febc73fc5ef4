// The one procedure behind the fit strategies of every transition count: a
// gate, a table of free start attempts, baselines averaged from the good
// ones, attempts with those baselines held, and two ladders of falling
// thresholds.  A family (family.h) supplies its attempts, tables and codes as
// a traits type; where families differ, the trait says how, and the steps
// below stay one.  The entry points are fitWhole, fitMasked and fitTrimmed.
#pragma once

#include <algorithm>
#include <iterator>

#include "frame/fit_row.h"
#include "frame/kept_points.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "models/end_agreement.h"
#include "models/r_squared.h"
#include "numerics/sort.h"
#include "quent_dgtrend.h"
#include "strategies/acceptance_walks.h"
#include "strategies/attempt_runner.h"
#include "strategies/attempt_table.h"
#include "strategies/family.h"

namespace quent {
namespace strategy {

template <class F>
using Vector = real_T[F::Layout::kParams];

template <class F>
constexpr int kParamsOf = F::Layout::kParams;

template <class F>
constexpr int kBothHeldAttempts = static_cast<int>(std::size(F::kBothHeld));

// The tables of one pass.  Zeroed: a slot not yet filled holds zeros.
template <class F>
struct Tables {
  static_assert(F::StartTable::kParams == kParamsOf<F> && F::HeldTable::kParams == kParamsOf<F>);
  typename F::StartTable start;
  typename F::HeldTable nativeHeld;
  typename F::HeldTable unfoldedHeld;
  typename F::Estimate estimate;
  HeldBaselines baselines;
};

// The whole curve behind a masked main pass, for its retries without end
// points.  mask is the pass's own mask; maskOut receives the mask of the row.
struct MaskedCurve {
  const real_T* x;
  const real_T* y;
  int32_T n;
  const int32_T* mask;
  real_T temperature;
  int32_T* maskOut;
};

// Points kept by a mask, in order, at most kMaxFitPoints.
struct CompactCurve {
  real_T x[kMaxFitPoints];
  real_T y[kMaxFitPoints];
  int32_T n;
  CurvePoints points() const { return {x, y, n}; }
};

inline void compact(const real_T* x, const real_T* y, const int32_T* mask, int32_T n,
                    CompactCurve& out) {
  out.n = gatherKept(x, y, mask, n, out.x, out.y, kMaxFitPoints);
}

// Written as the refusal reads, so a NaN temperature is not refused.
inline bool temperatureInRange(real_T temperature) {
  return !(temperature < 0.0 || temperature > 100.0);
}

template <class F, class Table>
real_T scoreSlot(const CurvePoints& c, const Table& t, int s) {
  Vector<F> v;
  t.get(s, v);
  return rSquaredOfFit<F::T>(c.x, c.y, c.n, v);
}

template <class F, class Table>
void scoreSlots(const CurvePoints& c, Table& t, int first, int end) {
  for (int s = first; s < end; ++s) t.score[s] = scoreSlot<F>(c, t, s);
}

template <class F, class Table>
void agreeSlots(const CurvePoints& c, Table& t) {
  for (int s = 0; s < Table::kSlots; ++s) {
    Vector<F> v;
    real_T agree[2];
    t.get(s, v);
    endAgreement<F::T>(c.x, c.n, c.y, c.n, v, agree);
    t.nativeFlag[s] = agree[0];
    t.unfoldedFlag[s] = agree[1];
  }
}

template <class F, class Table>
void writeSlot(const CurvePoints& c, const Table& t, int s, int code, real_T* row) {
  Vector<F> v;
  t.get(s, v);
  writeFitRow<F::T>(c.x, c.y, c.n, v, static_cast<real_T>(code), row);
}

template <class F>
void writeFailed(int code, real_T* row) {
  writeFailedRow<F::T>(static_cast<real_T>(code), row);
}

// Means of the baseline pairs over the good slots that meet each end.
template <class F, class Table>
HeldBaselines baselinesFromGoodSlots(const Table& t) {
  using L = typename F::Layout;
  real_T native[2] = {0.0, 0.0}, unfolded[2] = {0.0, 0.0};
  int32_T nativeCount = 0, unfoldedCount = 0;
  for (int s = 0; s < Table::kSlots; ++s) {
    if (!(t.score[s] >= kGoodScore)) continue;
    if (meetsEnd(t.nativeFlag[s])) {
      native[0] += t.at(s, L::nativeIntercept);
      native[1] += t.at(s, L::nativeSlope);
      ++nativeCount;
    }
    if (meetsEnd(t.unfoldedFlag[s])) {
      unfolded[0] += t.at(s, L::unfoldedIntercept);
      unfolded[1] += t.at(s, L::unfoldedSlope);
      ++unfoldedCount;
    }
  }
  HeldBaselines b{{0.0, 0.0}, nativeCount, {0.0, 0.0}, unfoldedCount};
  if (nativeCount > 0) {
    b.native[0] = native[0] / static_cast<real_T>(nativeCount);
    b.native[1] = native[1] / static_cast<real_T>(nativeCount);
  }
  if (unfoldedCount > 0) {
    b.unfolded[0] = unfolded[0] / static_cast<real_T>(unfoldedCount);
    b.unfolded[1] = unfolded[1] / static_cast<real_T>(unfoldedCount);
  }
  return b;
}

// Stage 1.  False when no start scored 0.0 or more.
template <class F>
bool startStage(const CurvePoints& c, real_T RT, Tables<F>& w) {
  static_assert(F::kBestWalkEnd <= F::StartTable::kSlots);
  F::startAttempts(c, RT, w.start, w.estimate);
  const BestSlot best = bestSlot(w.start.score, 0, F::kBestWalkEnd, 0);
  if (best.score < 0.0) return false;
  F::completeStartTable(c, RT, best.slot, w.start, w.estimate);
  agreeSlots<F>(c, w.start);
  w.baselines = baselinesFromGoodSlots<F>(w.start);
  F::reviseEstimate(c, w.start, w.estimate);
  return true;
}

// A member of a stage with the stage's baselines and estimate.  Members that
// take the family's estimate run only while it is usable; otherwise their
// vector is failed.
template <class F>
void runMember(typename F::Attempt id, const CurvePoints& c, real_T RT,
                   const HeldBaselines& b, const typename F::Estimate& e, real_T* v) {
  if (F::kAttempts[static_cast<int>(id)].takes != Takes::Nothing && !F::estimateUsable(e)) {
    for (int k = 0; k < kParamsOf<F>; ++k) v[k] = kFailed;
    return;
  }
  runAttempt<F>(id, c, RT, e, b.native, b.unfolded, v);
}

// A held table, for one side: its members in order, failed slots after them.
// Filled also when only the other side's baseline is known: the members then
// fall back to the curve's own baselines.
template <class F>
void fillHeldTable(Side side, const CurvePoints& c, real_T RT, const HeldBaselines& b,
                   const typename F::Estimate& e, typename F::HeldTable& t) {
  const auto& members = side == Side::Native ? F::kNativeHeld : F::kUnfoldedHeld;
  constexpr int kMembers = static_cast<int>(std::size(F::kNativeHeld));
  static_assert(std::size(F::kUnfoldedHeld) == std::size(F::kNativeHeld));
  Vector<F> v;
  for (int s = 0; s < kMembers; ++s) {
    runMember<F>(members[s], c, RT, b, e, v);
    t.set(s, v);
  }
  for (int s = kMembers; s < F::HeldTable::kSlots; ++s) t.fail(s);
}

// Stage 2: the accepted attempt with both baselines held, or null.
template <class F>
const real_T* bothHeldStage(const CurvePoints& c, real_T RT, const Tables<F>& w,
                            real_T (&v)[kBothHeldAttempts<F>][kParamsOf<F>]) {
  constexpr int kCount = kBothHeldAttempts<F>;
  real_T sorted[kCount];
  int32_T order[kCount];
  for (int k = 0; k < kCount; ++k) {
    runMember<F>(F::kBothHeld[k], c, RT, w.baselines, w.estimate, v[k]);
    sorted[k] = rSquaredOfFit<F::T>(c.x, c.y, c.n, v[k]);
  }
  sortDescendingWithOrder(sorted, kCount, order);
  return bothHeldAccepted(sorted, kCount, F::kBothHeldEvery) ? v[order[0] - 1] : nullptr;
}

// Stages 3 and 4 on a filled table: rank its scores in place, let the family
// refine, and walk the ranked scores against the flags of the other end.
// The slot found, or -1.
template <class F>
int heldStage(Side side, const CurvePoints& c, typename F::HeldTable& t) {
  constexpr int kSlots = F::HeldTable::kSlots;
  static_assert(F::kHeldScored <= kSlots);
  scoreSlots<F>(c, t, 0, F::kHeldScored);
  for (int s = F::kHeldScored; s < kSlots; ++s) t.score[s] = 0.0;
  int32_T order[kSlots];
  sortDescendingWithOrder(t.score, kSlots, order);
  F::refineHeldTable(c, order, t);
  agreeSlots<F>(c, t);
  const real_T* otherEnd = side == Side::Native ? t.unfoldedFlag : t.nativeFlag;
  return heldTableWalk(otherEnd, t.score, kSlots);
}

// The code of a hit of the pair ladder in a pass.
template <class F>
int pairLadderCode(Pass pass, const PairHit& hit) {
  const PairRung& rung = F::kPairRungs[hit.rung];
  return (pass == Pass::Main ? rung.mainCodes : rung.trimBothCodes)[hit.unfolded ? 1 : 0];
}

// Stage 5.  Scores are those of the slots as they now stand, in table order;
// each is a pure function of its vector, so one evaluation serves every step.
template <class F>
bool pairLadderStage(Pass pass, const CurvePoints& c, Tables<F>& w, real_T* row) {
  constexpr int kSlots = F::HeldTable::kSlots;
  scoreSlots<F>(c, w.nativeHeld, 0, kSlots);
  scoreSlots<F>(c, w.unfoldedHeld, 0, kSlots);
  constexpr int kRungs = static_cast<int>(std::size(F::kPairRungs));
  const PairHit hit = pairLadder(F::kPairRungs, kRungs, w.nativeHeld.score, w.unfoldedHeld.score);
  if (hit.rung < 0) return false;
  writeSlot<F>(c, hit.unfolded ? w.unfoldedHeld : w.nativeHeld, hit.slot,
               pairLadderCode<F>(pass, hit), row);
  return true;
}

// Stage 6.  The start table's scores still stand as stage 1 left them, all
// slots scored and none ranked; each is a pure function of its vector.
template <class F>
void firstPassStage(Pass pass, const CurvePoints& c, Tables<F>& w, real_T* row) {
  constexpr int kPlaces = static_cast<int>(std::size(F::kFirstPassRungs));
  const FirstPassHit hit = firstPassLadder(std::data(F::kFirstPassRungs), kPlaces, w.start.score);
  if (hit.place < 0) {
    writeFailed<F>(F::kCodes[static_cast<int>(pass)].exhausted, row);
    return;
  }
  const FirstPassRung& rung = F::kFirstPassRungs[hit.place];
  writeSlot<F>(c, w.start, rung.slot, rung.code, row);
}

template <class F>
void fitMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
               const int32_T* mask, int32_T maskCount, real_T temperature, real_T* row,
               int32_T* maskOut);
template <class F>
void fitTrimmed(Pass pass, const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                const int32_T* mask, int32_T maskCount, real_T temperature, real_T* row,
                int32_T* maskOut);

// No start was worth keeping: take off the first point of the curve, or else
// the last, and fit again.  mask[0] and mask[n-1] are entries of the whole
// curve, so the depth is at most three calls.
template <class F>
bool dropEndAndRefit(const MaskedCurve& m, real_T* row) {
  int32_T end;
  if (m.mask[0] == 1) {
    end = 0;
  } else if (m.mask[m.n - 1] == 1) {
    end = m.n - 1;
  } else {
    return false;
  }
  m.maskOut[end] = 0;
  int32_T next[kMaxFitPoints];
  std::copy_n(m.maskOut, m.n, next);
  fitMasked<F>(m.x, m.n, m.y, m.n, next, m.n, m.temperature, row, m.maskOut);
  return true;
}

// Retry without end points: `dropFirst`/`dropLast` say which.  Success (a
// row with an RT) ends the masked pass with the retry's mask.
template <class F>
bool retryWithoutEnds(Pass pass, const MaskedCurve& m, bool dropFirst, bool dropLast,
                      real_T* row) {
  int32_T trimmed[kMaxFitPoints], returned[kMaxFitPoints];
  std::copy_n(m.mask, m.n, trimmed);
  if (dropFirst) trimmed[0] = 0;
  if (dropLast) trimmed[m.n - 1] = 0;
  fitTrimmed<F>(pass, m.x, m.n, m.y, m.n, trimmed, m.n, m.temperature, row, returned);
  if (!rowHasFit(row)) return false;
  std::copy_n(returned, m.n, m.maskOut);
  return true;
}

// The first point may go only if the unfolded baseline is known, the last
// only if the native one is: the held baseline of the far end anchors the fit.
template <class F>
bool trimOneEnd(const MaskedCurve& m, const HeldBaselines& b, real_T* row) {
  if (b.unfoldedCount > 0 && m.mask[0] == 1)
    return retryWithoutEnds<F>(Pass::TrimOne, m, true, false, row);
  if (b.nativeCount > 0 && m.mask[m.n - 1] == 1)
    return retryWithoutEnds<F>(Pass::TrimOne, m, false, true, row);
  return false;
}

template <class F>
bool trimBothEnds(const MaskedCurve& m, real_T* row) {
  if (!(m.mask[0] == 1 || m.mask[m.n - 1] == 1)) return false;
  return retryWithoutEnds<F>(Pass::TrimBoth, m, true, true, row);
}

// Stages 1 to 6 of a pass on curve points that passed its gate.  `whole` is
// set for the masked main pass alone.  Every path writes the row.
template <class F>
void runPass(Pass pass, const CurvePoints& c, real_T RT, const MaskedCurve* whole, real_T* row) {
  const PassCodes& codes = F::kCodes[static_cast<int>(pass)];
  Tables<F> w{};
  if (!startStage<F>(c, RT, w)) {
    if (whole != nullptr && dropEndAndRefit<F>(*whole, row)) return;
    writeFailed<F>(codes.noStart, row);
    return;
  }
  const HeldBaselines& b = w.baselines;
  const bool bothKnown = b.nativeCount > 0 && b.unfoldedCount > 0;
  real_T bothHeld[kBothHeldAttempts<F>][kParamsOf<F>];

  const real_T* chosen = bothKnown ? bothHeldStage<F>(c, RT, w, bothHeld) : nullptr;
  if (chosen != nullptr) {
    writeFitRow<F::T>(c.x, c.y, c.n, chosen, static_cast<real_T>(codes.bothHeld), row);
    return;
  }
  if (pass == Pass::TrimOne) {
    writeFailed<F>(codes.exhausted, row);
    return;
  }
  if constexpr (F::kTrimsEnds) {
    if (whole != nullptr && trimOneEnd<F>(*whole, b, row)) return;
  }

  if (b.nativeCount > 0 || b.unfoldedCount > 0) {
    fillHeldTable<F>(Side::Native, c, RT, b, w.estimate, w.nativeHeld);
    if (b.nativeCount > 0) {
      const int s = heldStage<F>(Side::Native, c, w.nativeHeld);
      if (s >= 0) {
        writeSlot<F>(c, w.nativeHeld, s, codes.nativeHeld, row);
        return;
      }
    }
    fillHeldTable<F>(Side::Unfolded, c, RT, b, w.estimate, w.unfoldedHeld);
    if (b.unfoldedCount > 0) {
      const int s = heldStage<F>(Side::Unfolded, c, w.unfoldedHeld);
      if (s >= 0) {
        writeSlot<F>(c, w.unfoldedHeld, s, codes.unfoldedHeld, row);
        return;
      }
    }
    if (pairLadderStage<F>(pass, c, w, row)) return;
  }

  if constexpr (F::kTrimsEnds) {
    if (whole != nullptr && trimBothEnds<F>(*whole, row)) return;
  }
  if (pass == Pass::TrimBoth) {
    writeFailed<F>(codes.exhausted, row);
    return;
  }
  firstPassStage<F>(pass, c, w, row);
}

// The whole curve, gated.
template <class F>
void fitWhole(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
              real_T temperature, real_T* row) {
  const PassCodes& codes = F::kCodes[static_cast<int>(Pass::Main)];
  const int32_T n = xCount;
  if (xCount != yCount || n < F::kMinPoints || n > kMaxFitPoints ||
      !temperatureInRange(temperature)) {
    writeFailed<F>(codes.badInput, row);
    return;
  }
  if (!curveChanges(y, n, F::kFlatCurve)) {
    writeFailed<F>(codes.noChange, row);
    return;
  }
  if (spansNoWidth(x, n)) {
    writeFailed<F>(codes.flatX, row);
    return;
  }
  runPass<F>(Pass::Main, {x, y, n}, rtFromCelsius(temperature), nullptr, row);
}

// The points a mask leaves on; the row is written on them, and maskOut gets
// the mask it was fitted with.
template <class F>
void fitMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
               const int32_T* mask, int32_T maskCount, real_T temperature, real_T* row,
               int32_T* maskOut) {
  const PassCodes& codes = F::kCodes[static_cast<int>(Pass::Main)];
  std::copy_n(mask, maskCount, maskOut);
  const int32_T n = xCount;
  if (xCount != yCount || xCount != maskCount || n < F::kMinPoints || n > kMaxFitPoints ||
      !temperatureInRange(temperature)) {
    writeFailed<F>(codes.badInput, row);
    return;
  }
  if (countKept(mask, n) < F::kMinPoints) {
    writeMaskTooShortRow(row);
    return;
  }
  CompactCurve kept;
  compact(x, y, mask, n, kept);
  if (spansNoWidth(kept.x, kept.n)) {
    writeFailed<F>(codes.flatX, row);
    return;
  }
  if (!curveChanges(kept.y, kept.n, F::kFlatCurve)) {
    writeFailed<F>(codes.noChange, row);
    return;
  }
  const MaskedCurve whole{x, y, n, mask, temperature, maskOut};
  runPass<F>(Pass::Main, kept.points(), rtFromCelsius(temperature), &whole, row);
}

// A retry of the masked form on its trimmed mask: no gate, at most 384
// points, and the codes of its pass.  The caller leaves at least five points on.
template <class F>
void fitTrimmed(Pass pass, const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                const int32_T* mask, int32_T maskCount, real_T temperature, real_T* row,
                int32_T* maskOut) {
  const PassCodes& codes = F::kCodes[static_cast<int>(pass)];
  std::copy_n(mask, maskCount, maskOut);
  const int32_T n = std::min({maskCount, xCount, yCount});
  CompactCurve kept;
  compact(x, y, mask, n, kept);
  if (!curveChanges(kept.y, kept.n, F::kFlatCurve)) {
    writeFailed<F>(codes.noChange, row);
    return;
  }
  if (spansNoWidth(kept.x, kept.n)) {
    writeFailed<F>(codes.flatX, row);
    return;
  }
  runPass<F>(pass, kept.points(), rtFromCelsius(temperature), nullptr, row);
}

}  // namespace strategy
}  // namespace quent
