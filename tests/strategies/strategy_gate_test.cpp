// The gate of every family's strategy and the early exits of its passes: the
// least and most points, the temperature range, curves without change or
// without width, and the point count of the masked form, each with the code
// of its family.
#include "strategies/family_literals.h"
#include "strategies/strategy_skeleton.h"
#include "test_support.h"

namespace quent {
namespace {

constexpr real_T kGarbage = 7.7e77;

template <class F>
class StrategyGate : public ::testing::Test {
 protected:
  using L = test::Literals<F>;
  static constexpr int T = F::T;

  // The noise-free curve of the family on n points over 0 to 6.
  static void curve(int32_T n, std::vector<real_T>& x, std::vector<real_T>& y) {
    x = test::grid(n, 0.0, 6.0);
    y = test::evaluated(curveModel<T>, test::kTruth[T - 1], x);
  }
  struct Fit {
    std::vector<real_T> row = std::vector<real_T>(kRowColumns, kGarbage);
    std::vector<int32_T> maskOut;
    bool written() const { return std::find(row.begin(), row.end(), kGarbage) == row.end(); }
  };
  static Fit whole(const std::vector<real_T>& x, const std::vector<real_T>& y,
                   real_T temperature = 25.0) {
    Fit f;
    strategy::fitWhole<F>(x.data(), static_cast<int32_T>(x.size()), y.data(),
                          static_cast<int32_T>(y.size()), temperature, f.row.data());
    return f;
  }
  // Pass::Main is the masked form itself; the others its retries.
  static Fit masked(Pass pass, const std::vector<real_T>& x, const std::vector<real_T>& y,
                    std::vector<int32_T> mask = {}, real_T temperature = 25.0) {
    if (mask.empty()) mask.assign(x.size(), 1);
    Fit f;
    f.maskOut.assign(mask.size(), -7);
    const int32_T n = static_cast<int32_T>(x.size()), m = static_cast<int32_T>(mask.size());
    if (pass == Pass::Main)
      strategy::fitMasked<F>(x.data(), n, y.data(), static_cast<int32_T>(y.size()), mask.data(),
                             m, temperature, f.row.data(), f.maskOut.data());
    else
      strategy::fitTrimmed<F>(pass, x.data(), n, y.data(), n, mask.data(), m, 25.0, f.row.data(),
                              f.maskOut.data());
    return f;
  }
  static void expectFailed(const Fit& f, int code) {
    std::vector<real_T> failed(kRowColumns);
    writeFailedRow<T>(code, failed.data());
    EXPECT_EQ(f.row, failed) << "code " << code;
  }
};
TYPED_TEST_SUITE(StrategyGate, test::FittedFamilies);

TYPED_TEST(StrategyGate, PointCountsAndTemperature) {
  using G = TestFixture;
  const auto& codes = G::L::codes[0];
  std::vector<real_T> x, y;
  G::curve(G::L::kMinPoints, x, y);
  EXPECT_GT(G::whole(x, y).row[kColRT], 0.0);  // the least number of points passes
  for (real_T t : {0.0, 100.0}) EXPECT_GT(G::whole(x, y, t).row[kColRT], 0.0) << t;
  for (real_T t : {-0.1, 100.1}) G::expectFailed(G::whole(x, y, t), codes.badInput);
  G::expectFailed(G::whole(x, std::vector<real_T>(y.begin(), y.end() - 1)), codes.badInput);
  G::curve(G::L::kMinPoints - 1, x, y);
  G::expectFailed(G::whole(x, y), codes.badInput);
  G::curve(385, x, y);
  G::expectFailed(G::whole(x, y), codes.badInput);
  G::curve(384, x, y);
  EXPECT_GT(G::whole(x, y).row[kColRT], 0.0);
}

// The same plateau at both ends, a curve without width, a flat curve: each
// pass has its own code, and the retries have no gate of their own.
TYPED_TEST(StrategyGate, CurvesWithoutChangeOrWidth) {
  using G = TestFixture;
  std::vector<real_T> x, y;
  G::curve(40, x, y);
  std::vector<real_T> mirrored = y, noWidth = x;
  for (int i = 0; i < 20; ++i) mirrored[39 - i] = mirrored[i];
  noWidth[39] = noWidth[0];
  const std::vector<real_T> flat(40, 3.0);

  const Pass passes[3] = {Pass::Main, Pass::TrimOne, Pass::TrimBoth};
  for (int p = 0; p < (G::L::kTrims ? 3 : 1); ++p) {
    SCOPED_TRACE(p);
    const auto& codes = G::L::codes[p];
    G::expectFailed(G::masked(passes[p], x, mirrored), codes.noChange);
    G::expectFailed(G::masked(passes[p], noWidth, y), codes.flatX);
    if (p == 0) {
      G::expectFailed(G::whole(x, mirrored), codes.noChange);
      G::expectFailed(G::whole(noWidth, y), codes.flatX);
      G::expectFailed(G::whole(x, flat), G::L::kFlatCurveCode);
    }
  }
}

// The masked form counts the points left on: one short of the least number
// writes code 1 in the one-transition layout, whatever the family; a mask of
// another length than the curve is bad input.  maskOut starts as the mask.
TYPED_TEST(StrategyGate, MaskedFormCountsThePointsLeftOn) {
  using G = TestFixture;
  const int32_T n = 3 * G::L::kMinPoints;
  std::vector<real_T> x, y;
  G::curve(n, x, y);
  std::vector<int32_T> mask(n, 0);
  for (int32_T i = 0; i < G::L::kMinPoints; ++i) mask[3 * i + 1] = 1;
  const auto kept = G::masked(Pass::Main, x, y, mask);
  EXPECT_TRUE(kept.written() && kept.row[kColRT] > 0.0);
  mask[1] = 0;
  const auto short1 = G::masked(Pass::Main, x, y, mask);
  std::vector<real_T> tooShort(kRowColumns);
  writeFailedRow<1>(1.0, tooShort.data());
  EXPECT_EQ(short1.row, tooShort);
  EXPECT_EQ(short1.maskOut, mask);
  mask.pop_back();
  G::expectFailed(G::masked(Pass::Main, x, y, mask), G::L::codes[0].badInput);
  EXPECT_EQ(G::masked(Pass::Main, x, y, mask).maskOut, mask);

  // The gate of the whole curve holds for the masked form too.
  const int badInput = G::L::codes[0].badInput;
  for (real_T t : {-0.1, 100.1}) G::expectFailed(G::masked(Pass::Main, x, y, {}, t), badInput);
  G::expectFailed(G::masked(Pass::Main, x, std::vector<real_T>(y.begin(), y.end() - 1)), badInput);
  G::curve(385, x, y);
  G::expectFailed(G::masked(Pass::Main, x, y), badInput);
  G::curve(384, x, y);
  EXPECT_GT(G::masked(Pass::Main, x, y).row[kColRT], 0.0);
}

}  // namespace
}  // namespace quent
