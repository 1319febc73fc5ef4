// The primary fit under the host's masks, through its export, for every
// family: the automatic fit's own mask gives back its rows; an excluded curve
// is as if it were not there; rows fail with the codes a host reads; masks
// too short for the curves refuse the call.
#include <array>

#include "primary/user_plate.h"

namespace quent::test {
namespace {

template <class P>
class UserPrimaryFit : public ::testing::Test {};
using Plates = ::testing::Types<UserPlate<1>, UserPlate<2>, UserPlate<3>>;
TYPED_TEST_SUITE(UserPrimaryFit, Plates);

const real_T* rowOf(const std::vector<real_T>& rows, int32_T c) { return rows.data() + 24 * c; }

// A row without a fit: zeros but for -1 in column 12 and its code.
void expectFailedRow(const real_T* row, real_T code) {
  for (int k = 0; k < 24; ++k) EXPECT_EQ(row[k], k == 12 ? -1.0 : k == 13 ? code : 0.0) << k;
}

// The mask and rows of an automatic fit in which every row was accepted come
// back bit for bit; all points on keeps the spike, which lowers the fit of
// its curve only.
TYPED_TEST(UserPrimaryFit, AutomaticMaskGivesTheSameRows) {
  const TypeParam plate;
  const int32_T curves = plate.curves();
  std::vector<int32_T> mask;
  const std::vector<real_T> rows = plate.automatic(mask);
  for (int32_T c = 0; c < curves; ++c) ASSERT_GT(rowOf(rows, c)[12], 0.0) << c;
  ASSERT_EQ(mask[4 * TypeParam::kPoints + 20], 0);
  const std::vector<int32_T> all(curves, 1);
  const std::vector<real_T> again = plate.user(mask, all, 2);
  EXPECT_EQ(std::memcmp(again.data(), rows.data(), rows.size() * sizeof(real_T)), 0);

  const std::vector<real_T> kept = plate.user(std::vector<int32_T>(mask.size(), 1), all);
  EXPECT_LT(rowOf(kept, 4)[14], rowOf(rows, 4)[14]);
  EXPECT_GT(rowOf(kept, 4)[12], 0.0);
}

// An excluded curve takes no part: the other rows are those of the plate
// without it, and its own row fails (code 35 where amplitudes are fitted,
// else 0).  With every curve excluded no reference fit is made.
TYPED_TEST(UserPrimaryFit, ExcludedCurvesTakeNoPart) {
  const TypeParam plate, without({0, 1, 2, 4, 5});
  const real_T unchosen = TypeParam::kStateCount == 2 ? 0.0 : 35.0;
  std::vector<int32_T> flags(6, 1);
  flags[3] = 0;
  const std::vector<int32_T> all(6 * TypeParam::kPoints, 1);
  const std::vector<real_T> rows = plate.user(all, flags);
  const std::vector<real_T> fewer = without.user(std::vector<int32_T>(5 * TypeParam::kPoints, 1),
                                                 std::vector<int32_T>(5, 1));
  for (int32_T c = 0; c < 6; ++c) {
    if (c == 3) continue;
    const real_T* row = rowOf(rows, c);
    EXPECT_TRUE(sameRow(row, rowOf(fewer, c < 3 ? c : c - 1))) << c;
    EXPECT_GT(row[12], 0.0) << c;
  }
  expectFailedRow(rowOf(rows, 3), unchosen);
  flags[3] = 2;  // only 1 chooses a curve
  EXPECT_EQ(plate.user(all, flags), rows);

  const std::vector<real_T> none = plate.user(all, std::vector<int32_T>(6, 0));
  for (int32_T c = 0; c < 6; ++c) expectFailedRow(rowOf(none, c), unchosen);
}

// A curve with one point fewer than its model needs is not fitted, whatever
// its flag (code 0); with as many as it needs, spread over the curve, it is.
// A curve eight times as steep as the reference fails its refits: the row
// shows the code of the last refit tried (one transition: none, 0).  A
// concentration of 0 makes the trend NaN, and every fitted row fails the
// gates (code 12).
TYPED_TEST(UserPrimaryFit, TooFewPointsFailedRefitsAndTheGates) {
  TypeParam plate({0, 1, 2, 3, 4, 5}, 2);
  constexpr int32_T n = TypeParam::kPoints;
  const int32_T least = 8 * (TypeParam::kStateCount - 1);
  const real_T refitFailed = std::array{0.0, 6.0, 5.0}[TypeParam::kStateCount - 2];
  const auto keeping = [&](int32_T kept) {
    std::vector<int32_T> mask(6 * n, 1);
    std::fill(mask.begin() + n, mask.begin() + 2 * n, 0);
    for (int32_T i = 0; i < kept; ++i) mask[n + i * n / least] = 1;
    return mask;
  };
  const std::vector<int32_T> all(6, 1);
  const std::vector<real_T> rows = plate.user(keeping(least - 1), all);
  expectFailedRow(rowOf(rows, 1), 0.0);
  expectFailedRow(rowOf(rows, 2), refitFailed);
  for (const int32_T c : {0, 3, 4, 5}) EXPECT_GT(rowOf(rows, c)[12], 0.0) << c;
  EXPECT_GT(rowOf(plate.user(keeping(least), all), 1)[12], 0.0);

  plate.conc[0] = plate.conc[1] = 0.0;
  const std::vector<real_T> rejected = plate.user(keeping(least - 1), all);
  for (const int32_T c : {0, 3, 4, 5}) expectFailedRow(rowOf(rejected, c), 12.0);
}

// Masks or flags that stop short of the curves fail the call: every row at
// -1, zeros elsewhere.  Longer ones are read as far as the curves go.  Curve
// counts that disagree fail it too; a null output is left alone.  No curve
// of a flat plate is usable, so no group round fits: the refits start from
// a reference of zeros and fail with their codes.
TYPED_TEST(UserPrimaryFit, ShortMasksAndUnfittablePlatesFailTheCall) {
  TypeParam plate;
  const int32_T points = 6 * TypeParam::kPoints;
  for (const auto& [maskLength, flagCount] : {std::pair{points - 1, 6}, {points, 5}, {0, 0}}) {
    const std::vector<real_T> rows =
        plate.user(std::vector<int32_T>(maskLength, 1), std::vector<int32_T>(flagCount, 1));
    ASSERT_EQ(rows.size(), 24u * 6);
    for (int32_T c = 0; c < 6; ++c) expectFailedRow(rowOf(rows, c), 0.0);
  }
  std::vector<int32_T> longer(points + 5, 1);
  const std::vector<int32_T> all(points, 1), flags(6, 1);
  EXPECT_EQ(plate.user(longer, std::vector<int32_T>(9, 1)), plate.user(all, flags));

  plate.conc.pop_back();
  const std::vector<real_T> mismatch = plate.user(all, flags);
  ASSERT_EQ(mismatch.size(), 24u * 6);
  for (int32_T c = 0; c < 6; ++c) expectFailedRow(rowOf(mismatch, c), 0.0);
  plate.conc.push_back(4.0);
  std::fill(plate.sig.begin(), plate.sig.end(), 50.0);
  const std::vector<real_T> flat = plate.user(all, flags);
  const real_T refitFailed = std::array{0.0, 6.0, 5.0}[TypeParam::kStateCount - 2];
  for (int32_T c = 0; c < 6; ++c) expectFailedRow(rowOf(flat, c), refitFailed);
  const int32_T size[2] = {1, points}, six[2] = {1, 6};
  QUENT_dGtrend_user_primaryFit(TypeParam::kPoints, plate.den.data(), size, plate.sig.data(), size,
                                plate.conc.data(), six, all.data(), size, flags.data(), six,
                                TypeParam::kStateCount, 25.0, nullptr);
}

// Curves of 400 points: the usable test of a round takes no curve longer
// than 384 points, whatever its mask keeps, so the refits start from nothing
// and fail with their code (6 for two transitions).
TEST(UserPrimaryFitLimits, LongCurvesFailTheirRefits) {
  constexpr int32_T n = 400;
  std::vector<real_T> den, sig, conc;
  for (int c = 0; c < 2; ++c) {
    const real_T lnc = std::log(1.0 + c);
    const real_T p[10] = {4000.0 + 300.0 * lnc, (4000.0 + 300.0 * lnc) / 2400.0,
                          11000.0 + 400.0 * lnc, (11000.0 + 400.0 * lnc) / 2400.0,
                          0.4, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
    const std::vector<real_T> x = grid(n, 0.0, 8.0), y = evaluated(curveModel2, p, x);
    den.insert(den.end(), x.begin(), x.end());
    sig.insert(sig.end(), y.begin(), y.end());
    conc.push_back(1.0 + c);
  }
  const auto fit = [&](const std::vector<int32_T>& mask) {
    OwnedArray<RealArray> rows;
    const int32_T size[2] = {1, 2 * n}, two[2] = {1, 2}, flags[2] = {1, 1};
    QUENT_dGtrend_user_primaryFit(n, den.data(), size, sig.data(), size, conc.data(), two,
                                  mask.data(), size, flags, two, 3, 25.0, rows.get());
    return std::vector<real_T>(rows->data, rows->data + rows.count());
  };
  const std::vector<real_T> all = fit(std::vector<int32_T>(2 * n, 1));
  ASSERT_EQ(all.size(), 48u);
  for (int32_T c = 0; c < 2; ++c) expectFailedRow(rowOf(all, c), 6.0);
  std::vector<int32_T> half(2 * n, 0);
  for (int32_T i = 0; i < 2 * n; i += 2) half[i] = 1;
  const std::vector<real_T> fewer = fit(half);
  for (int32_T c = 0; c < 2; ++c) expectFailedRow(rowOf(fewer, c), 6.0);
}

}  // namespace
}  // namespace quent::test
