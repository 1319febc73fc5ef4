#include <random>

#include "numerics/order_statistics.h"
#include "numerics/sort.h"
#include "test_support.h"

namespace quent::test {
namespace {

// Every form against a plain stable sort that puts NaN above every number, on
// lists full of ties (signed zeros among them) and NaNs, from empty up to
// sizes past the stack work area.  Values move with their order entries, bit
// for bit.
TEST(Sort, EveryFormMatchesAStableReference) {
  std::mt19937_64 rng(9);
  for (int n : {0, 1, 2, 3, 4, 8, 9, 16, 17, 96, 255, 2304, 2305, 5000}) {
    for (bool down : {false, true}) {
      std::vector<double> v(n), got, plain;
      for (double& x : v)
        x = rng() % 7 == 0 ? NAN : rng() % 9 == 0 ? -0.0 : double(rng() % (n / 2 + 2)) - 3.0;
      std::vector<int> want(n), order(n);
      for (int i = 0; i < n; ++i) want[i] = i + 1;
      std::stable_sort(want.begin(), want.end(), [&](int a, int b) {
        const double x = v[(down ? b : a) - 1], y = v[(down ? a : b) - 1];
        return x < y || (std::isnan(y) && !std::isnan(x));
      });
      got = plain = v;
      auto sortDown = n == 2 ? [](double* p, int, int* o) { sortTwoDescending(p, o); }
                      : n == 4 ? [](double* p, int, int* o) { sortDescending4(p, o); }
                      : n == 8 ? [](double* p, int, int* o) { sortDescending8(p, o); }
                      : n == 16 ? [](double* p, int, int* o) { sortDescending16(p, o); } : sortDescendingWithOrder;
      (down ? sortDown : sortAscendingWithOrder)(got.data(), n, order.data());
      n == 2 ? sortTwoAscending(plain.data()) : n == 3 ? sortThreeAscending(plain.data()) : sortAscending(plain.data(), n);
      ASSERT_EQ(order, want) << n << (down ? " descending" : " ascending");
      for (int k = 0; k < n; ++k) {
        ASSERT_EQ(bits(got[k]), bits(v[order[k] - 1])) << n;
        if (!down) { ASSERT_EQ(bits(plain[k]), bits(got[k])) << n; }
      }
    }
  }
}

TEST(OrderStatistics, SampleStdDevAndMeanOfFive) {
  const double one = 4.0, several[] = {2, 4, 4, 4, 5, 5, 7, 9}, five[] = {0.1, 0.2, 0.3, 0.4, 0.5};
  EXPECT_TRUE(sampleStdDev(nullptr, 0) == 0.0 && sampleStdDev(&one, 1) == 0.0);
  EXPECT_EQ(sampleStdDev(several, 8), std::sqrt(32.0 / 7.0));  // divisor n - 1
  EXPECT_EQ(meanOfFive(five), ((((0.1 + 0.2) + 0.3) + 0.4) + 0.5) / 5.0);
}

}  // namespace
}  // namespace quent::test
