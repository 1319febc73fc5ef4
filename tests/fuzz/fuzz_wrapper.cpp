// A wrapper export (QUENT_FUZZ_WRAPPER: 0 real_T, 1 int32_T) around a host
// buffer of any claimed shape, then grown by a call that writes more than
// the buffer holds, or fewer.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  const int32_T rows = static_cast<int32_T>(in.u16() | in.u16() << 16);
  const int32_T cols = static_cast<int32_T>(in.u16() | in.u16() << 16);
  const int32_T wanted = in.byte() % 40;
  // The buffer holds what the dimensions claim, up to 64 entries; beyond
  // that a host's claim is its own mistake and is not tried.
  const long long claimed = rows < 0 || cols < 0 ? 0 : static_cast<long long>(rows) * cols;
  if (claimed > 64) return 0;
  const real_T conc[2] = {1.0, 4.0}, coefficients[2] = {-100.0, 5000.0};
  const int32_T concSize[2] = {1, 2};
#if QUENT_FUZZ_WRAPPER == 0
  real_T buffer[64] = {};
  RealArray* a = QUENT_emxCreateWrapper_real_T(buffer, rows, cols);
  RealArray* other = QUENT_emxCreateWrapper_real_T(nullptr, 0, 0);
  QUENT_dGtrend_trend(conc, concSize, coefficients, wanted, a, other);
  release(a);
  release(other);
#else
  // The used-concentration output of a reduction of `wanted` curves.
  int32_T buffer[64] = {};
  Int32Array* a = QUENT_emxCreateWrapper_int32_T(buffer, rows, cols);
  std::vector<real_T> sampleConc, fitRows(24 * wanted, 0.0);
  std::vector<int32_T> flags(wanted, 1);
  for (int32_T c = 0; c < wanted; ++c) {
    sampleConc.push_back(1 + c % 5);
    fitRows[24 * c + 12] = 0.5925;
    fitRows[24 * c + 4] = 4000.0 + 100.0 * (c % 5);
  }
  const int32_T curveSize[2] = {1, wanted}, rowsSize[2] = {1, 24 * wanted};
  RealArray* concOut = QUENT_emxCreateWrapper_real_T(nullptr, 0, 0);
  RealArray* trendOut = QUENT_emxCreateWrapper_real_T(nullptr, 0, 0);
  RealArray* deviationOut = QUENT_emxCreateWrapper_real_T(nullptr, 0, 0);
  real_T summary[4];
  QUENT_dGtrend_calc(sampleConc.data(), curveSize, fitRows.data(), rowsSize, flags.data(), curveSize, 1,
                     concOut, trendOut, deviationOut, a, summary);
  release(a);
  release(concOut);
  release(trendOut);
  release(deviationOut);
#endif
  (void)conc, (void)coefficients, (void)concSize;
  return 0;
}
