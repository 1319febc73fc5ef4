// A round averages the curves of its concentration that passed the usable
// test, at the points where they share the reference curve's denaturant; a
// mean of 0 or less counts as a missing point.  The stop test reads the first
// baseline value, not RT: a fit with a non-positive intercept hands over to
// the next lower concentration, whose round then overwrites it.
#include "primary/group_scan.h"

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "frame/thread_scratch.h"
#include "primary/curve_usable.h"
#include "primary/fit_with_mask_revision.h"
#include "strategies/families.h"
#include "strategies/strategy_skeleton.h"

namespace quent {
namespace {

// Curve copies: the curve under test, the mean curve of a round, the single
// curve of the fallback; and the mask a revision fit reports (not needed here).
struct Copies {
  real_T groupCurveX[kMaxCurvePoints];
  real_T groupCurveY[kMaxCurvePoints];
  real_T meanX[kMaxCurvePoints];
  real_T meanY[kMaxCurvePoints];
  real_T fallbackCurveX[kMaxCurvePoints];
  real_T fallbackCurveY[kMaxCurvePoints];
  int32_T revisedMask[kMaxCurvePoints];
};

// The masked test reads the curve's stretch of the mask in place, through
// its stride, whether the mask is the host's vector or the library's record.
real_T usableCurve(const CallCurves& curves, const ScanSource& source, int32_T stateCount,
                   int32_T curve, Copies& s) {
  const int32_T n = curves.pointsPerCurve;
  curves.copy(curve, s.groupCurveX, s.groupCurveY);
  if (!source.masked) return curveUsable(stateCount, s.groupCurveX, n, s.groupCurveY, n);
  const VectorView<int32_T> slice = source.pointMask.from(curves.at(curve, 0));
  const int32_T sliceSize[2] = {slice.stride, n};
  return curveUsableMaskedPair(stateCount, s.groupCurveX, n, s.groupCurveY, n, slice.data,
                               sliceSize);
}

// The whole-curve strategy of the family, for a masked round.
void fitWholeCurve(int32_T stateCount, const real_T* x, const real_T* y, int32_T n,
                   real_T temperatureC, real_T* row) {
  withFamily(stateCount, [&]<class F>() { strategy::fitWhole<F>(x, n, y, n, temperatureC, row); });
}

// The mean curve of the usable curves into s.meanX, s.meanY; returns its count.
// Only curves of the round's concentration (and chosen ones) were tested, so
// usable[c] of 1.0 names exactly the curves that enter.
int32_T meanCurve(const CallCurves& curves, const ScanSource& source, int32_T reference,
                  const real_T* usable, Copies& s) {
  int32_T count = 0;
  for (int32_T i = 0; i < curves.pointsPerCurve; ++i) {
    const real_T x = curves.denaturant[curves.at(reference, i)];
    real_T sum = 0.0;
    int32_T taken = 0;
    for (int32_T c = 0; c < curves.curveCount; ++c) {
      const int32_T at = curves.at(c, i);
      if (usable[c] != 1.0 || curves.denaturant[at] != x) continue;
      if (source.masked && source.pointMask[at] != 1) continue;
      sum = sum + curves.signal[at];
      ++taken;
    }
    const real_T mean = taken == 0 ? 0.0 : sum / taken;
    if (mean > 0.0) {
      s.meanX[count] = x;
      s.meanY[count] = mean;
      ++count;
    }
  }
  return count;
}

int32_T firstCurveAt(const CallCurves& curves, real_T conc) {
  for (int32_T c = 0; c < curves.curveCount; ++c)
    if (curves.sampleConc[c] == conc) return c;
  return curves.curveCount - 1;
}

void fitRound(const CallCurves& curves, const ScanSource& source, int32_T stateCount,
              real_T temperatureC, real_T conc, int32_T reference, real_T* referenceRow,
              Copies& s) {
  real_T usable[kMaxCurves] = {};
  for (int32_T c = 0; c < curves.curveCount; ++c)
    if (curves.sampleConc[c] == conc && source.chosen(c))
      usable[c] = usableCurve(curves, source, stateCount, c, s);
  const int32_T count = meanCurve(curves, source, reference, usable, s);
  const int32_T fewest = withFamily(stateCount, []<class F>() { return F::kMinPoints; });
  if (source.masked) {
    if (count >= fewest)
      fitWholeCurve(stateCount, s.meanX, s.meanY, count, temperatureC, referenceRow);
    return;
  }
  // A round of fewer points than a fit takes, down to an empty one (which
  // fits the single point (0, 0)), fails at the strategy's gate: its row is
  // the blank row of a revision fit that found nothing.
  if (count < fewest) {
    writeBlankRow(referenceRow);
    return;
  }
  fitWithMaskRevision(s.meanX, s.meanY, count, stateCount, temperatureC, referenceRow,
                      s.revisedMask);
}

}  // namespace

void groupScan(const CallCurves& curves, const ConcentrationGroups& groups,
               const ScanSource& source, int32_T stateCount, real_T temperatureC,
               real_T* referenceRow) {
  for (int32_T c = 0; c < kRowColumns; ++c) referenceRow[c] = 0.0;
  Copies* s = threadScratch<Copies>();
  if (s == nullptr) return;
  real_T conc = groups.topConc;
  int32_T reference = groups.topIndex;
  for (int32_T g = 0; g <= groups.groupCount - 1; ++g) {
    fitRound(curves, source, stateCount, temperatureC, conc, reference, referenceRow, *s);
    if (referenceRow[kColNativeIntercept] > 0.0 || g + 1 == groups.groupCount) return;
    conc = groups.uniqueConc[groups.groupCount - (g + 1) - 1];
    reference = firstCurveAt(curves, conc);
  }
}

void fallbackScan(const CallCurves& curves, const ScanSource& source, int32_T stateCount,
                  real_T temperatureC, real_T* referenceRow) {
  Copies* s = threadScratch<Copies>();
  if (s == nullptr) return;
  int32_T order[kMaxCurves];
  curvesByDescendingConcentration(curves.sampleConc, curves.curveCount, order);
  for (int32_T k = 0; k < curves.curveCount; ++k) {
    const int32_T c = order[k];
    if (!source.chosen(c)) continue;
    if (source.masked) {
      const int32_T n =
          curves.gatherKept(c, source.pointMask, s->fallbackCurveX, s->fallbackCurveY);
      fitWholeCurve(stateCount, s->fallbackCurveX, s->fallbackCurveY, n, temperatureC,
                    referenceRow);
    } else {
      curves.copy(c, s->fallbackCurveX, s->fallbackCurveY);
      fitWithMaskRevision(s->fallbackCurveX, s->fallbackCurveY, curves.pointsPerCurve,
                          stateCount, temperatureC, referenceRow, s->revisedMask);
    }
    if (rowHasFit(referenceRow)) return;
  }
}

}  // namespace quent
