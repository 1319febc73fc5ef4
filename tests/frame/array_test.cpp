// The array record: growth rule, host wrappers that must stay in place until
// they have to grow, and the scalar routines of index arithmetic.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "frame/array.h"
#include "frame/scalar.h"
#include "quent_dgtrend.h"
#include "test_support.h"

namespace quent {
namespace {

TEST(GrownCapacity, FloorOfSixteenThenDoubling) {
  EXPECT_EQ(grownCapacity(0, 1), 16);
  EXPECT_EQ(grownCapacity(0, 16), 16);
  EXPECT_EQ(grownCapacity(16, 17), 32);
  EXPECT_EQ(grownCapacity(0, 17), 32);
  EXPECT_EQ(grownCapacity(5, 17), 32);  // a small capacity starts from the floor
  EXPECT_EQ(grownCapacity(100, 101), 200);
  EXPECT_EQ(grownCapacity(100, 1000), 1600);
}

TEST(GrownCapacity, LastStepGoesToInt32Max) {
  EXPECT_EQ(grownCapacity(0x20000000, 0x40000000), 0x40000000);
  EXPECT_EQ(grownCapacity(0x40000000, 0x40000001), 0x7fffffff);
  EXPECT_EQ(grownCapacity(0x3fffffff, 0x40000000), 0x7ffffffe);
  EXPECT_EQ(grownCapacity(0x3fffffff, 0x7fffffff), 0x7fffffff);
  EXPECT_EQ(grownCapacity(0x50000000, 0x7fffffff), 0x7fffffff);
}

TEST(ArrayRecord, FreshRecordGrowsToSixteenZeroedElements) {
  test::OwnedArray<RealArray> a;
  EXPECT_EQ(a->data, nullptr);
  EXPECT_EQ(a->allocatedSize, 0);
  ASSERT_TRUE(arrayResizeRow(a.get(), 1));
  EXPECT_EQ(a->allocatedSize, 16);
  EXPECT_TRUE(a->canFreeData);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(a->data[i], 0.0);
}

TEST(ArrayRecord, ResizeWithinCapacityKeepsStaleElements) {
  test::OwnedArray<Int32Array> a;
  ASSERT_TRUE(arrayResizeRowFill(a.get(), 10, 7));
  int32_T* storage = a->data;
  ASSERT_TRUE(arrayResizeRow(a.get(), 3));
  ASSERT_TRUE(arrayResizeRow(a.get(), 12));
  EXPECT_EQ(a->data, storage);
  EXPECT_EQ(a->data[9], 7);  // stale, not cleared: callers write what they read
}

TEST(ArrayRecord, HostWrapperStaysUntilItMustGrow) {
  std::vector<real_T> host(100);
  for (int i = 0; i < 100; ++i) host[i] = i + 0.5;
  RealArray* a = QUENT_emxCreateWrapper_real_T(host.data(), 1, 100);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->allocatedSize, 100);
  EXPECT_FALSE(a->canFreeData);

  ASSERT_TRUE(arrayResizeRow(a, 100));
  EXPECT_EQ(a->data, host.data());
  EXPECT_FALSE(a->canFreeData);

  ASSERT_TRUE(arrayResizeRow(a, 101));
  EXPECT_NE(a->data, host.data());
  EXPECT_EQ(a->allocatedSize, 200);
  EXPECT_TRUE(a->canFreeData);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(a->data[i], i + 0.5);
  EXPECT_EQ(a->data[100], 0.0);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(host[i], i + 0.5);  // host buffer untouched
  arrayFree(&a);                                              // frees the grown storage only
  EXPECT_EQ(a, nullptr);
}

TEST(ArrayRecord, WrapperOfInt32SharesTheEntry) {
  int32_T host[6] = {1, 2, 3, 4, 5, 6};
  Int32Array* a = QUENT_emxCreateWrapper_int32_T(host, 2, 3);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->numDimensions, 2);
  EXPECT_EQ(a->size[0], 2);
  EXPECT_EQ(a->size[1], 3);
  EXPECT_EQ(a->allocatedSize, 6);
  EXPECT_EQ(a->data, host);
  arrayFree(&a);
  EXPECT_EQ(host[5], 6);
}

TEST(ArrayRecord, WrapperCapacityIsClippedForNonsenseDimensions) {
  real_T cell = 0.0;
  RealArray* negative = QUENT_emxCreateWrapper_real_T(&cell, -1, 5);
  EXPECT_EQ(negative->allocatedSize, 0);
  RealArray* huge = QUENT_emxCreateWrapper_real_T(&cell, 65536, 65536);
  EXPECT_EQ(huge->allocatedSize, 2147483647);
  arrayFree(&negative);
  arrayFree(&huge);
}

TEST(ArrayRecord, FreeIsHarmlessOnNullAndTwice) {
  RealArray* a = nullptr;
  arrayFree(&a);
  arrayInit(&a, 2);
  arrayFree(&a);
  arrayFree(&a);
  EXPECT_EQ(a, nullptr);
  BoolArray* pair[2];
  arrayPairInit(pair);
  EXPECT_EQ(pair[1]->numDimensions, 2);
  arrayPairFree(pair);
  EXPECT_EQ(pair[0], nullptr);
  EXPECT_EQ(pair[1], nullptr);
}

TEST(RoundHalfAway, HalvesGoAwayFromZero) {
  EXPECT_EQ(roundHalfAway(0.5), 1.0);
  EXPECT_EQ(roundHalfAway(-0.5), -1.0);
  EXPECT_EQ(roundHalfAway(2.5), 3.0);
  EXPECT_EQ(roundHalfAway(-2.5), -3.0);
  EXPECT_EQ(roundHalfAway(0.49), 0.0);
  EXPECT_FALSE(std::signbit(roundHalfAway(0.49)));
  EXPECT_TRUE(std::signbit(roundHalfAway(-0.49)));  // a negative zero
  // The largest double below 0.5: adding 0.5 would round up to 1.
  EXPECT_EQ(roundHalfAway(0.49999999999999994), 0.0);
  EXPECT_EQ(roundHalfAway(4503599627370495.5), 4503599627370496.0);
  EXPECT_EQ(roundHalfAway(4503599627370497.0), 4503599627370497.0);
  EXPECT_TRUE(std::isnan(roundHalfAway(NAN)));
  EXPECT_EQ(roundHalfAway(-INFINITY), -INFINITY);
}

TEST(SaturatingInt32, TruncatesAndClips) {
  EXPECT_EQ(saturatingInt32(3.9), 3);
  EXPECT_EQ(saturatingInt32(-3.9), -3);
  EXPECT_EQ(saturatingInt32(2147483647.5), 2147483647);
  EXPECT_EQ(saturatingInt32(2147483648.0), 2147483647);
  EXPECT_EQ(saturatingInt32(-2147483648.0), -2147483647 - 1);
  EXPECT_EQ(saturatingInt32(-2147483649.0), -2147483647 - 1);
  EXPECT_EQ(saturatingInt32(INFINITY), 2147483647);
  EXPECT_EQ(saturatingInt32(roundHalfAway(NAN)), 0);
  EXPECT_EQ(saturatingMul(65536, 65536), 2147483647);
  EXPECT_EQ(saturatingAdd(-2147483647, -5), -2147483647 - 1);
}

}  // namespace
}  // namespace quent
