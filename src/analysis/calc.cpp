// The energy of one transition, taken from the rows of the valid curves, is
// averaged per sample concentration; a line of mean energy over ln(conc) is
// kept as a trend only when it moves the energy by more than the curves' noise.
#include "analysis/calc.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "frame/allocation.h"
#include "frame/array.h"
#include "frame/limits.h"
#include "frame/row_layout.h"
#include "frame/vector_view.h"
#include "models/r_squared.h"
#include "numerics/line_fit.h"
#include "numerics/order_statistics.h"
#include "numerics/sort.h"

namespace quent {
namespace {

// A trend must move the energy by at least this much (cal/mol) over the range
// of concentrations, however quiet the curves are.
constexpr real_T kMinimumThreshold = 300.0;

struct TransitionColumns {
  int32_T energy;
  int32_T error;
};

TransitionColumns columnsOf(int32_T transition) {
  // Any value but 2 and 3 names the first transition.
  const int t = transition == 2 || transition == 3 ? transition - 1 : 0;
  return {kColEnergy[t], kColEnergyError + t};
}

// The host's rows, 24 columns per curve, read through its stride.
struct FitRows {
  VectorView<real_T> v;
  real_T at(int32_T curve, int32_T column) const { return v[kRowColumns * curve + column]; }
  // RT: above 0 in a fitted row, -1 in a failed one.
  bool fitted(int32_T curve) const { return at(curve, kColRT) > 0.0; }
};

struct Outputs {
  RealArray* conc;
  RealArray* trend;
  RealArray* deviation;
  Int32Array* used;
};

// One row of n in every output.  When storage runs out all four are left
// empty, so that nothing is written past what the records hold.
bool resizeOutputs(const Outputs& out, int32_T n) {
  if (arrayResizeRow(out.conc, n) && arrayResizeRow(out.trend, n) &&
      arrayResizeRow(out.deviation, n) && arrayResizeRow(out.used, n))
    return true;
  arrayResizeRow(out.conc, 0);
  arrayResizeRow(out.trend, 0);
  arrayResizeRow(out.deviation, 0);
  arrayResizeRow(out.used, 0);
  return false;
}

void setSummary(real_T* summary, real_T slope, real_T intercept, real_T rSq, int32_T distinct) {
  summary[0] = slope;
  summary[1] = intercept;
  summary[2] = rSq;
  summary[3] = distinct;
}

// End of the run of equal neighbours that starts at `start` in an ascending
// list.  A NaN compares unequal to everything, so each NaN stands alone.
int32_T runEnd(const real_T* sorted, int32_T n, int32_T start) {
  int32_T end = start + 1;
  while (end < n && !(sorted[end] != sorted[end - 1])) ++end;
  return end;
}

// The refusal: every concentration the host named, none used, no line.
void emptyAnswer(VectorView<real_T> conc, const Outputs& out, real_T* summary) {
  const int32_T n = conc.length;
  real_T onStack[kMaxCurves];
  real_T* sorted = onStack;
  if (n > kMaxCurves)
    sorted = static_cast<real_T*>(allocate(static_cast<std::size_t>(n) * sizeof(real_T)));
  int32_T distinct = 0;
  if (sorted != nullptr) {
    for (int32_T i = 0; i < n; ++i) sorted[i] = conc[i];
    sortAscending(sorted, n);
    // In place: a kept value never lands beyond the run being read.
    for (int32_T start = 0; start < n; start = runEnd(sorted, n, start))
      sorted[distinct++] = sorted[start];
  }
  if (resizeOutputs(out, distinct)) {
    for (int32_T g = 0; g < distinct; ++g) {
      out.conc->data[g] = sorted[g];
      out.trend->data[g] = 0.0;
      out.deviation->data[g] = 0.0;
      out.used->data[g] = 0;
    }
  } else {
    distinct = 0;
  }
  if (sorted != onStack) std::free(sorted);
  setSummary(summary, 0.0, 0.0, 0.0, distinct);
}

// Curves flagged 1 with a positive concentration, in input order.
struct ValidCurves {
  int32_T count = 0;
  real_T conc[kMaxCurves];
  real_T energy[kMaxCurves];
  real_T error[kMaxCurves];
};

void gatherValid(VectorView<real_T> conc, const FitRows& rows, VectorView<int32_T> flags,
                 TransitionColumns columns, ValidCurves& valid) {
  for (int32_T i = 0; i < conc.length; ++i) {
    if (!(flags[i] == 1 && conc[i] > 0.0)) continue;
    valid.conc[valid.count] = conc[i];
    valid.energy[valid.count] = rows.at(i, columns.energy);
    valid.error[valid.count] = rows.at(i, columns.error);
    ++valid.count;
  }
}

// The distinct concentrations of the valid curves, ascending.
struct Groups {
  int32_T count = 0;
  real_T conc[kMaxCurves];
  real_T mean[kMaxCurves];      // of the positive energies; 0 when there are none
  real_T dev[kMaxCurves];       // their sample standard deviation
  int32_T ofCurve[kMaxCurves];  // group of each valid curve
};

// Only positive energies enter a mean: a failed row holds -1 there, and a
// negative dG2 or dG3 is no energy of unfolding.
void groupMeans(const ValidCurves& valid, Groups& groups) {
  const int32_T n = valid.count;
  real_T sorted[kMaxCurves];
  int32_T order[kMaxCurves];
  for (int32_T i = 0; i < n; ++i) sorted[i] = valid.conc[i];
  sortAscendingWithOrder(sorted, n, order);
  real_T positive[kMaxCurves];
  int32_T g = 0;
  for (int32_T start = 0, end; start < n; start = end, ++g) {
    end = runEnd(sorted, n, start);
    int32_T k = 0;
    for (int32_T j = start; j < end; ++j) {
      const int32_T curve = order[j] - 1;
      groups.ofCurve[curve] = g;
      if (valid.energy[curve] > 0.0) positive[k++] = valid.energy[curve];
    }
    // A group without a positive energy averages a single 0.0.
    if (k == 0) positive[0] = 0.0;
    const int32_T count = k == 0 ? 1 : k;
    real_T sum = 0.0;
    for (int32_T j = 0; j < count; ++j) sum = sum + positive[j];
    const real_T mean = sum / count;
    groups.conc[g] = sorted[start];
    groups.mean[g] = mean > 0.0 ? mean : 0.0;
    groups.dev[g] = count == 1 ? 0.0 : sampleStdDev(positive, count);
  }
  groups.count = g;
}

struct Line {
  real_T slope;
  real_T intercept;
};

// The groups with a positive mean: the points the line goes through.
struct LinePoints {
  int32_T count = 0;
  real_T lnConc[kMaxCurves];
  real_T mean[kMaxCurves];
};

Line trendLine(const Groups& groups, LinePoints& points) {
  for (int32_T g = 0; g < groups.count; ++g) {
    if (!(groups.mean[g] > 0.0)) continue;
    points.lnConc[points.count] = std::log(groups.conc[g]);
    points.mean[points.count] = groups.mean[g];
    ++points.count;
  }
  if (points.count >= 2) {
    const LineCoefficients c = lineFit(points.lnConc, points.mean, points.count);
    return {c.slope, c.intercept};
  }
  if (points.count == 1) return {0.0, points.mean[0]};
  return {0.0, 0.0};
}

// The noise a trend must beat: the spreads of the first and the last curve
// (input order) that carry an error, where a curve's spread is its group's
// standard deviation or, in a group without one, its own error.  Rows without
// an error do not occur after a successful fit; then only the floor counts.
real_T noiseThreshold(const ValidCurves& valid, const Groups& groups) {
  bool any = false;
  real_T first = 0.0, last = 0.0;
  for (int32_T i = 0; i < valid.count; ++i) {
    if (!(valid.error[i] > 0.0)) continue;
    const real_T dev = groups.dev[groups.ofCurve[i]];
    last = dev > 0.0 ? dev : valid.error[i];
    if (!any) first = last;
    any = true;
  }
  if (!any) return kMinimumThreshold;
  const real_T threshold = first + last;
  return threshold < kMinimumThreshold ? kMinimumThreshold : threshold;
}

// Slope and intercept only for a line that beats the noise; R squared of the
// line through the positive means also when it does not.
void trendSummary(const Line& line, const Groups& groups, const LinePoints& points,
                  real_T threshold, real_T* summary) {
  setSummary(summary, 0.0, 0.0, 0.0, 0);
  const real_T atHigh = line.slope * std::log(groups.conc[groups.count - 1]) + line.intercept;
  const real_T atLow = line.slope * std::log(groups.conc[0]) + line.intercept;
  const real_T span = std::fabs(atHigh - atLow);
  if (threshold <= span) {
    summary[0] = line.slope;
    summary[1] = line.intercept;
  }
  if (points.count >= 1 && groups.count > 1) {
    real_T fitted[kMaxCurves];
    for (int32_T p = 0; p < points.count; ++p)
      fitted[p] = line.slope * points.lnConc[p] + line.intercept;
    summary[2] = rSquared(points.count, points.mean, points.count, fitted);
  }
}

// Values at every distinct concentration of the host's list, valid or not.  A
// concentration with a fitted, flagged curve shows its mean and spread; any
// other shows the line, so that a host can still plot it.
void perConcentration(VectorView<real_T> conc, const FitRows& rows, VectorView<int32_T> flags,
                      const Line& line, const Groups& groups, const LinePoints& points,
                      const Outputs& out, real_T* summary) {
  const int32_T n = conc.length;
  real_T sorted[kMaxCurves];
  int32_T order[kMaxCurves];
  for (int32_T i = 0; i < n; ++i) sorted[i] = conc[i];
  sortAscendingWithOrder(sorted, n, order);
  real_T distinct[kMaxCurves];
  int32_T used[kMaxCurves];
  int32_T u = 0;
  for (int32_T start = 0, end; start < n; start = end, ++u) {
    end = runEnd(sorted, n, start);
    used[u] = 0;
    for (int32_T j = start; j < end; ++j) {
      const int32_T curve = order[j] - 1;
      if (rows.fitted(curve) && flags[curve] == 1) used[u] = 1;
    }
    distinct[u] = sorted[start];
  }
  if (!resizeOutputs(out, u)) {
    setSummary(summary, 0.0, 0.0, 0.0, 0);
    return;
  }
  // The means count only groups with a positive mean and the spreads every
  // group, while the walk counts used concentrations: when these disagree the
  // values shift by a place, and past the end of either list they are NaN.
  real_T usedSum = 0.0;
  int32_T usedCount = 0;
  int32_T k = 0;
  for (int32_T g = 0; g < u; ++g) {
    real_T trend = 0.0, deviation = 0.0;
    if (used[g] == 0) {
      if (distinct[g] != 0.0) trend = std::log(distinct[g]) * line.slope + line.intercept;
    } else {
      trend = k < points.count ? points.mean[k] : std::nan("");
      deviation = k < groups.count ? groups.dev[k] : std::nan("");
      ++k;
      usedSum = usedSum + trend;
      ++usedCount;
    }
    out.conc->data[g] = distinct[g];
    out.trend->data[g] = trend;
    out.deviation->data[g] = deviation;
    out.used->data[g] = used[g];
  }
  // No trend: the flat line a host draws sits at the mean of the used values.
  if (summary[1] == 0.0) summary[1] = usedCount > 0 ? usedSum / usedCount : 0.0;
  summary[3] = u;
}

}  // namespace

void calc(const real_T* sampleConc, const int32_T* sampleConcSize, const real_T* fitRows,
          const int32_T* fitRowsSize, const int32_T* curveFlags, const int32_T* curveFlagsSize,
          int32_T transition, RealArray* concOut, RealArray* trendOut, RealArray* deviationOut,
          Int32Array* usedOut, real_T* summary) {
  if (concOut == nullptr || trendOut == nullptr || deviationOut == nullptr ||
      usedOut == nullptr || summary == nullptr)
    return;
  const VectorView<real_T> conc = vectorView(sampleConc, sampleConcSize);
  const VectorView<int32_T> flags = vectorView(curveFlags, curveFlagsSize);
  const FitRows rows{vectorView(fitRows, fitRowsSize)};
  const Outputs out{concOut, trendOut, deviationOut, usedOut};
  const int32_T curveCount = rows.v.length / kRowColumns;

  // Every work list below holds kMaxCurves curves; more are refused whole.
  if (curveCount > kMaxCurves || conc.length != curveCount || flags.length != curveCount) {
    emptyAnswer(conc, out, summary);
    return;
  }
  bool anyFitted = false;
  for (int32_T i = 0; i < curveCount && !anyFitted; ++i) anyFitted = rows.fitted(i);
  ValidCurves valid;
  gatherValid(conc, rows, flags, columnsOf(transition), valid);
  if (valid.count < 1 || !anyFitted) {
    emptyAnswer(conc, out, summary);
    return;
  }

  Groups groups;
  groupMeans(valid, groups);
  LinePoints points;
  const Line line = trendLine(groups, points);
  trendSummary(line, groups, points, noiseThreshold(valid, groups), summary);
  perConcentration(conc, rows, flags, line, groups, points, out, summary);
}

}  // namespace quent
