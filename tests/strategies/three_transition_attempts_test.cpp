// Start attempts of the three-transition fit: the start form, pair sources,
// amplitude rule and held entries of every member, the exchanged flat start
// and its guards, and the split into three stretches.
#include "strategies/attempt_runner.h"
#include "strategies/segment_baselines.h"
#include "strategies/start_forms.h"
#include "strategies/three_transition_family.h"
#include "strategies/three_transition_split.h"
#include "test_support.h"

namespace quent {
namespace {

using F = ThreeTransitionFamily;
using A = F::Attempt;

struct Points {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
  CurvePoints view() const { return {x.data(), y.data(), n()}; }
};

// Midpoints 1.5, 3 and 4.5 on n points over 0..6, sloped baselines, a little noise.
Points threeTransitions(int32_T n = 72) {
  Points p{test::grid(n, 0.0, 6.0), {}};
  p.y = test::evaluated(curveModel3, test::kTruth[2], p.x);
  for (int32_T i = 0; i < n; ++i) p.y[i] += 0.002 * test::noise(i, 5);
  return p;
}

F::Estimate amplitudes(real_T a1, real_T a2) { return {{kFailed, kFailed, kFailed}, {a1, a2}}; }

std::string heldString(const HeldMask<13>& m) {
  std::string s;
  for (bool h : m.held) s += h ? '1' : '0';
  return s;
}

// The masks as the attempts are defined, index 0 first.
const char* const kFree[4] = {"0000000000001", "0000000100001", "0000001000001", "0000001100001"};
const char* const kCore[4] = {"0000000011111", "0000000111111", "0000001011111", "0000001111111"};
const char* const kNative[4] = {"0000000011001", "0000000111001", "0000001011001", "0000001111001"};
const char* const kUnfolded[4] = {"0000000000111", "0000000100111", "0000001000111", "0000001100111"};

// A member in its hold forms (four unless said): start form (T three-point, F flat, E flat
// exchanged, S segment, X split), pair sources (C curve, G given), amplitude
// rule (A as given, B bounded, M midpoints, - none), and its masks with
// both pairs given and with neither.
struct GroupLiteral {
  A first;
  int forms;
  char form, native, unfolded, rule;
  const char* const* given;
  const char* const* absent;
};
const GroupLiteral kGroups[] = {
    {A::ThreePointFull, 4, 'T', 'C', 'C', 'A', kFree, kFree},
    {A::ThreePointCore, 4, 'T', 'C', 'C', 'A', kCore, kCore},
    {A::FlatCore, 4, 'F', 'C', 'C', 'A', kCore, kCore},
    {A::SegmentCore, 4, 'S', 'C', 'C', 'A', kCore, kCore},
    {A::Split, 4, 'X', 'C', 'C', '-', kCore, kCore},
    {A::SplitAt, 4, 'X', 'C', 'C', 'M', kCore, kCore},
    {A::KeepNative, 4, 'T', 'G', 'C', 'B', kNative, kFree},
    {A::NativeThreePointCore, 4, 'T', 'G', 'C', 'B', kCore, kCore},
    {A::NativeFlatCore, 4, 'E', 'G', 'C', 'B', kCore, kCore},
    {A::NativeSegmentCore, 4, 'S', 'G', 'C', 'B', kCore, kCore},
    {A::KeepUnfolded, 1, 'T', 'G', 'G', 'B', kCore, kFree},
    {A::KeepUnfoldedHoldAmp1, 3, 'T', 'C', 'G', 'B', kUnfolded + 1, kFree + 1},
    {A::UnfoldedThreePointCore, 4, 'T', 'C', 'G', 'B', kCore, kCore},
    {A::UnfoldedFlatCore, 4, 'E', 'C', 'G', 'B', kCore, kCore},
    {A::UnfoldedSegmentCore, 4, 'S', 'C', 'G', 'B', kCore, kCore},
    {A::BothCore, 4, 'E', 'G', 'G', 'B', kCore, kCore},
};

char formLetter(StartForm f) { return "TFESX"[static_cast<int>(f)]; }
char ruleLetter(Takes t) {
  return t == Takes::AmplitudePair ? 'A' : t == Takes::AmplitudePairBounded ? 'B'
                                         : t == Takes::Midpoints            ? 'M'
                                                                            : '-';
}

TEST(Attempt3Members, FormPairsRuleAndMasksOfEveryMember) {
  for (const GroupLiteral& g : kGroups) {
    for (int k = 0; k < g.forms; ++k) {
      const auto& m = F::kAttempts[static_cast<int>(g.first) + k];
      SCOPED_TRACE(testing::Message() << m.name << " form " << k);
      EXPECT_EQ(formLetter(m.form), g.form);
      EXPECT_EQ(m.native == PairFrom::Given ? 'G' : 'C', g.native);
      EXPECT_EQ(m.unfolded == PairFrom::Given ? 'G' : 'C', g.unfolded);
      EXPECT_EQ(ruleLetter(m.takes), g.rule);
      const bool n = g.native == 'G', u = g.unfolded == 'G';
      EXPECT_EQ(heldString(m.mask[1][n][u]), g.given[k]);
      EXPECT_EQ(heldString(m.mask[1][0][0]), g.absent[k]);
      EXPECT_EQ(heldString(m.mask[0][n][u]), g.given[k]);
    }
  }
  // Keeping the unfolded end with one pair given holds that pair.
  const auto& keep = F::kAttempts[static_cast<int>(A::KeepUnfolded)];
  EXPECT_EQ(heldString(keep.mask[1][1][0]), "0000000011001");
  EXPECT_EQ(heldString(keep.mask[1][0][1]), "0000000000111");
}

// The masks named for amp1 hold entry 7 (amp2) and those named for amp2 hold
// entry 6: a fit in the form "amp1 held" keeps amp2 at its start and moves amp1.
TEST(Attempt3Members, AmplitudeMasksHoldWhatTheirStringsSay) {
  const Points p = threeTransitions();
  real_T r[13];
  runAttempt<F>(A::ThreePointHoldAmp1, p.view(), kFixedRT, amplitudes(0.25, 0.4), kAbsentPair,
                kAbsentPair, r);
  ASSERT_NE(r[0], -1.0);
  EXPECT_EQ(r[7], 0.4);
  EXPECT_NE(r[6], 0.25);
  runAttempt<F>(A::ThreePointCoreAmp2, p.view(), kFixedRT, amplitudes(0.25, 0.4), kAbsentPair,
                kAbsentPair, r);
  ASSERT_NE(r[0], -1.0);
  EXPECT_EQ(r[6], 0.25);
  EXPECT_NE(r[7], 0.4);
}

// Energies by form, midpoints at the quarters of the x range, formed as
// x0 + k * (xLast - x0) / 4.
TEST(Attempt3Start, EnergiesMidpointsAndBaselines) {
  Points p = threeTransitions(30);
  for (real_T& v : p.x) v = 0.1 + v * 1.2;
  const real_T x0 = p.x.front(), xl = p.x.back();
  real_T s[13];
  startOf<F>(A::ThreePointFull, p.view(), 600.0, amplitudes(0.2, 0.3), kAbsentPair, kAbsentPair, s);
  const BaselinePairs t = startBaselines(StartForm::ThreePoint, p.x.data(), p.y.data(), 30);
  test::expectList(s, 13, {4000.0, x0 + (xl - x0) / 4.0, 8000.0, x0 + 2.0 * (xl - x0) / 4.0,
                           12000.0, x0 + 3.0 * (xl - x0) / 4.0, 0.2, 0.3, t.nativeIntercept,
                           t.nativeSlope, t.unfoldedIntercept, t.unfoldedSlope, 600.0});
  // The quick fits of a usable curve start from amplitudes 0.35 and 0.3.
  startOf<F>(A::FlatCore, p.view(), 600.0, F::kNoEstimate, kAbsentPair, kAbsentPair, s);
  EXPECT_TRUE(s[6] == 0.35 && s[7] == 0.3);
  startOf<F>(A::SegmentCoreAmps, p.view(), 600.0, amplitudes(0.2, 0.3), kAbsentPair, kAbsentPair,
             s);
  const BaselinePairs g = segmentBaselines(p.x.data(), p.y.data(), 30);
  EXPECT_TRUE(s[0] == 10000.0 && s[2] == 10000.0 && s[4] == 10000.0);
  EXPECT_TRUE(s[8] == g.nativeIntercept && s[11] == g.unfoldedSlope);
}

// Rule A keeps a pair unless it sums above 1; rule B also replaces each value
// outside the closed range [0, 1], and then both when the values as given
// sum above 1, whatever the replacements sum to.
TEST(Attempt3Start, TwoAmplitudeRules) {
  const Points p = threeTransitions(30);
  const struct {
    real_T a1, a2;
    A member;
    real_T want1, want2;
  } cases[] = {
      {0.6, 0.5, A::ThreePointFull, 0.35, 0.3},   {0.6, 0.4, A::FlatCore, 0.6, 0.4},
      {1.5, -0.6, A::SegmentCore, 1.5, -0.6},     {1.5, 0.2, A::KeepNative, 0.35, 0.3},
      {1.0, 0.0, A::NativeThreePointCore, 1.0, 0.0}, {-0.5, 0.9, A::KeepUnfolded, 0.35, 0.9},
      {0.2, 1.5, A::UnfoldedSegmentCore, 0.35, 0.3}, {-0.1, 0.5, A::NativeSegmentCore, 0.35, 0.5},
      {0.5, 0.5000000000000002, A::BothCore, 0.35, 0.3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.a1 << ", " << c.a2);
    real_T s[13];
    startOf<F>(c.member, p.view(), kFixedRT, amplitudes(c.a1, c.a2), kAbsentPair, kAbsentPair, s);
    EXPECT_EQ(s[6], c.want1);
    EXPECT_EQ(s[7], c.want2);
  }
}

// The exchanged flat start: the unfolded pair (0.001, last signal) unless
// given, a given slope of 0.0 kept as it is, and four guards by place in the
// vector: a third midpoint, amp1, amp2 and native intercept of exactly 0.0
// become the first signal, 0.001, the last signal and 0.001.  The plain flat
// start has none of this.
TEST(Attempt3Start, ExchangedFlatStartAndItsGuards) {
  Points p = threeTransitions(32);
  for (real_T& v : p.x) v -= 4.5;  // x from -4.5 to 1.5: the third quarter is 0
  const real_T y0 = p.y.front(), yl = p.y.back();
  const real_T native[2] = {0.0, 2.0}, unfolded[2] = {5.0, 0.0};
  real_T s[13];
  startOf<F>(A::BothCore, p.view(), kFixedRT, amplitudes(0.0, 0.0), native, kAbsentPair, s);
  test::expectList(s, 13, {4000.0, -3.0, 8000.0, -1.5, 12000.0, y0, 0.001, yl, 0.001, 2.0, 0.001,
                           yl, kFixedRT});
  startOf<F>(A::UnfoldedFlatCoreAmps, p.view(), kFixedRT, amplitudes(0.3, 0.2), native, unfolded, s);
  test::expectList(s + 5, 7, {y0, 0.3, 0.2, y0, 0.001, 5.0, 0.0});
  startOf<F>(A::FlatCore, p.view(), kFixedRT, amplitudes(0.0, 0.0), native, unfolded, s);
  test::expectList(s + 5, 7, {0.0, 0.0, 0.0, y0, 0.001, yl, 0.001});
}

std::vector<int32_T> cutOf(const StretchCut& c) { return {c.b1, c.b2, c.b3, c.b4, c.p1, c.p2, c.p3}; }

// Positions from 1, x = position - 1.  The cut by shares on 24 points reads
// the x at positions 9, 7, 17 and 15; ties at such an x count on the side
// each comparison puts them.  The cut at a triple meets its junctions, within
// limits applied in their order: on ten points the ends go to 8 and then to
// n - 4 = 6, the starts to n - 8 = 2 and then to 5.
TEST(StretchCut, PositionsAndLimits) {
  const std::vector<real_T> x24 = test::grid(24, 0.0, 23.0), x10 = test::grid(10, 0.0, 9.0);
  EXPECT_EQ(cutOf(stretchCutByShare(x24.data(), 24)), (std::vector<int32_T>{9, 6, 17, 14, 6, 12, 18}));
  std::vector<real_T> ties = x24;
  ties[9] = ties[8], ties[5] = ties[6];
  EXPECT_EQ(cutOf(stretchCutByShare(ties.data(), 24)), (std::vector<int32_T>{10, 5, 17, 14, 7, 11, 18}));
  const real_T none[3] = {-1.0, -1.0, -1.0}, far[3] = {99.0, 99.0, 99.0};
  const real_T triple[3] = {4.0, 10.0, 16.0};
  EXPECT_EQ(cutOf(stretchCutAt(x24.data(), 24, none)), (std::vector<int32_T>{8, 7, 17, 16, 6, 12, 19}));
  EXPECT_EQ(cutOf(stretchCutAt(x24.data(), 24, far)), (std::vector<int32_T>{20, 16, 20, 16, 12, 18, 19}));
  EXPECT_EQ(cutOf(stretchCutAt(x24.data(), 24, triple)), (std::vector<int32_T>{8, 7, 14, 13, 6, 11, 17}));
  const real_T later[3] = {10.0, 12.0, 16.0};  // a junction on an x counts for the end only
  EXPECT_EQ(cutOf(stretchCutAt(x24.data(), 24, later)), (std::vector<int32_T>{12, 11, 15, 14, 8, 13, 18}));
  EXPECT_EQ(cutOf(stretchCutAt(x10.data(), 10, none)), (std::vector<int32_T>{6, 5, 6, 5, 5, 6, 6}));
  // Long curves: the first seed is ceil(103 / 2 + 15).
  const std::vector<real_T> x290 = test::grid(290, 0.0, 289.0);
  EXPECT_EQ(cutOf(stretchCutByShare(x290.data(), 290)),
            (std::vector<int32_T>{102, 86, 203, 187, 67, 145, 223}));
}

// Repeated denaturant at the start of a curve (a third of it at 0 M) leaves
// no point below the x at floor(0.3 n): the second stretch would start before
// the curve, and the split fails instead of reading there.
TEST(StretchCut, TiesBeforeTheCutFailTheSplit) {
  Points p = threeTransitions(24);
  std::fill_n(p.x.begin(), 8, 0.0);
  EXPECT_EQ(stretchCutByShare(p.x.data(), 24).b2, 0);
  real_T r[13];
  runFixedRT<F>(A::Split, p.view(), r);
  EXPECT_EQ(std::count(r, r + 13, -1.0), 13);
}

// A one-transition fit of seven entries.
using Fit1 = std::array<real_T, 7>;
StretchFits fits(const Fit1& a, const Fit1& b, const Fit1& c) {
  StretchFits s;
  std::copy(a.begin(), a.end(), s.fit[0]);
  std::copy(b.begin(), b.end(), s.fit[1]);
  std::copy(c.begin(), c.end(), s.fit[2]);
  return s;
}
const Fit1 kFailedFit = {-1, -1, -1, -1, -1, -1, -1};
real_T fitted(const Fit1& f, real_T x) {
  real_T y;
  curveModel1(f.data(), &x, 1, &y);
  return y;
}

// Positions from 1 on x = 0..23: b1 8, b2 7, b3 14, b4 13.  With sound fits,
// each junction compares the mean of the fitted values on either side with
// the outer baselines there; with a failed fit, the absolute value of the
// mean signal alone, less the first signal, against |y[b3] - y[1]| and |y[n]
// - y[b2]|.  0.15 and 0.85 stay; beyond them the shares are 0.35 and 0.65.
TEST(StretchJoin, JunctionAmplitudes) {
  Points p{test::grid(24, 0.0, 23.0), std::vector<real_T>(24, 4.0)};
  const StretchCut cut{8, 7, 14, 13, 6, 11, 17};
  p.y[0] = 1.0, p.y[6] = 3.0, p.y[7] = 5.0, p.y[13] = 11.0, p.y[12] = 9.0, p.y[23] = 23.0;
  const Fit1 first = {3000.0, 4.0, 10.0, -0.1, 6.0, 0.02, kFixedRT};
  const Fit1 second = {6000.0, 10.0, 8.0, -0.05, 4.0, 0.01, kFixedRT};
  const Fit1 third = {9000.0, 16.0, 7.0, -0.02, 3.0, 0.03, kFixedRT};
  real_T amp[2];
  junctionAmplitudes(p.view(), cut, fits(first, second, third), amp);
  const real_T lower1 = -0.1 * 6.5 + 10.0, upper1 = 0.01 * 6.5 + 4.0;
  const real_T lower2 = -0.05 * 12.5 + 8.0, upper2 = 0.03 * 12.5 + 3.0;
  EXPECT_EQ(amp[0], std::fabs(((fitted(first, 7.0) + fitted(second, 6.0)) / 2.0 - lower1) /
                              (upper1 - lower1)));
  EXPECT_EQ(amp[1], std::fabs(((fitted(second, 13.0) + fitted(third, 12.0)) / 2.0 - lower2) /
                              (upper2 - lower2)));
  junctionAmplitudes(p.view(), cut, fits(first, kFailedFit, third), amp);
  EXPECT_EQ(amp[0], (4.0 - 1.0) / 10.0);
  EXPECT_EQ(amp[1], (10.0 - 1.0) / 20.0);
  p.y[6] = -7.0, p.y[7] = -9.0;  // |-8| - 1 = 7, where |-8 - 1| would give 0.9
  junctionAmplitudes(p.view(), cut, fits(kFailedFit, second, third), amp);
  EXPECT_EQ(amp[0], 0.7);
  p.y[6] = 3.0, p.y[7] = 5.0, p.y[12] = 7.0, p.y[13] = 1.0;  // 3 / 0 and (4 - 1) / 20
  junctionAmplitudes(p.view(), cut, fits(kFailedFit, second, kFailedFit), amp);
  EXPECT_EQ(amp[0], 0.35);
  EXPECT_EQ(amp[1], 0.15);
  p.y[6] = 9.5, p.y[7] = 9.5, p.y[12] = 30.0, p.y[13] = 11.0;  // 8.5 / 10 and 19.5 / 13.5
  junctionAmplitudes(p.view(), cut, fits(first, kFailedFit, kFailedFit), amp);
  EXPECT_EQ(amp[0], 0.85);
  EXPECT_EQ(amp[1], 0.65);
  p.y[6] = 2.4, p.y[7] = 2.4;  // 1.4 / 10
  junctionAmplitudes(p.view(), cut, fits(first, kFailedFit, kFailedFit), amp);
  EXPECT_EQ(amp[0], 0.35);
}

// A stretch fit stands with dG and Cm at or above 0 and Cm at or below the
// last signal (y[24] = 12 here, whatever x).  Otherwise the first and the
// third start at x[p1] (5 here) with 1500 and 2500 per unit and a flat
// baseline at the first signal, the second at x[p2] (10) with 2500.
TEST(StretchJoin, FitsStandUpToTheLastSignal) {
  Points p{test::grid(24, 0.0, 23.0), std::vector<real_T>(24, 4.0)};
  p.y[0] = 2.0, p.y[23] = 12.0;
  const StretchCut cut{8, 7, 14, 13, 6, 11, 17};
  const Fit1 first = {0.0, 0.0, 10.0, -0.1, 6.0, 0.02, kFixedRT};
  const Fit1 second = {6000.0, 12.0, 8.0, -0.05, 4.0, 0.01, kFixedRT};
  const Fit1 third = {9000.0, 11.0, 7.0, -0.02, 3.0, 0.03, kFixedRT};
  const real_T amp[2] = {0.3, 0.4};
  real_T J[13];
  joinedStretches(p.view(), cut, fits(first, second, third), amp, 700.0, J);
  test::expectList(J, 13, {0.0, 0.0, 6000.0, 12.0, 9000.0, 11.0, 0.3, 0.4, 10.0, -0.1, 3.0, 0.03,
                           700.0});
  Fit1 late = second, negative = first;
  late[1] = std::nextafter(12.0, 13.0);
  negative[0] = -1e-300;
  joinedStretches(p.view(), cut, fits(negative, late, kFailedFit), amp, 700.0, J);
  test::expectList(J, 13, {7500.0, 5.0, 25000.0, 10.0, 12500.0, 5.0, 0.3, 0.4, 2.0, 0.001, 2.0,
                           0.001, 700.0});
}

// Both splits seed a clean curve and find its transitions; holding both
// junction amplitudes where both fell back (0.35 + 0.65) can only fail.
// Fewer than eight points fail, though seven of the curve below would give a
// fit.
TEST(SplitAttempts3, FindTheTransitionsAndNeedEightPoints) {
  const Points p = threeTransitions();
  const F::Estimate peaks{{1.4, 3.1, 4.6}, {0.35, 0.3}};
  real_T r[13];
  for (const A member : {A::Split, A::SplitAt, A::SplitAtAmp2}) {
    runAttempt<F>(member, p.view(), kFixedRT, peaks, kAbsentPair, kAbsentPair, r);
    SCOPED_TRACE(static_cast<int>(member));
    EXPECT_NEAR(r[1], 1.5, 0.1);
    EXPECT_NEAR(r[3], 3.0, 0.1);
    EXPECT_NEAR(r[5], 4.5, 0.1);
  }
  runFixedRT<F>(A::SplitAmps, p.view(), r);
  EXPECT_EQ(std::count(r, r + 13, -1.0), 13);

  const real_T truth[13] = {1500.0, 0.5, 3000.0, 1.0, 10500.0, 3.5, 0.4, 0.3, 1.0, 0.0, 5.0, 0.0,
                            kFixedRT};
  for (const int32_T n : {7, 8}) {
    const std::vector<real_T> x = test::grid(n, 0.0, 4.0), y = test::evaluated(curveModel3, truth, x);
    runFixedRT<F>(A::Split, {x.data(), y.data(), n}, r);
    EXPECT_EQ(std::count(r, r + 13, -1.0), n == 7 ? 13 : 0) << n;
  }
}

}  // namespace
}  // namespace quent
