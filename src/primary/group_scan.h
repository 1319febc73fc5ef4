// The search for a reference row: the curves of one concentration are
// averaged into a mean curve and that is fitted, from the highest
// concentration down until a fit with a positive first baseline value turns
// up; failing that, single curves by descending concentration.
#pragma once

#include "frame/vector_view.h"
#include "primary/concentration_groups.h"
#include "primary/primary_call.h"
#include "quent_dgtrend.h"

namespace quent {

// Where the scans of a call differ.  The first scan runs before any point
// mask exists: it tests whole curves, keeps even an empty mean curve and
// fits it with mask revision.  A masked scan tests and averages the kept
// points only, needs the family's minimum of mean points, and fits the mean
// curve with the whole-curve strategy.
struct ScanSource {
  bool masked = false;
  VectorView<int32_T> pointMask;  // kept points of every curve, when masked
  const VectorView<int32_T>* curveFlags = nullptr;  // null: every curve may take part

  bool chosen(int32_T curve) const { return curveFlags == nullptr || (*curveFlags)[curve] == 1; }
};

// referenceRow (24 entries) := the fit of the last round the scan ran.
void groupScan(const CallCurves& curves, const ConcentrationGroups& groups,
               const ScanSource& source, int32_T stateCount, real_T temperatureC,
               real_T* referenceRow);

// Single curves by descending concentration until a fit has RT above 0 in
// referenceRow.  A masked fallback fits the kept points, however few.
void fallbackScan(const CallCurves& curves, const ScanSource& source, int32_T stateCount,
                  real_T temperatureC, real_T* referenceRow);

}  // namespace quent
