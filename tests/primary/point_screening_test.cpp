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
      {"the two highest left out of the spread", {0, 0, 0, 1e-3, 0, 0, 0.5, 0.5}, {1, 1, 1, 0, 1, 1, 1, 1}}};
  for (const auto& c : cases) {
    std::vector<int32_T> mask(c.y.size(), 7);
    screenSpikes(c.y.data(), static_cast<int32_T>(c.y.size()), mask.data());
    EXPECT_EQ(mask, c.mask) << c.what;
  }
}

// On the row's own noise-free curve only displaced points go.  A point the
// incoming mask dropped comes back unless its x is shared by a failing point.
template <int T>
void revisesUnderTheModelOfTheRow() {
  test::Curve<T> c(60);
  c.x[21] = c.x[20];
  curveModel<T>(c.p, c.x, 60, c.y);
  for (int i : {2, 21, 40}) c.y[i] += 1.0;
  std::vector<int32_T> mask(60, 1), expected(60, 1);
  for (int i : {2, 10, 20}) mask[i] = 0;
  for (int i : {20, 21, 40}) expected[i] = 0;
  reviseMask(c.x, c.y, 60, c.row, mask.data());
  EXPECT_EQ(mask, expected) << T;
  c.row[12] = -1.0;  // a failed row changes nothing
  reviseMask(c.x, c.y, 60, c.row, mask.data());
  EXPECT_EQ(mask, expected) << T;
}

TEST(ReviseMask, ModelOfTheRowAndReturningPoints) {
  revisesUnderTheModelOfTheRow<1>(), revisesUnderTheModelOfTheRow<2>(), revisesUnderTheModelOfTheRow<3>();
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

}  // namespace
}  // namespace quent
