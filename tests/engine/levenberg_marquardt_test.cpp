// The Levenberg-Marquardt engine: fits of noise-free curves from nearby
// starts, and the behaviours that shape its numbers (NaN exits, the square
// free block, the damping schedule, the retry cap).
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "engine/jacobian.h"
#include "engine/levenberg_marquardt_impl.h"
#include "frame/limits.h"

namespace quent {
namespace {

std::vector<real_T> grid(int32_T n, real_T low, real_T high) {
  std::vector<real_T> x(n);
  for (int32_T i = 0; i < n; ++i) x[i] = low + (high - low) * i / (n - 1);
  return x;
}

template <class Model>
std::vector<real_T> curve(const real_T* params, const std::vector<real_T>& x) {
  std::vector<real_T> y(x.size());
  Model::evaluate(params, x.data(), static_cast<int32_T>(x.size()), y.data());
  return y;
}

// Relative agreement expected of a fit of a noise-free curve: the fit stops on
// a relative change of 1e-8 in the sum of squares, so parameters agree to a
// few parts in 1e5 at worst.
constexpr real_T kRecovery = 1e-4;

template <int N>
void expectRecovered(const real_T (&truth)[N], const real_T* fitted) {
  for (int i = 0; i < N; ++i)
    EXPECT_NEAR(fitted[i], truth[i], kRecovery * (std::fabs(truth[i]) + 1.0)) << "entry " << i;
}

TEST(HeldFit, RecoversOneTransitionCurve) {
  const real_T truth[7] = {5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const auto x = grid(96, 0.0, 6.0);
  const auto y = curve<OneTransitionModel>(truth, x);
  real_T fit[7] = {6000.0, 3.0, 9.5, -0.2, 2.3, 0.1, kFixedRT};
  heldFit<OneTransitionModel>(x.data(), y.data(), 96, fit, heldMask("0000001"), fit);
  expectRecovered(truth, fit);
  EXPECT_EQ(fit[6], kFixedRT);
}

TEST(HeldFit, RecoversTwoAndThreeTransitionCurves) {
  const real_T truth2[10] = {4000.0, 2.0, 9000.0, 5.0, 0.4, 10.0, -0.2, 2.0, 0.1, kFixedRT};
  const auto x = grid(120, 0.0, 8.0);
  const auto y2 = curve<TwoTransitionModel>(truth2, x);
  real_T fit2[10] = {4300.0, 2.1, 8700.0, 4.9, 0.45, 10.0, -0.2, 2.0, 0.1, kFixedRT};
  heldFit<TwoTransitionModel>(x.data(), y2.data(), 120, fit2, heldMask("0000011111"), fit2);
  expectRecovered(truth2, fit2);

  const real_T truth3[13] = {4000.0, 1.5, 8000.0, 3.5, 12000.0, 6.0, 0.3,
                             0.4,    10.0, -0.2,  2.0,    0.1, kFixedRT};
  const auto y3 = curve<ThreeTransitionModel>(truth3, x);
  real_T fit3[13] = {4100.0, 1.55, 7900.0, 3.45, 12100.0, 6.05, 0.3,
                     0.4,    10.0, -0.2,   2.0,    0.1,     kFixedRT};
  heldFit<ThreeTransitionModel>(x.data(), y3.data(), 120, fit3, heldMask("0000001111111"), fit3);
  expectRecovered(truth3, fit3);
}

TEST(HeldFit, RecoversGaussianPeaks) {
  const real_T truth[6] = {2.0, 2.0, 0.5, 1.0, 5.0, 0.8};
  const auto x = grid(80, 0.0, 8.0);
  const auto y = curve<TwoPeakModel>(truth, x);
  real_T fit[6] = {1.8, 2.1, 0.6, 1.1, 4.9, 0.7};
  heldFit<TwoPeakModel>(x.data(), y.data(), 80, fit, heldMask("000000"), fit);
  expectRecovered(truth, fit);
}

TEST(HeldFit, NaNInResponseOrFirstModelValueReturnsTheStart) {
  const real_T truth[7] = {5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const auto x = grid(40, 0.0, 6.0);
  auto y = curve<OneTransitionModel>(truth, x);
  const real_T start[7] = {6000.0, 3.0, 9.5, -0.2, 2.3, 0.1, kFixedRT};
  real_T fit[7];
  y[17] = NAN;
  heldFit<OneTransitionModel>(x.data(), y.data(), 40, start, heldMask("0000001"), fit);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(fit[i], start[i]);

  // Cm = 0 makes the model 0 / 0 at x = 0: NaN at the first point only.
  y = curve<OneTransitionModel>(truth, x);
  const real_T zeroMidpoint[7] = {6000.0, 0.0, 9.5, -0.2, 2.3, 0.1, kFixedRT};
  heldFit<OneTransitionModel>(x.data(), y.data(), 40, zeroMidpoint, heldMask("0000001"), fit);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(fit[i], zeroMidpoint[i]);
}

TEST(LmFit, EntriesPastTheFirstColumnOfTheBlockStayOne) {
  const real_T truth[7] = {5200.0, 2.6, 10.0, -0.3, 2.0, 0.15, kFixedRT};
  const auto x = grid(50, 0.0, 6.0);
  const auto y = curve<OneTransitionModel>(truth, x);
  // dG, Cm, nativeIntercept free: a 3-by-3 block of which 6 entries never move.
  const auto mask = heldMask("0001111");
  const real_T held[4] = {-0.3, 2.0, 0.15, kFixedRT};
  real_T block[9] = {6000.0, 3.0, 9.5, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
  real_T fullVector[7];
  lmFit<OneTransitionModel>(x.data(), y.data(), 50, fullVector, mask, held, block, 3);
  for (int k = 3; k < 9; ++k) EXPECT_EQ(block[k], 1.0);
  EXPECT_NEAR(block[0], 5200.0, 1.0);
  EXPECT_NEAR(block[1], 2.6, 1e-3);
}

TEST(Damping, LowersToItsFloorAndStays) {
  real_T damping = lm::kDampingStart;
  for (int i = 0; i < 13; ++i) damping = lm::lowerDamping(damping);
  EXPECT_GT(damping, lm::kDampingFloor);
  damping = lm::lowerDamping(damping);
  EXPECT_EQ(damping, 2.220446049250313e-16);
  EXPECT_EQ(lm::lowerDamping(damping), 2.220446049250313e-16);
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
  EXPECT_NE(block[0], 0.5);  // not restored to the better start
  EXPECT_NEAR(block[0], 0.5, 1e-14);
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

struct JacobianProbe {
  real_T J[9 * 2], trialBlock[9], trialValues[2], fullVector[3], fitted[2];
  bool nanMask[2] = {false, false};
  real_T held[3] = {5.0, 5.0, 5.0};
  HeldMask<3> mask;

  JacobianProbe(const HeldMask<3>& m, const real_T* block, int32_T f) : mask(m) {
    const FitBinding<SquareModel> binding{&mask, held, nullptr, 2};
    bindParameters(fullVector, binding, block, f * f, fitted);
    lmJacobian(block, f, fullVector, binding, fitted, nanMask, 0, J, trialBlock, trialValues);
  }
};

TEST(Jacobian, IncrementsScaleWithTheEntryOrTheBlockNorm) {
  {  // a negative entry steps downwards: -2 * factor
    const real_T block[1] = {-2.0};
    JacobianProbe probe(heldMask("011"), block, 1);
    const real_T h = -2.0 * kDifferenceFactor;
    EXPECT_EQ(probe.J[0], ((-2.0 + h) * (-2.0 + h) + 25.0 - (4.0 + 25.0)) / h);
  }
  {  // an all-zero block: (0 + 1) * factor
    const real_T block[1] = {0.0};
    JacobianProbe probe(heldMask("011"), block, 1);
    const real_T h = kDifferenceFactor;
    EXPECT_EQ(probe.J[0], (h * h + 25.0 - 25.0) / h);
  }
  {  // a zero entry in a 2-by-2 block (0, 3, 1, 1): sqrt of its largest
     // singular value times the factor
    const real_T block[4] = {0.0, 3.0, 1.0, 1.0};
    JacobianProbe probe(heldMask("001"), block, 2);
    const real_T h = std::sqrt(matrixNorm(block, 2, 2)) * kDifferenceFactor;
    EXPECT_EQ(probe.J[0], (h * h + 9.0 - 9.0) / h);
    EXPECT_NE(h, std::sqrt(std::sqrt(11.0)) * kDifferenceFactor);  // not a Frobenius norm
    // The never-read entries have zero columns.
    EXPECT_EQ(probe.J[2 * 2], 0.0);
    EXPECT_EQ(probe.J[3 * 2 + 1], 0.0);
  }
}

}  // namespace
}  // namespace quent
