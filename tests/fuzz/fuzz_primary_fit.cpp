// The automatic primary fit on made and measured plates with damage, now and
// then short of memory; the outputs start as wrappers around small host
// buffers, so growth is taken.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  Plate plate = readPlate(in);
  const Memory memory = readMemory(in);
  while (!in.empty()) damage(in, plate);
  real_T rowBuffer[24];
  int32_T maskBuffer[8];
  RealArray* rows = QUENT_emxCreateWrapper_real_T(rowBuffer, 1, 24);
  Int32Array* mask = QUENT_emxCreateWrapper_int32_T(maskBuffer, 1, 8);
  runWith(memory, [&] {
    QUENT_dGtrend_primaryFit(plate.pointsPerCurve, plate.denaturant.v.data(),
                             plate.denaturant.size, plate.signal.v.data(), plate.signal.size,
                             plate.sampleConc.v.data(), plate.sampleConc.size, plate.stateCount,
                             plate.temperatureC, rows, mask);
  });
  checkRows(rows);
  release(rows);
  release(mask);
  return 0;
}
