// Golub-Kahan reduction to bidiagonal form, then implicit-shift QR sweeps on
// the bidiagonal, accumulating no vectors: the engine only ever needs the
// largest singular value of its free block, and needs it cheaply.
#include "numerics/singular_values.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "frame/allocation.h"
#include "frame/limits.h"
#include "numerics/pivoted_qr.h"

namespace quent {
namespace {

constexpr real_T kTiny = 1.0020841800044864e-292;
constexpr int32_T kMaxSweeps = 75;      // per singular value
constexpr int32_T kRelaxedAfter = 20;   // sweeps before the test against the whole norm
constexpr int32_T kStackEntries = 169;  // a 13-by-13 free block

// Larger of two values, a NaN giving way to the other.
inline real_T maxPassingNaN(real_T a, real_T b) {
  if (a != a) return b;
  if (b != b) return a;
  return b > a ? b : a;
}

inline real_T unitSign(real_T x) { return x < 0.0 ? -1.0 : 1.0; }

real_T dot(const real_T* x, const real_T* y, int32_T count) {
  real_T d = 0.0;
  for (int32_T i = 0; i < count; ++i) d = d + x[i] * y[i];
  return d;
}

// y += t * x, passing over a zero multiple.
void addMultiple(const real_T* x, real_T* y, int32_T count, real_T t) {
  if (t == 0.0) return;
  for (int32_T i = 0; i < count; ++i) y[i] = y[i] + t * x[i];
}

// Divides a stretch by d, through the reciprocal unless d is so small that
// the reciprocal would overflow.
void divideStretch(real_T* x, int32_T count, real_T d) {
  if (std::fabs(d) >= kTiny) {
    const real_T r = 1.0 / d;
    for (int32_T i = 0; i < count; ++i) x[i] = r * x[i];
  } else {
    for (int32_T i = 0; i < count; ++i) x[i] = x[i] / d;
  }
}

struct Rotation {
  real_T c, s;
};

// Plane rotation taking (a, b) to (r, 0); a becomes r.  The second value the
// rotation would leave behind is never read by a sweep, so it is not formed.
Rotation rotate(real_T& a, real_T b) {
  const real_T aa = std::fabs(a);
  const real_T ab = std::fabs(b);
  const real_T signSource = aa > ab ? a : b;
  const real_T sum = aa + ab;
  if (sum == 0.0) {
    a = 0.0;
    return {1.0, 0.0};
  }
  const real_T pa = aa / sum;
  const real_T pb = ab / sum;
  real_T r = sum * std::sqrt(pa * pa + pb * pb);
  if (signSource < 0.0) r = -r;
  const Rotation rot{a / r, b / r};
  a = r;
  return rot;
}

// Householder steps from both sides; leaves the diagonal in s and the
// superdiagonal in e, and returns the order of the bidiagonal.
int32_T bidiagonalize(real_T* A, int32_T m, int32_T n, real_T* s, real_T* e, real_T* work) {
  const auto at = [&](int32_T i, int32_T j) -> real_T& {
    return A[i + static_cast<std::ptrdiff_t>(j) * m];
  };
  const int32_T nct = m - 1 < n ? m - 1 : n;
  const int32_T nrt = n - 2 < m ? (n - 2 > 0 ? n - 2 : 0) : m;
  const int32_T order = m + 1 < n ? m + 1 : n;
  const int32_T steps = nct > nrt ? nct : nrt;
  for (int32_T q = 0; q < steps; ++q) {
    bool applied = false;
    if (q < nct) {
      real_T nrm = scaledNorm2(&at(q, q), m - q);
      s[q] = nrm;
      if (nrm > 0.0) {
        applied = true;
        if (at(q, q) < 0.0) nrm = -nrm;
        s[q] = nrm;
        divideStretch(&at(q, q), m - q, nrm);
        at(q, q) = at(q, q) + 1.0;
        s[q] = -s[q];
      }
    }
    for (int32_T j = q + 1; j < n; ++j) {
      if (applied) {
        const real_T t = -dot(&at(q, q), &at(q, j), m - q) / at(q, q);
        addMultiple(&at(q, q), &at(q, j), m - q, t);
      }
      e[j] = at(q, j);
    }
    if (q < nrt) {
      const real_T nrm = scaledNorm2(e + q + 1, n - q - 1);
      if (nrm == 0.0) {
        e[q] = 0.0;
      } else {
        e[q] = e[q + 1] >= 0.0 ? nrm : -nrm;
        divideStretch(e + q + 1, n - q - 1, e[q]);
        e[q + 1] = e[q + 1] + 1.0;
        e[q] = -e[q];
        if (q + 2 <= m) {
          for (int32_T i = q + 1; i < m; ++i) work[i] = 0.0;
          for (int32_T j = q + 1; j < n; ++j) addMultiple(&at(q + 1, j), work + q + 1, m - q - 1, e[j]);
          for (int32_T j = q + 1; j < n; ++j)
            addMultiple(work + q + 1, &at(q + 1, j), m - q - 1, -e[j] / e[q + 1]);
        }
      }
    }
  }
  if (nct < n) s[nct] = at(nct, nct);
  if (m < order) s[order - 1] = 0.0;
  if (nrt + 1 < order) e[nrt] = at(nrt, order - 1);
  e[order - 1] = 0.0;
  return order;
}

// Implicit-shift QR on the bidiagonal (s, e) of the given order; s ends
// non-negative and descending unless the sweep cap is met.
void diagonalize(real_T* s, real_T* e, int32_T order) {
  for (int32_T q = 0; q < order; ++q) {
    if (s[q] != 0.0) {
      const real_T sign = unitSign(s[q]);
      s[q] = std::fabs(s[q]);
      e[q] = e[q] / sign;
    }
    if (q + 1 < order && e[q] != 0.0) {
      const real_T sign = unitSign(e[q]);
      e[q] = std::fabs(e[q]);
      s[q + 1] = s[q + 1] * sign;
    }
  }
  real_T snorm = 0.0;
  for (int32_T q = 0; q < order; ++q)
    snorm = maxPassingNaN(snorm, maxPassingNaN(std::fabs(s[q]), std::fabs(e[q])));

  int32_T p = order;
  int32_T sweeps = 0;
  while (p > 0 && sweeps < kMaxSweeps) {
    // Block start q: the first superdiagonal entry below it that is negligible.
    int32_T q = p - 1;
    for (; q > 0; --q) {
      const real_T ae = std::fabs(e[q - 1]);
      if (ae <= kMachineEpsilon * (std::fabs(s[q - 1]) + std::fabs(s[q])) || ae <= kTiny ||
          (sweeps > kRelaxedAfter && ae <= kMachineEpsilon * snorm)) {
        e[q - 1] = 0.0;
        break;
      }
    }
    if (q == p - 1) {
      // The last value has converged: make it positive and sink it into place.
      if (s[q] < 0.0) s[q] = -s[q];
      while (q + 1 < order && s[q] < s[q + 1]) {
        const real_T t = s[q];
        s[q] = s[q + 1];
        s[q + 1] = t;
        ++q;
      }
      sweeps = 0;
      --p;
      continue;
    }
    // A negligible diagonal entry in the block; k counts from 1 here.
    int32_T k = p;
    for (; k > q; --k) {
      real_T t = 0.0;
      if (k < p) t = t + std::fabs(e[k - 1]);
      if (k > q + 1) t = t + std::fabs(e[k - 2]);
      const real_T as = std::fabs(s[k - 1]);
      if (as <= kMachineEpsilon * t || as <= kTiny) {
        s[k - 1] = 0.0;
        break;
      }
    }
    if (k == p) {
      // Zero at the bottom: chase the last superdiagonal entry up and out.
      real_T f = e[p - 2];
      e[p - 2] = 0.0;
      for (int32_T j = p - 2; j >= q; --j) {
        const Rotation r = rotate(s[j], f);
        if (j > q) {
          f = -r.s * e[j - 1];
          e[j - 1] = r.c * e[j - 1];
        }
      }
    } else if (k > q) {
      // Zero inside: split there and chase the entry beside it down.
      q = k;
      real_T f = e[q - 1];
      e[q - 1] = 0.0;
      for (int32_T j = q; j < p; ++j) {
        const Rotation r = rotate(s[j], f);
        f = -r.s * e[j];
        e[j] = r.c * e[j];
      }
    } else {
      // One QR sweep with the shift from the trailing 2-by-2 block.
      real_T scale = maxPassingNaN(std::fabs(s[p - 1]), std::fabs(s[p - 2]));
      scale = maxPassingNaN(scale, std::fabs(e[p - 2]));
      scale = maxPassingNaN(scale, std::fabs(s[q]));
      scale = maxPassingNaN(scale, std::fabs(e[q]));
      const real_T sp = s[p - 1] / scale;
      const real_T spm1 = s[p - 2] / scale;
      const real_T epm1 = e[p - 2] / scale;
      const real_T sq = s[q] / scale;
      const real_T eq = e[q] / scale;
      const real_T b = ((spm1 + sp) * (spm1 - sp) + epm1 * epm1) / 2.0;
      real_T c = sp * epm1;
      c = c * c;
      real_T shift = 0.0;
      if (b != 0.0 || c != 0.0) {
        shift = std::sqrt(b * b + c);
        if (b < 0.0) shift = -shift;
        shift = c / (b + shift);
      }
      real_T f = (sq + sp) * (sq - sp) + shift;
      real_T g = sq * eq;
      for (int32_T j = q; j < p - 1; ++j) {
        Rotation r = rotate(f, g);
        if (j > q) e[j - 1] = f;
        f = r.c * s[j] + r.s * e[j];
        e[j] = r.c * e[j] - r.s * s[j];
        g = r.s * s[j + 1];
        s[j + 1] = r.c * s[j + 1];
        r = rotate(f, g);
        s[j] = f;
        f = r.c * e[j] + r.s * s[j + 1];
        s[j + 1] = -r.s * e[j] + r.c * s[j + 1];
        g = r.s * e[j + 1];
        e[j + 1] = r.c * e[j + 1];
      }
      e[p - 2] = f;
      ++sweeps;
    }
  }
}

// A is a working copy (overwritten); s and e hold n entries, work m.
void singularValuesInPlace(real_T* A, int32_T m, int32_T n, real_T* s, real_T* e, real_T* work) {
  for (int32_T j = 0; j < n; ++j) {
    s[j] = 0.0;
    e[j] = 0.0;
  }
  for (int32_T i = 0; i < m; ++i) work[i] = 0.0;
  diagonalize(s, e, bidiagonalize(A, m, n, s, e, work));
}

// Runs the computation on a copy and hands the values to use(s); false when
// there is no room for the copy.
template <class Use>
bool withSingularValues(const real_T* a, int32_T m, int32_T n, Use use) {
  const std::size_t entries = static_cast<std::size_t>(m) * static_cast<std::size_t>(n);
  if (entries <= static_cast<std::size_t>(kStackEntries)) {
    real_T A[kStackEntries], s[kStackEntries], e[kStackEntries], work[kStackEntries];
    for (std::size_t i = 0; i < entries; ++i) A[i] = a[i];
    singularValuesInPlace(A, m, n, s, e, work);
    use(s);
    return true;
  }
  const std::size_t un = static_cast<std::size_t>(n);
  real_T* A = static_cast<real_T*>(
      allocate((entries + 2 * un + static_cast<std::size_t>(m)) * sizeof(real_T)));
  if (A == nullptr) return false;
  for (std::size_t i = 0; i < entries; ++i) A[i] = a[i];
  real_T* s = A + entries;
  singularValuesInPlace(A, m, n, s, s + un, s + 2 * un);
  use(s);
  std::free(A);
  return true;
}

}  // namespace

int32_T singularValues(const real_T* a, int32_T m, int32_T n, real_T* s) {
  if (m < 1 || n < 1) return 0;
  const int32_T count = m < n ? m : n;
  const bool done = withSingularValues(a, m, n, [&](const real_T* values) {
    for (int32_T i = 0; i < count; ++i) s[i] = values[i];
  });
  if (!done)
    for (int32_T i = 0; i < count; ++i) s[i] = __builtin_nan("");
  return count;
}

real_T matrixNorm(const real_T* a, int32_T m, int32_T n) {
  if (m < 1 || n < 1) return 0.0;
  if (m == 1 || n == 1) return scaledNorm2(a, m * n);
  const std::size_t entries = static_cast<std::size_t>(m) * static_cast<std::size_t>(n);
  real_T largest = 0.0;
  for (std::size_t i = 0; i < entries; ++i) {
    const real_T v = std::fabs(a[i]);
    if (v != v) return 0.0;  // a block gone NaN measures as zero
    if (v > largest) largest = v;
  }
  if (largest == 0.0) return 0.0;
  real_T norm = __builtin_nan("");  // stays so only if there is no room to work
  withSingularValues(a, m, n, [&](const real_T* values) { norm = values[0]; });
  return norm;
}

}  // namespace quent
