// The Levenberg-Marquardt engine: fits of noise-free curves from nearby
// starts, and the behaviours that shape its numbers (NaN exits, the square
// free block, the damping schedule, the retry cap).
#include "engine/jacobian.h"
#include "engine/levenberg_marquardt_impl.h"
#include "test_support.h"

namespace quent::test {
namespace {

// Relative agreement expected of a fit of a noise-free curve: the fit stops on
// a relative change of 1e-8 in the sum of squares, so parameters agree to a
// few parts in 1e5 at worst.  Held entries keep their start exactly.
constexpr real_T kRecovery = 1e-4;

// A model that counts how often the engine evaluates it.
int evaluations = 0;
template <class Model>
struct Counted {
  static constexpr int kParams = Model::kParams;
  static void evaluate(const real_T* p, const real_T* x, int32_T n, real_T* y) {
    ++evaluations;
    Model::evaluate(p, x, n, y);
  }
};

// Recovers the truth from a nearby start; the number of model evaluations is
// pinned, so that a change of a stopping rule or a loop limit shows at once.
template <class Model, int N>
void expectRecovered(const real_T (&truth)[N], const real_T (&start)[N], int32_T n, real_T high,
                     const HeldMask<N>& mask, int expectedEvaluations) {
  const auto x = grid(n, 0.0, high);
  const auto y = evaluated(Model::evaluate, truth, x);
  real_T fit[N];
  evaluations = 0;
  heldFit<Counted<Model>>(x.data(), y.data(), n, start, mask, fit);
  EXPECT_EQ(evaluations, expectedEvaluations);
  for (int i = 0; i < N; ++i) {
    EXPECT_NEAR(fit[i], truth[i], kRecovery * (std::fabs(truth[i]) + 1.0)) << "entry " << i;
    if (mask.held[i]) { EXPECT_EQ(fit[i], start[i]) << "entry " << i; }
  }
}

TEST(HeldFit, RecoversNoiseFreeCurvesOfEachModel) {
  expectRecovered<OneTransitionModel>({5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT},
                                      {6000.0, 3.0, 9.5, -0.2, 2.3, 0.1, kFixedRT}, 96, 6.0,
                                      heldMask("0000001"), 43);
  expectRecovered<TwoTransitionModel>({4000.0, 2.0, 9000.0, 5.0, 0.4, 10.0, -0.2, 2.0, 0.1, kFixedRT},
                                      {4300.0, 2.1, 8700.0, 4.9, 0.45, 10.0, -0.2, 2.0, 0.1, kFixedRT},
                                      120, 8.0, heldMask("0000011111"), 31);
  expectRecovered<ThreeTransitionModel>(
      {4000.0, 1.5, 8000.0, 3.5, 12000.0, 6.0, 0.3, 0.4, 10.0, -0.2, 2.0, 0.1, kFixedRT},
      {4100.0, 1.55, 7900.0, 3.45, 12100.0, 6.05, 0.3, 0.4, 10.0, -0.2, 2.0, 0.1, kFixedRT}, 120, 8.0,
      heldMask("0000001111111"), 29);
  expectRecovered<TwoPeakModel>({2.0, 2.0, 0.5, 1.0, 5.0, 0.8}, {1.8, 2.1, 0.6, 1.1, 4.9, 0.7}, 80, 8.0,
                                heldMask("000000"), 36);
}

// exp(p) against a zero response: every step takes p down by about one and
// cuts the sum of squares by e^2, so the fit never settles and ends after its
// two hundred passes: the start, then a Jacobian column and a step each pass.
struct RecedingModel {
  static constexpr int kParams = 2;
  static void evaluate(const real_T* p, const real_T*, int32_T n, real_T* y) {
    for (int32_T i = 0; i < n; ++i) y[i] = std::exp(p[0]);
  }
};

TEST(LmFit, AFitThatNeverSettlesEndsAfterTwoHundredPasses) {
  const real_T x[3] = {0, 1, 2}, y[3] = {0.0, 0.0, 0.0};
  real_T block[1] = {0.0}, held[1] = {0.0}, fullVector[2];
  evaluations = 0;
  lmFit<Counted<RecedingModel>>(x, y, 3, fullVector, heldMask("01"), held, block, 1);
  EXPECT_EQ(evaluations, 1 + 200 * 2);
  EXPECT_NEAR(block[0], -200.0, 2.0);
}

// A NaN in the response, or a midpoint of 0 that makes the model 0 / 0 at
// x = 0 (NaN at the first point only), returns the start untouched.
TEST(HeldFit, NaNInResponseOrFirstModelValueReturnsTheStart) {
  const real_T truth[7] = {5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const real_T starts[2][7] = {{6000.0, 3.0, 9.5, -0.2, 2.3, 0.1, kFixedRT},
                               {6000.0, 0.0, 9.5, -0.2, 2.3, 0.1, kFixedRT}};
  const auto x = grid(40, 0.0, 6.0);
  for (int k = 0; k < 2; ++k) {
    auto y = evaluated(curveModel1, truth, x);
    if (k == 0) y[17] = NAN;
    real_T fit[7];
    heldFit<OneTransitionModel>(x.data(), y.data(), 40, starts[k], heldMask("0000001"), fit);
    EXPECT_TRUE(std::equal(fit, fit + 7, starts[k])) << k;
  }
}

TEST(LmFit, EntriesPastTheFirstColumnOfTheBlockStayOne) {
  const real_T truth[7] = {5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const auto x = grid(50, 0.0, 6.0);
  const auto y = evaluated(curveModel1, truth, x);
  // dG, Cm, nativeIntercept free: a 3-by-3 block of which 6 entries never move.
  const real_T held[4] = {-0.3, 2.0, 0.15, kFixedRT};
  real_T block[9] = {6000.0, 3.0, 9.5, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}, fullVector[7];
  lmFit<OneTransitionModel>(x.data(), y.data(), 50, fullVector, heldMask("0001111"), held, block, 3);
  for (int k = 3; k < 9; ++k) EXPECT_EQ(block[k], 1.0);
  EXPECT_TRUE(std::fabs(block[0] - 5200.0) < 1.0 && std::fabs(block[1] - 2.6) < 1e-3);  // it did fit
}

TEST(Damping, LowersToItsFloorAndStays) {
  real_T damping = lm::kDampingStart;
  for (int i = 0; i < 13; ++i) damping = lm::lowerDamping(damping);
  EXPECT_GT(damping, lm::kDampingFloor);  // the fourteenth step reaches the floor
  EXPECT_EQ(lm::lowerDamping(damping), 2.220446049250313e-16);
  EXPECT_EQ(lm::lowerDamping(lm::lowerDamping(damping)), 2.220446049250313e-16);
}

// A one-parameter model that is linear at its start value and at the
// Jacobian's trial point only: every real step makes it far worse, so the
// damping is raised until the cap ends the fit.
int stubbornEvaluations = 0;
struct StubbornModel {
  static constexpr int kParams = 2;
  static void evaluate(const real_T* p, const real_T*, int32_T n, real_T* y) {
    ++stubbornEvaluations;
    const bool known = p[0] == 0.5 || p[0] == 0.5 + 0.5 * kDifferenceFactor;
    for (int32_T i = 0; i < n; ++i) y[i] = known ? p[0] : p[0] + 1000.0;
  }
};

TEST(LmFit, NineteenthRaiseEndsTheFitWithTheLastRejectedTrial) {
  const real_T x[4] = {0, 1, 2, 3}, y[4] = {1.5, 1.5, 1.5, 1.5};
  real_T block[1] = {0.5}, held[1] = {7.0}, fullVector[2];
  stubbornEvaluations = 0;
  lmFit<StubbornModel>(x, y, 4, fullVector, heldMask("01"), held, block, 1);
  // Start, one Jacobian column, the first trial and 18 retries, the last at
  // a damping of exactly 1e16.
  EXPECT_EQ(stubbornEvaluations, 21);
  EXPECT_TRUE(block[0] != 0.5 && std::fabs(block[0] - 0.5) < 1e-14);  // not restored to the start
  EXPECT_EQ(fullVector[1], 7.0);
}

// Squares one entry of the full vector, so a Jacobian column reads back its
// increment: ((p + h)^2 - p^2) / h = 2p + h.
struct SquareModel {
  static constexpr int kParams = 3;
  static void evaluate(const real_T* p, const real_T*, int32_T n, real_T* y) {
    for (int32_T i = 0; i < n; ++i) y[i] = p[0] * p[0] + p[1] * p[1];
  }
};

// Jacobian of SquareModel over a block, the entries it leaves held at 5.
void jacobianOf(const HeldMask<3>& mask, const real_T* block, int32_T f, real_T* J) {
  real_T trialBlock[4], trialValues[2], fullVector[3], fitted[2], held[3] = {5.0, 5.0, 5.0};
  const bool nanMask[2] = {};
  const FitBinding<SquareModel> binding{&mask, held, nullptr, 2};
  bindParameters(fullVector, binding, block, f * f, fitted);
  lmJacobian(block, f, fullVector, binding, fitted, nanMask, 0, J, trialBlock, trialValues);
}

TEST(Jacobian, IncrementsScaleWithTheEntryOrTheBlockNorm) {
  real_T J[8];
  const real_T minusTwo = -2.0, zero = 0.0, block[4] = {0.0, 3.0, 1.0, 1.0};
  // A negative entry steps downwards: -2 * factor.
  jacobianOf(heldMask("011"), &minusTwo, 1, J);
  real_T h = -2.0 * kDifferenceFactor;
  EXPECT_EQ(J[0], ((-2.0 + h) * (-2.0 + h) + 25.0 - (4.0 + 25.0)) / h);
  // An all-zero block: (0 + 1) * factor.
  jacobianOf(heldMask("011"), &zero, 1, J);
  h = kDifferenceFactor;
  EXPECT_EQ(J[0], (h * h + 25.0 - 25.0) / h);
  // A zero entry of a 2-by-2 block: the square root of the block's largest
  // singular value (not a Frobenius norm) times the factor.  The never-read
  // entries have zero columns.
  jacobianOf(heldMask("001"), block, 2, J);
  h = std::sqrt(matrixNorm(block, 2, 2)) * kDifferenceFactor;
  EXPECT_EQ(J[0], (h * h + 9.0 - 9.0) / h);
  EXPECT_TRUE(J[2 * 2] == 0.0 && J[3 * 2 + 1] == 0.0);
}

}  // namespace
}  // namespace quent::test
