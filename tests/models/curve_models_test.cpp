// Known answers of the forward models.  Expected values were computed in
// double arithmetic with the fixed order of operations (x / C first, then
// 1 - x / C); several differ in the last bit from the form (C - x) / C.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/limits.h"
#include "models/curve_models.h"

namespace quent {
namespace {

constexpr real_T kRT = kFixedRT;

TEST(CurveModel, OneTransitionKnownAnswers) {
  const real_T p[7] = {5000.0, 3.0, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T x[5] = {0.0, 1.0, 2.5, 4.0, 7.0};
  // Entries 1 to 4 change in the last bit if 1 - x / C is formed as (C - x) / C.
  const real_T expected[5] = {9.998270331839137, 9.772357754463584, 8.073306275154374,
                              2.7850486495992706, 2.7000765835200737};
  real_T y[5];
  curveModel1(p, x, 5, y);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(y[i], expected[i]) << "x = " << x[i];
}

TEST(CurveModel, TwoAndThreeTransitionKnownAnswers) {
  const real_T p2[10] = {4000.0, 2.0, 9000.0, 5.0, 0.3, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T x2[3] = {1.0, 3.0, 6.0};
  const real_T y2expected[3] = {9.723588783941967, 7.329040550064857, 2.7984960760067543};
  real_T y2[3];
  curveModel2(p2, x2, 3, y2);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(y2[i], y2expected[i]);

  const real_T p3[13] = {4000.0, 2.0,  9000.0, 5.0, 12000.0, 7.0, 0.3,
                         0.45,   10.0, -0.2,   2.0, 0.1,     kRT};
  const real_T x3[3] = {1.0, 4.5, 8.0};
  const real_T y3expected[3] = {9.723598885712152, 6.566765330014313, 2.87375128765032};
  const real_T f3expected[3] = {0.009922222634785519, 0.38093754435875, 0.9868301272053};
  real_T y3[3], f3[kMaxFitPoints];
  curveModel3(p3, x3, 3, y3);
  ASSERT_EQ(unfoldedFraction3(p3, x3, 1, 3, f3), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(y3[i], y3expected[i]);
    EXPECT_EQ(f3[i], f3expected[i]);
  }
}

TEST(CurveModel, MidpointGivesHalfWayBetweenBaselines) {
  const real_T p[7] = {6000.0, 2.0, 1.0, 0.5, 3.0, 0.25, kRT};
  const real_T x = 2.0;
  real_T y, f[kMaxFitPoints];
  curveModel1(p, &x, 1, &y);
  EXPECT_EQ(y, (1.0 + 1.0 + 3.0 + 0.5) / 2.0);
  ASSERT_EQ(unfoldedFraction1(p, &x, 1, 1, f), 1);
  EXPECT_EQ(f[0], 0.5);
}

TEST(CurveModel, FailedVectorGivesMinusOneAtZero) {
  // A failed candidate (all -1) must read -1 at x = 0: that is how R squared
  // recognises it.
  const real_T p[7] = {-1, -1, -1, -1, -1, -1, -1};
  const real_T x = 0.0;
  real_T y;
  curveModel1(p, &x, 1, &y);
  EXPECT_EQ(y, -1.0);
}

TEST(CurveModel, ExtraTransitionsWithZeroWeightVanish) {
  const real_T x[4] = {0.5, 2.0, 3.5, 6.0};
  const real_T p1[7] = {5000.0, 2.5, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T p2[10] = {5000.0, 2.5, 9000.0, 5.0, 1.0, 10.0, -0.2, 2.0, 0.1, kRT};
  const real_T p3[13] = {5000.0, 2.5, 9000.0, 5.0, 3000.0, 1.0, 0.25,
                         0.75,   10.0, -0.2,  2.0, 0.1,    kRT};
  real_T y1[4], y2[4], y3[4], y3first[4];
  curveModel1(p1, x, 4, y1);
  curveModel2(p2, x, 4, y2);
  curveModel3(p3, x, 4, y3);
  const real_T p2mix[10] = {5000.0, 2.5, 9000.0, 5.0, 0.25, 10.0, -0.2, 2.0, 0.1, kRT};
  curveModel2(p2mix, x, 4, y3first);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(y2[i], y1[i]);        // amp1 = 1: only the first transition
    EXPECT_EQ(y3[i], y3first[i]);   // amp1 + amp2 = 1: no third transition
  }
}

TEST(UnfoldedFraction, EvaluatesAtMost384PointsAndReadsStridedX) {
  std::vector<real_T> x(385);
  for (int i = 0; i < 385; ++i) x[i] = 0.01 * i;
  const real_T p1[7] = {5000.0, 2.0, 0, 0, 0, 0, kRT};
  real_T out[kMaxFitPoints];
  EXPECT_EQ(unfoldedFraction1(p1, x.data(), 1, 385, out), 384);
  EXPECT_EQ(unfoldedFraction1(p1, x.data(), 1, 0, out), 0);
  std::vector<real_T> y(385);
  curveModel1(p1, x.data(), 385, y.data());  // the curve model has no cap

  // A 2-by-n matrix: the three-transition form reads its first row, the
  // others read the first n elements of storage.
  const real_T p3[13] = {5000.0, 2.0, 5000.0, 2.0, 5000.0, 2.0, 0.3, 0.3, 0, 0, 0, 0, kRT};
  const real_T p2[10] = {5000.0, 2.0, 5000.0, 2.0, 0.3, 0, 0, 0, 0, kRT};
  const real_T matrix[4] = {1.0, 9.0, 2.0, 9.0};  // first row 1, 2
  real_T f2[kMaxFitPoints], f3[kMaxFitPoints], f1row[kMaxFitPoints], f1storage[kMaxFitPoints];
  const real_T row[2] = {1.0, 2.0};
  ASSERT_EQ(unfoldedFraction3(p3, matrix, 2, 2, f3), 2);
  ASSERT_EQ(unfoldedFraction2(p2, matrix, 2, 2, f2), 2);
  unfoldedFraction1(p1, row, 1, 2, f1row);
  unfoldedFraction1(p1, matrix, 2, 2, f1storage);
  EXPECT_DOUBLE_EQ(f3[1], f1row[1]);
  EXPECT_DOUBLE_EQ(f2[1], f1storage[1]);
  EXPECT_NE(f3[1], f2[1]);
}

TEST(GaussianSum, PeaksAddInOrder) {
  const real_T p[9] = {2.0, 1.5, 0.7, 1.0, 4.0, 1.2, 0.5, 6.0, 0.3};
  const real_T x = 3.3;
  real_T y;
  gaussianSum3(p, &x, 1, &y);
  EXPECT_EQ(y, 0.9168637329709904);
  const real_T atCentre = 1.5;
  gaussianSum1(p, &atCentre, 1, &y);
  EXPECT_EQ(y, 2.0);
}

}  // namespace
}  // namespace quent
