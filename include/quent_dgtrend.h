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
 *  - Ownership.  Output records (RealArray*, Int32Array*) are made by the
 *    host with QUENT_emxCreateWrapper_* around buffers of its own; the host
 *    owns the buffer, the library the record.  When a result does not fit
 *    the host's buffer the library allocates a larger one, copies what the
 *    record held, and points the record at it (canFreeData becomes true);
 *    the host's buffer is then left alone and no longer referred to.  Always
 *    read data and size back from the record after a call.  Give every
 *    record back with QUENT_emxDestroyArray_* (never free() it: the library
 *    may use another C runtime than the host): that frees the record, its
 *    size vector and any storage the library grew into it, never the host's
 *    buffer, which the host frees after the record (or reuses) as it likes.
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

/* The version of this header; QUENT_dGtrend_version() gives the library's. */
#define QUENT_DGTREND_VERSION_MAJOR 0
#define QUENT_DGTREND_VERSION_MINOR 1
#define QUENT_DGTREND_VERSION_PATCH 0

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
 * not own it (canFreeData false).  Give the record back with
 * QUENT_emxDestroyArray_real_T or _int32_T.  With a negative
 * dimension none of the buffer is trusted: the library writes only to
 * storage of its own.  Null when no memory could be had.
 */
QUENT_API RealArray *QUENT_emxCreateWrapper_real_T(real_T *data, int32_T rows,
                                                   int32_T cols);
QUENT_API Int32Array *QUENT_emxCreateWrapper_int32_T(int32_T *data,
                                                     int32_T rows,
                                                     int32_T cols);

/*
 * Gives a record back: frees the record, its size vector and the storage the
 * library grew into it (canFreeData true); a host's buffer (canFreeData
 * false) is left alone.  Null does nothing.  Each record is given back once,
 * and is not used afterwards.
 */
QUENT_API void QUENT_emxDestroyArray_real_T(RealArray *array);
QUENT_API void QUENT_emxDestroyArray_int32_T(Int32Array *array);

/* The library's version, "MAJOR.MINOR.PATCH"; a static text. */
QUENT_API const char *QUENT_dGtrend_version(void);

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
 * READING THE RESULTS
 *
 * Units.  Energies and RT are in cal/mol (RT = (temperatureC + 273.15) *
 * 1.9872).  Midpoints are in the host's denaturant unit; the library never
 * converts it, but its plausibility bounds assume molar: a fitted transition
 * is taken only with an m value (dG / Cm) from 100 to 15000 cal/mol per
 * unit and a midpoint from 0 to the curve's largest denaturant value.  (The
 * m value of a returned row is the trend's, below, and is not tested
 * again.)  Signals keep the host's unit.
 *
 * The fit row: 24 real_T per curve, curve c at columns 24 * c to 24 * c + 23
 * of fitRows.  Columns from 0, by family (stateCount 2: one transition, 3:
 * two, 4: three):
 *
 *   col  one transition    two transitions    three transitions
 *   0    native intercept (all three)                         (signal)
 *   1    native slope (all three)                             (signal/unit)
 *   2    unfolded intercept (all three)                       (signal)
 *   3    unfolded slope (all three)                           (signal/unit)
 *   4    dG                dG1                dG1                (cal/mol)
 *   5    Cm                Cm1                Cm1                (unit)
 *   6    0                 dG2                dG2                (cal/mol)
 *   7    0                 Cm2                Cm2                (unit)
 *   8    0                 amp1               amp1               (share, 0-1)
 *   9    0                 0                  dG3                (cal/mol)
 *   10   0                 0                  Cm3                (unit)
 *   11   0                 0                  amp2               (share, 0-1)
 *   12   RT (all three; cal/mol), -1 for a curve without a fit
 *   13   code (all three; see below)
 *   14   R squared of the returned parameters (energies from the trend,
 *        below) on the points the fit kept (all three)
 *   15   e * dG            e * dG1            e * dG1            (cal/mol)
 *   16   0                 e * dG2            e * dG2            (cal/mol)
 *   17   0                 0                  e * dG3            (cal/mol)
 *   18   K1 * 1e6          K1 * 1e6           K1 * 1e6
 *   19   0                 K2 * 1e6           K2 * 1e6
 *   20   0                 0                  K3 * 1e6
 *   21-23  0
 *
 *  - The model: transition t has K_t(x) = exp(-(dG_t * (1 - x / Cm_t)) /
 *    RT) at denaturant x, and the signal is the sum over t of
 *    w_t * (a + b x + (c + d x) K_t) / (1 + K_t), with (a, b) the native and
 *    (c, d) the unfolded baseline of columns 0 to 3 and the weights w = 1
 *    (one transition), amp1 and 1 - amp1 (two), amp1, amp2 and
 *    (1 - amp1) - amp2 (three).  The transitions are parallel two-state
 *    steps between the same two baselines, weighted by their share of the
 *    signal change, in ascending order of midpoint.
 *    QUENT_dGtrend_evaluateRow computes it, and the unfolded fraction.
 *  - dG_t is the free energy of transition t without denaturant, and m_t =
 *    dG_t / Cm_t its m value (cal/mol per unit).  In a returned row the
 *    energies are not the curve's own: the library fits a straight line
 *    through the m values of all fitted curves against ln(sample
 *    concentration), per transition, and sets dG_t = Cm_t * (slope *
 *    ln(c) + intercept) for the curve's concentration c.  So dG_t / Cm_t is
 *    the line's m value at c (up to rounding), and a plate of one
 *    concentration shares one m value per transition.
 *  - e (columns 15 to 17) is a 95 percent bound on the residual of the
 *    unfolded fraction, dimensionless, applied to each energy as a relative
 *    error; -1 when it could not be measured (the columns are then the
 *    negated energies).
 *  - K_t (columns 18 to 20) is the equilibrium constant of unfolding of
 *    transition t without denaturant, exp(-dG_t / RT), in millionths.
 *  - A failed row has RT -1 in column 12, its code in column 13 and 0 in
 *    every other column.  Column 12 above 0 is the one test of success.
 *
 * Acceptance gates.  After the trend set its energies every fitted row is
 * judged; it is rejected (code 12, all else 0, RT -1, its curve's mask all
 * 1) when R squared is below 0.95, when dG1, dG2 or dG3 is below 0, or when
 * column 15 / column 4 (the relative uncertainty of dG1) is above 0.25.  The
 * bounds themselves pass.  (A NaN energy leaves R squared at -1, which fails.)
 *
 * Codes of returned rows (column 13; QUENT_dGtrend_codeText gives the text):
 *
 *   states  RT > 0 (fitted)                  RT -1 (no fit)
 *   2       2  held refit                    0  too few points (8), a
 *                                               failed call, a failed
 *                                               refit, or left out by
 *                                               the host
 *                                            12 rejected at the gates
 *   3       3  held refit (share held)       0  too few points (16), or a
 *           6  free refit (share free)          failed call
 *                                            6  both refits failed
 *                                            12 rejected at the gates
 *                                            35 curve left out by the host
 *   4       4  held refit (shares held)      0  too few points (24), or a
 *           5  free refit (shares free)         failed call
 *                                            5  both refits failed
 *                                            12 rejected at the gates
 *                                            35 curve left out by the host
 * A failed call is one refused for its shapes, limits, temperature or
 * memory, or one in which no fit of the plate's reference succeeded.
 *
 * Each curve is fitted for good from the plate's reference fit (the mean
 * curve of the highest concentration whose fit has a native intercept above
 * 0, or failing that the first single curve that fits, highest
 * concentration first), with the baseline slopes held, and with two or
 * three transitions the amplitude shares held too.  The free refit, shares
 * fitted, is tried when the held one misses a plateau at an end of the
 * curve; it stands when it reaches both plateaus and its shares stay within
 * 0.1 (two transitions) or 0.07 (three) of the reference's; otherwise the
 * held refit is returned if it succeeded, and the free one as it came out
 * if not.  When no mean curve of the plate kept enough points the refits
 * start from nothing and fail (code 6 or 5).  A curve left out by the host
 * in the one-transition family reads code 0.
 *
 * Strategy exit codes.  Inside a fit, the reference fit is found by a
 * strategy that numbers its exits, and the refits that decide each curve's
 * point mask carry their round (1 to 5 held, 6 to 10 free).  None of these
 * rows is returned; the strategies' numbers are these (a "ladder" lowers an
 * R squared threshold over fixed start attempts):
 *   one transition (1 to 64): 1 input refused (sizes, under 8 or over 384
 *     points, temperature, mask); 2 both baselines held; 3, 4 first good
 *     attempt with the native, the unfolded baseline given; 5-22 pair
 *     ladder; 23-31 first-pass ladder; 32 no signal change or first and
 *     last x equal; 33 no attempt with R squared of 0 or above; 34
 *     first-pass ladder exhausted; 35-39 the retry without one end point (35
 *     no change, 36 equal ends, 37 no R squared, 38 both baselines held:
 *     its only fitted exit, or a failure there, 39 no baseline, or an
 *     attempt below 0.99); 40-64 the retry without both end points (40-42 as
 *     35-37, 43-45 as 2-4, 46-63 pair ladder, 64 nothing passed).
 *   two transitions (1 to 62): as one transition with 16 points in place
 *     of 8; 5-20 pair ladder, 21-31 first-pass ladder, 46-61 pair ladder of
 *     the retry without both ends, 62 nothing passed.
 *   three transitions (1 to 71, no retries): 1 input refused (24 points);
 *     2-4 as above; 5-31 and 35-39 pair ladder; 32 no signal change or equal
 *     ends; 33 no R squared; 34 final ladder exhausted; 40-71 final ladder.
 *
 * The point mask of QUENT_dGtrend_primaryFit: one int32_T per point, in the
 * host's order, point i of curve c at c * pointsPerCurve + i; 1 for a point
 * the curve's accepted fit used, 0 for one screened out as a spike or an
 * outlier.  A curve without an accepted fit reports all its points as 1.
 * The same layout is what QUENT_dGtrend_user_primaryFit reads.
 *
 * Vector shapes.  Every vector is a pair (data, {rows, cols}) read by the
 * stride rule: entry i is data[rows * i] and there are cols entries.  A
 * 1-by-n row is the normal shape; an m-by-n matrix gives its first row; an
 * n-by-1 column gives its first entry only (a vector of length 1), so the
 * counts of a fit then disagree and the call is refused.  A size with a
 * dimension below 1 is an empty vector.
 *
 * Limits.  A call takes at most 96 curves of at most 2304 points each; a
 * strategy fits at most 384 points of a curve, so longer curves are taken
 * but their rows fail.  A curve needs at least 8, 16 or 24 kept points for
 * one, two or three transitions.  The drawings take at most 100000 points.
 */

/*
 * The fitted curve of a row, by the library's own models: for i below
 * pointCount, signal[i] := the model signal and unfoldedFraction[i] := the
 * fraction unfolded (0 to 1) at denaturant[i], with the parameters in fitRow
 * (24 values, as a fitting function returned them) read as the family of
 * stateCount (3: two transitions, 4: three, any other value: one; give the
 * stateCount of the fit).  Evaluated at the points a fit kept, the signal
 * is bit for bit the model from which column 14 (R squared) was computed.
 * A row without a fit (column 12 not above 0) or a null fitRow gives NaN.
 * signal and unfoldedFraction are host buffers of pointCount entries,
 * either may be null, and neither may overlap denaturant.  With a null
 * denaturant or pointCount below 1 nothing is written.  Any number of
 * points, any order.
 */
QUENT_API void QUENT_dGtrend_evaluateRow(const real_T *fitRow,
                                         int32_T stateCount,
                                         const real_T *denaturant,
                                         int32_T pointCount, real_T *signal,
                                         real_T *unfoldedFraction);

/*
 * What the code in column 13 of a returned row means: a static English
 * text, never null and never to be freed, that says which step wrote a
 * fitted row (column 12 above 0) or why a curve has no fit.  Give the
 * stateCount of the fit.  A code the fitting functions do not write for
 * that family has a text that says so; a null fitRow gives "no row".
 */
QUENT_API const char *QUENT_dGtrend_codeText(const real_T *fitRow,
                                             int32_T stateCount);

/*
 * Fits every curve of a plate with the model family of stateCount (3: two
 * transitions through one intermediate state, 4: three transitions through
 * two, any other value: one transition) at temperatureC in degrees Celsius
 * (0 to 100).
 *  - denaturant, signal: all curves one after the other, pointsPerCurve
 *    points each; the curve count is their length over pointsPerCurve,
 *    rounded.  sampleConc: one concentration per curve, above 0; curves
 *    of one concentration need not be adjacent.
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
 *  - Curves of 385 to 2304 points are taken; their rows fail (code 0, or
 *    6 or 5 for two or three transitions).
 *  - Denaturant must ascend within each curve: a descending curve fails
 *    (code 0).  A plate whose signals are all below 0 fails every row (code
 *    0); flip the sign first.
 *  - One concentration of 0, below 0 or NaN turns the trend over
 *    ln(concentration) into NaN: every fitted row of the plate then fails the
 *    gates (code 12).
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
 *  - pointMask: pair, one entry per point of every curve (curves *
 *    pointsPerCurve), 1 for a point the fit may use.  Nothing else is
 *    screened or dropped: spikes the host keeps stay in.
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
