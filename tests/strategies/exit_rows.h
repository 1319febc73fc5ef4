// Rows of strategy tests: a row filled with garbage before the fit, so that
// a column no path writes shows, and the exit a curve took.
#pragma once

#include "test_support.h"

namespace quent::test {

constexpr real_T kGarbage = 7.7e77;

struct Points {
  std::vector<real_T> x, y;
  int32_T n() const { return static_cast<int32_T>(x.size()); }
};

struct Row {
  real_T v[24];
  Row() { std::fill(v, v + 24, kGarbage); }
  real_T code() const { return v[13]; }
};

// The exit taken, on a row written in full.
inline void expectExit(const Row& row, real_T code) {
  for (int c = 0; c < 24; ++c) EXPECT_NE(row.v[c], kGarbage) << "column " << c;
  EXPECT_EQ(row.code(), code);
}

}  // namespace quent::test
