// One drawing export (QUENT_FUZZ_DRAWING: 0 trend, 1 fd, 2 fragg, 3 fraggfd)
// on concentrations, coefficients and point counts of any kind, into records
// around host buffers of any claimed shape.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  Vector conc;
  const int32_T count = in.byte() % 12;
  for (int32_T i = 0; i < count; ++i)
    conc.v.push_back(in.pick({0.5, 1.0, 2.0, 4.0, 8.0, 0.0, -1.0, kNaN, kInf, 1e-300}));
  conc.claimAll();
  if (in.byte() % 4 == 0) std::swap(conc.size[0], conc.size[1]);
  const double coefficients[2] = {in.pick({-300.0, 0.0, 250.0, -1e6}),
                                  in.pick({5000.0, 0.0, -2000.0, 1e300})};
  const std::uint8_t scale = in.byte();
  const int32_T pointCount = scale % 16 == 0 ? static_cast<int32_T>(in.u16() | in.u16() << 16)
                                             : static_cast<int32_T>(scale % 64) - 2;
  const double temperatureC = in.pick({25.0, 0.0, -273.15, 100.0, kNaN});
  real_T gridBuffer[8], curveBuffer[8];
  const int32_T rows = static_cast<int8_t>(in.byte()) % 4, cols = in.byte() % 3;
  RealArray* grid = QUENT_emxCreateWrapper_real_T(gridBuffer, rows, cols);
  RealArray* curve = QUENT_emxCreateWrapper_real_T(curveBuffer, 1, 8);
  const real_T* c = in.byte() % 16 == 0 ? nullptr : coefficients;
#if QUENT_FUZZ_DRAWING == 0
  QUENT_dGtrend_trend(conc.v.data(), conc.size, c, pointCount, grid, curve);
  (void)temperatureC;
#elif QUENT_FUZZ_DRAWING == 1
  QUENT_dGtrend_fd(conc.v.data(), conc.size, c, pointCount, temperatureC, grid, curve);
#elif QUENT_FUZZ_DRAWING == 2
  QUENT_dGtrend_fragg(conc.v.data(), conc.size, c, pointCount, temperatureC, grid, curve);
#else
  QUENT_dGtrend_fraggfd(conc.v.data(), conc.size, c, pointCount, temperatureC, grid, curve);
#endif
  if (grid->size[0] * grid->size[1] != curve->size[0] * curve->size[1]) __builtin_trap();
  release(grid);
  release(curve);
  return 0;
}
