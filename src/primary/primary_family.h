// The model families of the primary fit, one per transition count: the rules
// the drivers apply to a family, and the fits it brings.  A state count whose
// family has no fits in the library yet is fitted as one transition.
#pragma once

#include <cmath>

#include "frame/limits.h"
#include "quent_dgtrend.h"
#include "strategies/one_transition_strategy.h"

namespace quent {

// Rules of each family; they hold whether or not its fits are in the library.
//   T | state count | fewest kept points | code of the held refit | of the free refit
//   1 |      2      |          8         |           2            |   (none)
//   2 |      3      |         16         |           3            |     6
//   3 |      4      |         24         |           4            |     5
// The two-transition and three-transition families also check a refit for
// its plateaus and refit with the amplitude shares free when they are
// missing; the free refit stands only while its shares stay near those of
// the reference row (columns 8 and 11).
template <int T> struct FamilyRules;

template <> struct FamilyRules<1> {
  static constexpr int32_T kStateCount = 2;
  static constexpr int32_T kMinKeptPoints = 8;
  static constexpr real_T kHeldCode = 2.0;
};

template <> struct FamilyRules<2> {
  static constexpr int32_T kStateCount = 3;
  static constexpr int32_T kMinKeptPoints = 16;
  static constexpr real_T kHeldCode = 3.0;
  static constexpr real_T kFreeCode = 6.0;
  // While masks are built the free pass stands unless its share moved by
  // more than 0.1 or it failed; a NaN share does not count as moved.
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return !(std::fabs(freeRow[8] - reference[8]) > 0.1 || freeRow[12] <= 0.0);
  }
  // In the final fit the bound is strict.
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[8] - reference[8]) < 0.1;
  }
};

template <> struct FamilyRules<3> {
  static constexpr int32_T kStateCount = 4;
  static constexpr int32_T kMinKeptPoints = 24;
  static constexpr real_T kHeldCode = 4.0;
  static constexpr real_T kFreeCode = 5.0;
  static bool maskFreePassStands(const real_T* freeRow, const real_T* reference) {
    return std::fabs(freeRow[8] - reference[8]) <= 0.07 &&
           std::fabs(freeRow[11] - reference[11]) <= 0.07 && freeRow[12] > 0.0;
  }
  static bool finalSharesClose(const real_T* bestRow, const real_T* reference) {
    return std::fabs(bestRow[8] - reference[8]) < 0.07 &&
           std::fabs(bestRow[11] - reference[11]) < 0.07;
  }
};

// The fits a family brings, in the library as its strategies join it:
//   T | whole curve, blank start | on a point mask         | usable curve
//   1 | fitOneTransition         | fitOneTransitionMasked  | curveUsable<1>
// (curveUsable<T> takes its attempts from its own member table.)  The refits
// from a reference row, refitMasked<T> and refitFromRow<T>, and the end
// agreement exist for every family and need no entry here.
template <int T> struct FamilyFits {
  static constexpr bool kInLibrary = false;
};

template <> struct FamilyFits<1> {
  static constexpr bool kInLibrary = true;
  static void whole(const real_T* x, const real_T* y, int32_T n, real_T temperatureC,
                    real_T* row) {
    fitOneTransition(x, n, y, n, temperatureC, row);
  }
  static void masked(const real_T* x, const real_T* y, int32_T n, const int32_T* mask,
                     real_T temperatureC, real_T* row, int32_T* maskOut) {
    fitOneTransitionMasked(x, n, y, n, mask, n, temperatureC, row, maskOut);
  }
};

// The one place where a host's state count becomes a family: 3 and 4 name
// two and three transitions once their fits are in the library; every other
// value, and 3 and 4 until then, is one transition (state count 2).
constexpr int32_T familyStateCount(int32_T stateCount) {
  if (stateCount == 3 && FamilyFits<2>::kInLibrary) return 3;
  if (stateCount == 4 && FamilyFits<3>::kInLibrary) return 4;
  return 2;
}

// f.template operator()<T>() for the family of a state count that
// familyStateCount gave.  withFamilyRules reaches every family, for code that
// needs only the rules; withFamilyFits only the families in the library.
template <class F>
decltype(auto) withFamilyRules(int32_T stateCount, F&& f) {
  if (stateCount == 3) return f.template operator()<2>();
  if (stateCount == 4) return f.template operator()<3>();
  return f.template operator()<1>();
}

template <class F>
decltype(auto) withFamilyFits(int32_T stateCount, F&& f) {
  if constexpr (FamilyFits<2>::kInLibrary)
    if (stateCount == 3) return f.template operator()<2>();
  if constexpr (FamilyFits<3>::kInLibrary)
    if (stateCount == 4) return f.template operator()<3>();
  return f.template operator()<1>();
}

inline int32_T familyMinKeptPoints(int32_T stateCount) {
  return withFamilyRules(stateCount, []<int T>() { return FamilyRules<T>::kMinKeptPoints; });
}

// The whole-curve and the masked strategy of the family of stateCount.
inline void fitFamilyWhole(int32_T stateCount, const real_T* x, const real_T* y, int32_T n,
                           real_T temperatureC, real_T* row) {
  withFamilyFits(stateCount,
                 [&]<int T>() { FamilyFits<T>::whole(x, y, n, temperatureC, row); });
}

inline void fitFamilyMasked(int32_T stateCount, const real_T* x, const real_T* y, int32_T n,
                            const int32_T* mask, real_T temperatureC, real_T* row,
                            int32_T* maskOut) {
  withFamilyFits(stateCount, [&]<int T>() {
    FamilyFits<T>::masked(x, y, n, mask, temperatureC, row, maskOut);
  });
}

}  // namespace quent
