// The fingerprint of the fits: rows and masks of 500 seeded random curves of
// each family, through both fitting functions, hashed.  Work that makes the
// library faster must leave every bit of them as it is; a change of this
// hash is a change of results, to be explained, never to be re-recorded
// lightly.
#include <cstdint>
#include <random>

#include "test_support.h"

namespace quent::test {
namespace {

// Uniform in [low, high) from the generator's raw bits, the same everywhere.
struct Draw {
  std::mt19937_64 bits;
  explicit Draw(std::uint64_t seed) : bits(seed) {}
  real_T operator()(real_T low, real_T high) {
    return low + (high - low) * static_cast<real_T>(bits() >> 11) * 0x1.0p-53;
  }
};

struct Fingerprint {
  std::uint64_t hash = 1469598103934665603ull;  // FNV-1a, 64 bits
  void add(const void* data, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) {
      hash ^= static_cast<const unsigned char*>(data)[i];
      hash *= 1099511628211ull;
    }
  }
};

constexpr int kPlates = 50;
constexpr int kCurves = 10;  // five concentrations, two curves each

// A plate of T-transition curves: m values, midpoints, shares, sloping
// baselines, noise, and now and then a spike.
template <int T>
void makePlate(Draw& draw, int32_T points, std::vector<real_T>& den, std::vector<real_T>& sig,
               std::vector<real_T>& conc) {
  const std::vector<real_T> x = grid(points, 0.0, 8.0);
  for (int c = 0; c < kCurves; ++c) {
    const real_T concentration = 0.5 * (1 << (c / 2));
    real_T p[13];
    using L = TransitionLayout<T>;
    real_T low = 1.0;
    for (int t = 0; t < T; ++t) {
      const real_T Cm = draw(low, low + 5.0 / T);
      low = Cm + 0.5;
      p[L::dG(t)] = draw(1500.0, 2600.0) * Cm;
      p[L::Cm(t)] = Cm;
    }
    if (T == 2) p[L::amp(0)] = draw(0.3, 0.7);
    if (T == 3) p[L::amp(0)] = draw(0.2, 0.4), p[L::amp(1)] = draw(0.2, 0.4);
    p[L::nativeIntercept] = draw(90.0, 110.0);
    p[L::nativeSlope] = draw(-1.0, 1.0);
    p[L::unfoldedIntercept] = draw(30.0, 50.0);
    p[L::unfoldedSlope] = draw(-0.5, 0.5);
    p[L::RT] = rtFromCelsius(25.0);
    std::vector<real_T> y = evaluated(curveModel<T>, p, x);
    for (real_T& v : y) v += draw(-0.4, 0.4);
    if (draw(0.0, 1.0) < 0.1) y[static_cast<int>(draw(0.0, points))] += 15.0;
    den.insert(den.end(), x.begin(), x.end());
    sig.insert(sig.end(), y.begin(), y.end());
    conc.push_back(concentration);
  }
}

template <int T>
std::uint64_t fingerprint(int32_T points) {
  Draw draw(0x5eed0000u + T);
  Fingerprint f;
  for (int plate = 0; plate < kPlates; ++plate) {
    std::vector<real_T> den, sig, conc;
    makePlate<T>(draw, points, den, sig, conc);
    const int32_T size[2] = {1, static_cast<int32_T>(den.size())}, concSize[2] = {1, kCurves};
    OwnedArray<RealArray> rows, userRows;
    OwnedArray<Int32Array> mask;
    QUENT_dGtrend_primaryFit(points, den.data(), size, sig.data(), size, conc.data(), concSize,
                             T + 1, 25.0, rows.get(), mask.get());
    f.add(rows->data, sizeof(real_T) * rows.count());
    f.add(mask->data, sizeof(int32_T) * mask.count());
    // The scientist leaves one curve out and drops the first points of another.
    std::vector<int32_T> userMask(mask->data, mask->data + mask.count());
    std::vector<int32_T> flags(kCurves, 1);
    flags[plate % kCurves] = 0;
    const int other = (plate + 3) % kCurves;
    userMask[other * points] = userMask[other * points + 1] = 0;
    const int32_T flagSize[2] = {1, kCurves};
    QUENT_dGtrend_user_primaryFit(points, den.data(), size, sig.data(), size, conc.data(),
                                  concSize, userMask.data(), size, flags.data(), flagSize, T + 1,
                                  25.0, userRows.get());
    f.add(userRows->data, sizeof(real_T) * userRows.count());
  }
  return f.hash;
}

TEST(Fingerprint, OneTransition) { EXPECT_EQ(fingerprint<1>(48), 0x265e42661eb66468ull); }
TEST(Fingerprint, TwoTransitions) { EXPECT_EQ(fingerprint<2>(64), 0x650c0188d58f5ce6ull); }
TEST(Fingerprint, ThreeTransitions) { EXPECT_EQ(fingerprint<3>(72), 0xbbb7eebf33e8ec58ull); }

}  // namespace
}  // namespace quent::test
