// Whether a fitted vector is plausible, and the canonical order of its
// transitions by midpoint.
#include <utility>

#include "models/plausibility.h"
#include "test_support.h"

namespace quent {
namespace {

const real_T kX[] = {0, 1, 2, 3, 4};  // xLast = 4

// A T-transition vector (m = 1000, shares 0.3) with transition t replaced.
real_T judge(int T, int t, real_T dG, real_T Cm, real_T amp1 = 0.3, real_T amp2 = 0.3, int32_T n = 5) {
  real_T p[13] = {};
  for (int k = 0; k < T; ++k) p[2 * k] = 1000.0 * (k + 1), p[2 * k + 1] = k + 1.0;
  p[2 * t] = dG, p[2 * t + 1] = Cm, p[2 * T] = T > 1 ? amp1 : 0.0, p[2 * T + 1] = T > 2 ? amp2 : 0.0;
  return T == 1 ? plausible1(p, kX, n) : T == 2 ? plausible2(p, kX, n) : plausible3(p, kX, n);
}

// Every transition of every family: m from 100 to 15000 and Cm up to xLast,
// inclusive; NaN fails; no curve judges nothing.
TEST(Plausible, TransitionBounds) {
  const real_T cases[][3] = {  // dG, Cm, expected
      {200, 2, 1}, {199.99, 2, 0}, {30000, 2, 1}, {30000.01, 2, 0},
      {4000, 4, 1}, {4000, std::nextafter(4.0, 5.0), 0},
      {500, 0, 0}, {-500, 1, 0}, {500, -1, 0}, {NAN, 1, 0}, {500, NAN, 0}, {-1, -1, 0}};
  for (const auto& [T, t] : {std::pair{1, 0}, {2, 0}, {2, 1}, {3, 0}, {3, 1}, {3, 2}}) {
    SCOPED_TRACE(testing::Message() << T << " transitions, transition " << t);
    for (const auto& c : cases) EXPECT_EQ(judge(T, t, c[0], c[1]), c[2]) << c[0] << " " << c[1];
    EXPECT_EQ(judge(T, t, 1000.0 * (t + 1), t + 1.0, 0.3, 0.3, 0), 0.0);
  }
}

TEST(Plausible, AmplitudeShares) {
  const real_T cases[][4] = {  // T, amp1, amp2, expected
      {2, 0.08, 0, 1}, {2, 0.92, 0, 1}, {2, 0.9200000000000002, 0, 0}, {2, 0.0799, 0, 0}, {2, NAN, 0, 0},
      {3, 0.93, 0.06, 1}, {3, 0.06, 0.06, 1}, {3, 0.05, 0.3, 0}, {3, 0.3, 0.95, 0},
      {3, 0.5, 0.5, 0}, {3, 0.94, 0.06, 0}};  // the last two: the sum must stay below 1,
  // which with shares of at least 0.06 keeps each below 0.94 too
  for (const auto& c : cases)
    EXPECT_EQ(judge(int(c[0]), 0, 1000, 1, c[1], c[2]), c[3]) << c[0] << " " << c[1] << " " << c[2];
}

TEST(CanonicalOrder2, SwapsOnlyStrictlyDescendingLiveVectors) {
  real_T p[3][10] = {{3000, 3, 1000, 1, 0.25, 7, 8, 9, 10, 592}, {3000, 2, 1000, 2}, {-1, -1, -1, -2}};
  for (auto& v : p) canonicalOrder2(v);
  const real_T swapped[10] = {1000, 1, 3000, 3, 0.75, 7, 8, 9, 10, 592};
  EXPECT_TRUE(std::equal(p[0], p[0] + 10, swapped));
  EXPECT_EQ(p[1][0], 3000.0);  // equal midpoints stay
  EXPECT_EQ(p[2][2], -1.0);    // a failed vector stays, though its Cm2 is below Cm1
}

// Every order of midpoints comes out ascending, each transition keeping its
// energy and share (dyadic shares, so the third share is exact).
TEST(CanonicalOrder3, SortsEveryPermutationKeepingShares) {
  int o[3] = {0, 1, 2};
  const real_T share[3] = {0.5, 0.125, 0.375};
  const real_T sorted[13] = {1000, 1, 2000, 2, 3000, 3, 0.5, 0.125, 11, 12, 13, 14, 592};
  do {
    real_T p[13] = {0, 0, 0, 0, 0, 0, share[o[0]], share[o[1]], 11, 12, 13, 14, 592};
    for (int t = 0; t < 3; ++t) p[2 * t] = 1000.0 * (o[t] + 1), p[2 * t + 1] = o[t] + 1.0;
    canonicalOrder3(p);
    EXPECT_TRUE(std::equal(p, p + 13, sorted)) << o[0] << o[1] << o[2];
  } while (std::next_permutation(o, o + 3));
  real_T p[13] = {30, 3, 20, 2, 10, 1, 0.5, 0.3};  // swap, then rotate
  canonicalOrder3(p);
  const real_T rotated[8] = {10, 1, 20, 2, 30, 3, (1.0 - 0.3) - 0.5, 0.3};  // not 0.2
  EXPECT_TRUE(std::equal(p, p + 8, rotated));
  std::fill(p, p + 13, -1.0);
  canonicalOrder3(p);
  EXPECT_TRUE(std::all_of(p, p + 13, [](real_T v) { return v == -1.0; }));
}

}  // namespace
}  // namespace quent
