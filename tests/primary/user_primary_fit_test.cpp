// The primary fit under the host's masks, through its export, for every
// family: the automatic fit's own mask gives back its rows; an excluded curve
// is as if it were not there; rows fail with the codes a host reads; masks
// too short for the curves refuse the call.
#include <array>

#include "test_support.h"

namespace quent::test {
namespace {

// Three concentrations of two curves each, with the energies rising with
// ln(c) at one m value (eight times as steep for curve `steep`); a little
// noise, and a spike of 6 in curve 4 at point 20 that the automatic fit
// drops.  Signals stay positive.
template <int T>
struct UserPlate {
  static constexpr int32_T kPoints = 16 * T + 32;
  static constexpr int32_T kStateCount = T + 1;
  std::vector<real_T> den, sig, conc;
  explicit UserPlate(const std::vector<int>& curves = {0, 1, 2, 3, 4, 5}, int steep = -1) {
    constexpr real_T dG1[3] = {5200.0, 4000.0, 4000.0}, dG2[3] = {0.0, 11000.0, 9600.0};
    for (const int c : curves) {
      const real_T lnc = std::log(std::pow(2.0, c / 2)), k = c == steep ? 8.0 : 1.0;
      const real_T m = (T == 1 ? 1900.0 : 2400.0) * k;
      const real_T g[3] = {(dG1[T - 1] + 300.0 * lnc) * k, (dG2[T - 1] + 400.0 * lnc) * k,
                           (15000.0 + 500.0 * lnc) * k};
      real_T p[13];
      if constexpr (T == 1) {
        const real_T one[7] = {g[0], g[0] / m, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
        std::copy(one, one + 7, p);
      } else if constexpr (T == 2) {
        const real_T two[10] = {g[0], g[0] / m, g[1], g[1] / m, 0.4, 100.0, 0.0, 42.0, 0.0,
                                rtFromCelsius(25.0)};
        std::copy(two, two + 10, p);
      } else {
        const real_T three[13] = {g[0], g[0] / m, g[1], g[1] / m, g[2], g[2] / m, 0.3,
                                  0.35, 100.0,    0.0,  42.0,     0.0,  rtFromCelsius(25.0)};
        std::copy(three, three + 13, p);
      }
      const std::vector<real_T> x = grid(kPoints, 0.0, 8.0);
      std::vector<real_T> y = evaluated(curveModel<T>, p, x);
      for (int32_T i = 0; i < kPoints; ++i) y[i] += 0.1 * noise(i, 3 + c);
      if (c == 4) y[20] += 6.0;
      den.insert(den.end(), x.begin(), x.end());
      sig.insert(sig.end(), y.begin(), y.end());
      conc.push_back(std::pow(2.0, c / 2));
    }
  }
  int32_T curves() const { return static_cast<int32_T>(conc.size()); }

  std::vector<real_T> automatic(std::vector<int32_T>& mask) const {
    OwnedArray<RealArray> rows;
    OwnedArray<Int32Array> m;
    const int32_T size[2] = {1, static_cast<int32_T>(den.size())}, concSize[2] = {1, curves()};
    QUENT_dGtrend_primaryFit(kPoints, den.data(), size, sig.data(), size, conc.data(), concSize,
                             kStateCount, 25.0, rows.get(), m.get());
    mask.assign(m->data, m->data + m.count());
    return {rows->data, rows->data + rows.count()};
  }
  // maskStride 2: the mask is the first row of a 2-row host matrix.
  std::vector<real_T> user(const std::vector<int32_T>& mask, const std::vector<int32_T>& flags,
                           int32_T maskStride = 1) const {
    OwnedArray<RealArray> rows;
    const int32_T size[2] = {1, static_cast<int32_T>(den.size())}, concSize[2] = {1, curves()};
    std::vector<int32_T> matrix(mask.size() * maskStride, 7);
    for (size_t i = 0; i < mask.size(); ++i) matrix[maskStride * i] = mask[i];
    const int32_T maskSize[2] = {maskStride, static_cast<int32_T>(mask.size())};
    const int32_T flagSize[2] = {1, static_cast<int32_T>(flags.size())};
    QUENT_dGtrend_user_primaryFit(kPoints, den.data(), size, sig.data(), size, conc.data(),
                                  concSize, matrix.data(), maskSize, flags.data(), flagSize,
                                  kStateCount, 25.0, rows.get());
    return {rows->data, rows->data + rows.count()};
  }
};

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

}  // namespace
}  // namespace quent::test
