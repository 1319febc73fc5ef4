// Householder QR with column pivoting and its vector kernels.  The damped
// systems of the engine are mostly exact zeros (the unread entries of the free
// block give zero columns, and their diagonal rows are zero too), so the
// factorisation passes over work whose result it knows bit for bit.
#include "numerics/pivoted_qr.h"

#include "frame/allocation.h"
#include "numerics/bit_tests.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quent {
namespace {

constexpr real_T kDowndateThreshold = 1.4901161193847656e-08;
constexpr real_T kUnderflowThreshold = 1.0020841800044864e-292;
constexpr real_T kRescaleFactor = 9.9792015476736e+291;
constexpr real_T kSmallestNormal = 2.2250738585072014e-308;
constexpr real_T kRootTwo = 1.4142135623730951;

// Column counts up to a 13-by-13 free block keep their workspace on the stack.
constexpr int32_T kStackColumns = 169;

inline real_T* column(real_T* a, int32_T m, int32_T j) {
  return a + static_cast<std::ptrdiff_t>(j) * m;
}

void scaleStretch(real_T* x, int32_T count, real_T factor) {
  for (int32_T i = 0; i < count; ++i) x[i] = x[i] * factor;
}

real_T reflectorBeta(real_T alpha, real_T xnorm) {
  const real_T h = safeHypot(alpha, xnorm);
  return alpha >= 0.0 ? -h : h;
}

real_T dotStretch(const real_T* c, const real_T* v, int32_T len) {
  real_T w = 0.0;
  for (int32_T i = 0; i < len; ++i) w = w + c[i] * v[i];
  return w;
}

// c and v are stretches of different columns.
void reflectStretch(real_T* __restrict c, const real_T* __restrict v, int32_T len, real_T w,
                    real_T minusTau) {
  if (w == 0.0) return;
  const real_T temp = w * minusTau;
  for (int32_T i = 0; i < len; ++i) c[i] = c[i] + v[i] * temp;
}

// Reflects the stretches rows [k, k + len) of the listed columns.  Each
// column's dot product is its own running sum in row order; four of them are
// interleaved only so that the sums do not wait on one another.
void reflectColumns(real_T* a, int32_T m, int32_T k, const real_T* v, int32_T len,
                    real_T minusTau, const int32_T* cols, int32_T count) {
  int32_T c = 0;
  for (; c + 4 <= count; c += 4) {
    real_T* c0 = column(a, m, cols[c]) + k;
    real_T* c1 = column(a, m, cols[c + 1]) + k;
    real_T* c2 = column(a, m, cols[c + 2]) + k;
    real_T* c3 = column(a, m, cols[c + 3]) + k;
    real_T w0 = 0.0, w1 = 0.0, w2 = 0.0, w3 = 0.0;
    for (int32_T i = 0; i < len; ++i) {
      w0 = w0 + c0[i] * v[i];
      w1 = w1 + c1[i] * v[i];
      w2 = w2 + c2[i] * v[i];
      w3 = w3 + c3[i] * v[i];
    }
    reflectStretch(c0, v, len, w0, minusTau);
    reflectStretch(c1, v, len, w1, minusTau);
    reflectStretch(c2, v, len, w2, minusTau);
    reflectStretch(c3, v, len, w3, minusTau);
  }
  for (; c < count; ++c) {
    real_T* cj = column(a, m, cols[c]) + k;
    reflectStretch(cj, v, len, dotStretch(cj, v, len), minusTau);
  }
}

struct QrWork {
  real_T* vn1;          // partial column norms
  real_T* vn2;          // norms at their last exact computation
  unsigned char* live;  // 0: column still all zero and never touched
  int32_T* cols;        // columns a reflector has to visit
  int32_T lastLive;     // no live column stands beyond this place
};

// Applies reflector k (stored in column k, leading 1 in place) to the columns
// right of k.  With a finite reflector an untouched zero column gets a dot
// product of +0 and is passed over, so only live columns are visited; a
// non-finite one would turn such columns into NaN, so it takes the full
// column range with the cut to the last nonzero column.
void reflectTrailing(real_T* a, int32_T m, int32_T n, int32_T k, real_T tau, QrWork& wk) {
  const real_T* v = column(a, m, k) + k;
  int32_T len = m - k;
  while (len > 0 && v[len - 1] == 0.0) --len;
  int32_T count = 0;
  if (allFinite(v, len)) {
    for (int32_T j = k + 1; j <= wk.lastLive; ++j)
      if (wk.live[j]) wk.cols[count++] = j;
  } else {
    // The last column with a nonzero entry in the reflector's rows is live,
    // so lastLive still bounds every live column afterwards.
    int32_T last = n - 1;
    while (last > k && allZero(column(a, m, last) + k, len)) --last;
    for (int32_T j = k + 1; j <= last; ++j) {
      wk.cols[count++] = j;
      wk.live[j] = 1;
    }
  }
  reflectColumns(a, m, k, v, len, -tau, wk.cols, count);
}

// The partial norms of the columns right of k lose row k; a norm that has
// shrunk too far to trust the update is computed afresh from the rows below.
// Columns past the last live one have norm 0.0 and are passed over anyway.
void downdateNorms(real_T* a, int32_T m, int32_T k, QrWork& wk) {
  for (int32_T j = k + 1; j <= wk.lastLive; ++j) {
    if (wk.vn1[j] == 0.0) continue;
    real_T t = std::fabs(column(a, m, j)[k]) / wk.vn1[j];
    t = 1.0 - t * t;
    if (t < 0.0) t = 0.0;
    const real_T ratio = wk.vn1[j] / wk.vn2[j];
    const real_T t2 = t * (ratio * ratio);
    if (t2 > kDowndateThreshold) {
      wk.vn1[j] = wk.vn1[j] * std::sqrt(t);
    } else if (k + 1 < m) {
      wk.vn1[j] = scaledNorm2(column(a, m, j) + k + 1, m - k - 1);
      wk.vn2[j] = wk.vn1[j];
    } else {
      wk.vn1[j] = 0.0;
      wk.vn2[j] = 0.0;
    }
  }
}

void swapColumns(real_T* a, int32_T m, int32_T i, int32_T j) {
  real_T* __restrict ci = column(a, m, i);
  real_T* __restrict cj = column(a, m, j);
  for (int32_T r = 0; r < m; ++r) {
    const real_T t = ci[r];
    ci[r] = cj[r];
    cj[r] = t;
  }
}

void factor(real_T* a, int32_T m, int32_T n, real_T* tau, int32_T* jpvt, QrWork wk) {
  wk.lastLive = -1;
  for (int32_T j = 0; j < n; ++j) {
    const real_T* cj = column(a, m, j);
    wk.live[j] = allZero(cj, m) ? 0 : 1;
    wk.vn1[j] = wk.live[j] ? scaledNorm2(cj, m) : 0.0;
    wk.vn2[j] = wk.vn1[j];
    if (wk.live[j]) wk.lastLive = j;
  }
  const int32_T steps = m < n ? m : n;
  for (int32_T k = 0; k < steps; ++k) {
    while (wk.lastLive > k && !wk.live[wk.lastLive]) --wk.lastLive;
    // vn1 holds no negative values, so its largest |entry| is its largest
    // entry, and a NaN norm never takes the pivot from an earlier column.
    // The zero norms of the untouched columns past the last live one cannot
    // beat the entry at k, so the search stops there.
    const int32_T searched = (wk.lastLive > k ? wk.lastLive : k) - k + 1;
    const int32_T pvt = k - 1 + firstMaxAbs(wk.vn1 + k, searched);
    if (pvt != k) {
      swapColumns(a, m, pvt, k);
      const int32_T p = jpvt[pvt];
      jpvt[pvt] = jpvt[k];
      jpvt[k] = p;
      const unsigned char l = wk.live[pvt];
      wk.live[pvt] = wk.live[k];
      wk.live[k] = l;
      wk.vn1[pvt] = wk.vn1[k];
      wk.vn2[pvt] = wk.vn2[k];
    }
    real_T* diag = column(a, m, k) + k;
    // An untouched zero column has a zero norm below the diagonal.
    tau[k] = (k + 1 < m && wk.live[k]) ? householderReflector(diag, m - k) : 0.0;
    if (k + 1 < n && tau[k] != 0.0) {
      const real_T rkk = *diag;
      *diag = 1.0;
      reflectTrailing(a, m, n, k, tau[k], wk);
      *diag = rkk;
    }
    downdateNorms(a, m, k, wk);
  }
}

}  // namespace

real_T scaledNorm2(const real_T* x, int32_T count) {
  if (count < 1) return 0.0;
  if (count == 1) return std::fabs(x[0]);
  real_T scale = kSmallestNormal;
  real_T sum = 0.0;
  for (int32_T i = 0; i < count; ++i) {
    const real_T a = std::fabs(x[i]);
    // A zero adds (0 / scale)^2 = +0 to a sum that is never -0: pass it over
    // (the damped systems are mostly zeros).
    if (a == 0.0) continue;
    if (a > scale) {
      const real_T t = scale / a;
      sum = 1.0 + sum * t * t;
      scale = a;
    } else {
      const real_T t = a / scale;
      sum = sum + t * t;
    }
  }
  return scale * std::sqrt(sum);
}

real_T safeHypot(real_T u, real_T v) {
  real_T a = std::fabs(u);
  real_T b = std::fabs(v);
  if (b > a) {
    a = a / b;
    return b * std::sqrt(a * a + 1.0);
  }
  if (a > b) {
    b = b / a;
    return a * std::sqrt(b * b + 1.0);
  }
  if (b != b) return b;
  return a * kRootTwo;
}

int32_T firstMaxAbs(const real_T* x, int32_T count) {
  if (count < 1) return 0;
  int32_T best = 1;
  real_T largest = std::fabs(x[0]);
  for (int32_T i = 1; i < count; ++i) {
    const real_T a = std::fabs(x[i]);
    if (a > largest) {
      best = i + 1;
      largest = a;
    }
  }
  return best;
}

real_T householderReflector(real_T* p, int32_T count) {
  real_T* x = p + 1;
  const int32_T nx = count - 1;
  real_T alpha = p[0];
  real_T xnorm = scaledNorm2(x, nx);
  if (xnorm == 0.0) return 0.0;
  real_T beta = reflectorBeta(alpha, xnorm);
  int32_T rescaled = 0;
  if (!(std::fabs(beta) >= kUnderflowThreshold)) {
    // A reflector this small would divide by a subnormal: lift the stretch
    // into the normal range first and scale beta back down after.
    do {
      ++rescaled;
      scaleStretch(x, nx, kRescaleFactor);
      beta = beta * kRescaleFactor;
      alpha = alpha * kRescaleFactor;
    } while (std::fabs(beta) < kUnderflowThreshold);
    xnorm = scaledNorm2(x, nx);
    beta = reflectorBeta(alpha, xnorm);
  }
  const real_T tau = (beta - alpha) / beta;
  scaleStretch(x, nx, 1.0 / (alpha - beta));
  for (int32_T i = 0; i < rescaled; ++i) beta = beta * kUnderflowThreshold;
  p[0] = beta;
  return tau;
}

void pivotedQr(real_T* a, int32_T m, int32_T n, real_T* tau, int32_T* jpvt) {
  for (int32_T j = 0; j < n; ++j) jpvt[j] = j + 1;
  if (m < 1 || n < 1) return;
  if (n <= kStackColumns) {
    real_T vn1[kStackColumns], vn2[kStackColumns];
    unsigned char live[kStackColumns];
    int32_T cols[kStackColumns];
    factor(a, m, n, tau, jpvt, {vn1, vn2, live, cols, -1});
    return;
  }
  const std::size_t un = static_cast<std::size_t>(n);
  void* block = allocate(un * (2 * sizeof(real_T) + sizeof(int32_T) + 1));
  if (block == nullptr) {
    // No room to factor: reflectors of NaN make every later use visibly fail.
    const int32_T steps = m < n ? m : n;
    for (int32_T k = 0; k < steps; ++k) tau[k] = __builtin_nan("");
    return;
  }
  real_T* vn1 = static_cast<real_T*>(block);
  int32_T* cols = reinterpret_cast<int32_T*>(vn1 + 2 * un);
  factor(a, m, n, tau, jpvt,
         {vn1, vn1 + un, reinterpret_cast<unsigned char*>(cols + un), cols, -1});
  std::free(block);
}

void applyQrReflectors(const real_T* qr, int32_T m, int32_T n, const real_T* tau, real_T* b) {
  const int32_T steps = m < n ? m : n;
  for (int32_T j = 0; j < steps; ++j) {
    if (tau[j] == 0.0) continue;
    const real_T* v = qr + static_cast<std::ptrdiff_t>(j) * m;
    real_T w = b[j];
    for (int32_T i = j + 1; i < m; ++i) w = w + v[i] * b[i];
    w = w * tau[j];
    if (w == 0.0) continue;
    b[j] = b[j] - w;
    for (int32_T i = j + 1; i < m; ++i) b[i] = b[i] - v[i] * w;
  }
}

}  // namespace quent
