// Definitions of lmFit and heldFit.  Included by the one source that
// instantiates them for the six models, and by tests and benchmarks that fit
// a model of their own (for instance one that counts its evaluations).
#pragma once

#include <cmath>
#include <cstdlib>

#include "engine/damped_step.h"
#include "engine/jacobian.h"
#include "engine/levenberg_marquardt.h"
#include "frame/allocation.h"
#include "frame/limits.h"
#include "numerics/singular_values.h"

namespace quent {

namespace lm {

constexpr real_T kDampingStart = 0.01;
constexpr real_T kDampingDown = 0.1;
constexpr real_T kDampingUp = 10.0;
constexpr real_T kDampingFloor = kMachineEpsilon;
constexpr real_T kDampingCap = 1e+16;
constexpr int kMaxPasses = 200;
constexpr real_T kStepTolerance = 1e-08;
constexpr real_T kNormOffset = 1.4901161193847656e-08;
constexpr real_T kChangeTolerance = 1e-08;

// After an accepted step; the damping never goes below its floor.
inline real_T lowerDamping(real_T damping) {
  damping *= kDampingDown;
  return damping <= kDampingFloor ? kDampingFloor : damping;
}

// Every array one fit needs, carved from a single allocation sized by the
// number of points and the block.
struct Workspace {
  void* storage = nullptr;
  real_T* fitted;        // model at the current block (n)
  real_T* trialValues;   // model at a Jacobian trial (n)
  real_T* residuals;     // residual list of the current block (n)
  real_T* passResiduals; // residual list at the start of a pass, reused by retries (n)
  real_T* jacobian;      // n * P
  real_T* blockOld;      // P
  real_T* trialBlock;    // P
  real_T* step;          // P
  bool* nanMask;         // n
  StepWork stepWork;

  bool allocate(int32_T n, int32_T entries) {
    const std::size_t N = static_cast<std::size_t>(n), P = static_cast<std::size_t>(entries);
    const std::size_t height = N + P;
    const std::size_t reals = 4 * N + N * P + 3 * P + height * P + height + P + height;
    const std::size_t bytes = reals * sizeof(real_T) + P * sizeof(int32_T) + N;
    storage = quent::allocate(bytes);
    if (storage == nullptr) return false;
    real_T* next = static_cast<real_T*>(storage);
    auto take = [&next](std::size_t count) {
      real_T* p = next;
      next += count;
      return p;
    };
    fitted = take(N);
    trialValues = take(N);
    residuals = take(N);
    passResiduals = take(N);
    jacobian = take(N * P);
    blockOld = take(P);
    trialBlock = take(P);
    step = take(P);
    stepWork.jplus = take(height * P);
    stepWork.rplus = take(height);
    stepWork.divide.tau = take(P);
    stepWork.divide.rhs = take(height);
    stepWork.divide.jpvt = reinterpret_cast<int32_T*>(next);
    nanMask = reinterpret_cast<bool*>(stepWork.divide.jpvt + P);
    return true;
  }
  ~Workspace() { std::free(storage); }
};

// The residual list y - fitted (points flagged in nanMask left out) into
// ws.residuals; returns the sum of squares, accumulated in order.
inline real_T residualsOfFitted(const real_T* y, int32_T n, Workspace& ws, int32_T* listLength) {
  int32_T kept = 0;
  for (int32_T i = 0; i < n; ++i)
    if (!ws.nanMask[i]) ws.residuals[kept++] = y[i] - ws.fitted[i];
  *listLength = kept;
  real_T sse = 0.0;
  for (int32_T i = 0; i < kept; ++i) sse += ws.residuals[i] * ws.residuals[i];
  return sse;
}

}  // namespace lm

template <class Model>
void lmFit(const real_T* x, const real_T* y, int32_T n, real_T* fullVector,
           const HeldMask<Model::kParams>& mask, const real_T* heldValues, real_T* block,
           int32_T f) {
  // Nothing to fit (no point, or every entry held): the block stays.
  if (n < 1 || f < 1) return;
  const int32_T entries = f * f;
  lm::Workspace ws;
  if (!ws.allocate(n, entries)) return;
  const FitBinding<Model> binding{&mask, heldValues, x, n};

  real_T damping = lm::kDampingStart;
  bindParameters(fullVector, binding, block, entries, ws.fitted);
  int32_T nanCount = 0;
  for (int32_T i = 0; i < n; ++i) {
    ws.nanMask[i] = std::isnan(y[i]) || std::isnan(ws.fitted[i]);
    nanCount += ws.nanMask[i] ? 1 : 0;
  }
  // The model is a pure function of the block: the start values just computed
  // serve the first residual list as well.
  int32_T listLength = 0;
  real_T sse = lm::residualsOfFitted(y, n, ws, &listLength);

  // One NaN in the response or in the first model values means no iteration
  // at all, although the residual list knows how to drop such points.
  bool done = false, capped = false;
  for (int pass = 0; !done && pass < lm::kMaxPasses && nanCount < 1; ++pass) {
    for (int32_T k = 0; k < entries; ++k) ws.blockOld[k] = block[k];
    const real_T sseOld = sse;
    const int32_T rows = lmJacobian(block, f, fullVector, binding, ws.fitted, ws.nanMask,
                                    nanCount, ws.jacobian, ws.trialBlock, ws.trialValues);
    for (int32_T i = 0; i < listLength; ++i) ws.passResiduals[i] = ws.residuals[i];

    auto tryStep = [&]() {
      lmStep(ws.jacobian, rows, entries, ws.passResiduals, damping, ws.step, ws.stepWork);
      for (int32_T k = 0; k < entries; ++k) block[k] = ws.blockOld[k] + ws.step[k];
      bindParameters(fullVector, binding, block, entries, ws.fitted);
      sse = lm::residualsOfFitted(y, n, ws, &listLength);
    };
    tryStep();
    if (sseOld > sse) {
      damping = lm::lowerDamping(damping);
    } else {
      // Raise the damping on the same Jacobian until the sum of squares
      // stops growing.  An equal or NaN sum is kept as it is.  Past the cap
      // the block keeps the last rejected trial.
      while (sse > sseOld) {
        damping *= lm::kDampingUp;
        if (damping > lm::kDampingCap) {
          capped = true;
          break;
        }
        tryStep();
      }
    }

    const real_T stepNorm = matrixNorm(ws.step, entries, 1);
    if ((matrixNorm(block, f, f) + lm::kNormOffset) * lm::kStepTolerance > stepNorm)
      done = true;
    else if (lm::kChangeTolerance * sse >= std::fabs(sse - sseOld) || capped)
      done = true;
  }
}

template <class Model>
void heldFit(const real_T* x, const real_T* y, int32_T n, const real_T* start,
             const HeldMask<Model::kParams>& mask, real_T* result) {
  constexpr int N = Model::kParams;
  real_T held[N], block[N * N], fullVector[N];
  int32_T h = 0, f = 0;
  for (int i = 0; i < N; ++i) {
    if (mask.held[i]) held[h++] = start[i];
  }
  const int32_T entries = (N - h) * (N - h);
  for (int32_T k = 0; k < entries; ++k) block[k] = 1.0;
  for (int i = 0; i < N; ++i) {
    if (!mask.held[i]) block[f++] = start[i];
  }
  lmFit<Model>(x, y, n, fullVector, mask, held, block, f);

  real_T merged[N];
  for (int i = 0; i < N; ++i) merged[i] = 1.0;
  if (entries >= 1) {
    int free = 0, taken = 0;
    for (int i = 0; i < N; ++i) merged[i] = mask.held[i] ? held[taken++] : block[free++];
  }
  for (int i = 0; i < N; ++i) result[i] = merged[i];
}

}  // namespace quent
