// Reduction of fit rows to per-concentration energies and one trend line,
// through the exported entry with rows built by hand.
#include "frame/allocation.h"
#include "models/r_squared.h"
#include "numerics/line_fit.h"
#include "numerics/order_statistics.h"
#include "test_support.h"

namespace quent {
namespace {

using Reals = std::vector<real_T>;
using test::kAny;
using test::expectList;
constexpr real_T kNaN = NAN;

// One curve as its row shows it; rt above 0 marks a fitted row.
struct Curve { real_T conc; int32_T flag; real_T rt; real_T dG[3]; real_T err[3]; };
const Curve kFailedRow = {2, 1, -1, {-1, -1, -1}, {}};

struct Calc {
  test::OwnedArray<RealArray> conc, trend, dev;
  test::OwnedArray<Int32Array> used;
  real_T summary[4];

  Calc(const real_T* c, const int32_T* cs, const real_T* rows, const int32_T* rs, const int32_T* f,
       int32_T transition = 1) {
    QUENT_dGtrend_calc(c, cs, rows, rs, f, cs, transition, conc.get(), trend.get(), dev.get(),
                       used.get(), summary);
  }
  // Columns the reduction does not read hold 1e9, and so do the other rows of
  // the matrices that stride > 1 makes; dropColumns shortens fitRows.
  static Calc of(const std::vector<Curve>& curves, int32_T transition = 1, int32_T stride = 1,
                 int32_T dropColumns = 0) {
    const int32_T n = static_cast<int32_T>(curves.size());
    Reals c(stride * n, 1e9), rows(stride * 24 * n, 1e9);
    std::vector<int32_T> f(stride * n, 1);
    for (int32_T i = 0; i < n; ++i) {
      real_T* row = rows.data() + stride * 24 * i;
      row[stride * 12] = curves[i].rt;
      for (int32_T t = 0; t < 3; ++t) {
        row[stride * (t == 0 ? 4 : 3 * t + 3)] = curves[i].dG[t];  // columns 4, 6, 9
        row[stride * (15 + t)] = curves[i].err[t];
      }
      c[stride * i] = curves[i].conc, f[stride * i] = curves[i].flag;
    }
    const int32_T cs[2] = {stride, n}, rs[2] = {stride, 24 * n - dropColumns};
    return Calc(c.data(), cs, rows.data(), rs, f.data(), transition);
  }
  // Per concentration: conc, trend, deviation, used; then the summary.
  void expect(const std::vector<Reals>& columns, const Reals& sums) const {
    expectList(conc->data, conc.count(), columns[0], "conc");
    expectList(trend->data, trend.count(), columns[1], "trend");
    expectList(dev->data, dev.count(), columns[2], "deviation");
    expectList(Reals(used->data, used->data + used.count()).data(), used.count(), columns[3], "used");
    expectList(summary, 4, sums, "summary");
  }
  void expectEmptyAnswer(const Reals& concs) const {
    const Reals zeros(concs.size(), 0.0);
    expect({concs, zeros, zeros, zeros}, {0, 0, 0, static_cast<real_T>(concs.size())});
  }
};

TEST(Calc, TrendIsTheLineThroughTheGroupMeans) {
  const std::vector<Curve> curves = {{4, 1, 600, {3000}, {60}}, {1, 1, 600, {5000}, {100}},
                                     {2, 0, 600, {9999}, {1}},  // not taken
                                     {2, 1, 600, {4500}, {90}}, {1, 1, 600, {5200}, {120}}};
  const real_T ln[3] = {std::log(1.0), std::log(2.0), std::log(4.0)}, means[3] = {5100, 4500, 3000};
  const LineCoefficients line = lineFit(ln, means, 3);
  real_T fitted[3], spread[2] = {5000, 5200};
  for (int32_T p = 0; p < 3; ++p) fitted[p] = line.slope * ln[p] + line.intercept;
  for (int32_T stride : {1, 3})
    Calc::of(curves, 1, stride).expect({{1, 2, 4}, {5100, 4500, 3000}, {sampleStdDev(spread, 2), 0, 0}, {1, 1, 1}},
                                       {line.slope, line.intercept, rSquared(3, means, 3, fitted), 3});
  // A concentration with only failed rows is unused and shows the line's value.
  const real_T ends[2] = {ln[0], ln[2]}, endMeans[2] = {4000, 3000};
  const LineCoefficients l = lineFit(ends, endMeans, 2);
  Calc::of({{1, 1, 600, {4000}, {}}, kFailedRow, {4, 1, 600, {3000}, {}}})
      .expect({{1, 2, 4}, {4000, std::log(2.0) * l.slope + l.intercept, 3000}, {0, 0, 0}, {1, 0, 1}},
              {l.slope, l.intercept, kAny, 3});
}

TEST(Calc, LineIsATrendOnlyWhenItBeatsTheNoise) {
  const struct { std::vector<Curve> curves; bool trend; } cases[] = {
      // Spans 299.5 and 300.5 around the floor of 300: with no errors, and
      // with errors that add up to less.
      {{{1, 1, 600, {5000}, {0}}, {10, 1, 600, {4700.5}, {0}}}, false},
      {{{1, 1, 600, {5000}, {1}}, {10, 1, 600, {4700.5}, {1}}}, false},
      {{{1, 1, 600, {5000}, {0}}, {10, 1, 600, {4699.5}, {0}}}, true},
      {{{1, 1, 600, {5000}, {150}}, {10, 1, 600, {4600}, {150}}}, true},
      {{{1, 1, 600, {5000}, {150}}, {10, 1, 600, {4600}, {260}}}, false},
      // The first curve's group spread (283) stands in for its error of 1.
      {{{1, 1, 600, {5000}, {1}}, {1, 1, 600, {5400}, {1}}, {10, 1, 600, {4800}, {150}}}, false}};
  for (const auto& k : cases) {
    SCOPED_TRACE(&k - cases);
    const Calc c = Calc::of(k.curves);
    EXPECT_GT(c.summary[2], 0.0);  // R squared also for a refused line
    EXPECT_EQ(c.summary[0] != 0.0, k.trend);
    if (!k.trend) { EXPECT_EQ(c.summary[1], (c.trend->data[0] + c.trend->data[1]) / 2); }
  }
}

TEST(Calc, PerConcentrationValues) {
  const struct { const char* name; std::vector<Curve> curves; int32_T transition;
                 std::vector<Reals> columns; Reals summary; } cases[] = {
      {"one valid curve", {{2, 1, 600, {4000}, {80}}}, 1, {{2}, {4000}, {0}, {1}}, {0, 4000, 0, 1}},
      // Equal means leave nothing for R squared to explain: -1.
      {"unfitted blank", {{0, 1, -1, {}, {}}, {1, 1, 600, {4000}, {}}, {4, 1, 600, {4000}, {}}}, 1,
       {{0, 1, 4}, {0, 4000, 4000}, {0, 0, 0}, {0, 1, 1}}, {0, 4000, -1, 3}},
      // Two groups, one mean: R squared of a single point is -1.
      {"failed group", {{1, 1, 600, {4000}, {}}, kFailedRow}, 1,
       {{1, 2}, {4000, 4000}, {0, 0}, {1, 0}}, {0, 4000, -1, 2}},
      {"negative dG2", {{2, 1, 600, {9000, 3000}, {}}, {2, 1, 600, {9000, -500}, {}}}, 2,
       {{2}, {3000}, {0}, {1}}, {0, 3000, 0, 1}},
      {"transition 5", {{2, 1, 600, {4000, 3000, 2000}, {}}}, 5, {{2}, {4000}, {0}, {1}}, {0, 4000, 0, 1}},
      {"transition 3", {{2, 1, 600, {4000, 3000, 2000}, {}}}, 3, {{2}, {2000}, {0}, {1}}, {0, 2000, 0, 1}},
      // conc 2 is used but has no positive dG2: the means shift by a place.
      {"shift", {{1, 1, 600, {0, 3000}, {}}, {1, 1, 600, {0, 3200}, {}}, {2, 1, 600, {0, -400}, {}},
                 {4, 1, 600, {0, 3000}, {}}}, 2,
       {{1, 2, 4}, {3100, 3000, kNaN}, {std::sqrt(20000.0), 0, 0}, {1, 1, 1}}, {0, kNaN, kAny, 3}},
      // A fitted, flagged blank is used but has no group: past both lists.
      {"fitted blank", {{0, 1, 600, {5000}, {}}, {1, 1, 600, {4000}, {}}}, 1,
       {{0, 1}, {4000, kNaN}, {0, kNaN}, {1, 1}}, {0, kNaN, 0, 2}}};
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    Calc::of(k.curves, k.transition).expect(k.columns, k.summary);
  }
}

// Energies that are NaN or infinite, as a host's own rows may hold: only a
// positive energy enters a mean, so a NaN counts as none; an infinite one
// makes its group's mean infinite, and the flat line drawn instead of a
// trend sits at infinity.
TEST(Calc, UntidyInput) {
  Calc::of({{2, 1, 600, {kNaN}, {}}, {2, 1, 600, {4000}, {}}}).expect({{2}, {4000}, {0}, {1}}, {0, 4000, 0, 1});
  Calc::of({{1, 1, 600, {4000}, {}}, {2, 1, 600, {INFINITY}, {}}})
      .expect({{1, 2}, {4000, INFINITY}, {0, 0}, {1, 1}}, {0, INFINITY, -1, 2});
  // Concentrations as a column (n-by-1) are one entry by the stride rule: the
  // counts disagree, and the answer lists that one entry.
  const real_T conc[2] = {2, 1}, rows[48] = {};
  const int32_T flags[2] = {1, 1}, column[2] = {2, 1}, full[2] = {1, 48};
  Calc(conc, column, rows, full, flags).expectEmptyAnswer({2});
}

TEST(Calc, RefusalsGiveTheEmptyAnswer) {
  std::vector<Curve> many(97, Curve{1, 1, 600, {4000}, {}});
  for (int32_T i = 0; i < 97; ++i) many[i].conc = 1 + i % 3;
  Calc::of(many).expectEmptyAnswer({1, 2, 3});
  Calc::of({kFailedRow, {kNaN, 1, -1, {}, {}}}).expectEmptyAnswer({2, kNaN});  // nothing fitted
  Calc::of({{0, 1, 600, {4000}, {}}, {-1, 1, 600, {4000}, {}}, {kNaN, 1, 600, {}, {}}})
      .expectEmptyAnswer({-1, 0, kNaN});  // no curve with a positive concentration
  Calc::of({{2, 1, 600, {4000}, {}}, {1, 1, 600, {4000}, {}}}, 1, 1, 1).expectEmptyAnswer({1, 2});
  // Sizes that hold nothing, whatever the other dimension says.
  const real_T conc[2] = {2, 1}, rows[48] = {};
  const int32_T flags[2] = {1, 1}, size[2] = {1, 2}, noRows[2] = {0, 48}, negative[2] = {1, -48},
                full[2] = {1, 48};
  for (const int32_T* rowsSize : {noRows, negative})
    Calc(conc, size, rows, rowsSize, flags).expectEmptyAnswer({1, 2});
  Calc(conc, noRows, rows, full, flags).expectEmptyAnswer({});
  // A null output leaves the others as they were.
  test::OwnedArray<RealArray> concOut, trendOut, deviationOut;
  test::OwnedArray<Int32Array> usedOut;
  real_T summary[4] = {7, 7, 7, 7};
  for (int missing = 0; missing < 5; ++missing) {
    QUENT_dGtrend_calc(conc, size, rows, full, flags, size, 1,
                       missing == 0 ? nullptr : concOut.get(), missing == 1 ? nullptr : trendOut.get(),
                       missing == 2 ? nullptr : deviationOut.get(),
                       missing == 3 ? nullptr : usedOut.get(), missing == 4 ? nullptr : summary);
    EXPECT_TRUE(concOut.count() == 0 && trendOut.count() == 0 && usedOut.count() == 0 &&
                summary[3] == 7.0) << missing;
  }
}

// Memory that runs out at any output, or for the list of a refusal, leaves
// every output empty and the summary at zeros.
TEST(Calc, OutOfMemoryGivesEmptyOutputs) {
  std::vector<Curve> many(97, Curve{1, 1, 600, {4000}, {}});
  const std::vector<Curve> fitted = {{2, 1, 600, {4000}, {}}, {1, 1, 600, {4500}, {}}};
  for (const std::vector<Curve>* curves : {&fitted, static_cast<const std::vector<Curve>*>(&many)}) {
    const int32_T n = static_cast<int32_T>(curves->size());
    Reals conc(n), rows(24 * n, 0.0);
    for (int32_T i = 0; i < n; ++i) {
      conc[i] = (*curves)[i].conc;
      rows[24 * i + 12] = (*curves)[i].rt;
      rows[24 * i + 4] = (*curves)[i].dG[0];
    }
    const std::vector<int32_T> flags(n, 1);
    const int32_T size[2] = {1, n}, rowsSize[2] = {1, 24 * n};
    for (long limit = 0; limit < 4; ++limit) {
      test::OwnedArray<RealArray> concOut, trendOut, deviationOut;
      test::OwnedArray<Int32Array> usedOut;
      real_T summary[4] = {7, 7, 7, 7};
      failAllocationsAfter(limit);
      QUENT_dGtrend_calc(conc.data(), size, rows.data(), rowsSize, flags.data(), size, 1,
                         concOut.get(), trendOut.get(), deviationOut.get(), usedOut.get(), summary);
      failAllocationsAfter(-1);
      EXPECT_TRUE(concOut.count() == 0 && trendOut.count() == 0 && deviationOut.count() == 0 &&
                  usedOut.count() == 0) << n << " " << limit;
      expectList(summary, 4, {0, 0, 0, 0}, "summary");
    }
  }
}

}  // namespace
}  // namespace quent
