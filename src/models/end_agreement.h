// Whether a fit reaches the baselines at the two ends of a curve: the
// strategies prefer candidates whose fraction unfolded matches the measured
// signal over the first and the last five points.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// out[0] (start) and out[1] (end) are 1.0 when at least 3 of the 5 points
// there lie within 0.02 of the signal range of the model fraction, measured
// from the native intercept alone; else 0.0.  Both are 0.0 when the first
// energy is negative (with two or three transitions also when it is NaN),
// when y has fewer than 5 points or not as many as the fraction was evaluated
// at (min(xCount, 384)), or when the first fraction is -1 or below.
// Whether a flag of endAgreement says the fit meets that end.
inline bool meetsEnd(real_T flag) { return flag > 0.0; }

template <int T>
void endAgreement(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                  const real_T* params, real_T out[2]);

inline void endAgreement1(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* p, real_T out[2]) { endAgreement<1>(x, xCount, y, yCount, p, out); }
inline void endAgreement2(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* p, real_T out[2]) { endAgreement<2>(x, xCount, y, yCount, p, out); }
inline void endAgreement3(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount, const real_T* p, real_T out[2]) { endAgreement<3>(x, xCount, y, yCount, p, out); }

extern template void endAgreement<1>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);
extern template void endAgreement<2>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);
extern template void endAgreement<3>(const real_T*, int32_T, const real_T*, int32_T, const real_T*, real_T*);

}  // namespace quent
