// The reduction to a trend: rows as fits leave them (fitted, failed, odd
// energies), concentrations hosts type, flags, any transition, and sizes
// that disagree, up to beyond 96 curves.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  const int32_T curves = in.byte() % 100;
  const int32_T transition = in.byte() % 8 == 0 ? static_cast<int8_t>(in.byte()) : 1 + in.byte() % 3;
  Vector conc, rows;
  std::vector<int32_T> flags;
  for (int32_T c = 0; c < curves; ++c) {
    conc.v.push_back(in.pick({0.5, 1.0, 1.0, 2.0, 4.0, 8.0, 0.0, -1.0, kNaN}));
    flags.push_back(in.byte() % 7 == 0 ? 0 : 1);
    for (int32_T k = 0; k < 24; ++k) {
      if (k == 12) rows.v.push_back(in.pick({0.5925, 0.5925, -1.0, 0.0}));
      else if (k == 4 || k == 6 || k == 9) rows.v.push_back(in.pick({4000.0, 5200.0, 6100.0, -1.0, 0.0, 9000.0}));
      else if (k >= 15 && k <= 17) rows.v.push_back(in.pick({100.0, 250.0, 0.0, 40.0}));
      else rows.v.push_back(in.pick({0.0, 1.0}));
    }
  }
  conc.claimAll();
  rows.claimAll();
  const std::uint8_t shape = in.byte();
  conc.size[1] -= shape % 2;
  rows.size[1] -= (shape >> 1) % 3 == 2 ? 24 : (shape >> 1) % 3;
  const int32_T flagSize[2] = {1, static_cast<int32_T>(flags.size()) - (shape >> 3) % 2};
  real_T buffer[4], summary[4];
  int32_T used[4];
  RealArray* concOut = QUENT_emxCreateWrapper_real_T(buffer, 1, 4);
  RealArray* trendOut = QUENT_emxCreateWrapper_real_T(nullptr, 0, 0);
  RealArray* deviationOut = QUENT_emxCreateWrapper_real_T(nullptr, -1, 3);
  Int32Array* usedOut = QUENT_emxCreateWrapper_int32_T(used, 1, 4);
  QUENT_dGtrend_calc(conc.v.data(), conc.size, rows.v.data(), rows.size, flags.data(), flagSize,
                     transition, concOut, trendOut, deviationOut, usedOut, summary);
  // One entry per concentration in every output.
  const int32_T n = concOut->size[1];
  if (trendOut->size[1] != n || deviationOut->size[1] != n || usedOut->size[1] != n) __builtin_trap();
  release(concOut);
  release(trendOut);
  release(deviationOut);
  release(usedOut);
  return 0;
}
