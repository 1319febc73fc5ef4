#include <vector>

#include <gtest/gtest.h>

#include "curves.h"
#include "primary/fit_with_mask_revision.h"

namespace quent {
namespace {

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
    fitWithMaskRevision(c.x, c.y, n, 2.0, 25.0, row, mask.data());
    const bool fits = spikes == 0 || spikes == 10;
    EXPECT_EQ(fits ? row[12] > 0.0 : std::equal(row, row + kRowColumns, cleared), true) << spikes;
    if (!fits) EXPECT_EQ(mask, std::vector<int32_T>(n, 1)) << spikes;
  }
}

}  // namespace
}  // namespace quent
