// Scaling of a curve: any values, references and targets, vectors of any
// claimed shape within the buffer.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  Vector values;
  const int32_T count = in.byte();
  for (int32_T i = 0; i < count; ++i) values.v.push_back(in.pick({1.0, -37.2, 0.0, 68.2, kNaN}));
  values.claimAll();
  const std::uint8_t shape = in.byte();
  if (shape % 4 == 1) std::swap(values.size[0], values.size[1]);
  if (shape % 4 == 2) values.size[0] = 2, values.size[1] = count / 2;
  if (shape % 4 == 3) values.size[1] = -count;
  const double reference = in.pick({1.0, 0.0, -1.0, 2.0, kNaN}), target = in.pick({1.0, 100.0, kInf});
  std::vector<real_T> scaled(values.v.size() + 1, -7.0);
  int32_T scaledSize[2] = {-1, -1};
  QUENT_dGtrend_normalization(values.v.data(), values.size, reference, target, scaled.data(),
                              scaledSize);
  if (static_cast<std::size_t>(scaledSize[0]) * scaledSize[1] > values.v.size() ||
      scaled.back() != -7.0)
    __builtin_trap();
  return 0;
}
