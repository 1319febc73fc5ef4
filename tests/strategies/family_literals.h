// The ladders and exit codes of each family as its strategy is defined,
// written out here by hand, so that a typed test compares what the code does
// with these and never with the code's own tables.
#pragma once

#include <vector>

#include "strategies/one_transition_family.h"
#include "strategies/two_transition_family.h"
#include "test_support.h"

namespace quent::test {

struct RungLiteral {
  int slot;
  real_T margin;
  int mainNative, mainUnfolded, trimBothNative, trimBothUnfolded;
};
struct PlaceLiteral {
  int slot;
  int code;
};
struct CodeLiterals {
  int badInput, noChange, flatX, noStart, bothHeld, nativeHeld, unfoldedHeld, exhausted;
};

template <class F>
struct Literals;

template <>
struct Literals<Family<1>> {
  static constexpr int32_T kMinPoints = 8;
  static constexpr int kStartSlots = 9, kHeldSlots = 9;
  // A flat curve goes on to the attempts, and none is acceptable.
  static constexpr int kFlatCurveCode = 34;
  static constexpr bool kTrims = true;
  static inline const std::vector<RungLiteral> pairRungs = {
      {7, 0.0, 5, 6, 46, 47},       {6, 0.0, 7, 8, 48, 49},       {8, 0.0, 9, 10, 50, 51},
      {3, -0.0005, 11, 12, 52, 53}, {2, -0.0005, 13, 14, 54, 55}, {5, 0.0, 15, 16, 56, 57},
      {4, 0.0, 17, 18, 58, 59},     {1, 0.001, 19, 20, 60, 61},   {0, 0.001, 21, 22, 62, 63}};
  static inline const std::vector<PlaceLiteral> firstPass = {
      {7, 23}, {3, 24}, {8, 25}, {4, 26}, {0, 27}, {5, 28}, {1, 29}, {6, 30}, {2, 31}};
  // Main pass, one end point off, both end points off; 0 where a pass has no such exit.
  static constexpr CodeLiterals codes[3] = {{1, 32, 32, 33, 2, 3, 4, 34},
                                            {0, 35, 36, 37, 38, 0, 0, 39},
                                            {0, 40, 41, 42, 43, 44, 45, 64}};
};

template <>
struct Literals<Family<2>> {
  static constexpr int32_T kMinPoints = 16;
  static constexpr int kStartSlots = 11, kHeldSlots = 8;
  // A flat curve goes on to the attempts; none scores 0.0 or more.
  static constexpr int kFlatCurveCode = 33;
  static constexpr bool kTrims = true;
  static inline const std::vector<RungLiteral> pairRungs = {
      {7, 0.0, 5, 6, 46, 47},       {6, 0.0, 7, 8, 48, 49},   {3, -0.0005, 9, 10, 50, 51},
      {2, -0.0005, 11, 12, 52, 53}, {5, 0.0, 13, 14, 54, 55}, {4, 0.0, 15, 16, 56, 57},
      {1, 0.001, 17, 18, 58, 59},   {0, 0.001, 19, 20, 60, 61}};
  static inline const std::vector<PlaceLiteral> firstPass = {
      {10, 21}, {3, 22}, {6, 23}, {7, 24}, {0, 25}, {8, 26},
      {1, 27},  {9, 28}, {2, 29}, {5, 30}, {4, 31}};
  static constexpr CodeLiterals codes[3] = {{1, 32, 32, 33, 2, 3, 4, 34},
                                            {0, 35, 36, 37, 38, 0, 0, 39},
                                            {0, 40, 41, 42, 43, 44, 45, 62}};
};

using FittedFamilies = ::testing::Types<Family<1>, Family<2>>;

}  // namespace quent::test
