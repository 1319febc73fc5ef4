// The pivoted QR written step by step with no shortcut: every column gets its
// reflector, dot product and downdate, and the trailing columns are cut by
// scanning for the last nonzero one.  The library's factorisation must agree
// with it bit for bit.
#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include "numerics/pivoted_qr.h"

namespace quent::test {

inline void literalPivotedQr(double* a, int m, int n, double* tau, int* jpvt) {
  auto A = [&](int i, int j) -> double& { return a[i + j * m]; };
  for (int j = 0; j < n; ++j) jpvt[j] = j + 1;
  if (m < 1 || n < 1) return;
  std::vector<double> vn1(n), vn2(n), w(n);
  for (int j = 0; j < n; ++j) vn1[j] = vn2[j] = scaledNorm2(&A(0, j), m);
  for (int k = 0; k < std::min(m, n); ++k) {
    int p = k;
    for (int j = k + 1; j < n; ++j) p = vn1[j] > vn1[p] ? j : p;
    if (p != k) {
      for (int i = 0; i < m; ++i) std::swap(A(i, p), A(i, k));
      std::swap(jpvt[p], jpvt[k]);
      vn1[p] = vn1[k], vn2[p] = vn2[k];
    }
    tau[k] = k < m - 1 ? householderReflector(&A(k, k), m - k) : 0.0;
    if (k < n - 1 && tau[k] != 0.0) {
      const double akk = A(k, k);
      A(k, k) = 1.0;
      int lastv = m - k, lastc = n - 1;
      while (lastv > 0 && A(k + lastv - 1, k) == 0.0) --lastv;
      for (bool zero = true; zero && lastc > k;) {
        for (int i = k; i < k + lastv; ++i) zero = zero && A(i, lastc) == 0.0;
        lastc -= zero;
      }
      for (int j = k + 1; j <= lastc; ++j) {
        w[j] = 0.0;
        for (int i = k; i < k + lastv; ++i) w[j] += A(i, j) * A(i, k);
      }
      for (int j = k + 1; j <= lastc; ++j)
        for (int i = k; i < k + lastv && w[j] != 0.0; ++i) A(i, j) += A(i, k) * (w[j] * -tau[k]);
      A(k, k) = akk;
    }
    for (int j = k + 1; j < n; ++j) {
      if (vn1[j] == 0.0) continue;
      double t = std::fabs(A(k, j)) / vn1[j];
      t = std::max(1.0 - t * t, 0.0);
      const double ratio = vn1[j] / vn2[j];
      if (t * (ratio * ratio) > 1.4901161193847656e-08)
        vn1[j] *= std::sqrt(t);
      else
        vn1[j] = vn2[j] = k < m - 1 ? scaledNorm2(&A(k + 1, j), m - k - 1) : 0.0;
    }
  }
}

}  // namespace quent::test
