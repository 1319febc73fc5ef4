// The round count walks the sorted concentrations from the first curve's
// concentration, not from the lowest.  Results depend on the rounds a scan
// runs, so that count stays as it is: at worst one empty round at the end.
#include "primary/concentration_groups.h"

#include <algorithm>

#include "numerics/extremes.h"
#include "numerics/sort.h"

namespace quent {

void sortOutConcentrations(const VectorView<real_T>& sampleConc, int32_T curveCount,
                           ConcentrationGroups& groups) {
  const int32_T n = curveCount;
  real_T sorted[kMaxCurves];
  for (int32_T i = 0; i < n; ++i) sorted[i] = sampleConc[i];
  sortAscending(sorted, n);
  int32_T count = 1;
  real_T compared = sampleConc[0];
  for (int32_T i = 0; i < n; ++i) {
    if (sorted[i] != compared) {
      ++count;
      compared = sorted[i];
    }
  }
  groups.groupCount = count;

  real_T* unique = groups.uniqueConc;
  std::fill_n(unique, count, 0.0);
  unique[0] = sampleConc[0];
  int32_T filled = 1;
  for (int32_T i = 1; i < n; ++i)
    if (sampleConc[i] != sampleConc[i - 1] && filled < count) unique[filled++] = sampleConc[i];
  sortAscending(unique, count);

  const Extreme top = nanSkippingMax(sampleConc, n);
  groups.topConc = top.value;
  groups.topIndex = top.index;
}

void curvesByDescendingConcentration(const VectorView<real_T>& sampleConc, int32_T curveCount,
                                     int32_T* order) {
  real_T sorted[kMaxCurves];
  for (int32_T i = 0; i < curveCount; ++i) sorted[i] = sampleConc[i];
  sortDescendingWithOrder(sorted, curveCount, order);
  for (int32_T k = 0; k < curveCount; ++k) order[k] -= 1;
}

}  // namespace quent
