// The ladders and exit codes of each family as its strategy is defined,
// written out here by hand, so that a typed test compares what the code does
// with these and never with the code's own tables.
#pragma once

#include <vector>

#include "strategies/one_transition_family.h"
#include "strategies/three_transition_family.h"
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

template <>
struct Literals<Family<3>> {
  static constexpr int32_T kMinPoints = 24;
  static constexpr int kStartSlots = 32, kHeldSlots = 16;
  // A flat curve has no change: its ratio is not at least 1.
  static constexpr int kFlatCurveCode = 32;
  static constexpr bool kTrims = false;
  // Codes 32 to 34 are kept for failures.
  static inline const std::vector<RungLiteral> pairRungs = {
      {12, 0.0, 5, 6, 0, 0},        {15, 0.0, 7, 8, 0, 0},        {13, 0.0, 9, 10, 0, 0},
      {14, 0.0, 11, 12, 0, 0},      {4, -0.0005, 13, 14, 0, 0},   {7, -0.0005, 15, 16, 0, 0},
      {5, -0.0005, 17, 18, 0, 0},   {6, -0.0005, 19, 20, 0, 0},   {8, 0.0, 21, 22, 0, 0},
      {11, 0.0, 23, 24, 0, 0},      {9, 0.0, 25, 26, 0, 0},       {10, 0.0, 27, 28, 0, 0},
      {0, 0.001, 29, 30, 0, 0},     {3, 0.001, 31, 35, 0, 0},     {1, 0.001, 36, 37, 0, 0},
      {2, 0.001, 38, 39, 0, 0}};
  // Slots counted from 0 here; place p writes code p + 40.
  static inline const std::vector<PlaceLiteral> firstPass = {
      {12, 40}, {15, 41}, {14, 42}, {13, 43}, {28, 44}, {31, 45}, {30, 46}, {29, 47},
      {24, 48}, {27, 49}, {26, 50}, {25, 51}, {0, 52},  {3, 53},  {2, 54},  {1, 55},
      {4, 56},  {7, 57},  {6, 58},  {5, 59},  {8, 60},  {11, 61}, {10, 62}, {9, 63},
      {20, 64}, {23, 65}, {22, 66}, {21, 67}, {16, 68}, {19, 69}, {18, 70}, {17, 71}};
  static constexpr CodeLiterals codes[3] = {{1, 32, 32, 33, 2, 3, 4, 34},
                                            {0, 0, 0, 0, 0, 0, 0, 0},
                                            {0, 0, 0, 0, 0, 0, 0, 0}};
};

using FittedFamilies = ::testing::Types<Family<1>, Family<2>, Family<3>>;

}  // namespace quent::test
