// The spike screen, the revision of a curve's mask by the residuals of its
// fit, and the fit that alternates the two.
#include "primary/fit_with_mask_revision.h"
#include "primary/revise_mask.h"
#include "primary/screen_spikes.h"
#include "test_support.h"

namespace quent {
namespace {

// Spreads are 0 or 0.15 but in the plateau case and the last.  With odd n the
// threshold profile is a place longer than the curve, which raises the last
// point's threshold to about 1.5 spreads while the first stays at one.
TEST(ScreenSpikes, Cases) {
  const struct { const char* what; std::vector<real_T> y; std::vector<int32_T> mask; } cases[] = {
      {"flat, equal neighbours", {5, 5, 5, 5, 5, 5, 5}, {1, 1, 1, 1, 1, 1, 1}},
      {"flat, the tiniest bump", {5, 5, 5, 5 + 1e-12, 5, 5, 5}, {1, 1, 1, 0, 1, 1, 1}},
      {"outlier in a plateau; steps of the transition stay",
       {1, 1.01, 1.02, 1.03, 3, 1.05, 1.06, 2, 3, 4, 5, 5.01, 5.02, 5.03, 5.04, 5.05},
       {1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}},
      {"end point beside a cleared point", {3, 8, 0, 0, 0, 0, 0, 0}, {1, 0, 1, 1, 1, 1, 1, 1}},
      {"odd, first point", {-0.2, 0, 0, 1, 1, 1, 1}, {0, 1, 1, 1, 1, 1, 1}},
      {"odd, last point", {0, 0, 0, 1, 1, 1, 1.2}, {1, 1, 1, 1, 1, 1, 1}},
      {"even, last point", {0, 0, 0, 0, 1, 1, 1, 1.2}, {1, 1, 1, 1, 1, 1, 1, 0}},
      {"fewer than five points", {0, 9, 0, 9}, {1, 1, 1, 1}},
      {"five points", {0, 0, 9, 0, 0}, {1, 1, 0, 1, 1}},
      {"the two highest left out of the spread", {0, 0, 0, 1e-3, 0, 0, 0.5, 0.5}, {1, 1, 1, 0, 1, 1, 1, 1}},
      // Spread from the third-lowest (0) to the third-highest (2): 0.3.  The
      // bump of 0.4 stays under its threshold of 0.54, the ramp's steps of 1
      // do not, and the last point's neighbour is gone.
      {"a spread between the third values from each end", {0, 0, 0.4, 0, 1, 2, 3, 4}, {1, 1, 1, 1, 0, 0, 0, 1}}};
  for (const auto& c : cases) {
    std::vector<int32_T> mask(c.y.size(), 7);
    screenSpikes(c.y.data(), static_cast<int32_T>(c.y.size()), mask.data());
    EXPECT_EQ(mask, c.mask) << c.what;
  }
}

// The threshold of place i on a curve of n points is a parabola through the
// spread at both ends and twice the spread midway, over n rounded up to even:
// (2 - ((i + 1 - h - 0.5) / (h - 0.5))^2) * spread with h half of that.  A
// step from 0 to 1 makes the spread (2 - 1) * 15 / 100; a point raised by just
// over its threshold from its plateau is cleared, by just under it is kept.
// (Places beside an end or the step would take a neighbour along.)
TEST(ScreenSpikes, ThresholdProfile) {
  for (const int32_T n : {12, 13}) {
    const real_T h = (n + n % 2) / 2, spread = 0.15;
    for (int32_T i : {0, 2, 3, n - 4, n - 3, n - 1}) {
      const real_T u = (i + 1 - h - 0.5) / (h - 0.5), threshold = (2.0 - u * u) * spread;
      for (const real_T factor : {1.0 + 1e-7, 1.0 - 1e-7}) {
        std::vector<real_T> y(n, 0.0);
        std::fill(y.begin() + n / 2, y.end(), 1.0);
        y[i] += threshold * factor;
        std::vector<int32_T> mask(n), expected(n, 1);
        expected[i] = factor > 1.0 ? 0 : 1;
        screenSpikes(y.data(), n, mask.data());
        EXPECT_EQ(mask, expected) << n << " " << i << " " << factor;
      }
    }
  }
}

// On the row's own noise-free curve only displaced points go.  A point the
// incoming mask dropped comes back unless its x is shared by a failing point.
template <int T>
void revisesUnderTheModelOfTheRow() {
  test::Curve<T> c(60);
  c.x[21] = c.x[20];
  curveModel<T>(c.p, c.x, 60, c.y);
  for (int i : {0, 2, 21, 40}) c.y[i] += 1.0;
  std::vector<int32_T> mask(60, 1), expected(60, 1);
  for (int i : {2, 10, 20}) mask[i] = 0;
  for (int i : {0, 20, 21, 40}) expected[i] = 0;
  reviseMask(c.x, c.y, 60, c.row, mask.data());
  EXPECT_EQ(mask, expected) << T;
  c.row[12] = -1.0;  // a failed row changes nothing
  reviseMask(c.x, c.y, 60, c.row, mask.data());
  EXPECT_EQ(mask, expected) << T;
}

TEST(ReviseMask, ModelOfTheRowAndReturningPoints) {
  revisesUnderTheModelOfTheRow<1>(), revisesUnderTheModelOfTheRow<2>(), revisesUnderTheModelOfTheRow<3>();
}

// A point goes when its residual exceeds 0.15 of the population deviation of
// the kept signal, the displaced point included: found here by bisection, and
// probed a hair either side.
TEST(ReviseMask, ResidualLimitIsFifteenPercentOfTheDeviation) {
  const auto sigma = [](std::vector<real_T> v) {
    real_T mean = 0.0, squares = 0.0;
    for (real_T e : v) mean += e / static_cast<real_T>(v.size());
    for (real_T e : v) squares += (e - mean) * (e - mean);
    return std::sqrt(squares / static_cast<real_T>(v.size()));
  };
  const test::Curve<1> clean(40);
  const auto withShift = [&](real_T d) {
    std::vector<real_T> y(clean.y, clean.y + 40);
    y[10] += d;
    return y;
  };
  real_T low = 0.0, high = 5.0;
  for (int k = 0; k < 200; ++k) {
    const real_T mid = 0.5 * (low + high);
    (mid > 0.15 * sigma(withShift(mid)) ? high : low) = mid;
  }
  for (const real_T factor : {1.0 - 1e-9, 1.0 + 1e-9}) {
    const auto y = withShift(low * factor);
    std::vector<int32_T> mask(40, 1), expected(40, 1);
    expected[10] = factor > 1.0 ? 0 : 1;
    reviseMask(clean.x, y.data(), 40, clean.row, mask.data());
    EXPECT_EQ(mask, expected) << factor;
  }
}

// At most a quarter of the curve, as 100 z / n in real arithmetic (26 of 103
// is above 25 percent).  No kept point: nothing is judged, all come back.
TEST(ReviseMask, QuarterOfTheCurve) {
  const struct { int32_T n, displaced, maskedOff, zerosAfter; } cases[] = {
      {40, 10, 0, 10}, {50, 13, 0, 0}, {103, 25, 0, 25}, {103, 26, 0, 0}, {20, 3, 20, 0}};
  for (const auto& k : cases) {
    test::Curve<1> c(k.n);
    for (int32_T j = 0; j < k.displaced; ++j) c.y[3 * j] += 1.0;
    std::vector<int32_T> mask(k.n, 1);
    std::fill(mask.begin(), mask.begin() + k.maskedOff, 0);
    reviseMask(c.x, c.y, k.n, c.row, mask.data());
    EXPECT_EQ(std::count(mask.begin(), mask.end(), 0), k.zerosAfter) << k.n << " " << k.displaced;
  }
}

// Up to a quarter of isolated spikes still gets a fit; one more, or the
// one-point curve of an empty group mean, leaves a cleared row and all points.
TEST(FitWithMaskRevision, QuarterOfSpikesAndSinglePoint) {
  for (int32_T spikes : {0, 10, 11, -1}) {
    test::Curve<1> c(40);
    for (int32_T j = 0; j < spikes; ++j) c.y[1 + 3 * j] += 4.0;
    const int32_T n = spikes < 0 ? 1 : 40;
    real_T row[kRowColumns], cleared[kRowColumns] = {};
    cleared[12] = -1.0;
    std::vector<int32_T> mask(n, 7);
    fitWithMaskRevision(c.x, c.y, n, 2, 25.0, row, mask.data());
    const bool fits = spikes == 0 || spikes == 10;
    EXPECT_EQ(fits ? row[12] > 0.0 : std::equal(row, row + kRowColumns, cleared), true) << spikes;
    if (!fits) { EXPECT_EQ(mask, std::vector<int32_T>(n, 1)) << spikes; }
  }
}

// A noisy curve whose revised mask keeps changing: the fit of the fifth and
// last round stands, with its own exit and mask.
TEST(FitWithMaskRevision, FiveRoundsAtMost) {
  const real_T truth[7] = {5200.0, 3.6, 10.0, 0.0, 2.0, 0.0, rtFromCelsius(25.0)};
  const auto x = test::grid(40, 0.0, 8.0);
  auto y = test::evaluated(curveModel1, truth, x);
  for (int32_T i = 0; i < 40; ++i) y[i] += 8.0 * 0.08 * test::noise(i, 1);
  real_T row[kRowColumns];
  std::vector<int32_T> mask(40, 7);
  fitWithMaskRevision(x.data(), y.data(), 40, 2, 25.0, row, mask.data());
  EXPECT_EQ(row[13], 19.0);
  EXPECT_EQ(std::count(mask.begin(), mask.end(), 0), 5);
}

}  // namespace
}  // namespace quent
