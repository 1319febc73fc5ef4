// The C interface: thin forwarders to the routines that own the work.  The
// library is built without exceptions, so nothing can cross this border.
#include "quent_dgtrend.h"

#include "analysis/calc.h"
#include "analysis/normalization.h"
#include "analysis/trend_fractions.h"
#include "frame/array.h"
#include "primary/code_text.h"
#include "primary/primary_fit.h"
#include "primary/row_evaluation.h"
#include "primary/user_primary_fit.h"

using namespace quent;

namespace {

// A record around a host's buffer, or null when none could be made.
template <class Record>
Record* createWrapper(decltype(Record::data) data, int32_T rows, int32_T cols) {
  Record* a = nullptr;
  arrayInit(&a, 2);
  if (a == nullptr || a->size == nullptr) {
    arrayFree(&a);
    return nullptr;
  }
  arrayWrap(a, data, rows, cols);
  return a;
}

// Frees a record, its size vector and the storage it owns; a host's buffer
// stays with the host.
template <class Record>
void destroyArray(Record* a) {
  arrayFree(&a);
}

}  // namespace

extern "C" {

QUENT_API RealArray* QUENT_emxCreateWrapper_real_T(real_T* data, int32_T rows, int32_T cols) {
  return createWrapper<RealArray>(data, rows, cols);
}

QUENT_API Int32Array* QUENT_emxCreateWrapper_int32_T(int32_T* data, int32_T rows, int32_T cols) {
  return createWrapper<Int32Array>(data, rows, cols);
}

QUENT_API void QUENT_emxDestroyArray_real_T(RealArray* array) { destroyArray(array); }

QUENT_API void QUENT_emxDestroyArray_int32_T(Int32Array* array) { destroyArray(array); }

QUENT_API void QUENT_dGtrend_normalization(const real_T* values, const int32_T* valuesSize,
                                           real_T reference, real_T target, real_T* scaled,
                                           int32_T* scaledSize) {
  normalization(values, valuesSize, reference, target, scaled, scaledSize);
}

QUENT_API void QUENT_dGtrend_primaryFit(int32_T pointsPerCurve, const real_T* denaturant,
                                        const int32_T* denaturantSize, const real_T* signal,
                                        const int32_T* signalSize, const real_T* sampleConc,
                                        const int32_T* sampleConcSize, int32_T stateCount,
                                        real_T temperatureC, RealArray* fitRows,
                                        Int32Array* pointMask) {
  primaryFit(pointsPerCurve, denaturant, denaturantSize, signal, signalSize, sampleConc,
             sampleConcSize, stateCount, temperatureC, fitRows, pointMask);
}

QUENT_API void QUENT_dGtrend_user_primaryFit(
    int32_T pointsPerCurve, const real_T* denaturant, const int32_T* denaturantSize,
    const real_T* signal, const int32_T* signalSize, const real_T* sampleConc,
    const int32_T* sampleConcSize, const int32_T* pointMask, const int32_T* pointMaskSize,
    const int32_T* curveFlags, const int32_T* curveFlagsSize, int32_T stateCount,
    real_T temperatureC, RealArray* fitRows) {
  userPrimaryFit(pointsPerCurve, denaturant, denaturantSize, signal, signalSize, sampleConc,
                 sampleConcSize, pointMask, pointMaskSize, curveFlags, curveFlagsSize, stateCount,
                 temperatureC, fitRows);
}

QUENT_API void QUENT_dGtrend_trend(const real_T* conc, const int32_T* concSize,
                                   const real_T* coefficients, int32_T pointCount,
                                   RealArray* concGrid, RealArray* trendCurve) {
  drawTrend(conc, concSize, coefficients, pointCount, concGrid, trendCurve);
}

QUENT_API void QUENT_dGtrend_fd(const real_T* conc, const int32_T* concSize,
                                const real_T* coefficients, int32_T pointCount,
                                real_T temperatureC, RealArray* concGrid,
                                RealArray* fractionCurve) {
  drawFraction(FractionKind::Unfolded, conc, concSize, coefficients, pointCount, temperatureC,
               concGrid, fractionCurve);
}

QUENT_API void QUENT_dGtrend_fragg(const real_T* conc, const int32_T* concSize,
                                   const real_T* coefficients, int32_T pointCount,
                                   real_T temperatureC, RealArray* concGrid,
                                   RealArray* fractionCurve) {
  drawFraction(FractionKind::Associated, conc, concSize, coefficients, pointCount, temperatureC,
               concGrid, fractionCurve);
}

QUENT_API void QUENT_dGtrend_fraggfd(const real_T* conc, const int32_T* concSize,
                                     const real_T* coefficients, int32_T pointCount,
                                     real_T temperatureC, RealArray* concGrid,
                                     RealArray* fractionCurve) {
  drawFraction(FractionKind::AssociatedOverUnfolded, conc, concSize, coefficients, pointCount,
               temperatureC, concGrid, fractionCurve);
}

QUENT_API void QUENT_dGtrend_calc(const real_T* sampleConc, const int32_T* sampleConcSize,
                                  const real_T* fitRows, const int32_T* fitRowsSize,
                                  const int32_T* curveFlags, const int32_T* curveFlagsSize,
                                  int32_T transition, RealArray* concOut, RealArray* trendOut,
                                  RealArray* deviationOut, Int32Array* usedOut, real_T* summary) {
  calc(sampleConc, sampleConcSize, fitRows, fitRowsSize, curveFlags, curveFlagsSize, transition,
       concOut, trendOut, deviationOut, usedOut, summary);
}

QUENT_API void QUENT_dGtrend_evaluateRow(const real_T* fitRow, int32_T stateCount,
                                         const real_T* denaturant, int32_T pointCount,
                                         real_T* signal, real_T* unfoldedFraction) {
  evaluateRow(fitRow, stateCount, denaturant, pointCount, signal, unfoldedFraction);
}

QUENT_API const char* QUENT_dGtrend_codeText(const real_T* fitRow, int32_T stateCount) {
  return codeText(fitRow, stateCount);
}

#define QUENT_TEXT(x) #x
#define QUENT_VERSION_TEXT(major, minor, patch) \
  QUENT_TEXT(major) "." QUENT_TEXT(minor) "." QUENT_TEXT(patch)

QUENT_API const char* QUENT_dGtrend_version(void) {
  return QUENT_VERSION_TEXT(QUENT_DGTREND_VERSION_MAJOR, QUENT_DGTREND_VERSION_MINOR,
                            QUENT_DGTREND_VERSION_PATCH);
}

}  // extern "C"
