// Start attempts of the one-transition fit: which entries each member holds
// and at what start, the baselines of the segment form, and the short-curve
// slopes a segment stretch takes before the first point of a short curve.
#include "numerics/line_fit.h"
#include "strategies/attempt_runner.h"
#include "strategies/one_transition_family.h"
#include "strategies/segment_baselines.h"
#include "strategies/start_forms.h"
#include "test_support.h"

namespace quent {
namespace {

using F = OneTransitionFamily;
using Attempt1 = F::Attempt;

void runAttempt1(Attempt1 member, const real_T* x, const real_T* y, int32_T n, real_T RT,
                 real_T midpoint, const real_T nativePair[2], const real_T unfoldedPair[2],
                 real_T result[7]) {
  runAttempt<F>(member, {x, y, n}, RT, {midpoint}, nativePair, unfoldedPair, result);
}
const char* attempt1Name(Attempt1 member) { return F::kAttempts[static_cast<int>(member)].name; }

struct Points {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
};

Points line(std::vector<real_T> y) {  // at x = 0, 1, 2, ...
  const int32_T n = static_cast<int32_T>(y.size());
  return {test::grid(n, 0.0, n - 1.0), std::move(y)};
}

// A noise-free transition at 3.6 on 48 points over 0..8, mildly sloped.
Points transition() {
  const real_T truth[7] = {5200.0, 3.6, 10.0, -0.05, 2.0, 0.02, kFixedRT};
  const auto x = test::grid(48, 0.0, 8.0);
  return {x, test::evaluated(curveModel1, truth, x)};
}

void expectBaselines(const Points& p, LineCoefficients native, LineCoefficients unfolded) {
  const BaselinePairs b = segmentBaselines(p.x.data(), p.y.data(), p.n());
  const real_T got[4] = {b.nativeIntercept, b.nativeSlope, b.unfoldedIntercept, b.unfoldedSlope};
  test::expectList(got, 4, {native.intercept, native.slope, unfolded.intercept, unfolded.slope});
}

TEST(SegmentBaselines, StraightEndsPlainBentEndsFittedShortCurvesPadded) {
  // Straight ends keep the plain starts; the signal scales the unfolded one.
  expectBaselines(line({5.0, 4.5, 4.0, 3.5, 3.0, 2.5, 2.0, 1.5, 1.0, 0.5}), {0.001, 5.0},
                  {0.001, 0.5 - 0.001 * 0.5});
  // First slopes -1 and +1 disagree: a line through the first three points.
  // The last slope (2 among 0.5) is exactly twice the mean of the stretch of
  // five, which divides by four, and strays only in the stretch of six.
  const Points bent = line({1.0, 0.0, 1.0, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 4.5, 5.0, 7.0});
  expectBaselines(bent, lineFit(bent.x.data(), bent.y.data(), 3),
                  lineFit(bent.x.data() + 6, bent.y.data() + 6, 6));
  // Four points: the stretch reaches before the first slope from w = 0 on and
  // strays only at w = 3, whose line would start three points before the curve.
  const Points four = line({1.0, 2.0, 3.0, 4.2});
  expectBaselines(four, {0.001, 1.0}, lineFit(four.x.data(), four.y.data(), 4));
  // A fitted line through the origin takes the end's signal as intercept.
  Points origin = line({10, 10, 10, 10, -1.5, -0.5, 0.5, 1.5});
  origin.x = {-5.5, -4.5, -3.5, -2.5, -1.5, -0.5, 0.5, 1.5};
  expectBaselines(origin, {0.001, 10.0}, {1.0, 1.5});
  // The unfolded stretch widens to eleven slopes at most: a stray twelfth
  // slope from the end is never seen.
  const Points eleven = line({0, 0, 0, 0, -5, -4, -3, -2, -1, 0, 1, 2, 3, 4, 5, 6});
  expectBaselines(eleven, {0.001, 0.0}, {0.001, 6.0 - 0.001 * 6.0});
  // Equal abscissas give a slope of 0.0: here the first two slopes, 0 and -1,
  // agree by their mean of -0.5, so the native start stays plain.
  Points repeated = line({7, 0, -1, -2, -3, -4, -5, -6, -7, -8});
  repeated.x = {0, 0, 1, 2, 3, 4, 5, 6, 7, 8};
  expectBaselines(repeated, {0.001, 7.0}, {0.001, -8.0 - 0.001 * -8.0});
}

constexpr real_T kFree = NAN;
constexpr real_T kNative[2] = {9.9, -0.04};

// Which entries each member holds, at what start (NaN: free), and RT always.
// (a, -a) is an absent pair: the native end is then fitted, the unfolded one
// held.  Flat starts never hold a zero slope or intercept.
TEST(Attempt1Members, HeldEntriesKeepTheirStart) {
  const Points p = transition();
  const real_T *x = p.x.data(), *y = p.y.data();
  const real_T last[2] = {lastIntercept(x, y, 48), lastSlope(x, y, 48)};
  const BaselinePairs seg = segmentBaselines(x, y, 48);
  const struct { Attempt1 member; real_T midpoint, native[2], unfolded[2], held[5]; } cases[] = {
      // member                      midpoint native        unfolded     held: Cm, native pair, unfolded pair
      {Attempt1::ThreePointFullAt,    3.0, {0, 0},       {0, 0},      {3.0, kFree, kFree, kFree, kFree}},
      {Attempt1::KeepNative,          3.0, {9.9, -0.04}, {0, 0},      {kFree, 9.9, -0.04, kFree, kFree}},
      {Attempt1::KeepNative,          3.0, {0.5, -0.5},  {0, 0},      {kFree, kFree, kFree, last[0], last[1]}},
      {Attempt1::KeepNativeAt,        3.0, {9.9, -0.04}, {0, 0},      {3.0, 9.9, -0.04, kFree, kFree}},
      {Attempt1::KeepNativeAt,        3.0, {0, 0},       {0, 0},      {3.0, kFree, kFree, last[0], last[1]}},
      {Attempt1::KeepUnfoldedAt,      3.0, {0, 0},       {2.1, 0.03}, {3.0, kFree, kFree, 2.1, 0.03}},
      {Attempt1::BothCore,           -1.0, {9.9, 0.0},   {0.0, 0.02}, {kFree, 9.9, 0.001, y[47], 0.02}},
      {Attempt1::BothCore,           -1.0, {0.0, -0.04}, {2.1, 0.0},  {kFree, y[0], -0.04, 2.1, 0.001}},
      {Attempt1::NativeSegmentCore,  -1.0, {9.9, -0.04}, {0, 0},
       {kFree, 9.9, -0.04, seg.unfoldedIntercept, seg.unfoldedSlope}},
      {Attempt1::UnfoldedFlatCoreAt,  3.0, {0, 0},       {2.1, 0.03}, {3.0, y[0], 0.001, 2.1, 0.03}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << attempt1Name(c.member) << " case " << &c - cases);
    real_T r[7];
    runAttempt1(c.member, x, y, 48, kFixedRT, c.midpoint, c.native, c.unfolded, r);
    ASSERT_NE(r[0], -1.0);
    for (int k = 0; k < 5; ++k)
      if (!std::isnan(c.held[k])) { EXPECT_EQ(r[k + 1], c.held[k]) << "entry " << k + 1; }
    EXPECT_EQ(r[6], kFixedRT);
  }
}

// A midpoint exactly at the last x seeds Cm there but leaves it free.
TEST(AttemptEndings, MidpointAtTheLastXRefinementAndRefusal) {
  const Points p = transition();
  real_T seeded[7], plain[7];
  runAttempt1(Attempt1::KeepNativeAt, p.x.data(), p.y.data(), 48, kFixedRT, 8.0, kNative, kAbsentPair, seeded);
  runAttempt1(Attempt1::KeepNativeAt, p.x.data(), p.y.data(), 48, kFixedRT, -1.0, kNative, kAbsentPair, plain);
  EXPECT_NEAR(seeded[1], 3.6, 0.05);
  EXPECT_NE(seeded[0], plain[0]);
  // A midpoint of 0.0 is none: it neither seeds nor holds Cm.  Any midpoint
  // above it is held, 0.0005 where no fit can stand.
  real_T zero[7], tiny[7];
  runAttempt1(Attempt1::KeepNativeAt, p.x.data(), p.y.data(), 48, kFixedRT, 0.0, kNative, kAbsentPair, zero);
  EXPECT_TRUE(zero[0] != -1.0 && std::equal(zero, zero + 7, plain));
  runAttempt1(Attempt1::KeepNativeAt, p.x.data(), p.y.data(), 48, kFixedRT, 0.0005, kNative, kAbsentPair, tiny);
  EXPECT_EQ(std::count(tiny, tiny + 7, -1.0), 7);
  // The absent pair is one: without its native pair the member keeps the
  // unfolded end at the curve's three-point line.
  real_T absent[7], cancelling[7];
  const real_T cancels[2] = {0.5, -0.5};
  runAttempt1(Attempt1::KeepNative, p.x.data(), p.y.data(), 48, kFixedRT, -1.0, kAbsentPair, kAbsentPair, absent);
  runAttempt1(Attempt1::KeepNative, p.x.data(), p.y.data(), 48, kFixedRT, -1.0, cancels, kAbsentPair, cancelling);
  EXPECT_TRUE(absent[0] != -1.0 && std::equal(absent, absent + 7, cancelling));

  real_T v[7] = {5000.0, 3.5, 9.8, -0.05, 2.2, 0.02, kFixedRT};  // slopes and RT stay
  F::refineBest({p.x.data(), p.y.data(), 48}, v);
  EXPECT_TRUE(v[3] == -0.05 && v[5] == 0.02 && v[6] == kFixedRT && std::fabs(v[1] - 3.6) < 0.01);

  // A zigzag no transition explains: every free attempt is refused whole.
  const Points zigzag = line({1.0, 3.0, 1.0, 3.0, 1.0, 3.0, 1.0, 3.0, 1.0, 3.0});
  for (Attempt1 a : F::kUsableAttempts) {
    real_T r[7];
    runFixedRT<F>(a, {zigzag.x.data(), zigzag.y.data(), zigzag.n()}, r);
    for (real_T e : r) EXPECT_EQ(e, -1.0);
  }
}

}  // namespace
}  // namespace quent
