// Coefficient of determination of a fit: the score that decides between
// candidate fits and fills column 14 of a result row.  A fit no better than
// the mean of the signal scores -1, the same as no fit.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// 1 - SSE / SST over the first xCount points (x serves for its length only),
// with the mean taken over all yCount values of y.  -1 when fitted[0] is
// exactly -1 (a failed vector evaluated at x = 0), when SST is 0, on NaN,
// when the result is negative, and when there is nothing to compare
// (xCount < 1) or y is shorter than xCount.
real_T rSquared(int32_T xCount, const real_T* y, int32_T yCount, const real_T* fitted);

// rSquared of the T-transition curve model at params on n points (n up to
// 2304; more gives -1).
template <int T>
real_T rSquaredOfFit(const real_T* x, const real_T* y, int32_T n, const real_T* params);

inline real_T rSquaredOfFit1(const real_T* x, const real_T* y, int32_T n, const real_T* p) { return rSquaredOfFit<1>(x, y, n, p); }
inline real_T rSquaredOfFit2(const real_T* x, const real_T* y, int32_T n, const real_T* p) { return rSquaredOfFit<2>(x, y, n, p); }
inline real_T rSquaredOfFit3(const real_T* x, const real_T* y, int32_T n, const real_T* p) { return rSquaredOfFit<3>(x, y, n, p); }

extern template real_T rSquaredOfFit<1>(const real_T*, const real_T*, int32_T, const real_T*);
extern template real_T rSquaredOfFit<2>(const real_T*, const real_T*, int32_T, const real_T*);
extern template real_T rSquaredOfFit<3>(const real_T*, const real_T*, int32_T, const real_T*);

}  // namespace quent
