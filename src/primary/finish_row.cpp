// The refits of the primary fit judge their vectors by the sign of the first
// energy alone, so a NaN energy still gets a row (which then fails every
// quality gate by its R squared of -1).
#include "primary/finish_row.h"

#include "frame/fit_row.h"

namespace quent {
namespace {

int transitionsOfStateCount(real_T stateCount) {
  if (stateCount == 2.0) return 1;
  if (stateCount == 3.0) return 2;
  return 3;
}

template <int T>
void finishRowOf(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
                 real_T* row) {
  if (params[0] < 0.0)
    writeFailedRow<T>(code, row);
  else
    writeFittedRow<T>(x, y, n, params, code, row);
}

}  // namespace

void finishRow(const real_T* x, const real_T* y, int32_T n, const real_T* params, real_T code,
               real_T stateCount, real_T* row) {
  switch (transitionsOfStateCount(stateCount)) {
    case 1: finishRowOf<1>(x, y, n, params, code, row); break;
    case 2: finishRowOf<2>(x, y, n, params, code, row); break;
    default: finishRowOf<3>(x, y, n, params, code, row); break;
  }
}

void failedRow(real_T code, real_T stateCount, real_T* row) {
  switch (transitionsOfStateCount(stateCount)) {
    case 1: writeFailedRow<1>(code, row); break;
    case 2: writeFailedRow<2>(code, row); break;
    default: writeFailedRow<3>(code, row); break;
  }
}

}  // namespace quent
