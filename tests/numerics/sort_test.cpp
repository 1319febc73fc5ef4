#include <random>

#include "numerics/order_statistics.h"
#include "numerics/sort.h"
#include "test_support.h"

namespace quent::test {
namespace {

struct SortCase {
  std::vector<double> in;
  bool descending;
  std::vector<int> order;  // 1-based
};

TEST(Sort, OrdersTiesAndNaNsByInputPosition) {
  const SortCase cases[] = {{{}, false, {}},  {{7.0}, true, {1}},  {{0.99, 0.99, 0.5}, true, {1, 2, 3}},
                            {{1.0, NAN, 2.0}, false, {1, 3, 2}},  {{1.0, NAN, 2.0}, true, {2, 3, 1}},
                            {{3.0, NAN}, true, {2, 1}},  {{NAN, NAN, NAN}, false, {1, 2, 3}},
                            {{NAN, NAN, NAN}, true, {1, 2, 3}},
                            {{0.0, -0.0, NAN, 0.0, -1.0, NAN}, true, {3, 6, 1, 2, 4, 5}}};
  for (const SortCase& c : cases) {
    std::vector<double> v = c.in;
    std::vector<int> order(v.size());
    (c.descending ? sortDescendingWithOrder : sortAscendingWithOrder)(v.data(), int(v.size()), order.data());
    EXPECT_EQ(order, c.order);
    for (size_t k = 0; k < v.size(); ++k) EXPECT_EQ(bits(v[k]), bits(c.in[order[k] - 1]));
  }
}

// Every form against a plain stable sort, on lists full of ties and NaNs, up
// to sizes past the stack work area.
TEST(Sort, EveryFormMatchesAStableReference) {
  std::mt19937_64 rng(9);
  for (int n : {2, 3, 4, 8, 9, 16, 17, 96, 255, 2304, 2305, 5000}) {
    for (bool down : {false, true}) {
      std::vector<double> v(n), got, plain;
      for (double& x : v) x = rng() % 7 == 0 ? NAN : double(rng() % (n / 2 + 2)) - 3.0;
      std::vector<int> want(n), order(n);
      for (int i = 0; i < n; ++i) want[i] = i + 1;
      std::stable_sort(want.begin(), want.end(), [&](int a, int b) {  // NaN above all
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
      for (int k = 0; k < n && !down; ++k) ASSERT_EQ(bits(plain[k]), bits(got[k])) << n;
    }
  }
}

TEST(OrderStatistics, SampleStdDevAndMeanOfFive) {
  const double one = 4.0, several[] = {2, 4, 4, 4, 5, 5, 7, 9}, five[] = {0.1, 0.2, 0.3, 0.4, 0.5};
  EXPECT_EQ(sampleStdDev(nullptr, 0), 0.0);
  EXPECT_EQ(sampleStdDev(&one, 1), 0.0);
  EXPECT_EQ(sampleStdDev(several, 8), std::sqrt(32.0 / 7.0));  // divisor n - 1
  EXPECT_EQ(meanOfFive(five), ((((0.1 + 0.2) + 0.3) + 0.4) + 0.5) / 5.0);
}

}  // namespace
}  // namespace quent::test
