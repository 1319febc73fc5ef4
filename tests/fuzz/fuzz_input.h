// Turns a fuzzer's bytes into what a host might hand over: curves that look
// measured (sigmoids of one to three transitions with baselines and noise)
// and then the damage a real file or a careless host does to them.  Bytes
// that run out read as zeros, so every input decodes.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cstdlib>
#include <limits>
#include <thread>
#include <vector>

#include "frame/allocation.h"
#include "quent_dgtrend.h"

namespace quent::fuzz {

class Reader {
 public:
  Reader(const std::uint8_t* data, std::size_t size) : p_(data), n_(size) {}
  bool empty() const { return n_ == 0; }
  std::uint8_t byte() {
    if (n_ == 0) return 0;
    --n_;
    return *p_++;
  }
  std::uint16_t u16() { return static_cast<std::uint16_t>(byte() | byte() << 8); }
  // In [0, 1).
  double unit() { return u16() / 65536.0; }
  // Any double at all, NaN and infinities included.
  double raw() {
    std::uint8_t b[8];
    for (auto& x : b) x = byte();
    double v;
    std::memcpy(&v, b, sizeof v);
    return v;
  }
  // Mostly one of the values hosts send, sometimes anything.
  double pick(const std::vector<double>& usual) {
    const std::uint8_t b = byte();
    return b < 240 ? usual[b % usual.size()] : raw();
  }

 private:
  const std::uint8_t* p_;
  std::size_t n_;
};

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

// A host's vector: its entries and the two dimensions it claims.
struct Vector {
  std::vector<double> v;
  int32_T size[2] = {1, 0};
  void claimAll() { size[0] = 1, size[1] = static_cast<int32_T>(v.size()); }
};

struct Plate {
  int32_T pointsPerCurve = 1;
  int32_T curveCount = 0;
  Vector denaturant, signal, sampleConc;
  int32_T stateCount = 2;
  double temperatureC = 25.0;
};

// Raw plates replay measured data exactly (the seed corpora); made plates
// are sigmoids of stateCount - 1 transitions over 0 to 8 M.
inline Plate readPlate(Reader& in) {
  Plate plate;
  const std::uint8_t head = in.byte();
  plate.stateCount = head & 0x80 ? static_cast<int8_t>(in.byte()) : 2 + head % 3;
  plate.temperatureC = head & 0x40 ? in.pick({25.0, 0.0, 100.0, -5.0, 37.0}) : 25.0;
  const bool raw = head & 0x20;
  if (raw) {
    plate.pointsPerCurve = 1 + in.u16() % 2304;
    plate.curveCount = 1 + in.byte() % 96;
  } else {
    plate.pointsPerCurve = 3 + in.byte() % 62;
    plate.curveCount = 1 + in.byte() % 6;
  }
  const int32_T n = plate.pointsPerCurve, curves = plate.curveCount;
  const int transitions = plate.stateCount == 3 ? 2 : plate.stateCount == 4 ? 3 : 1;
  const double RT = 1.987 * (plate.temperatureC + 273.15);
  for (int32_T c = 0; c < curves; ++c) {
    if (raw) {
      for (int32_T i = 0; i < n; ++i) plate.denaturant.v.push_back(in.raw());
      for (int32_T i = 0; i < n; ++i) plate.signal.v.push_back(in.raw());
      plate.sampleConc.v.push_back(in.raw());
      continue;
    }
    const bool descending = in.byte() & 1;
    const double native = 200.0 * in.unit() - 100.0, unfolded = 200.0 * in.unit() - 100.0;
    const double slope = in.unit() - 0.5, noise = 0.05 * in.unit() * (native - unfolded);
    double cm[3], m[3], share[3];
    for (int t = 0; t < transitions; ++t) {
      cm[t] = 8.0 * (t + 1) / (transitions + 1) + in.unit() - 0.5;
      m[t] = 500.0 + 4000.0 * in.unit();
      share[t] = 0.2 + in.unit();
    }
    double total = 0.0;
    for (int t = 0; t < transitions; ++t) total += share[t];
    for (int32_T i = 0; i < n; ++i) {
      const double x = 8.0 * (descending ? n - 1 - i : i) / (n - 1);
      double y = native + slope * x;
      for (int t = 0; t < transitions; ++t) {
        const double k = std::exp(-m[t] * (cm[t] - x) / RT);
        y += (unfolded - native) * share[t] / total * k / (1.0 + k);
      }
      plate.denaturant.v.push_back(x);
      plate.signal.v.push_back(y + noise * (in.unit() - 0.5));
    }
    plate.sampleConc.v.push_back(in.pick({0.5, 1.0, 2.0, 4.0, 8.0, 0.0, -1.0, kNaN}));
  }
  plate.denaturant.claimAll();
  plate.signal.claimAll();
  plate.sampleConc.claimAll();
  return plate;
}

// One piece of damage to a plate: spikes, NaN and infinities, a curve turned
// round or negated, a repeated point, a curve at one denaturant value, sizes
// that disagree with the data or claim nothing, a column vector, a vector
// read through a stride (never beyond what the vectors hold: the caller owns
// its buffers).
inline void damage(Reader& in, Plate& plate) {
  std::vector<double>& x = plate.denaturant.v;
  std::vector<double>& y = plate.signal.v;
  if (x.empty() || y.empty()) return;
  const std::uint8_t op = in.byte();
  const std::size_t at = in.u16() % y.size();
  switch (op % 14) {
    case 0: y[at] += 100.0 * (in.unit() - 0.5) * (1.0 + std::fabs(y[at])); break;
    case 1: y[at] = kNaN; break;
    case 2: x[at % x.size()] = in.byte() & 1 ? kInf : -kInf; break;
    case 3: y[at] = in.raw(); break;
    case 4: {
      const std::size_t first = at / plate.pointsPerCurve * plate.pointsPerCurve;
      for (std::size_t i = 0, j = plate.pointsPerCurve - 1; i < j && first + j < x.size(); ++i, --j)
        std::swap(x[first + i], x[first + j]);
      break;
    }
    case 5: for (double& v : y) v = -v; break;
    case 6: x[at % x.size()] = x[(at + 1) % x.size()]; break;
    case 7: plate.denaturant.size[1] -= in.byte() % 3; break;
    case 8: plate.signal.size[1] -= in.byte() % 3; break;
    case 9:
      if (!plate.sampleConc.v.empty())
        plate.sampleConc.v[at % plate.sampleConc.v.size()] =
            in.pick({0.0, -2.0, kNaN, kInf, 1e-300, 1e300});
      break;
    case 10: std::swap(plate.denaturant.size[0], plate.denaturant.size[1]); break;
    case 11:  // the first row of a two-row matrix
      plate.signal.size[0] = 2, plate.signal.size[1] = static_cast<int32_T>(y.size() / 2);
      break;
    case 12: {  // a curve measured at one denaturant concentration only
      const std::size_t first = at / plate.pointsPerCurve * plate.pointsPerCurve;
      for (std::size_t i = first; i < first + plate.pointsPerCurve && i < x.size(); ++i)
        x[i] = x[first];
      break;
    }
    case 13:  // nothing at all
      plate.denaturant.size[1] = plate.signal.size[1] = plate.sampleConc.size[1] = 0;
      break;
  }
}

// Some calls run out of memory part way: for a first byte below 8 the call
// runs on a fresh thread, which must make its working space, under an
// allocation limit read from the input.
struct Memory {
  bool starved = false;
  long limit = -1;
};

inline Memory readMemory(Reader& in) {
  Memory m;
  m.starved = in.byte() < 8;
  m.limit = in.u16();
  return m;
}

template <class Call>
void runWith(const Memory& memory, Call call) {
  if (!memory.starved) {
    call();
    return;
  }
  std::thread([&] {
    failAllocationsAfter(memory.limit);
    call();
    failAllocationsAfter(-1);
  }).join();
}

// What a host does with a record it made or the library grew: give it back.
inline void release(RealArray* a) { QUENT_emxDestroyArray_real_T(a); }
inline void release(Int32Array* a) { QUENT_emxDestroyArray_int32_T(a); }

// Rows come whole: 24 columns each.
inline void checkRows(const RealArray* rows) {
  if (rows->size[0] * rows->size[1] % 24 != 0) __builtin_trap();
}

}  // namespace quent::fuzz
