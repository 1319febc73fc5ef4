// A returned row put to the host functions (QUENT_FUZZ_ROW: 0 the fitted
// curve, 1 the code text): rows as the fits leave them and rows no fit
// writes, any state count, denaturant of any length and order.
#include <cstring>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quent::fuzz;
  Reader in(data, size);
  const std::uint8_t states = in.byte();
  const int32_T stateCount = states < 240 ? 2 + states % 3 : static_cast<int8_t>(in.byte());
  real_T row[24];
  for (int k = 0; k < 24; ++k) {
    if (k == 12) row[k] = in.pick({592.48368, 592.48368, -1.0, 0.0});
    else if (k == 13) row[k] = in.pick({2.0, 3.0, 4.0, 5.0, 6.0, 0.0, 12.0, 35.0});
    else if (k == 4 || k == 6 || k == 9) row[k] = in.pick({4000.0, 5200.0, 9000.0, 0.0, -1.0});
    else if (k == 5 || k == 7 || k == 10) row[k] = in.pick({1.5, 2.5, 3.5, 5.5, 0.0, -1.0});
    else if (k == 8 || k == 11) row[k] = in.pick({0.3, 0.4, 0.5, 0.0, 1.0});
    else row[k] = in.pick({0.0, 1.0, 100.0, 42.0, -0.5});
  }
  const bool noRow = in.byte() % 16 == 0;
#if QUENT_FUZZ_ROW == 0
  const int32_T n = in.byte() % 2 == 0 ? in.byte() : in.u16() % 1200;
  std::vector<real_T> x(n);
  for (int32_T i = 0; i < n; ++i) x[i] = in.pick({0.0, 0.5, 1.0, 2.0, 3.0, 4.0, 6.0, 8.0});
  const std::uint8_t outputs = in.byte();
  std::vector<real_T> signal(n, 7.0), fraction(n, 7.0);
  const real_T* rowIn = noRow ? nullptr : row;
  QUENT_dGtrend_evaluateRow(rowIn, stateCount, n > 0 ? x.data() : nullptr, n,
                            outputs & 1 ? nullptr : signal.data(),
                            outputs & 2 ? nullptr : fraction.data());
  // A row without a fit draws nothing but NaN; a fitted one draws each point
  // as it would alone.
  const bool fitted = rowIn != nullptr && row[12] > 0.0;
  for (int32_T i = 0; i < n; ++i) {
    if (!(outputs & 1) && !fitted && !std::isnan(signal[i])) __builtin_trap();
    if (!(outputs & 2) && !fitted && !std::isnan(fraction[i])) __builtin_trap();
  }
  if (fitted && n > 0 && !(outputs & 3)) {
    const int32_T i = n - 1;
    real_T s, f;
    QUENT_dGtrend_evaluateRow(row, stateCount, &x[i], 1, &s, &f);
    if (std::memcmp(&s, &signal[i], sizeof s) != 0 || std::memcmp(&f, &fraction[i], sizeof f) != 0)
      __builtin_trap();
  }
#else
  const char* text = QUENT_dGtrend_codeText(noRow ? nullptr : row, stateCount);
  if (text == nullptr || std::strlen(text) == 0) __builtin_trap();
#endif
  return 0;
}
