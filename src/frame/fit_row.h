// Writers of the 24-column fit result row: a fitted row from a parameter
// vector, and the two unsuccessful forms.  Column 12 above 0 is what every
// reader takes as success.
#pragma once

#include "frame/row_layout.h"
#include "quent_dgtrend.h"

namespace quent {

// Row of a T-transition fit of the n points x, y (the points it used), with
// the exit code of the caller.  A first energy below 0 or NaN gives the failed
// row with that code instead; dG2 and dG3 may be negative in a fitted row.
template <int T>
void writeFitRow(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
                 real_T* row);

// The same row without the test of the first energy, for writers that judge a
// failed fit by a rule of their own.
template <int T>
void writeFittedRow(const real_T* x, const real_T* y, int32_T n, const real_T* params,
                    real_T code, real_T* row);

// Failed row of T transitions: -1 in the parameter columns a T-transition fit
// fills (0-5, 0-8 or 0-11), 0 in the rest up to 11, -1 in columns 12 and 14,
// the code in 13, 0 in 15-23.
template <int T>
void writeFailedRow(real_T code, real_T* row);

// A two- or three-transition fit on a point mask that leaves too few points
// writes code 1 in the one-transition layout: -1 in columns 0-5 only.  That is
// the failed row of one transition, whatever the family.
inline void writeMaskTooShortRow(real_T* row) { writeFailedRow<1>(1.0, row); }

// A row cleared by the primary fit (codes 11 and 12): zeros, not -1, in every
// parameter column, -1 in column 12 and the code in column 13.
void writeClearedRow(real_T code, real_T* row);

// The blank row of a curve nothing was fitted to yet: cleared, with code 0.
inline void writeBlankRow(real_T* row) { writeClearedRow(0.0, row); }

// Whether a row carries a fit: RT (column 12) above 0.  Every unsuccessful
// row holds -1 there.
inline bool rowHasFit(const real_T* row) { return row[kColRT] > 0.0; }

extern template void writeFitRow<1>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFitRow<2>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFitRow<3>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFittedRow<1>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFittedRow<2>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFittedRow<3>(const real_T*, const real_T*, int32_T, const real_T*, real_T, real_T*);
extern template void writeFailedRow<1>(real_T, real_T*);
extern template void writeFailedRow<2>(real_T, real_T*);
extern template void writeFailedRow<3>(real_T, real_T*);

}  // namespace quent
