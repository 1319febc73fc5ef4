// Concentration groups, the usable-curve test and the group scans that find
// the reference row.
#include "primary/curve_usable.h"
#include "primary/finish_primary_fit.h"
#include "primary/fit_with_mask_revision.h"
#include "primary/group_scan.h"
#include "strategies/one_transition_family.h"
#include "strategies/strategy_skeleton.h"
#include "test_support.h"

namespace quent {
namespace {

using Vec = std::vector<real_T>;
VectorView<real_T> view(const Vec& v) { return {v.data(), 1, static_cast<int32_T>(v.size())}; }

// The round count starts from the first curve's concentration, so curves in
// descending order get one round too many (a last round at 0); interleaved
// values find no room; NaN is never equal, never the top, and sorts last.
TEST(ConcentrationGroups, Bookkeeping) {
  const struct { Vec conc, unique; real_T top; int32_T topIndex; std::vector<int32_T> down; } cases[] = {
      {{2, 2, 2}, {2}, 2, 0, {0, 1, 2}},
      {{1, 1, 2, 2, 4}, {1, 2, 4}, 4, 4, {4, 2, 3, 0, 1}},
      {{4, 4, 2, 1}, {0, 1, 2, 4}, 4, 0, {0, 1, 2, 3}},
      {{1, 2, 1, 2}, {1, 2}, 2, 1, {1, 3, 0, 2}},
      {{3, NAN, 5, 5}, {3, 5, NAN}, 5, 2, {1, 2, 3, 0}}};
  for (const auto& c : cases) {
    const int32_T n = static_cast<int32_T>(c.conc.size());
    ConcentrationGroups g;
    sortOutConcentrations(view(c.conc), n, g);
    test::expectList(g.uniqueConc, g.groupCount, c.unique);
    EXPECT_TRUE(g.topConc == c.top && g.topIndex == c.topIndex);
    std::vector<int32_T> order(n);
    curvesByDescendingConcentration(view(c.conc), n, order.data());
    EXPECT_EQ(order, c.down);
  }
}

// n points of a transition at Cm on x0..x0 + 6, from a native baseline
// a + b x to a flat unfolded one at 80; appended to x and y.
void transition(int32_T n, real_T Cm, Vec& x, Vec& y, real_T a = 10.0, real_T b = 0.0,
                real_T x0 = 0.0) {
  const real_T params[7] = {8000.0, Cm, a, b, 80.0, 0.0, rtFromCelsius(25.0)};
  const Vec px = test::grid(n, x0, x0 + 6.0), py = test::evaluated(curveModel1, params, px);
  x.insert(x.end(), px.begin(), px.end()), y.insert(y.end(), py.begin(), py.end());
}

// Within 8 to 384 points and with distinct ends a clean transition is usable
// in every form; the masked forms take the mask as given (a host matrix by
// its first row, a short mask keeping nothing past its end), and fewer than
// three kept points cannot carry an attempt.
TEST(CurveUsable, Forms) {
  for (const int32_T n : {7, 8, 384, 385, -40}) {
    Vec x, y;
    transition(n < 0 ? -n : n, 3.0, x, y);
    if (n < 0) x.back() = x.front();
    const int32_T m = static_cast<int32_T>(x.size());
    const std::vector<int32_T> ones(m, 1);
    const real_T usable = n == 8 || n == 384 ? 1.0 : 0.0;
    EXPECT_EQ(curveUsable(2, x.data(), m, y.data(), m), usable) << n;
    EXPECT_EQ(curveUsableMasked(2, x.data(), m, y.data(), m, ones.data(), m), usable) << n;
  }
  Vec x, y;
  transition(40, 3.0, x, y);
  std::vector<int32_T> host(80, 0);  // first row: all kept, second row: none
  for (int32_T i = 0; i < 40; ++i) host[2 * i] = 1;
  const int32_T hostSize[2] = {2, 40};
  EXPECT_EQ(curveUsableMaskedPair(2, x.data(), 40, y.data(), 40, host.data(), hostSize), 1.0);
  for (int32_T i = 0; i < 80; ++i) host[i] = i % 2 == 1 || i < 4;  // first row: two kept
  EXPECT_EQ(curveUsableMaskedPair(2, x.data(), 40, y.data(), 40, host.data(), hostSize), 0.0);
  EXPECT_EQ(curveUsableMasked(2, x.data(), 40, y.data(), 40, host.data() + 1, 3), 0.0);
  EXPECT_EQ(curveUsable(2, x.data(), 40, y.data(), 39), 0.0);
}

// Two transitions are worth testing from 12 points on, up to 384, in every
// form; the masked forms need three kept points to run the attempts.
TEST(CurveUsable, TwoTransitions) {
  const real_T truth[10] = {6000.0, 2.5, 13000.0, 5.5, 0.4, 10.0, 0.0, 2.0, 0.0, kFixedRT};
  for (const int32_T n : {11, 12, 384, 385}) {
    const Vec x = test::grid(n, 0.0, 8.0), y = test::evaluated(curveModel2, truth, x);
    const std::vector<int32_T> ones(n, 1);
    const real_T usable = n == 12 || n == 384 ? 1.0 : 0.0;
    EXPECT_EQ(curveUsable(3, x.data(), n, y.data(), n), usable) << n;
    EXPECT_EQ(curveUsableMasked(3, x.data(), n, y.data(), n, ones.data(), n), usable) << n;
    const int32_T size[2] = {1, n};
    EXPECT_EQ(curveUsableMaskedPair(3, x.data(), n, y.data(), n, ones.data(), size), usable) << n;
  }
  const Vec x = test::grid(40, 0.0, 8.0), y = test::evaluated(curveModel2, truth, x);
  std::vector<int32_T> two(40, 0);
  two[3] = two[30] = 1;
  EXPECT_EQ(curveUsableMasked(3, x.data(), 40, y.data(), 40, two.data(), 40), 0.0);
}

// Three transitions are worth testing from 16 points on, up to 384.
TEST(CurveUsable, ThreeTransitions) {
  const real_T truth[13] = {4000.0, 2.0, 9000.0, 4.0, 15000.0, 6.0, 0.3, 0.35,
                            10.0,   0.0, 2.0,    0.0, kFixedRT};
  for (const int32_T n : {15, 16, 384, 385}) {
    const Vec x = test::grid(n, 0.0, 8.0), y = test::evaluated(curveModel3, truth, x);
    const std::vector<int32_T> ones(n, 1);
    const real_T usable = n == 16 || n == 384 ? 1.0 : 0.0;
    EXPECT_EQ(curveUsable(4, x.data(), n, y.data(), n), usable) << n;
    EXPECT_EQ(curveUsableMasked(4, x.data(), n, y.data(), n, ones.data(), n), usable) << n;
  }
}

// The quick fits at a fixed RT must reach an R squared of 0.95: with noise of
// 18% of the amplitude the best of them scores 0.9511, with 20% 0.9406.
// Three kept points can carry them, when they are well placed.
TEST(CurveUsable, QuickFitsMustReachTheScore) {
  const real_T truth[7] = {5200.0, 3.6, 10.0, 0.0, 2.0, 0.0, kFixedRT};
  const Vec x = test::grid(40, 0.0, 8.0);
  const std::vector<int32_T> ones(40, 1);
  for (const auto& [share, usable] : {std::pair{0.18, 1.0}, {0.2, 0.0}}) {
    Vec y = test::evaluated(curveModel1, truth, x);
    for (int32_T i = 0; i < 40; ++i) y[i] += 8.0 * share * test::noise(i, 11);
    EXPECT_EQ(curveUsableMasked(2, x.data(), 40, y.data(), 40, ones.data(), 40), usable) << share;
  }
  Vec cx, cy;
  transition(40, 3.0, cx, cy);
  std::vector<int32_T> three(40, 0);
  three[0] = three[1] = three[7] = 1;
  EXPECT_EQ(curveUsableMasked(2, cx.data(), 40, cy.data(), 40, three.data(), 40), 1.0);
}

// Native baselines that meet x = 0 below zero (the signal is positive from
// x = 2 on) give fits with a negative first baseline value, so a scan moves
// on to the next lower concentration.  Given low to high it ends on the
// lowest group, whose fit stands; high to low, the extra round at 0 finds no
// curve: a failed row.  A masked scan averages kept points only, fits without
// mask revision, and leaves the zero row when no group has 8 mean points.
TEST(GroupScan, RoundsAndVariants) {
  const auto scan = [](const Vec& conc, const std::vector<int32_T>* mask, real_T* row) {
    Vec den, sig;
    for (const real_T c : conc) transition(40, 7.25 - 0.25 * c, den, sig, -3.0, 2.0, 2.0);
    const CallCurves curves{view(den), view(sig), view(conc), 40, 4};
    ConcentrationGroups groups;
    sortOutConcentrations(curves.sampleConc, 4, groups);
    ScanSource source;
    if (mask) source.masked = true, source.pointMask = {mask->data(), 1, 160};
    groupScan(curves, groups, source, 2, 25.0, row);
    // The expected row: the fit of the mean of the kept points of curves 0 and 1.
    Vec x, y;
    for (int32_T i = 0; i < 40; ++i) {
      const bool a = !mask || (*mask)[i], b = !mask || (*mask)[40 + i];
      if (!a && !b) continue;
      const real_T mean = a && b ? (sig[i] + sig[40 + i]) / 2 : a ? sig[i] : sig[40 + i];
      if (mean > 0.0) x.push_back(den[i]), y.push_back(mean);
    }
    const int32_T n = static_cast<int32_T>(x.size());
    std::vector<int32_T> revised(n);
    Vec expected(kRowColumns);
    if (mask) strategy::fitWhole<OneTransitionFamily>(x.data(), n, y.data(), n, 25.0, expected.data());
    else fitWithMaskRevision(x.data(), y.data(), n, 2, 25.0, expected.data(), revised.data());
    return expected;
  };
  real_T row[kRowColumns];
  const Vec up = scan({1, 1, 2, 2}, nullptr, row);
  EXPECT_TRUE(up[0] < 0.0 && up[12] > 0.0 && std::equal(row, row + kRowColumns, up.begin()));
  scan({2, 2, 1, 1}, nullptr, row);
  for (int k = 0; k < kRowColumns; ++k) EXPECT_EQ(row[k], k == 12 ? -1.0 : 0.0) << k;

  std::vector<int32_T> mask(160, 1);
  mask[10] = mask[11] = mask[52] = 0;
  EXPECT_TRUE(std::equal(row, row + kRowColumns, scan({1, 1, 2, 2}, &mask, row).begin()));
  mask.assign(160, 0);
  for (int32_T i = 33; i < 160; i += 40) std::fill(mask.begin() + i, mask.begin() + i + 7, 1);
  scan({1, 1, 2, 2}, &mask, row);
  EXPECT_EQ(Vec(row, row + kRowColumns), Vec(kRowColumns, 0.0));
  // Eight kept points about the midpoint are enough for a fit.
  mask.assign(160, 0);
  for (int32_T i = 24; i < 40; i += 2) mask[i] = mask[40 + i] = 1;
  const Vec eight = scan({1, 1, 2, 2}, &mask, row);
  EXPECT_TRUE(eight[12] > 0.0 && std::equal(row, row + kRowColumns, eight.begin()));
}

// A round fits once its mean curve has the least number of points of the
// family, eight, and the scan stops at the first fit whose native baseline
// meets x = 0 above zero, however little (0.00052 here).
TEST(GroupScan, EightPointsFitAndATinyInterceptStops) {
  // One curve a concentration, the first the highest; native baseline a.
  const auto scanOf = [](int32_T n, real_T a, const Vec& Cm, real_T* row) {
    Vec den, sig, conc;
    for (std::size_t c = 0; c < Cm.size(); ++c)
      transition(n, Cm[c], den, sig, a), conc.push_back(2.0 - static_cast<real_T>(c));
    const int32_T curves = static_cast<int32_T>(Cm.size());
    const CallCurves call{view(den), view(sig), view(conc), n, curves};
    ConcentrationGroups groups;
    sortOutConcentrations(call.sampleConc, curves, groups);
    groupScan(call, groups, ScanSource{}, 2, 25.0, row);
    return Vec(row, row + kRowColumns);
  };
  const auto fitOf = [](int32_T n, real_T a, real_T Cm) {
    Vec x, y, row(kRowColumns);
    transition(n, Cm, x, y, a);
    std::vector<int32_T> mask(n);
    fitWithMaskRevision(x.data(), y.data(), n, 2, 25.0, row.data(), mask.data());
    return row;
  };
  real_T row[kRowColumns];
  const Vec eight = fitOf(8, 10.0, 3.0);
  EXPECT_TRUE(eight[12] > 0.0 && scanOf(8, 10.0, {3.0}, row) == eight);
  const Vec tiny = fitOf(40, 0.0004, 2.5);
  EXPECT_TRUE(tiny[0] > 0.0 && tiny[0] < 0.001) << tiny[0];
  EXPECT_EQ(scanOf(40, 0.0004, {2.5, 3.0}, row), tiny);
  // A flat curve at the top concentration is not usable: its round leaves the
  // blank row, whose native intercept of 0 does not stop the scan.
  Vec den, sig;
  transition(40, 3.0, den, sig, 10.0);
  const Vec x = den;
  den.insert(den.begin(), x.begin(), x.end());
  sig.insert(sig.begin(), 40, 50.0);
  const Vec conc{2.0, 1.0};
  const CallCurves call{view(den), view(sig), view(conc), 40, 2};
  ConcentrationGroups groups;
  sortOutConcentrations(call.sampleConc, 2, groups);
  groupScan(call, groups, ScanSource{}, 2, 25.0, row);
  EXPECT_EQ(Vec(row, row + kRowColumns), fitOf(40, 10.0, 3.0));
}

// The fallback fits single curves from the highest concentration down, until
// one fits: here the first, at the top, while the other is flat.
TEST(GroupScan, FallbackStartsAtTheTop) {
  Vec den, sig;
  transition(40, 3.0, den, sig, 10.0);
  const Vec x = den;
  den.insert(den.end(), x.begin(), x.end());
  sig.insert(sig.end(), 40, 50.0);
  const Vec conc{2.0, 1.0};
  const CallCurves call{view(den), view(sig), view(conc), 40, 2};
  real_T row[kRowColumns];
  fallbackScan(call, ScanSource{}, 2, 25.0, row);
  Vec expected(kRowColumns);
  std::vector<int32_T> mask(40);
  fitWithMaskRevision(x.data(), sig.data(), 40, 2, 25.0, expected.data(), mask.data());
  EXPECT_TRUE(expected[12] > 0.0 && Vec(row, row + kRowColumns) == expected);
}

// When no group of the masked scan has eight kept points, the reference row
// stays all zeros with RT 0.  That is no failure of the call: each curve is
// refitted from it, fails, and leaves the blank row with all its points kept.
TEST(FinishPrimaryFit, AZeroReferenceGoesOn) {
  Vec den, sig;
  transition(40, 3.0, den, sig), transition(40, 3.5, den, sig);
  const Vec conc{2.0, 1.0};
  const CallCurves call{view(den), view(sig), view(conc), 40, 2};
  ConcentrationGroups groups;
  sortOutConcentrations(call.sampleConc, 2, groups);
  test::OwnedArray<RealArray> rows;
  test::OwnedArray<Int32Array> mask;
  ASSERT_TRUE(arrayResizeRowFill(mask.get(), 80, 0));
  for (int32_T i = 0; i < 7; ++i) mask->data[5 * i] = mask->data[40 + 5 * i] = 1;
  ScanSource source;
  source.masked = true, source.pointMask = vectorView(mask.get());
  finishPrimaryFit(call, groups, source, 2, 25.0, rows.get(), mask.get());
  Vec blank(kRowColumns, 0.0);
  blank[12] = -1.0;
  ASSERT_EQ(rows.count(), 48);
  EXPECT_EQ(Vec(rows->data, rows->data + 24), blank);
  EXPECT_EQ(Vec(rows->data + 24, rows->data + 48), blank);
  EXPECT_EQ(std::vector<int32_T>(mask->data, mask->data + 80), std::vector<int32_T>(80, 1));
}

}  // namespace
}  // namespace quent
