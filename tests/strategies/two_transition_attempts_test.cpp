// Start attempts of the two-transition fit: the start form, the source of
// each baseline pair and the mask of every member of the table, the
// amplitude limits, and the split attempts' cuts.
#include "numerics/line_fit.h"
#include "strategies/attempt_runner.h"
#include "strategies/segment_baselines.h"
#include "strategies/start_forms.h"
#include "strategies/two_transition_family.h"
#include "strategies/two_transition_split.h"
#include "test_support.h"

namespace quent {
namespace {

using F = TwoTransitionFamily;
using A = F::Attempt;

struct Points {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
  CurvePoints view() const { return {x.data(), y.data(), n()}; }
};

// Midpoints 2.5 and 5.5 on 64 points over 0..8, sloped baselines, a little noise.
Points twoTransitions(int32_T n = 64, real_T Cm1 = 2.5, real_T Cm2 = 5.5) {
  const real_T truth[10] = {6000.0, Cm1, 13000.0, Cm2, 0.4, 10.0, -0.05, 2.0, 0.02, kFixedRT};
  Points p{test::grid(n, 0.0, 8.0), {}};
  p.y = test::evaluated(curveModel2, truth, p.x);
  for (int32_T i = 0; i < n; ++i) p.y[i] += 0.004 * test::noise(i, 3);
  return p;
}

F::Estimate amplitude(real_T a) { return {{kFailed, kFailed}, a}; }

// Each member of the table as the attempts are defined: start form (T
// three-point, F flat, S segment), where each pair comes from (C the curve, G
// the given pair unless absent), and the held entries (amp1, the native pair,
// the unfolded pair, RT) for an amplitude usable and not, pairs given and absent.
struct MemberLiteral {
  A member;
  char form, native, unfolded;
  const char* usableGiven;
  const char* usableAbsent;
  const char* otherGiven;
  const char* otherAbsent;
};
constexpr const char* RT = "0000000001";
constexpr const char* Amp = "0000100001";
constexpr const char* Base = "0000011111";
constexpr const char* AmpBase = "0000111111";
constexpr const char* Unf = "0000000111";
constexpr const char* Nat = "0000011001";
constexpr const char* AmpUnf = "0000100111";
constexpr const char* AmpNat = "0000111001";
const MemberLiteral kTable[] = {
    {A::ThreePointFull, 'T', 'C', 'C', RT, RT, RT, RT},
    {A::ThreePointCore, 'T', 'C', 'C', Base, Base, Base, Base},
    {A::FlatCore, 'F', 'C', 'C', Base, Base, Base, Base},
    {A::SegmentCore, 'S', 'C', 'C', Base, Base, Base, Base},
    {A::ThreePointFullAmp, 'T', 'C', 'C', Amp, Amp, Amp, Amp},
    {A::ThreePointCoreAmp, 'T', 'C', 'C', AmpBase, AmpBase, AmpBase, AmpBase},
    {A::FlatCoreAmp, 'F', 'C', 'C', AmpBase, AmpBase, AmpBase, AmpBase},
    {A::SegmentCoreAmp, 'S', 'C', 'C', AmpBase, AmpBase, AmpBase, AmpBase},
    {A::KeepNative, 'T', 'G', 'C', Nat, Unf, Nat, Unf},
    {A::KeepNativeAmp, 'T', 'G', 'C', AmpNat, AmpUnf, Nat, Unf},
    {A::KeepUnfolded, 'T', 'C', 'G', Unf, Unf, Unf, Unf},
    {A::KeepUnfoldedAmp, 'T', 'C', 'G', AmpUnf, AmpUnf, Unf, Unf},
    {A::NativeThreePointCore, 'T', 'G', 'C', Base, Base, Base, Base},
    {A::NativeThreePointCoreAmp, 'T', 'G', 'C', AmpBase, AmpBase, Base, Base},
    {A::UnfoldedThreePointCore, 'T', 'C', 'G', Base, Base, Base, Base},
    {A::UnfoldedThreePointCoreAmp, 'T', 'C', 'G', AmpBase, AmpBase, Base, Base},
    {A::BothCore, 'F', 'G', 'G', Base, Base, Base, Base},
    {A::BothCoreAmp, 'F', 'G', 'G', AmpBase, AmpBase, Base, Base},
    {A::NativeFlatCore, 'F', 'G', 'C', Base, Base, Base, Base},
    {A::NativeFlatCoreAmp, 'F', 'G', 'C', AmpBase, AmpBase, Base, Base},
    {A::UnfoldedFlatCore, 'F', 'C', 'G', Base, Base, Base, Base},
    {A::UnfoldedFlatCoreAmp, 'F', 'C', 'G', AmpBase, AmpBase, Base, Base},
    {A::NativeSegmentCore, 'S', 'G', 'C', Base, Base, Base, Base},
    {A::NativeSegmentCoreAmp, 'S', 'G', 'C', AmpBase, AmpBase, Base, Base},
    {A::UnfoldedSegmentCore, 'S', 'C', 'G', Base, Base, Base, Base},
    {A::UnfoldedSegmentCoreAmp, 'S', 'C', 'G', AmpBase, AmpBase, Base, Base},
};

// The start-table amp members take the amplitude as given, whatever it is.
bool takesAsGiven(A m) {
  return m == A::ThreePointFullAmp || m == A::ThreePointCoreAmp || m == A::FlatCoreAmp ||
         m == A::SegmentCoreAmp;
}

// Held entries keep their start, free ones move; the start of each entry is
// what the literal row says.
TEST(Attempt2Members, StartFormPairSourceAndMaskOfEveryMember) {
  const Points p = twoTransitions();
  const real_T *x = p.x.data(), *y = p.y.data();
  const int32_T n = p.n();
  const BaselinePairs seg = segmentBaselines(x, y, n);
  const real_T given[2][2] = {{9.97, -0.045}, {2.03, 0.018}};
  for (const MemberLiteral& m : kTable) {
    for (const bool usable : {true, false})
      for (const bool pairs : {true, false}) {
        const char* mask = usable ? (pairs ? m.usableGiven : m.usableAbsent)
                                  : (pairs ? m.otherGiven : m.otherAbsent);
        // 0.995 is beyond what the amp members proper take, not what the
        // start-table members take as given.
        const real_T amp = usable ? 0.3 : 0.995;
        if (takesAsGiven(m.member) && !usable) continue;
        SCOPED_TRACE(testing::Message() << F::kAttempts[static_cast<int>(m.member)].name
                                        << (usable ? " usable" : " not usable")
                                        << (pairs ? " given" : " absent"));
        real_T start[4];
        if (m.form == 'T') {
          start[0] = (y[0] + y[1] + y[2]) / 3.0, start[1] = (y[2] - y[0]) / (x[2] - x[0]);
          start[3] = (y[n - 1] - y[n - 3]) / (x[n - 1] - x[n - 3]);
          start[2] = (y[n - 3] + y[n - 2] + y[n - 1]) / 3.0 - start[3] * x[n - 1];
        } else if (m.form == 'F') {
          start[0] = y[0], start[1] = 0.001, start[2] = y[n - 1], start[3] = 0.001;
        } else {
          start[0] = seg.nativeIntercept, start[1] = seg.nativeSlope;
          start[2] = seg.unfoldedIntercept, start[3] = seg.unfoldedSlope;
        }
        if (pairs && m.native == 'G') start[0] = given[0][0], start[1] = given[0][1];
        if (pairs && m.unfolded == 'G') start[2] = given[1][0], start[3] = given[1][1];
        real_T r[10];
        runAttempt<F>(m.member, p.view(), kFixedRT, amplitude(amp), pairs ? given[0] : kAbsentPair,
                      pairs ? given[1] : kAbsentPair, r);
        ASSERT_NE(r[0], -1.0);
        const real_T ampStart = usable && mask[4] == '1' ? amp : 0.5;
        const real_T starts[6] = {ampStart, start[0], start[1], start[2], start[3], kFixedRT};
        for (int k = 4; k < 10; ++k) {
          if (mask[k] == '1') { EXPECT_EQ(r[k], starts[k - 4]) << "entry " << k; }
          else { EXPECT_NE(r[k], starts[k - 4]) << "entry " << k; }
        }
      }
  }
}


std::vector<int32_T> cutOf(const SplitCut& c) { return {c.a, c.e1, c.s2, c.b, c.q1, c.q2}; }

// Positions from 1.  Sixteen points at x = 0..15: a mid below every x leaves
// e1 and s2 at the middle, 8; midpoints at either end are held 4 and 8
// points from the end; the halving cut takes the points up to x[8] and those
// below x[8].  On five points the second part would start at its end and is
// put back to the middle.
TEST(SplitCut, PositionsAndLimits) {
  const std::vector<real_T> x16 = test::grid(16, 0.0, 15.0), x100 = test::grid(100, 0.0, 99.0);
  const real_T none[2] = {-1.0, -1.0}, low[2] = {0.0, 0.0}, high[2] = {15.0, 15.0};
  const real_T inside[2] = {4.0, 5.5};
  EXPECT_EQ(cutOf(splitCutAt(x16.data(), 16, none)), (std::vector<int32_T>{1, 8, 8, 16, 6, 11}));
  EXPECT_EQ(cutOf(splitCutAt(x16.data(), 16, low)), (std::vector<int32_T>{1, 8, 8, 16, 6, 11}));
  EXPECT_EQ(cutOf(splitCutAt(x16.data(), 16, high)), (std::vector<int32_T>{1, 12, 8, 16, 8, 11}));
  // mid 4.75 on 0..99: e1 5 and s2 5, lifted to 8 and left at 5; w = 5.
  EXPECT_EQ(cutOf(splitCutAt(x100.data(), 100, inside)), (std::vector<int32_T>{1, 8, 5, 100, 10, 47}));
  EXPECT_EQ(cutOf(splitCutInHalf(x16.data(), 16)), (std::vector<int32_T>{1, 8, 7, 16, 6, 10}));
  EXPECT_EQ(cutOf(splitCutInHalf(x100.data(), 100)), (std::vector<int32_T>{1, 50, 50, 100, 31, 70}));
  const std::vector<real_T> x5 = test::grid(5, 0.0, 4.0);
  EXPECT_EQ(cutOf(splitCutAt(x5.data(), 5, none)), (std::vector<int32_T>{1, 1, 3, 5, 1, 4}));
  // On three points the first part starts before the curve, and both start
  // midpoints fall outside it: they are taken a little inside each part.
  EXPECT_EQ(cutOf(splitCutAt(x5.data(), 3, none)), (std::vector<int32_T>{-1, 1, 3, 5, 1, 4}));
}

// Both split members seed a 16-point curve and recover its transitions; the
// halving one counts as failed on fewer than eight points, and fits eight.
TEST(SplitAttempts, SixteenPointsAndTooFew) {
  const Points p = twoTransitions(16);
  real_T half[10], at[10];
  const F::Estimate peaks{{2.4, 5.6}, kFailed};
  runFixedRT<F>(A::SplitHalf, p.view(), half);
  runAttempt<F>(A::SplitAt, p.view(), kFixedRT, peaks, kAbsentPair, kAbsentPair, at);
  for (const real_T* r : {half, at}) {
    EXPECT_NEAR(r[1], 2.5, 0.05);
    EXPECT_NEAR(r[3], 5.5, 0.05);
    EXPECT_NEAR(r[4], 0.4, 0.02);
  }
  // A first transition of 0.05 of the change is below any share a fit may
  // have: the whole fit is refused, while each half fits its own transition.
  // The halves' transitions then stand, with the share of 0.5 the junction
  // gives when it finds less than 0.15.
  const real_T small[10] = {6000.0, 2.0, 18000.0, 6.0, 0.05, 10.0, 0.0, 2.0, 0.0, kFixedRT};
  const Points s{test::grid(64, 0.0, 8.0), {}};
  const std::vector<real_T> sy = test::evaluated(curveModel2, small, s.x);
  runFixedRT<F>(A::SplitHalf, {s.x.data(), sy.data(), 64}, half);
  EXPECT_TRUE(half[0] != -1.0 && half[4] == 0.5) << half[0] << " " << half[4];
  const Points seven = twoTransitions(7), eight = twoTransitions(8);
  runFixedRT<F>(A::SplitHalf, seven.view(), half);
  EXPECT_EQ(std::count(half, half + 10, -1.0), 10);
  runFixedRT<F>(A::SplitHalf, eight.view(), half);
  EXPECT_NE(half[0], -1.0);
}


// Three limits on amp1, each strict: the amp members proper start from it
// inside (0.01, 0.99), the start table runs its amplitude members inside
// (0, 0.99), and the held stages take it inside (0, 1).
TEST(AmplitudeLimits, MembersStartTableAndHeldStages) {
  const Points p = twoTransitions();
  const real_T given[2] = {2.03, 0.018};
  // Held beyond the shares a fit may have (0.08 to 0.92), an amplitude at
  // the limits is refused; left free from 0.5, the fit stands.
  const struct { real_T amp; bool held; } members[] = {
      {0.01, false}, {std::nextafter(0.01, 1.0), true}, {std::nextafter(0.99, 0.0), true},
      {0.99, false}};
  for (const auto& m : members) {
    real_T r[10];
    runAttempt<F>(A::KeepUnfoldedAmp, p.view(), kFixedRT, amplitude(m.amp), kAbsentPair, given, r);
    EXPECT_EQ(r[0] == -1.0, m.held) << m.amp;
  }
  real_T r[10];
  runAttempt<F>(A::KeepUnfoldedAmp, p.view(), kFixedRT, amplitude(0.3), kAbsentPair, given, r);
  EXPECT_EQ(r[4], 0.3);
  const struct { real_T amp; bool fills, usable; } limits[] = {
      {0.0, false, false},  {std::nextafter(0.0, 1.0), true, true},
      {std::nextafter(0.99, 0.0), true, true}, {0.99, false, true},
      {std::nextafter(1.0, 0.0), false, true}, {1.0, false, false}, {-1.0, false, false}};
  for (const auto& l : limits) {
    EXPECT_EQ(F::amplitudeFillsStartTable(l.amp), l.fills) << l.amp;
    EXPECT_EQ(F::estimateUsable(amplitude(l.amp)), l.usable) << l.amp;
  }
}


// The share at the junction (positions 8 and 8 of sixteen, x = 0..15).  With
// a failed half it is (|mean at the cut| - y[1]) / |y[16] - y[1]|, the
// absolute value taking the mean alone: 0.4 here, where the whole under one
// absolute value would give 0.6.  0.15 and 0.85 stay, beyond them it is 0.5.
// With both halves sound, the mean against the halves' outer baselines at x[8].
TEST(SplitJoin, AmplitudeAtTheJunction) {
  const std::vector<real_T> x = test::grid(16, 0.0, 15.0);
  std::vector<real_T> y(16, 6.0);
  y[0] = 1.0, y[15] = 11.0;
  const SplitCut cut{1, 8, 8, 16, 6, 11};
  const real_T failed[7] = {-1, -1, -1, -1, -1, -1, -1};
  const real_T H1[7] = {4000.0, 2.5, 10.0, -0.1, 3.0, 0.01, kFixedRT};
  const real_T H2[7] = {8000.0, 9.0, 9.0, -0.1, 2.0, 0.01, kFixedRT};
  const struct { real_T atCut, A; } cases[] = {
      {-5.0, 0.4}, {9.5, 0.85}, {2.5, 0.15}, {std::nextafter(9.5, 10.0), 0.5},
      {std::nextafter(2.5, 0.0), 0.5}};
  for (const auto& c : cases) {
    y[7] = c.atCut;
    EXPECT_EQ(splitAmplitude({x.data(), y.data(), 16}, cut, H1, failed), c.A) << c.atCut;
    EXPECT_EQ(splitAmplitude({x.data(), y.data(), 16}, cut, failed, H2), c.A) << c.atCut;
  }
  y[7] = 6.0;
  const real_T lower = -0.1 * 7.0 + 10.0, upper = 0.01 * 7.0 + 2.0;
  EXPECT_EQ(splitAmplitude({x.data(), y.data(), 16}, cut, H1, H2),
            std::fabs(((6.0 + 6.0) / 2.0 - lower) / (upper - lower)));
}

// A half's transition enters the joined start only with a midpoint at or
// below the last signal, y[16] = 2 here, however far inside the x range (0 to
// 15) it lies.  Otherwise the transition starts at x[q] with 1500 (first) or
// 2500 (second) times that as energy, keeping the half's outer baseline, or a
// flat one at the end signal when the half failed.
TEST(SplitJoin, MidpointsBoundedByTheLastSignal) {
  const std::vector<real_T> x = test::grid(16, 0.0, 15.0);
  std::vector<real_T> y(16, 5.0);
  y[0] = 10.0, y[15] = 2.0;
  const CurvePoints c{x.data(), y.data(), 16};
  const SplitCut cut{1, 8, 8, 16, 6, 11};
  const real_T failed[7] = {-1, -1, -1, -1, -1, -1, -1};
  const real_T within[7] = {3000.0, 2.0, 10.0, -0.1, 3.0, 0.01, kFixedRT};
  const real_T beyond[7] = {4000.0, std::nextafter(2.0, 3.0), 9.9, -0.2, 3.0, 0.01, kFixedRT};
  const real_T late[7] = {9000.0, 9.0, 9.0, -0.1, 2.1, 0.02, kFixedRT};
  real_T J[10];
  joinedStart(c, cut, within, late, 0.4, kFixedRT, J);
  test::expectList(J, 10, {3000.0, 2.0, 10.0 * 2500.0, 10.0, 0.4, 10.0, -0.1, 2.1, 0.02, kFixedRT});
  joinedStart(c, cut, beyond, failed, 0.3, kFixedRT, J);
  test::expectList(J, 10, {5.0 * 1500.0, 5.0, 10.0 * 2500.0, 10.0, 0.3, 9.9, -0.2, 2.0, 0.001, kFixedRT});
  // An energy of 0 and a midpoint of 0 are sound.
  const real_T flatHalf[7] = {0.0, 1.0, 9.8, -0.1, 3.0, 0.01, kFixedRT};
  joinedStart(c, cut, flatHalf, late, 0.4, kFixedRT, J);
  EXPECT_TRUE(J[0] == 0.0 && J[1] == 1.0 && J[5] == 9.8);
  const real_T atZero[7] = {3500.0, 0.0, 9.7, -0.1, 3.0, 0.01, kFixedRT};
  joinedStart(c, cut, atZero, late, 0.4, kFixedRT, J);
  EXPECT_TRUE(J[0] == 3500.0 && J[1] == 0.0 && J[5] == 9.7);
  joinedStart(c, cut, failed, within, 0.5, kFixedRT, J);
  test::expectList(J, 10, {5.0 * 1500.0, 5.0, 3000.0, 2.0, 0.5, 10.0, 0.001, 3.0, 0.01, kFixedRT});
}

}  // namespace
}  // namespace quent
