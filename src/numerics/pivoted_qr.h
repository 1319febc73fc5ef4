// Householder QR with column pivoting, the one least-squares factorisation
// behind the engine's damped steps and the straight-line fits of baselines,
// with the vector kernels it is built from.  Results must be reproducible bit
// for bit, so every sum runs in index order from the first row.
#pragma once

#include "quent_dgtrend.h"

namespace quent {

// 2-norm of x[0..count) with a running scale, so entries near 1e+300 do not
// overflow; 0.0 for count < 1 and |x[0]| for count 1.
real_T scaledNorm2(const real_T* x, int32_T count);

// sqrt(u^2 + v^2) without overflow; a NaN in v comes back as is.
real_T safeHypot(real_T u, real_T v);

// 1-based place of the first largest |x[i]| (a later entry wins only when
// strictly larger, so a NaN after the first never wins); 0 for count < 1.
int32_T firstMaxAbs(const real_T* x, int32_T count);

// Turns the stretch p[0..count), count >= 2, into a Householder reflector:
// p[0] becomes beta (the R entry), p[1..] the reflector's vector with an
// implicit leading 1; returns tau (0.0 when nothing lies below p[0]).
real_T householderReflector(real_T* p, int32_T count);

// Factors the column-major m-by-n matrix a (leading dimension m) in place: R
// on and above the diagonal, the reflectors below it with an implicit leading
// 1.  tau receives min(m, n) reflector scales (0.0 = identity), jpvt the n
// 1-based original column numbers in their final order.  No rank decision is
// taken here.  Matrices with many exactly zero columns and rows (the damped
// systems of the engine) cost little more than their nonzero part.
void pivotedQr(real_T* a, int32_T m, int32_T n, real_T* tau, int32_T* jpvt);

// Applies the reflectors of a factored m-by-n matrix to the right-hand side
// b (m entries), turning it into Q' b.
void applyQrReflectors(const real_T* qr, int32_T m, int32_T n, const real_T* tau, real_T* b);

}  // namespace quent
