// One stable merge sort, written once over the direction and over whether an
// order is kept.  Stability with a fixed placement of NaN determines the
// result completely, so the fixed-size forms are plain callers.  A whole
// curve (2304 points) sorts without the heap.
#include "numerics/sort.h"

#include <cstddef>
#include <cstdlib>

#include "frame/limits.h"

namespace quent {
namespace {

struct Ascending {
  static bool precedes(real_T a, real_T b) { return a < b || (b != b && a == a); }
};
struct Descending {
  static bool precedes(real_T a, real_T b) { return a > b || (a != a && b == b); }
};

constexpr int32_T kRun = 8;                         // runs built by insertion
constexpr int32_T kStackWork = kMaxCurvePoints / 2;  // the shorter run of any merge

template <class Dir, bool kOrder>
void insertionSort(real_T* v, int32_T* ord, int32_T lo, int32_T hi) {
  for (int32_T i = lo + 1; i < hi; ++i) {
    const real_T x = v[i];
    const int32_T o = kOrder ? ord[i] : 0;
    int32_T j = i;
    for (; j > lo && Dir::precedes(x, v[j - 1]); --j) {
      v[j] = v[j - 1];
      if (kOrder) ord[j] = ord[j - 1];
    }
    v[j] = x;
    if (kOrder) ord[j] = o;
  }
}

// Merges the sorted runs [lo, mid) and [mid, hi) through a copy of the shorter
// one; a right entry goes first only when it strictly precedes, so ties keep
// their input order.
template <class Dir, bool kOrder>
void merge(real_T* v, int32_T* ord, int32_T lo, int32_T mid, int32_T hi, real_T* wv, int32_T* wo) {
  if (!Dir::precedes(v[mid], v[mid - 1])) return;
  if (mid - lo <= hi - mid) {
    const int32_T nl = mid - lo;
    for (int32_T i = 0; i < nl; ++i) {
      wv[i] = v[lo + i];
      if (kOrder) wo[i] = ord[lo + i];
    }
    int32_T i = 0, j = mid, k = lo;
    while (i < nl && j < hi) {
      const bool right = Dir::precedes(v[j], wv[i]);
      v[k] = right ? v[j] : wv[i];
      if (kOrder) ord[k] = right ? ord[j] : wo[i];
      right ? ++j : ++i;
      ++k;
    }
    for (; i < nl; ++i, ++k) {
      v[k] = wv[i];
      if (kOrder) ord[k] = wo[i];
    }
  } else {
    const int32_T nr = hi - mid;
    for (int32_T i = 0; i < nr; ++i) {
      wv[i] = v[mid + i];
      if (kOrder) wo[i] = ord[mid + i];
    }
    int32_T i = mid - 1, j = nr - 1, k = hi - 1;
    while (i >= lo && j >= 0) {
      const bool left = Dir::precedes(wv[j], v[i]);  // left entry belongs after
      v[k] = left ? v[i] : wv[j];
      if (kOrder) ord[k] = left ? ord[i] : wo[j];
      left ? --i : --j;
      --k;
    }
    for (; j >= 0; --j, --k) {
      v[k] = wv[j];
      if (kOrder) ord[k] = wo[j];
    }
  }
}

template <class Dir, bool kOrder>
void mergeSort(real_T* v, int32_T* ord, int32_T n, real_T* wv, int32_T* wo) {
  for (int32_T lo = 0; lo < n; lo += kRun) insertionSort<Dir, kOrder>(v, ord, lo, lo + kRun < n ? lo + kRun : n);
  for (int32_T width = kRun; width < n; width *= 2)
    for (int32_T lo = 0; lo < n - width; lo += 2 * width)
      merge<Dir, kOrder>(v, ord, lo, lo + width, lo + 2 * width < n ? lo + 2 * width : n, wv, wo);
}

// Kept out of line so that short sorts do not carry the work area's frame.
template <class Dir, bool kOrder>
[[gnu::noinline]] void mergeSortOnStack(real_T* v, int32_T* ord, int32_T n) {
  real_T wv[kStackWork];
  int32_T wo[kOrder ? kStackWork : 1];
  mergeSort<Dir, kOrder>(v, ord, n, wv, wo);
}

template <class Dir, bool kOrder>
void stableSort(real_T* v, int32_T n, int32_T* ord) {
  if (kOrder)
    for (int32_T i = 0; i < n; ++i) ord[i] = i + 1;
  if (n <= kRun) {
    insertionSort<Dir, kOrder>(v, ord, 0, n);
    return;
  }
  if (n / 2 <= kStackWork) {
    mergeSortOnStack<Dir, kOrder>(v, ord, n);
    return;
  }
  const std::size_t half = static_cast<std::size_t>(n / 2);
  void* block = std::malloc(half * (sizeof(real_T) + sizeof(int32_T)));
  if (block == nullptr) {
    insertionSort<Dir, kOrder>(v, ord, 0, n);  // slow, but the same result
    return;
  }
  real_T* wv = static_cast<real_T*>(block);
  mergeSort<Dir, kOrder>(v, ord, n, wv, reinterpret_cast<int32_T*>(wv + half));
  std::free(block);
}

}  // namespace

void sortAscending(real_T* v, int32_T n) { stableSort<Ascending, false>(v, n, nullptr); }
void sortAscendingWithOrder(real_T* v, int32_T n, int32_T* order) {
  stableSort<Ascending, true>(v, n, order);
}
void sortDescendingWithOrder(real_T* v, int32_T n, int32_T* order) {
  stableSort<Descending, true>(v, n, order);
}

void sortTwoDescending(real_T v[2], int32_T order[2]) { sortDescendingWithOrder(v, 2, order); }
void sortDescending4(real_T* v, int32_T* order) { sortDescendingWithOrder(v, 4, order); }
void sortDescending8(real_T* v, int32_T* order) { sortDescendingWithOrder(v, 8, order); }
void sortDescending16(real_T* v, int32_T* order) { sortDescendingWithOrder(v, 16, order); }
void sortTwoAscending(real_T v[2]) { sortAscending(v, 2); }
void sortThreeAscending(real_T v[3]) { sortAscending(v, 3); }

}  // namespace quent
