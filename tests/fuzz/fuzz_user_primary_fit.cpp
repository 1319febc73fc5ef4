// The user-constrained fit: a plate as for the automatic fit, a point mask
// that drops runs of points, curve flags, and masks or flags that may stop
// short of the curves or be read through a stride; now and then short of
// memory.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  Plate plate = readPlate(in);
  const std::size_t points = static_cast<std::size_t>(plate.pointsPerCurve) * plate.curveCount;
  std::vector<int32_T> mask(2 * points, 1), flags(2 * plate.curveCount, 1);
  const std::uint8_t dropped = in.byte();
  for (int k = 0; k < dropped % 8; ++k) {
    const std::size_t first = in.u16() % points, length = in.byte() % 16;
    for (std::size_t i = first; i < first + length && i < points; ++i) mask[i] = 0;
  }
  for (int32_T c = 0; c < plate.curveCount; ++c) flags[c] = in.byte() % 5 == 0 ? in.byte() % 3 : 1;
  const std::uint8_t shape = in.byte();
  const int32_T stride = shape & 1 ? 2 : 1;
  const int32_T maskSize[2] = {stride, static_cast<int32_T>(points) - (shape >> 1) % 3};
  const int32_T flagSize[2] = {1, plate.curveCount - (shape >> 3) % 2};
  const Memory memory = readMemory(in);
  while (!in.empty()) damage(in, plate);
  real_T rowBuffer[24];
  RealArray* rows = QUENT_emxCreateWrapper_real_T(rowBuffer, 1, 24);
  runWith(memory, [&] {
    QUENT_dGtrend_user_primaryFit(plate.pointsPerCurve, plate.denaturant.v.data(),
                                  plate.denaturant.size, plate.signal.v.data(),
                                  plate.signal.size, plate.sampleConc.v.data(),
                                  plate.sampleConc.size, mask.data(), maskSize, flags.data(),
                                  flagSize, plate.stateCount, plate.temperatureC, rows);
  });
  checkRows(rows);
  release(rows);
  return 0;
}
