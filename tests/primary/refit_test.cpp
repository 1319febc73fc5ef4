#include "curves.h"
#include "frame/fit_row.h"
#include "primary/finish_row.h"
#include "primary/refit_from_row.h"
#include "test_support.h"

namespace quent {
namespace {

bool sameRow(const real_T* a, const real_T* b) { return std::equal(a, a + kRowColumns, b); }

// From a row a few percent off, both forms recover the curve; the masked form
// is the same fit on the kept points and refuses fewer than 8 per transition;
// held entries stay where the row puts them.  finishRow writes the row of the
// family its state count names (7: three transitions); only a first energy
// below 0 fails it, a NaN one does not.
template <int T>
void refitsAndFinishes(real_T stateCount) {
  using L = TransitionLayout<T>;
  test::Curve<T> c(64);
  for (int t = 0; t < T; ++t) c.row[4 + 2 * t + (t == 2)] *= 1.04, c.row[5 + 2 * t + (t == 2)] *= 0.98;
  c.row[0] += 0.1, c.row[2] -= 0.1;
  for (bool held : {false, true}) {
    SCOPED_TRACE(testing::Message() << T << (held ? " held" : " free"));
    real_T fit[13], masked[13], row[kRowColumns];
    refitFromRow<T>(c.x, c.y, 64, c.row, held, fit);
    for (int k = 0; k < L::kParams; ++k) EXPECT_NEAR(fit[k], c.p[k], 1e-6 * std::fabs(c.p[k])) << k;

    std::vector<int32_T> mask(64, 0);
    std::vector<real_T> xs, ys;
    for (int i = 0; i < 8 * T; ++i) {  // spread over the curve, the last point last
      const int at = i + 1 < 8 * T ? i * (8 / T) : 63;
      mask[at] = 1, xs.push_back(c.x[at]), ys.push_back(c.y[at]);
    }
    mask[63] = 0;
    refitMasked<T>(c.x, c.y, 64, c.row, mask.data(), held, masked);
    EXPECT_EQ(masked[0] + masked[L::kParams - 1], -2.0);  // one point short
    mask[63] = 1;
    refitMasked<T>(c.x, c.y, 64, c.row, mask.data(), held, masked);
    refitFromRow<T>(xs.data(), ys.data(), 8 * T, c.row, held, fit);
    EXPECT_TRUE(fit[0] != -1.0 && std::equal(fit, fit + L::kParams, masked));

    std::copy(c.row, c.row + kRowColumns, row);
    row[1] += 0.001, row[3] -= 0.001, row[8] += 0.01, row[11] -= 0.01 * (T == 3);
    refitFromRow<T>(c.x, c.y, 64, row, held, fit);
    EXPECT_TRUE(fit[L::nativeSlope] == row[1] && fit[L::unfoldedSlope] == row[3]);
    for (int t = 0; t < T - 1; ++t) EXPECT_EQ(fit[L::amp(t)] == row[8 + 3 * t], held) << t;
  }
  if constexpr (T == 2) {  // named in the wrong order: back by midpoint, amp1 complemented
    real_T row[kRowColumns], fit[10];
    std::copy(c.row, c.row + kRowColumns, row);
    std::swap(row[4], row[6]), std::swap(row[5], row[7]), row[8] = 1.0 - row[8];
    refitFromRow<2>(c.x, c.y, 64, row, false, fit);
    for (int k = 0; k < 10; ++k) EXPECT_NEAR(fit[k], c.p[k], 1e-6 * std::fabs(c.p[k])) << k;
  }

  real_T row[kRowColumns], expected[kRowColumns];
  c.y[9] += 0.05;
  finishRow(c.x, c.y, 64, c.p, 3.0, stateCount, row);
  writeFitRow<T>(c.x, c.y, 64, c.p, 3.0, expected);
  EXPECT_TRUE(sameRow(row, expected)) << stateCount;
  c.p[0] = -0.5;
  finishRow(c.x, c.y, 64, c.p, 4.0, stateCount, row);
  writeFailedRow<T>(4.0, expected);
  EXPECT_TRUE(sameRow(row, expected)) << stateCount;
  failedRow(4.0, stateCount, row);
  EXPECT_TRUE(sameRow(row, expected)) << stateCount;
  c.p[0] = NAN;
  finishRow(c.x, c.y, 64, c.p, 4.0, stateCount, row);
  EXPECT_TRUE(row[12] == kFixedRT && row[14] == -1.0) << stateCount;
}

TEST(Refit, EachFamily) {
  refitsAndFinishes<1>(2.0), refitsAndFinishes<2>(3.0), refitsAndFinishes<3>(4.0), refitsAndFinishes<3>(7.0);
}

// Alternating noise of 0.7 leaves a plausible fit with R squared below 0.95.
TEST(Refit, BelowTheScoreLimit) {
  for (real_T noise : {0.2, 0.7}) {
    test::Curve<1> c(64);
    for (int i = 0; i < 64; ++i) c.y[i] += i % 2 ? noise : -noise;
    real_T fit[7];
    refitFromRow<1>(c.x, c.y, 64, c.row, false, fit);
    EXPECT_EQ(std::count(fit, fit + 7, -1.0), noise > 0.5 ? 7 : 0) << noise;
  }
}

}  // namespace
}  // namespace quent
