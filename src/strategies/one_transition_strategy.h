// Fits of one curve with the one-transition model: start attempts, held
// baselines and relaxed acceptance, ending in a 24-column result row whose
// code names the exit taken.  Every path writes all 24 columns.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// All points of the curve.  Refuses (code 1) unequal lengths, fewer than 8 or
// more than 384 points, and a temperature outside 0 to 100 degrees.
void fitOneTransition(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                      real_T temperature, real_T row[24]);

// The points whose mask entry is 1.  May take off the first or last point of
// the curve; maskOut (maskCount entries) receives the mask the row was fitted
// with.  The row is measured on the points fitted.
void fitOneTransitionMasked(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                            const int32_T* mask, int32_T maskCount, real_T temperature,
                            real_T row[24], int32_T* maskOut);

// The masked form's retries, one end point off (accepts only both baselines
// held) or both off (no first-pass ladder).  No gate: the mask must leave at
// least five points on.
void fitOneTransitionTrimOne(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                             const int32_T* mask, int32_T maskCount, real_T temperature,
                             real_T row[24], int32_T* maskOut);
void fitOneTransitionTrimBoth(const real_T* x, int32_T xCount, const real_T* y, int32_T yCount,
                              const int32_T* mask, int32_T maskCount, real_T temperature,
                              real_T row[24], int32_T* maskOut);

}  // namespace quent
