// The sample concentrations of a call sorted out for the group scans: how
// many rounds a scan runs, the distinct concentrations in ascending order,
// and the highest concentration with the first curve that has it.
#pragma once

#include "frame/limits.h"
#include "frame/vector_view.h"
#include "quent_dgtrend.h"

namespace quent {

struct ConcentrationGroups {
  // Rounds of a group scan.  Counted from the first curve's concentration,
  // so it comes out one too high when that is not the lowest: the scan then
  // ends with a round at concentration 0 that finds no curve.
  int32_T groupCount{};
  real_T uniqueConc[kMaxCurves + 1] = {};  // groupCount entries, ascending
  real_T topConc{};                    // highest concentration, NaNs passed over
  int32_T topIndex{};                    // first curve that has it
};

// For curveCount (1 to 96) concentrations.  Equal concentrations are expected
// next to each other; when they are not, the values that find no room among
// groupCount entries are dropped.
void sortOutConcentrations(const VectorView<real_T>& sampleConc, int32_T curveCount,
                           ConcentrationGroups& groups);

// order[k] := the curve (from 0) at place k when the curves are taken by
// descending concentration; equal concentrations keep their given order.
void curvesByDescendingConcentration(const VectorView<real_T>& sampleConc, int32_T curveCount,
                                     int32_T* order);

}  // namespace quent
