// Only the first energy's error is gated: the errors of the second and third
// energies are reported, not judged.  The comparisons are written so that a
// NaN passes: such a row stands as it falls.
#include "primary/acceptance_gates.h"

#include "frame/fit_row.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "primary/row_codes.h"

namespace quent {
namespace {

constexpr real_T kMinRSquared = 0.95;
constexpr real_T kMaxRelativeError = 0.25;

}  // namespace

bool failsAcceptanceGates(const real_T* row) {
  return row[kColRSquared] < kMinRSquared || row[kColEnergy[0]] < 0.0 ||
         row[kColEnergy[1]] < 0.0 || row[kColEnergy[2]] < 0.0 ||
         row[kColEnergyError] / row[kColEnergy[0]] > kMaxRelativeError;
}

// A row is judged when RT is 0 or above and blanked when RT is below 0: a
// row of RT exactly 0 is judged and may stand, a NaN RT is neither.
bool applyAcceptanceGates(real_T* row) {
  if (row[kColRT] >= 0.0 && failsAcceptanceGates(row)) writeClearedRow(kRejectedCode, row);
  if (!(row[kColRT] < 0.0)) return false;
  for (int c = 0; c < kColRT; ++c) row[c] = 0.0;
  for (int c = kColRSquared; c < kRowColumns; ++c) row[c] = 0.0;
  return true;
}

}  // namespace quent
