// Every row is measured, fitted or not: a failed row's measures come out as
// -1 or as whatever its -1 parameters give, and the gates never read them.
#include "primary/fit_statistics.h"

#include "frame/row_layout.h"
#include "models/fraction_error.h"
#include "models/r_squared.h"
#include "strategies/families.h"

namespace quent {
namespace {

template <int T>
void refresh(const real_T* x, const real_T* y, int32_T n, real_T* row) {
  real_T params[TransitionLayout<T>::kParams];
  paramsFromRow<T>(row, 1, params);
  row[kColRSquared] = rSquaredOfFit<T>(x, y, n, params);
  real_T error = fractionError<T>(x, n, y, n, row, 1);
  if (error != error) error = kFailed;
  for (int t = 0; t < T; ++t) row[kColEnergyError + t] = row[kColEnergy[t]] * error;
}

}  // namespace

void refreshFitStatistics(int32_T stateCount, const real_T* x, const real_T* y, int32_T n,
                          real_T* row) {
  withFamily(stateCount, [&]<class F>() { refresh<F::T>(x, y, n, row); });
}

}  // namespace quent
