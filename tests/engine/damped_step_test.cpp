// The damped step and the solves behind it, and the Jacobian's shortcut for
// the block entries the model never reads, checked against a literal
// evaluation of every column.
#include <random>

#include "engine/damped_step.h"
#include "engine/jacobian.h"
#include "engine/left_divide.h"
#include "engine/model_bindings.h"
#include "test_support.h"

namespace quent::test {
namespace {

// Working storage of a step with 3 residuals and 2 unknowns.
struct StepBuffers {
  real_T jplus[10], rplus[5], tau[2], rhs[5], step[2];
  int32_T jpvt[2];
  StepWork work{jplus, rplus, {tau, jpvt, rhs}};
};

// A NaN anywhere gives a zero step.  +inf passes the guard: its column's
// scale is +inf too and the sum stays +inf; -inf meets that +inf scale below
// it, the sum is NaN and no step is taken.
TEST(DampedStep, NonFiniteEntriesAndAZeroColumn) {
  const struct { const char* what; real_T J[6], r[3]; bool zero; } cases[] = {
      {"finite", {1, 2, 3, 0.5, -1, 2}, {1, -1, 0.5}, false},
      {"NaN in J", {1, 2, 3, 0.5, NAN, 2}, {1, -1, 0.5}, true},
      {"NaN in r", {1, 2, 3, 0.5, -1, 2}, {1, NAN, 0.5}, true},
      {"+inf", {1, INFINITY, 3, 0.5, -1, 2}, {1, -1, 0.5}, false},
      {"-inf", {1, -INFINITY, 3, 0.5, -1, 2}, {1, -1, 0.5}, true}};
  StepBuffers b;
  for (const auto& c : cases) {
    lmStep(c.J, 3, 2, c.r, 0.01, b.step, b.work);
    EXPECT_EQ(b.step[0] == 0.0 && b.step[1] == 0.0, c.zero) << c.what;
  }
  // A zero column gets a zero scale and a +0.0 step; the other solves
  // (J'J + 0.01 J'J) s = J'r.
  const real_T J[6] = {1.0, 2.0, 3.0, 0.0, 0.0, 0.0}, r[3] = {1.0, 2.0, 3.0};
  lmStep(J, 3, 2, r, 0.01, b.step, b.work);
  EXPECT_TRUE(sameBits(b.step[1], 0.0));
  EXPECT_NEAR(b.step[0], 14.0 / (14.0 * 1.01), 1e-12);
}

// Third column = first + second: rank 2, one unknown exactly 0, and the
// fitted part of b is (1, 2, 0, 0).  No rows: zeros.  Square: LU.
TEST(LeftDivide, BasicSolutionEmptyAndSquareSystems) {
  real_T a[12] = {1, 0, 0, 0, 0, 1, 0, 0, 1, 1, 0, 0};
  const real_T b[4] = {1.0, 2.0, 3.0, 4.0};
  real_T x[3], tau[3], rhs[4];
  int32_T jpvt[3];
  leftDivide(a, 4, 3, b, x, {tau, jpvt, rhs});
  EXPECT_EQ(std::count(x, x + 3, 0.0), 1);
  EXPECT_NEAR(x[0] + x[2], 1.0, 1e-15);
  EXPECT_NEAR(x[1] + x[2], 2.0, 1e-15);
  x[0] = x[1] = 7.0;
  leftDivide(nullptr, 0, 2, nullptr, x, {tau, jpvt, rhs});
  EXPECT_TRUE(x[0] == 0.0 && x[1] == 0.0);
  real_T square[4] = {2.0, 4.0, 1.0, 3.0};  // [[2, 1], [4, 3]]
  const real_T b2[2] = {3.0, 7.0};
  leftDivide(square, 2, 2, b2, x, {tau, jpvt, rhs});
  EXPECT_TRUE(x[0] == 1.0 && x[1] == 1.0);
}

TEST(LuSolve, PartialPivotingAndAZeroPivotPassedOver) {
  real_T a[9] = {1.0, 4.0, 7.0, 2.0, 5.0, 8.0, 3.0, 6.0, 10.0};
  const real_T b[3] = {6.0, 15.0, 25.0};  // solution (1, 1, 1)
  real_T x[3];
  int32_T pivots[3];
  luSolve(a, 3, b, x, pivots);
  EXPECT_EQ(pivots[0], 2);  // the 7 in the first column is the pivot
  for (real_T v : x) EXPECT_NEAR(v, 1.0, 1e-14);
  real_T singular[4] = {0.0, 0.0, 0.0, 1.0};  // [[0, 0], [0, 1]]
  const real_T ones[2] = {1.0, 1.0};
  luSolve(singular, 2, ones, x, pivots);
  EXPECT_EQ(pivots[0], 0);    // no swap over a zero column
  EXPECT_EQ(x[0], INFINITY);  // no test for singularity
}

// The Jacobian forms the columns of never-read block entries without the
// model; a literal evaluation of every column must give the same bits.  The
// blocks: plain; a -0.0 midpoint, which every trial turns into +0.0, so that
// x / Cm changes sign at x = 0; a zero entry past the first column and a NaN.
TEST(Jacobian, UnreadEntriesMatchALiteralEvaluation) {
  const real_T held[4] = {-0.3, 2.0, 0.15, kFixedRT};
  const real_T blocks[3][9] = {{5000.0, 2.5, 9.5, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
                               {5000.0, -0.0, 9.5, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0},
                               {5000.0, 2.5, NAN, 1.0, 0.0, 1.0, 1.0, 1.0, 1.0}};
  const auto mask = heldMask("0001111");
  const std::vector<real_T> x = grid(12, 0.0, 5.5);
  const FitBinding<OneTransitionModel> binding{&mask, held, x.data(), 12};
  for (const auto& block : blocks) {
    real_T fitted[12], trialValues[12], J[12 * 9], literal[12], trial[9], fullVector[7];
    const bool nanMask[12] = {};
    bindParameters(fullVector, binding, block, 9, fitted);
    lmJacobian(block, 3, fullVector, binding, fitted, nanMask, 0, J, trial, trialValues);
    const real_T s = std::sqrt(matrixNorm(block, 3, 3));
    for (int32_T k = 0; k < 9; ++k) {
      const real_T h = block[k] != 0.0 ? block[k] * kDifferenceFactor
                       : s == 0.0      ? (s + 1.0) * kDifferenceFactor
                                       : s * kDifferenceFactor;
      for (int32_T j = 0; j < 9; ++j) trial[j] = block[j] + (j == k ? h : 0.0);
      bindParameters(fullVector, binding, trial, 9, literal);
      for (int32_T i = 0; i < 12; ++i)
        EXPECT_TRUE(sameBits(J[k * 12 + i], (literal[i] - fitted[i]) / h)) << "column " << k << " row " << i;
    }
  }
}

}  // namespace
}  // namespace quent::test
