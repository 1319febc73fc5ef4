// One damped Levenberg-Marquardt step with Marquardt's column scaling: the
// least-squares solution of [J; diag(sqrt(damping * column sums of J^2))] s
// = [r; 0].  The scale is taken from the current J every time.
#pragma once

#include "engine/left_divide.h"
#include "quent_dgtrend.h"

namespace quent {

// Storage for steps of a system with at most `rows` residuals and `cols`
// unknowns; carved from the workspace of one fit.
struct StepWork {
  real_T* jplus;     // (rows + cols) * cols
  real_T* rplus;     // rows + cols
  LeftDivideWork divide;  // tau, jpvt: cols; rhs: rows + cols
};

// step (cols entries) from J (rows-by-cols, column-major), the residuals r
// (rows entries) and the damping.  A NaN anywhere in the damped system gives
// a step of zeros.
void lmStep(const real_T* J, int32_T rows, int32_T cols, const real_T* r, real_T damping,
            real_T* step, const StepWork& work);

}  // namespace quent
