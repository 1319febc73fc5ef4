/*
 * quent_dgtrend.h - C interface of the QuentDGtrendFittingEngine library.
 *
 * The library fits chemical denaturation curves (signal against denaturant
 * concentration) with one-, two- or three-transition unfolding models and
 * reduces the fitted free energies to a trend over sample concentration.
 *
 * Conventions shared by every function below:
 *  - Arrays are column-major.  A vector argument is read by the stride of its
 *    first dimension: entry i of a vector is data[size[0] * i], so a host may
 *    pass a matrix and only its first row is seen.
 *  - A "pair" argument is a read-only data pointer followed by a pointer to two
 *    int32_T dimension lengths.
 *  - Output records (RealArray*, Int32Array*) are created by the host with the
 *    wrappers below around buffers of its own.  When a result does not fit the
 *    host's buffer the library allocates a larger one with malloc, copies what
 *    the record held, and points the record at it (canFreeData becomes true);
 *    the host's buffer is then left alone and no longer referred to.  Always
 *    read data and size back from the record after a call.
 *  - Failure is a value, never an error code: a failed fit row has -1 in
 *    column 12.  No function allocates anything that outlives the call except
 *    the grown storage of an output record and the working space of a
 *    fitting thread (below).
 *  - Memory that runs out in the middle of a call never changes a result: a
 *    fit then gives the failure of its whole call (every row at -1 in column
 *    12, zeros elsewhere, every mask entry 1), a drawing or
 *    QUENT_dGtrend_calc empty outputs (and a summary of zeros).  An output
 *    record that cannot even be grown for that answer comes back empty.
 *  - Every function may run on several threads at once, each call with its
 *    own output records, and gives the same numbers on every thread.  A
 *    thread that fits makes about 400 KB of working space on its first fit
 *    and frees it when it ends; the library's static thread-local storage is
 *    under 1 KiB, so threads with stacks as small as 64 KiB may call it.
 *
 * This header compiles as C99 and as C++.
 */
#ifndef QUENT_DGTREND_H
#define QUENT_DGTREND_H

#include <stdbool.h>
#include <stdint.h>

#if defined(QUENT_BUILDING_LIBRARY)
#define QUENT_API __attribute__((visibility("default")))
#else
#define QUENT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef double real_T;
typedef int32_t int32_T;

/* The dynamic array record.  The live element count is the product of the
 * size entries; allocatedSize is the capacity of data in elements. */
typedef struct RealArray {
    real_T *data;
    int32_T *size;
    int32_T allocatedSize;
    int32_T numDimensions;
    bool canFreeData;
} RealArray;

typedef struct Int32Array {
    int32_T *data;
    int32_T *size;
    int32_T allocatedSize;
    int32_T numDimensions;
    bool canFreeData;
} Int32Array;

typedef struct BoolArray {
    bool *data;
    int32_T *size;
    int32_T allocatedSize;
    int32_T numDimensions;
    bool canFreeData;
} BoolArray;

/*
 * Wraps a host buffer of rows * cols elements in a new 2-D record that does
 * not own it (canFreeData false).  The record and its size vector are
 * allocated with malloc and are never freed by the library.  With a negative
 * dimension none of the buffer is trusted: the library writes only to
 * storage of its own.  Null when no memory could be had.
 */
QUENT_API RealArray *QUENT_emxCreateWrapper_real_T(real_T *data, int32_T rows,
                                                   int32_T cols);
QUENT_API Int32Array *QUENT_emxCreateWrapper_int32_T(int32_T *data,
                                                     int32_T rows,
                                                     int32_T cols);

/*
 * Scales a curve: scaled[i] = values[i] * (target / reference), or the values
 * unchanged when reference is not above 0 (or NaN).  `scaled` is a host
 * buffer with room for every entry of `values`; scaledSize receives {1,
 * length}, length 0 for an empty or negative size.  NaN and infinities pass
 * through.  With a null scaled or scaledSize the call does nothing.
 */
QUENT_API void QUENT_dGtrend_normalization(const real_T *values,
                                           const int32_T *valuesSize,
                                           real_T reference, real_T target,
                                           real_T *scaled,
                                           int32_T *scaledSize);

/*
 * A fit row holds 24 real_T values for one curve; columns from 0:
 *   0, 1    native baseline: signal = [0] + [1] * denaturant
 *   2, 3    unfolded baseline, alike
 *   4, 5    dG1 (cal/mol, at zero denaturant) and Cm1 (denaturant units)
 *           of the first transition
 *   6, 7    dG2, Cm2 (two and three transitions; 0 with one)
 *   8       amp1, the share of the signal change the first transition makes
 *           (two and three transitions)
 *   9, 10   dG3, Cm3 (three transitions)
 *   11      amp2, the share the second transition makes (three transitions)
 *   12      RT in cal/mol (from temperatureC); -1 for a curve without an
 *           accepted fit, whose other columns are then 0 but for column 13
 *   13      the code of the step that wrote the row (see below)
 *   14      R squared on the points used
 *   15-17   uncertainty of dG1, dG2, dG3 in cal/mol (a 95 percent bound)
 *   18-20   equilibrium constant of unfolding of each transition at zero
 *           denaturant, times 1e6
 *   21-23   0
 * Transitions stand in ascending order of midpoint.  Column 13 of a
 * primary fit's row:
 *   2       accepted, one transition
 *   3, 6    accepted, two transitions, amplitude held at the plate's
 *           reference fit or fitted freely
 *   4, 5    accepted, three transitions, amplitudes held or free
 *   with column 12 at -1:
 *   0       the curve kept fewer points than its model needs (8, 16 or 24
 *           for one, two or three transitions), or every fit of the plate's
 *           reference failed; with one transition also a failed refit
 *   6, 5    the refits of a curve of two or three transitions failed (also
 *           when no curve of the plate passed the usable test, so that the
 *           refits started from nothing)
 *   12      the fit failed the quality gates once the trend over
 *           concentration set its energies: R squared below 0.95, a negative
 *           free energy, or an uncertainty of dG1 above a quarter of it
 *   35      (QUENT_dGtrend_user_primaryFit only) the host left the curve
 *           out; with one transition such a row shows 0
 */

/*
 * Fits every curve of a plate with the model family of stateCount (3: two
 * transitions through one intermediate state, 4: three transitions through
 * two, any other value: one transition) at temperatureC in degrees Celsius
 * (0 to 100).
 *  - denaturant, signal: all curves one after the other, pointsPerCurve
 *    points each; the curve count is their length over pointsPerCurve,
 *    rounded.  sampleConc: one concentration per curve, above 0, equal
 *    concentrations next to each other.
 *  - fitRows: host record, resized by the library to 1-by-(24 * curves): one
 *    24-column row per curve, column 12 (RT) at -1 where no fit was accepted.
 *  - pointMask: host record, resized by the library to
 *    1-by-(curves * pointsPerCurve): 1 for a point the curve's accepted fit
 *    used, 0 for one it dropped; a curve without an accepted fit is all 1.
 * Differing curve counts of denaturant, signal and sampleConc fail the whole
 * call: every row at -1 in column 12, zeros elsewhere, every mask entry 1,
 * shaped by the curve count of denaturant.  More than 96 curves,
 * pointsPerCurve outside 1 to 2304, a vector of more than 2^31 - 1 elements,
 * or a last curve that would run past the end of denaturant or signal are
 * refused in the same form, shaped by the host's vectors (24 columns per
 * sampleConc entry, one mask entry per denaturant entry).  No failure answer
 * grows an output beyond 221184 entries.  No curve: both outputs empty.
 * With a null output record the call does nothing.  Several threads may fit at
 * once, each with its own outputs.
 * Untidy data, within those limits:
 *  - NaN in a curve's denaturant or signal, or an infinite denaturant, fails
 *    that curve's row (code 0); a lone infinite signal is masked as a spike.
 *  - Curves of 385 to 2304 points are taken; their rows fail (code 0).
 *  - Denaturant must ascend within each curve: a descending curve fails
 *    (code 0).  A plate whose signals are all below 0 fails every row (code
 *    0); flip the sign first.
 *  - One concentration of 0, below 0 or NaN turns the trend over
 *    ln(concentration) into NaN: every fitted row of the plate then fails the
 *    gates (code 12).  Curves of one concentration need not be adjacent.
 *  - A temperature below 0 or above 100 (or NaN) fails every row (code 0).
 *  - An n-by-1 vector is its first entry by the stride rule, so the curve
 *    counts disagree.
 */
QUENT_API void QUENT_dGtrend_primaryFit(int32_T pointsPerCurve,
                                        const real_T *denaturant,
                                        const int32_T *denaturantSize,
                                        const real_T *signal,
                                        const int32_T *signalSize,
                                        const real_T *sampleConc,
                                        const int32_T *sampleConcSize,
                                        int32_T stateCount,
                                        real_T temperatureC,
                                        RealArray *fitRows,
                                        Int32Array *pointMask);

/*
 * Fits the curves of a plate again under the host's own choice of points and
 * curves, typically the pointMask a QUENT_dGtrend_primaryFit returned with
 * some points or whole curves taken out.  pointsPerCurve, denaturant,
 * signal, sampleConc, stateCount, temperatureC and fitRows are those of
 * QUENT_dGtrend_primaryFit, and so are its refusals.
 *  - pointMask: pair, one entry per point of every curve (curves * pointsPerCurve),
 *    1 for a point the fit may use.  Nothing else is screened or dropped:
 *    spikes the host keeps stay in.
 *  - curveFlags: pair, one entry per curve, 1 for a curve to fit; the other
 *    curves take no part in the reference fit, the trend or the statistics.
 *  - Both are only read, by the stride rule; there is no mask output.  A
 *    pointMask shorter than curves * pointsPerCurve, or fewer curveFlags than
 *    curves, fail the whole call: every row at -1 in column 12, zeros
 *    elsewhere.
 * The rows and their codes are those described above QUENT_dGtrend_primaryFit;
 * a curve left out reads code 35 (two and three transitions) or 0 (one).
 * Curves of more than 384 points are never usable for the reference fit,
 * whatever the mask keeps: their rows fail with the code of a failed refit
 * (0, 6 or 5 for one, two or three transitions).
 * Several threads may fit at once, each with its own outputs.
 */
QUENT_API void QUENT_dGtrend_user_primaryFit(int32_T pointsPerCurve,
                                             const real_T *denaturant,
                                             const int32_T *denaturantSize,
                                             const real_T *signal,
                                             const int32_T *signalSize,
                                             const real_T *sampleConc,
                                             const int32_T *sampleConcSize,
                                             const int32_T *pointMask,
                                             const int32_T *pointMaskSize,
                                             const int32_T *curveFlags,
                                             const int32_T *curveFlagsSize,
                                             int32_T stateCount,
                                             real_T temperatureC,
                                             RealArray *fitRows);

/*
 * Draws the trend G(c) = intercept + slope * ln(c) on pointCount evenly
 * spaced concentrations from the smallest to the largest entry of conc.
 * coefficients = {slope, intercept}, as returned by the reduction step.
 * Both outputs become 1-by-pointCount.  With fewer than two concentrations,
 * pointCount below 1 or above 100000, or null coefficients, both outputs are
 * the single value 1.0 (not a grid).  With a null output record the call does
 * nothing.  NaN concentrations are passed over; a concentration of 0 gives an
 * infinite G at that end of the grid, one below 0 a NaN.
 */
QUENT_API void QUENT_dGtrend_trend(const real_T *conc, const int32_T *concSize,
                                   const real_T *coefficients,
                                   int32_T pointCount, RealArray *concGrid,
                                   RealArray *trendCurve);

/*
 * Fractions on the same grid as QUENT_dGtrend_trend, at temperatureC in
 * degrees Celsius (unchecked):
 *  - fd:      fraction unfolded K / (K + 1), K = exp(-G / RT);
 *  - fragg:   fraction associated relative to the lowest concentration
 *             (all zeros for a slope of exactly 0);
 *  - fraggfd: fragg divided by the unfolded fraction (all zeros unless the
 *             slope is below 0).
 * The failure answer for short input is that of QUENT_dGtrend_trend.
 */
QUENT_API void QUENT_dGtrend_fd(const real_T *conc, const int32_T *concSize,
                                const real_T *coefficients, int32_T pointCount,
                                real_T temperatureC, RealArray *concGrid,
                                RealArray *fractionCurve);
QUENT_API void QUENT_dGtrend_fragg(const real_T *conc, const int32_T *concSize,
                                   const real_T *coefficients,
                                   int32_T pointCount, real_T temperatureC,
                                   RealArray *concGrid,
                                   RealArray *fractionCurve);
QUENT_API void QUENT_dGtrend_fraggfd(const real_T *conc,
                                     const int32_T *concSize,
                                     const real_T *coefficients,
                                     int32_T pointCount, real_T temperatureC,
                                     RealArray *concGrid,
                                     RealArray *fractionCurve);

/*
 * Reduces the fit rows of many curves to per-concentration energies and one
 * trend line of energy over ln(concentration).
 *  - sampleConc: one concentration per curve; curveFlags: one flag per curve,
 *    1 takes the curve into the analysis.  Both must have as many entries as
 *    fitRows has rows, and a curve counts only with a concentration above 0.
 *  - fitRows: the rows a primary fit returned, 24 values per curve (a trailing
 *    part of fewer than 24 is ignored); at most 96 curves.
 *  - transition: 2 or 3 picks that transition's energy, any other value the
 *    first.
 *  - concOut, trendOut, deviationOut, usedOut: host records, resized by the
 *    library to 1-by-U, U the number of distinct entries of sampleConc:
 *    the concentrations ascending, the mean energy of each (or the line's
 *    value where no fitted, flagged curve stands), its standard deviation,
 *    and 1 where a fitted, flagged curve stands.
 *  - summary: host buffer of 4 entries: slope and intercept (the
 *    coefficients of QUENT_dGtrend_trend and the fraction functions; slope 0
 *    and a flat line when the trend does not beat the noise), R squared of
 *    the line, and U.
 * Inconsistent sizes, more than 96 curves, no fitted row or no usable curve
 * give concOut as above, usedOut all 0, zeros in trendOut and deviationOut,
 * and summary {0, 0, 0, U}.  With a null output record or summary the call
 * does nothing.  Safe to call from several threads on separate outputs.
 * Concentrations of 0, below 0 or NaN are listed but kept out of the means
 * and the line; each NaN stands alone.  Only energies above 0 enter a mean
 * (a NaN counts as none; an infinite one makes the mean infinite).
 */
QUENT_API void QUENT_dGtrend_calc(const real_T *sampleConc,
                                  const int32_T *sampleConcSize,
                                  const real_T *fitRows,
                                  const int32_T *fitRowsSize,
                                  const int32_T *curveFlags,
                                  const int32_T *curveFlagsSize,
                                  int32_T transition, RealArray *concOut,
                                  RealArray *trendOut,
                                  RealArray *deviationOut,
                                  Int32Array *usedOut, real_T *summary);

#ifdef __cplusplus
}
#endif

#endif /* QUENT_DGTREND_H */
