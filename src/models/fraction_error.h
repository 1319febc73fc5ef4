// Fraction error of a fitted row: a 95% bound on the residual of the fraction
// unfolded, read under the row's own baselines.  It is applied as a relative
// error to each energy of the row (columns 15 to 17).
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// Column c of the row is row[rowStride * c]; 1 for a plain row.  Uses the
// first min(xCount, 384) points.  -1 when the row is a failed one (column 5,
// or column 12 with two transitions, below 0), when x and y differ in length,
// when there is no point, or when the first model fraction is -1 or below.
// Two points divide by 0 and one takes the root of a negative number; the
// result then is whatever IEEE arithmetic makes of it.
template <int T>
real_T fractionError(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                     const real_T* row, int32_T rowStride);

inline real_T fractionError1(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row) { return fractionError<1>(x, xCount, y, yCount, row, 1); }
inline real_T fractionError2(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row) { return fractionError<2>(x, xCount, y, yCount, row, 1); }
inline real_T fractionError3(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row) { return fractionError<3>(x, xCount, y, yCount, row, 1); }

// A row stored as a line of a matrix with rowStride lines.
inline real_T fractionErrorStrided1(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row, int32_T rowStride) { return fractionError<1>(x, xCount, y, yCount, row, rowStride); }
inline real_T fractionErrorStrided2(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row, int32_T rowStride) { return fractionError<2>(x, xCount, y, yCount, row, rowStride); }
inline real_T fractionErrorStrided3(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* row, int32_T rowStride) { return fractionError<3>(x, xCount, y, yCount, row, rowStride); }

extern template real_T fractionError<1>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);
extern template real_T fractionError<2>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);
extern template real_T fractionError<3>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, int32_T);

}  // namespace quent
