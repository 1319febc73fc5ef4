// The six models the engine fits: the one-, two- and three-transition curves
// and the sums of one, two or three Gaussian peaks that locate midpoints on a
// curve's slope.  A binding names the length of the full parameter vector and
// evaluates the model at x.
#pragma once

#include "models/curve_models.h"

namespace quent {

template <int T>
struct TransitionModel {
  static constexpr int kParams = TransitionLayout<T>::kParams;
  static void evaluate(const real_T* p, const real_T* x, int32_T n, real_T* y) {
    curveModel<T>(p, x, n, y);
  }
};

template <int P>
struct PeakModel {
  static constexpr int kParams = 3 * P;
  static void evaluate(const real_T* p, const real_T* x, int32_T n, real_T* y) {
    gaussianSum<P>(p, x, n, y);
  }
};

using OneTransitionModel = TransitionModel<1>;
using TwoTransitionModel = TransitionModel<2>;
using ThreeTransitionModel = TransitionModel<3>;
using OnePeakModel = PeakModel<1>;
using TwoPeakModel = PeakModel<2>;
using ThreePeakModel = PeakModel<3>;

}  // namespace quent
