// The primary fit through its export: refusals and failures of the whole
// call, the stride rule, the families a state count selects, and a synthetic
// plate whose generating energies and midpoints come back.
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "test_support.h"

namespace quent::test {
namespace {

// One-transition curves on 0..8 M from a flat native plateau at 100 to a flat
// unfolded one at 42 (the refits hold the strategies' slope estimates), with
// a small ripple and optional spikes; dG rises with ln(c) at one m value.
struct Plate {
  static constexpr real_T kM = 1900.0;
  struct Spike { int32_T curve, point; real_T size; };
  int32_T points = 0;
  std::vector<real_T> den, sig, conc;

  static real_T dG(real_T c) { return 5200.0 + 650.0 * std::log(c); }
  Plate(const std::vector<real_T>& concs, int replicates, int32_T n,
        const std::vector<Spike>& spikes = {}) : points(n) {
    for (const real_T c : concs)
      for (int r = 0; r < replicates; ++r) {
        const int32_T curve = static_cast<int32_T>(conc.size());
        const real_T p[7] = {dG(c), dG(c) / kM, 100.0, 0.0, 42.0, 0.0, rtFromCelsius(25.0)};
        const std::vector<real_T> x = grid(n, 0.0, 8.0);
        std::vector<real_T> y = evaluated(curveModel1, p, x);
        for (int32_T i = 0; i < n; ++i) y[i] += 0.05 * std::sin(1.7 * i + 2.9 * curve);
        for (const Spike& s : spikes)
          if (s.curve == curve) y[s.point] += s.size;
        den.insert(den.end(), x.begin(), x.end());
        sig.insert(sig.end(), y.begin(), y.end());
        conc.push_back(c);
      }
  }
};

// Outputs of one call, compared bit for bit (a NaN equals itself, -0.0
// differs from 0.0).
struct FitResult {
  std::vector<real_T> rows;
  std::vector<int32_T> mask;
  const real_T* row(int32_T c) const { return rows.data() + 24 * c; }
  bool operator==(const FitResult& o) const {
    return mask == o.mask && rows.size() == o.rows.size() &&
           std::memcmp(rows.data(), o.rows.data(), rows.size() * sizeof(real_T)) == 0;
  }
};

FitResult primaryFit(int32_T points, const real_T* den, const int32_T* denSize, const real_T* sig,
                     const int32_T* sigSize, const real_T* conc, const int32_T* concSize,
                     int32_T stateCount = 2, real_T temperatureC = 25.0) {
  OwnedArray<RealArray> rows;
  OwnedArray<Int32Array> mask;
  QUENT_dGtrend_primaryFit(points, den, denSize, sig, sigSize, conc, concSize, stateCount,
                           temperatureC, rows.get(), mask.get());
  return {{rows->data, rows->data + rows.count()}, {mask->data, mask->data + mask.count()}};
}

FitResult primaryFit(const Plate& p, int32_T stateCount = 2, real_T temperatureC = 25.0) {
  const int32_T denSize[2] = {1, static_cast<int32_T>(p.den.size())};
  const int32_T concSize[2] = {1, static_cast<int32_T>(p.conc.size())};
  return primaryFit(p.points, p.den.data(), denSize, p.sig.data(), denSize, p.conc.data(), concSize,
                    stateCount, temperatureC);
}

// Rows of zeros with -1 in column 12, and a mask of ones.
void expectWholeCallFailure(const FitResult& r, int32_T rows, int32_T maskEntries) {
  ASSERT_EQ(r.rows.size(), static_cast<size_t>(24 * rows));
  for (size_t k = 0; k < r.rows.size(); ++k) EXPECT_EQ(r.rows[k], k % 24 == 12 ? -1.0 : 0.0) << k;
  EXPECT_EQ(r.mask, std::vector<int32_T>(maskEntries, 1));
}

// Sizes and counts as a host may pass them; no data is read.  A disagreement
// is shaped by the curve count of the denaturant, a refusal by the host's
// vectors, capped.  Curves of more than 384 points are usable for no group
// and no strategy takes them: the call fails after the reference stage,
// shaped by its curves.
TEST(PrimaryFitEntry, RefusedAndFailedCalls) {
  const std::vector<real_T> buffer(64, 1.0);
  const struct {
    const char* what;
    int32_T points, den[2], sig[2], conc[2], rows, maskEntries;
  } cases[] = {
      {"signal one point short", 10, {1, 40}, {1, 35}, {1, 4}, 4, 40},
      {"fewer concentrations than curves", 10, {1, 40}, {1, 40}, {1, 3}, 4, 40},
      {"97 concentrations for 4 curves", 8, {1, 32}, {1, 32}, {1, 97}, 4, 32},
      {"2305 points", 2305, {1, 2305}, {1, 2305}, {1, 1}, 1, 2305},
      {"no points per curve", 0, {1, 40}, {1, 40}, {1, 4}, 4, 40},
      {"one point per curve, disagreeing", 1, {1, 5}, {1, 5}, {1, 3}, 5, 5},
      {"2304 points, disagreeing", 2304, {1, 2304}, {1, 2304}, {1, 2}, 1, 2304},
      {"negative points per curve", -8, {1, 40}, {1, 40}, {1, 4}, 4, 40},
      {"last curve short (9.5 curves round to 10)", 10, {1, 95}, {1, 95}, {1, 10}, 10, 95},
      {"more elements than int32_T counts", 8, {65536, 65536}, {1, 16}, {1, 2}, 2, 65536},
      {"signal beyond int32_T", 8, {1, 16}, {65536, 65536}, {1, 2}, 2, 16},
      {"concentrations beyond int32_T", 8, {1, 16}, {1, 16}, {65536, 65536}, 9216, 16},
      {"refused, concentrations capped", 0, {1, 8}, {1, 8}, {1, 1000000}, 9216, 8},
      {"absurd sizes, capped", 8, {1, 2000000000}, {1, 8}, {1, 1000000}, 9216, 221184},
      {"no curve at all", 10, {1, 4}, {1, 4}, {1, 0}, 0, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const real_T* b = buffer.data();
    expectWholeCallFailure(primaryFit(c.points, b, c.den, b, c.sig, b, c.conc), c.rows, c.maskEntries);
  }
  // A signal whose last curve is short is refused before it is read (it is
  // exactly as long as it says).
  const std::vector<real_T> den(60, 1.0), sig(55, 1.0), conc(6, 1.0);
  const int32_T denSize[2] = {1, 60}, sigSize[2] = {1, 55}, concSize[2] = {1, 6};
  expectWholeCallFailure(primaryFit(10, den.data(), denSize, sig.data(), sigSize, conc.data(), concSize), 6, 60);
  expectWholeCallFailure(primaryFit(Plate({1.0, 2.0}, 2, 400)), 4, 1600);
  expectWholeCallFailure(primaryFit(Plate({2.0}, 97, 8)), 97, 776);  // 97 curves that would fit
  const FitResult most = primaryFit(Plate({2.0}, 96, 8));  // the most a call takes
  ASSERT_EQ(most.rows.size(), 24u * 96);
  EXPECT_GT(most.row(95)[12], 0.0);
}

// One curve is its own group mean.  State counts that name no family with its
// strategies in the library fit one transition, and a host matrix shows only
// its first row.
TEST(PrimaryFit, OneCurveStateCountsAndStride) {
  const Plate p({2.0}, 1, 48);
  const FitResult plain = primaryFit(p);
  ASSERT_EQ(plain.rows.size(), 24u);
  EXPECT_EQ(plain.row(0)[13], 2.0);
  for (int32_T stateCount : {7, 0, -1}) EXPECT_EQ(primaryFit(p, stateCount), plain);
  std::vector<real_T> den(2 * p.den.size(), NAN), sig(den), conc{p.conc[0], -5.0};
  for (size_t i = 0; i < p.den.size(); ++i) den[2 * i] = p.den[i], sig[2 * i] = p.sig[i];
  const int32_T matrix[2] = {2, 48}, concMatrix[2] = {2, 1};
  EXPECT_EQ(primaryFit(48, den.data(), matrix, sig.data(), matrix, conc.data(), concMatrix), plain);
}

// Three concentrations of three replicates, two spikes of 8 in the plateaus:
// above 0.15 of the signal's spread, below what the spike screen clears, so
// the residual revision finds them.  The bounds are a few times what the
// ripple costs, far below the cost of a wrong group, spike or trend.
TEST(PrimaryFit, SyntheticPlate) {
  const Plate p({0.5, 2.0, 8.0}, 3, 48, {{1, 6, 8.0}, {7, 41, -8.0}});
  const FitResult r = primaryFit(p);
  ASSERT_EQ(r.rows.size(), 24u * 9);
  for (int32_T c = 0; c < 9; ++c) {
    SCOPED_TRACE(c);
    const real_T dG = Plate::dG(p.conc[c]);
    EXPECT_EQ(r.row(c)[13], 2.0);
    EXPECT_NEAR(r.row(c)[5], dG / Plate::kM, 0.001 * dG / Plate::kM);
    EXPECT_NEAR(r.row(c)[4], dG, 0.01 * dG);
    for (int32_T i = 0; i < 48; ++i)
      EXPECT_EQ(r.mask[48 * c + i], (c == 1 && i == 6) || (c == 7 && i == 41) ? 0 : 1) << i;
  }
  // Every working buffer belongs to its thread: fits side by side agree.
  FitResult a, b;
  std::thread ta([&] { a = primaryFit(p); }), tb([&] { b = primaryFit(p); });
  ta.join(), tb.join();
  EXPECT_TRUE(a == r && b == r);
}

// The trend needs two distinct concentrations; all at 1 (ln 0) or at 0 (no
// logarithm) make every energy NaN: every row fails at the gates (code 12)
// and reports all its points, though at two concentrations two spikes drop.
TEST(PrimaryFit, AllRowsRejected) {
  Plate p({1.0, 2.0}, 1, 48, {{0, 6, 8.0}, {0, 0, 8.0}});
  const FitResult spiked = primaryFit(p);
  ASSERT_TRUE(spiked.mask[0] == 0 && spiked.mask[6] == 0);
  for (const real_T conc : {1.0, 0.0}) {
    SCOPED_TRACE(conc);
    p.conc.assign(2, conc);
    const FitResult r = primaryFit(p);
    for (int32_T c = 0; c < 2; ++c)
      for (int k = 0; k < 24; ++k) EXPECT_EQ(r.row(c)[k], k == 12 ? -1.0 : k == 13 ? 12.0 : 0.0);
    EXPECT_EQ(r.mask, std::vector<int32_T>(96, 1));
  }
}


// A plate of two transitions (state count 3): every row carries both, from
// the reference's refits, close to the curves' midpoints and share.
TEST(PrimaryFit, TwoTransitionPlate) {
  Plate p({1.0}, 0, 64);
  for (const real_T c : {1.0, 4.0})
    for (int r = 0; r < 2; ++r) {
      const real_T dG1 = 6000.0 + 300.0 * std::log(c), dG2 = 13200.0 + 500.0 * std::log(c);
      const real_T truth[10] = {dG1, dG1 / 2400.0, dG2, dG2 / 2400.0, 0.4,
                                100.0, 0.0,        42.0, 0.0,          rtFromCelsius(25.0)};
      const std::vector<real_T> x = grid(64, 0.0, 8.0);
      std::vector<real_T> y = evaluated(curveModel2, truth, x);
      for (int32_T i = 0; i < 64; ++i) y[i] += 0.2 * noise(i, 5 + r);
      p.den.insert(p.den.end(), x.begin(), x.end());
      p.sig.insert(p.sig.end(), y.begin(), y.end());
      p.conc.push_back(c);
    }
  const FitResult r = primaryFit(p, 3);
  ASSERT_EQ(r.rows.size(), 24u * 4);
  for (int32_T c = 0; c < 4; ++c) {
    SCOPED_TRACE(c);
    const real_T* row = r.row(c);
    EXPECT_TRUE(row[13] == 3.0 || row[13] == 6.0) << row[13];
    EXPECT_EQ(transitionsOfRow(row), 2);
    EXPECT_NEAR(row[5], (6000.0 + 300.0 * std::log(p.conc[c])) / 2400.0, 0.05);
    EXPECT_NEAR(row[7], (13200.0 + 500.0 * std::log(p.conc[c])) / 2400.0, 0.05);
    EXPECT_NEAR(row[8], 0.4, 0.02);
  }
}

// A plate of three transitions (state count 4): every row carries all three,
// in ascending order, close to the curves' midpoints and shares.
TEST(PrimaryFit, ThreeTransitionPlate) {
  Plate p({1.0}, 0, 96);
  for (const real_T c : {1.0, 4.0})
    for (int r = 0; r < 2; ++r) {
      const real_T dG[3] = {4000.0 + 300.0 * std::log(c), 9600.0 + 400.0 * std::log(c),
                            15000.0 + 500.0 * std::log(c)};
      const real_T truth[13] = {dG[0], dG[0] / 2400.0, dG[1], dG[1] / 2400.0, dG[2],
                                dG[2] / 2400.0, 0.3, 0.35, 100.0, 0.0, 42.0, 0.0,
                                rtFromCelsius(25.0)};
      const std::vector<real_T> x = grid(96, 0.0, 8.0);
      std::vector<real_T> y = evaluated(curveModel3, truth, x);
      for (int32_T i = 0; i < 96; ++i) y[i] += 0.1 * noise(i, 7 + r);
      p.den.insert(p.den.end(), x.begin(), x.end());
      p.sig.insert(p.sig.end(), y.begin(), y.end());
      p.conc.push_back(c);
    }
  const FitResult r = primaryFit(p, 4);
  ASSERT_EQ(r.rows.size(), 24u * 4);
  for (int32_T c = 0; c < 4; ++c) {
    SCOPED_TRACE(c);
    const real_T* row = r.row(c);
    EXPECT_TRUE(row[13] == 4.0 || row[13] == 5.0) << row[13];
    EXPECT_EQ(transitionsOfRow(row), 3);
    const real_T lnc = std::log(p.conc[c]);
    EXPECT_NEAR(row[5], (4000.0 + 300.0 * lnc) / 2400.0, 0.05);
    EXPECT_NEAR(row[7], (9600.0 + 400.0 * lnc) / 2400.0, 0.05);
    EXPECT_NEAR(row[10], (15000.0 + 500.0 * lnc) / 2400.0, 0.05);
    EXPECT_NEAR(row[8], 0.3, 0.02);
    EXPECT_NEAR(row[11], 0.35, 0.02);
  }
}

// The measured tANK curve (41 points, denaturant descending, sorted here as
// a host must), fitted as one curve at concentration 1 and 25 degrees with
// two transitions: the free energies published for it are 4.78 and 8.33
// kcal/mol, and the fit lands within 10% of both.
TEST(PrimaryFit, MeasuredTankCurve) {
  std::ifstream in(QUENT_SOURCE_DIR "/examples/data/tank/tANK_equilmFluorscence.csv");
  ASSERT_TRUE(in.good());
  std::string line;
  std::getline(in, line);
  std::vector<std::pair<real_T, real_T>> points;
  while (std::getline(in, line)) {
    std::stringstream cells(line);
    std::string x, y;
    std::getline(cells, x, ','), std::getline(cells, y, ',');
    points.emplace_back(std::stod(x), std::stod(y));
  }
  std::stable_sort(points.begin(), points.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  Plate p({1.0}, 0, static_cast<int32_T>(points.size()));
  for (const auto& [x, y] : points) p.den.push_back(x), p.sig.push_back(y);
  p.conc.push_back(1.0);
  const FitResult r = primaryFit(p, 3);
  ASSERT_EQ(r.rows.size(), 24u);
  EXPECT_EQ(r.row(0)[13], 3.0);
  EXPECT_NEAR(r.row(0)[4], 4780.0, 478.0);
  EXPECT_NEAR(r.row(0)[6], 8330.0, 833.0);
}

// What measured data and careless hosts bring, as the README's table of bad
// input states it.  Per curve: A accepted (code 2), 0 failed with code 0, G
// failed at the gates (code 12); then the count of masked points.
TEST(PrimaryFit, UntidyInput) {
  const Plate base({0.5, 2.0, 8.0}, 2, 48);
  const auto curve = [](Plate& p, int32_T c) { return std::pair{p.den.begin() + 48 * c, p.sig.begin() + 48 * c}; };
  const struct {
    const char* what;
    std::function<void(Plate&)> damage;
    real_T temperatureC;
    const char* rows;
    int dropped;
  } cases[] = {
      {"as measured", [](Plate&) {}, 25.0, "AAAAAA", 0},
      {"NaN signal", [](Plate& p) { p.sig[10] = NAN; }, 25.0, "0AAAAA", 0},
      {"NaN denaturant", [](Plate& p) { p.den[10] = NAN; }, 25.0, "0AAAAA", 0},
      {"infinite denaturant", [](Plate& p) { p.den[60] = -INFINITY; }, 25.0, "A0AAAA", 0},
      {"NaN in both top curves", [](Plate& p) { p.sig[4 * 48 + 10] = p.sig[5 * 48 + 10] = NAN; },
       25.0, "AAAA00", 0},
      {"one infinite signal: a spike", [](Plate& p) { p.sig[5 * 48 + 10] = INFINITY; }, 25.0,
       "AAAAAA", 1},
      {"two infinite signals side by side",
       [](Plate& p) { p.sig[5 * 48 + 10] = p.sig[5 * 48 + 11] = INFINITY; }, 25.0, "AAAAA0", 0},
      {"concentration 0", [](Plate& p) { p.conc[2] = 0.0; }, 25.0, "GGGGGG", 0},
      {"negative concentration", [](Plate& p) { p.conc[2] = -1.0; }, 25.0, "GGGGGG", 0},
      {"NaN concentration", [](Plate& p) { p.conc[2] = NAN; }, 25.0, "GGGGGG", 0},
      {"interleaved concentrations", [](Plate& p) { p.conc = {0.5, 2.0, 8.0, 0.5, 2.0, 8.0}; },
       25.0, "AAAAAA", 0},
      {"one curve descending",
       [&](Plate& p) {
         auto [x, y] = curve(p, 1);
         std::reverse(x, x + 48), std::reverse(y, y + 48);
       },
       25.0, "A0AAAA", 0},
      {"every curve descending",
       [&](Plate& p) {
         for (int32_T c = 0; c < 6; ++c) {
           auto [x, y] = curve(p, c);
           std::reverse(x, x + 48), std::reverse(y, y + 48);
         }
       },
       25.0, "000000", 0},
      {"one curve negative", [&](Plate& p) { auto [x, y] = curve(p, 1); for (int i = 0; i < 48; ++i) y[i] = -y[i]; },
       25.0, "AAAAAA", 0},
      {"every curve negative", [](Plate& p) { for (real_T& y : p.sig) y = -y; }, 25.0, "000000", 0},
      {"0 degrees", [](Plate&) {}, 0.0, "AAAAAA", 0},
      {"100 degrees", [](Plate&) {}, 100.0, "AAAAAA", 0},
      {"below 0 degrees", [](Plate&) {}, -0.5, "000000", 0},
      {"above 100 degrees", [](Plate&) {}, 100.5, "000000", 0},
      {"NaN degrees", [](Plate&) {}, NAN, "000000", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Plate p = base;
    c.damage(p);
    const FitResult r = primaryFit(p, 2, c.temperatureC);
    ASSERT_EQ(r.rows.size(), 24u * 6);
    ASSERT_EQ(r.mask.size(), 48u * 6);
    for (int32_T k = 0; k < 6; ++k) {
      const real_T* row = r.row(k);
      if (c.rows[k] == 'A') {
        EXPECT_TRUE(row[12] > 0.0 && row[13] == 2.0) << k;
        continue;
      }
      for (int col = 0; col < 24; ++col)
        EXPECT_EQ(row[col], col == 12 ? -1.0 : col == 13 && c.rows[k] == 'G' ? 12.0 : 0.0) << k;
    }
    EXPECT_EQ(std::count(r.mask.begin(), r.mask.end(), 0), c.dropped);
  }
  // Curves longer than a strategy takes (384 points) are taken, and fail.
  for (const int32_T n : {385, 2304}) {
    const FitResult r = primaryFit(Plate({2.0}, 1, n));
    ASSERT_EQ(r.rows.size(), 24u);
    EXPECT_TRUE(r.row(0)[12] == -1.0 && r.row(0)[13] == 0.0);
    EXPECT_EQ(r.mask, std::vector<int32_T>(n, 1));
  }
  EXPECT_GT(primaryFit(Plate({2.0}, 1, 384)).row(0)[12], 0.0);
  // A column vector (n-by-1) is one entry by the stride rule: the counts
  // disagree and the answer is shaped by the denaturant's single point.
  const int32_T column[2] = {288, 1}, concColumn[2] = {6, 1};
  const FitResult r = primaryFit(48, base.den.data(), column, base.sig.data(), column,
                                 base.conc.data(), concColumn);
  EXPECT_TRUE(r.rows.empty() && r.mask.empty());
}

}  // namespace
}  // namespace quent::test
