// The one procedure behind the fit strategies of every transition count: a
// gate, a table of free start attempts, baselines averaged from the good
// ones, attempts with those baselines held, and two ladders of falling
// thresholds.  A family (one_transition_family.h) supplies its attempts,
// tables and codes as a traits type; where families differ, the trait says
// how, and the steps below stay one.
//
// A family F provides:
//   T                         transitions of its model (1, 2, 3)
//   kMinPoints                least number of points a fit takes
//   StartTable, HeldTable     AttemptTable types of its start and held tables
//   kHeldScored               held slots scored before ranking; the rest rank at 0.0
//   kBestWalkEnd              the best-start walk covers start slots [0, kBestWalkEnd)
//   kBothHeldAttempts         attempts with both baselines held
//   kBothHeldEvery            those are accepted only if all are good (else the best)
//   kFlatWhenRatioNaN         a flat curve (NaN change ratio) fails the change test
//   kTrimsEnds                the masked form retries without end points
//   kPairRungs, kFirstPassOrder   the two ladders
//   kCodes[Pass], pairCode, firstPassCode   its exit codes
//   Estimate                  what it estimates of the transitions (midpoints, amplitudes)
//   startAttempts             the free attempts, scored as far as the best-start walk reads
//   completeStartTable        what follows the best start; every start slot scored after it
//   reviseEstimate            the estimate after the good starts are known
//   bothHeldAttempts          the attempts with both baselines held
//   fillHeldTable             a held table, for one side
//   refineHeldTable           what a ranked held table adds (its refinement slot)
#pragma once

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "models/curve_models.h"
#include "models/end_agreement.h"
#include "models/r_squared.h"
#include "numerics/sort.h"
#include "quent_dgtrend.h"
#include "strategies/acceptance_walks.h"
#include "strategies/attempt_table.h"

namespace quent {

// The points a pass fits: a whole curve, or the points a mask leaves on.
struct CurvePoints {
  const real_T* x;
  const real_T* y;
  int32_T n;
};

// Baselines averaged over the good start attempts that meet that end of the
// curve, as (intercept, slope), and how many attempts gave each.  A baseline
// no attempt gave is (0, 0), which the attempts take as absent.
struct HeldBaselines {
  real_T native[2];
  real_T nativeCount;
  real_T unfolded[2];
  real_T unfoldedCount;
};

enum class Side : unsigned char { Native, Unfolded };

// The main pass fits the curve (or the points its mask leaves on); the
// masked form may retry without one end point (a short pass that only
// accepts both baselines held) or without both (a long pass without the
// first-pass ladder).
enum class Pass : int { Main, TrimOne, TrimBoth };

// Exit codes of a pass; 0 where the pass has no such exit.  The pair ladder
// numbers its hits from `pairLadder` and the first-pass ladder from
// `firstPassLadder` in the families that count them in order.
struct PassCodes {
  int badInput;
  int noChange;
  int flatX;
  int noStart;
  int bothHeld;
  int nativeHeld;
  int unfoldedHeld;
  int pairLadder;
  int firstPassLadder;
  int exhausted;
};

namespace strategy {

template <class F>
using Vector = real_T[TransitionLayout<F::T>::kParams];

template <class F>
constexpr int kParamsOf = TransitionLayout<F::T>::kParams;

// The tables of one pass.  Zeroed: a slot not yet filled holds zeros.
template <class F>
struct Tables {
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
  out.n = 0;
  for (int32_T i = 0; i < n && out.n < kMaxFitPoints; ++i) {
    if (mask[i] == 1) {
      out.x[out.n] = x[i];
      out.y[out.n] = y[i];
      ++out.n;
    }
  }
}

template <class F>
bool curveChanges(const real_T* y, int32_T n) {
  const real_T ratio = endChangeRatio(y, n);
  return F::kFlatWhenRatioNaN ? ratio >= 1.0 : !(ratio < 1.0);
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
  using L = TransitionLayout<F::T>;
  real_T native[2] = {0.0, 0.0}, unfolded[2] = {0.0, 0.0};
  int nativeCount = 0, unfoldedCount = 0;
  for (int s = 0; s < Table::kSlots; ++s) {
    if (!(t.score[s] >= kGoodScore)) continue;
    if (t.nativeFlag[s] > 0.0) {
      native[0] += t.at(s, L::nativeIntercept);
      native[1] += t.at(s, L::nativeSlope);
      ++nativeCount;
    }
    if (t.unfoldedFlag[s] > 0.0) {
      unfolded[0] += t.at(s, L::unfoldedIntercept);
      unfolded[1] += t.at(s, L::unfoldedSlope);
      ++unfoldedCount;
    }
  }
  HeldBaselines b{{0.0, 0.0}, 0.0, {0.0, 0.0}, 0.0};
  if (nativeCount > 0) {
    b.nativeCount = static_cast<real_T>(nativeCount);
    b.native[0] = native[0] / b.nativeCount;
    b.native[1] = native[1] / b.nativeCount;
  }
  if (unfoldedCount > 0) {
    b.unfoldedCount = static_cast<real_T>(unfoldedCount);
    b.unfolded[0] = unfolded[0] / b.unfoldedCount;
    b.unfolded[1] = unfolded[1] / b.unfoldedCount;
  }
  return b;
}

// Stage 1.  False when no start scored 0.0 or more.
template <class F>
bool startStage(const CurvePoints& c, real_T RT, Tables<F>& w) {
  F::startAttempts(c, RT, w.start, w.estimate);
  const BestSlot best = bestSlot(w.start.score, 0, F::kBestWalkEnd, 0);
  if (best.score < 0.0) return false;
  F::completeStartTable(c, RT, best.slot, w.start, w.estimate);
  agreeSlots<F>(c, w.start);
  w.baselines = baselinesFromGoodSlots<F>(w.start);
  F::reviseEstimate(c, w.start, w.estimate);
  return true;
}

// Stage 2: the index of the accepted attempt with both baselines held, or -1.
template <class F>
int bothHeldStage(const CurvePoints& c, real_T RT, const Tables<F>& w,
                  real_T (&v)[F::kBothHeldAttempts][kParamsOf<F>]) {
  F::bothHeldAttempts(c, RT, w.baselines, w.estimate, v);
  real_T sorted[F::kBothHeldAttempts];
  int32_T order[F::kBothHeldAttempts];
  for (int k = 0; k < F::kBothHeldAttempts; ++k)
    sorted[k] = rSquaredOfFit<F::T>(c.x, c.y, c.n, v[k]);
  sortDescendingWithOrder(sorted, F::kBothHeldAttempts, order);
  return bothHeldAccepted(sorted, F::kBothHeldAttempts, F::kBothHeldEvery) ? order[0] - 1 : -1;
}

// Stages 3 and 4 on a filled table: rank its scores in place, let the family
// refine, and walk the ranked scores against the flags of the other end.
// The slot found, or -1.
template <class F>
int heldStage(Side side, const CurvePoints& c, typename F::HeldTable& t) {
  constexpr int kSlots = F::HeldTable::kSlots;
  scoreSlots<F>(c, t, 0, F::kHeldScored);
  for (int s = F::kHeldScored; s < kSlots; ++s) t.score[s] = 0.0;
  int32_T order[kSlots];
  sortDescendingWithOrder(t.score, kSlots, order);
  F::refineHeldTable(c, order, t);
  agreeSlots<F>(c, t);
  const real_T* otherEnd = side == Side::Native ? t.unfoldedFlag : t.nativeFlag;
  return heldTableWalk(otherEnd, t.score, kSlots);
}

// Stage 5.  Scores are those of the slots as they now stand, in table order;
// each is a pure function of its vector, so one evaluation serves every step.
template <class F>
bool pairLadderStage(Pass pass, const CurvePoints& c, Tables<F>& w, real_T* row) {
  constexpr int kSlots = F::HeldTable::kSlots;
  scoreSlots<F>(c, w.nativeHeld, 0, kSlots);
  scoreSlots<F>(c, w.unfoldedHeld, 0, kSlots);
  constexpr int kRungs = static_cast<int>(sizeof F::kPairRungs / sizeof F::kPairRungs[0]);
  const PairHit hit = pairLadder(F::kPairRungs, kRungs, w.nativeHeld.score, w.unfoldedHeld.score);
  if (hit.rung < 0) return false;
  writeSlot<F>(c, hit.unfolded ? w.unfoldedHeld : w.nativeHeld, hit.slot,
               F::pairCode(pass, hit.rung, hit.unfolded), row);
  return true;
}

// Stage 6.
template <class F>
void firstPassStage(Pass pass, const CurvePoints& c, Tables<F>& w, real_T* row) {
  constexpr int kSlots = F::StartTable::kSlots;
  scoreSlots<F>(c, w.start, 0, kSlots);
  constexpr int kOrder = static_cast<int>(sizeof F::kFirstPassOrder / sizeof F::kFirstPassOrder[0]);
  const int place = firstPassLadder(F::kFirstPassOrder, kOrder, w.start.score);
  if (place < 0) {
    writeFailed<F>(F::kCodes[static_cast<int>(pass)].exhausted, row);
    return;
  }
  writeSlot<F>(c, w.start, F::kFirstPassOrder[place], F::firstPassCode(pass, place), row);
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
  for (int32_T i = 0; i < m.n; ++i) next[i] = m.maskOut[i];
  fitMasked<F>(m.x, m.n, m.y, m.n, next, m.n, m.temperature, row, m.maskOut);
  return true;
}

// Retry without end points: `dropFirst`/`dropLast` say which.  Success (a
// row with an RT) ends the masked pass with the retry's mask.
template <class F>
bool retryWithoutEnds(Pass pass, const MaskedCurve& m, bool dropFirst, bool dropLast,
                      real_T* row) {
  int32_T trimmed[kMaxFitPoints], returned[kMaxFitPoints];
  for (int32_T i = 0; i < m.n; ++i) trimmed[i] = m.mask[i];
  if (dropFirst) trimmed[0] = 0;
  if (dropLast) trimmed[m.n - 1] = 0;
  fitTrimmed<F>(pass, m.x, m.n, m.y, m.n, trimmed, m.n, m.temperature, row, returned);
  if (!(row[kColRT] > 0.0)) return false;
  for (int32_T i = 0; i < m.n; ++i) m.maskOut[i] = returned[i];
  return true;
}

// The first point may go only if the unfolded baseline is known, the last
// only if the native one is: the held baseline of the far end anchors the fit.
template <class F>
bool trimOneEnd(const MaskedCurve& m, const HeldBaselines& b, real_T* row) {
  if (b.unfoldedCount > 0.0 && m.mask[0] == 1)
    return retryWithoutEnds<F>(Pass::TrimOne, m, true, false, row);
  if (b.nativeCount > 0.0 && m.mask[m.n - 1] == 1)
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
  const bool bothKnown = b.nativeCount > 0.0 && b.unfoldedCount > 0.0;
  real_T bothHeld[F::kBothHeldAttempts][kParamsOf<F>];

  if (pass == Pass::TrimOne) {
    const int chosen = bothKnown ? bothHeldStage<F>(c, RT, w, bothHeld) : -1;
    if (chosen < 0)
      writeFailed<F>(codes.exhausted, row);
    else
      writeFitRow<F::T>(c.x, c.y, c.n, bothHeld[chosen], static_cast<real_T>(codes.bothHeld), row);
    return;
  }

  if (bothKnown) {
    const int chosen = bothHeldStage<F>(c, RT, w, bothHeld);
    if (chosen >= 0) {
      writeFitRow<F::T>(c.x, c.y, c.n, bothHeld[chosen], static_cast<real_T>(codes.bothHeld), row);
      return;
    }
  }
  if constexpr (F::kTrimsEnds) {
    if (whole != nullptr && trimOneEnd<F>(*whole, b, row)) return;
  }

  if (b.nativeCount > 0.0 || b.unfoldedCount > 0.0) {
    F::fillHeldTable(Side::Native, c, RT, b, w.estimate, w.nativeHeld);
    if (b.nativeCount > 0.0) {
      const int s = heldStage<F>(Side::Native, c, w.nativeHeld);
      if (s >= 0) {
        writeSlot<F>(c, w.nativeHeld, s, codes.nativeHeld, row);
        return;
      }
    }
    F::fillHeldTable(Side::Unfolded, c, RT, b, w.estimate, w.unfoldedHeld);
    if (b.unfoldedCount > 0.0) {
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
  if (!curveChanges<F>(y, n)) {
    writeFailed<F>(codes.noChange, row);
    return;
  }
  if (x[0] == x[n - 1]) {
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
  for (int32_T i = 0; i < maskCount; ++i) maskOut[i] = mask[i];
  const int32_T n = xCount;
  if (xCount != yCount || xCount != maskCount || n < F::kMinPoints || n > kMaxFitPoints ||
      !temperatureInRange(temperature)) {
    writeFailed<F>(codes.badInput, row);
    return;
  }
  int32_T on = 0;
  for (int32_T i = 0; i < n; ++i) on += mask[i] == 1 ? 1 : 0;
  if (on < F::kMinPoints) {
    writeMaskTooShortRow(row);
    return;
  }
  CompactCurve kept;
  compact(x, y, mask, n, kept);
  if (kept.x[0] == kept.x[kept.n - 1]) {
    writeFailed<F>(codes.flatX, row);
    return;
  }
  if (!curveChanges<F>(kept.y, kept.n)) {
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
  for (int32_T i = 0; i < maskCount; ++i) maskOut[i] = mask[i];
  int32_T n = maskCount < xCount ? maskCount : xCount;
  n = n < yCount ? n : yCount;
  CompactCurve kept;
  compact(x, y, mask, n, kept);
  if (!curveChanges<F>(kept.y, kept.n)) {
    writeFailed<F>(codes.noChange, row);
    return;
  }
  if (kept.x[0] == kept.x[kept.n - 1]) {
    writeFailed<F>(codes.flatX, row);
    return;
  }
  runPass<F>(pass, kept.points(), rtFromCelsius(temperature), nullptr, row);
}

}  // namespace strategy
}  // namespace quent
