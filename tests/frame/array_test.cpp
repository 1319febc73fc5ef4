// The array record: growth rule, host wrappers that must stay in place until
// they have to grow, and the scalar routines of index arithmetic.
#include "frame/scalar.h"
#include "test_support.h"

namespace quent {
namespace {

// A floor of 16 (also for a small capacity), doubling, and a last step to
// the int32_T maximum.
TEST(GrownCapacity, FloorDoublingAndLastStep) {
  const int32_T cases[][3] = {  // capacity, needed, grown
      {0, 1, 16}, {0, 16, 16}, {16, 17, 32}, {5, 17, 32}, {100, 101, 200}, {100, 1000, 1600},
      {0x20000000, 0x40000000, 0x40000000}, {0x40000000, 0x40000001, 0x7fffffff},
      {0x3fffffff, 0x40000000, 0x7ffffffe}, {0x3fffffff, 0x7fffffff, 0x7fffffff},
      {0x50000000, 0x7fffffff, 0x7fffffff}};
  for (const auto& c : cases) EXPECT_EQ(grownCapacity(c[0], c[1]), c[2]) << c[0] << " " << c[1];
}

// Growth zeroes the new elements; a resize within capacity keeps stale ones
// (callers write what they read).
TEST(ArrayRecord, GrowthZeroesAndShrinkKeepsStorage) {
  test::OwnedArray<RealArray> fresh;
  EXPECT_TRUE(fresh->data == nullptr && fresh->allocatedSize == 0);
  ASSERT_TRUE(arrayResizeRow(fresh.get(), 1));
  EXPECT_TRUE(fresh->allocatedSize == 16 && fresh->canFreeData);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(fresh->data[i], 0.0);
  test::OwnedArray<Int32Array> a;
  ASSERT_TRUE(arrayResizeRowFill(a.get(), 10, 7));
  int32_T* storage = a->data;
  ASSERT_TRUE(arrayResizeRow(a.get(), 3) && arrayResizeRow(a.get(), 12));
  EXPECT_TRUE(a->data == storage && a->data[9] == 7);
}

// Growing copies the host's values into library storage, zero-fills the rest
// and leaves the host's buffer as it was; freeing frees the grown storage only.
TEST(ArrayRecord, HostWrapperStaysUntilItMustGrow) {
  std::vector<real_T> host = test::grid(100, 0.5, 99.5);  // i + 0.5
  RealArray* a = QUENT_emxCreateWrapper_real_T(host.data(), 1, 100);
  ASSERT_NE(a, nullptr);
  ASSERT_TRUE(arrayResizeRow(a, 100));
  EXPECT_TRUE(a->data == host.data() && a->allocatedSize == 100 && !a->canFreeData);
  ASSERT_TRUE(arrayResizeRow(a, 101));
  EXPECT_TRUE(a->data != host.data() && a->allocatedSize == 200 && a->canFreeData);
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(a->data[i] == i + 0.5 && host[i] == i + 0.5) << i;
  EXPECT_EQ(a->data[100], 0.0);
  arrayFree(&a);
  EXPECT_EQ(a, nullptr);
}

// An int32_T wrapper shares the host's buffer; nonsense dimensions clip the
// capacity, and growth copies no more than the buffer holds: a record of
// -3 by -3 claims nine elements of a one-element buffer.
TEST(ArrayRecord, WrapperShapesAndClippedCapacity) {
  int32_T host[6] = {1, 2, 3, 4, 5, 6};
  Int32Array* a = QUENT_emxCreateWrapper_int32_T(host, 2, 3);
  ASSERT_NE(a, nullptr);
  EXPECT_TRUE(a->numDimensions == 2 && a->size[0] == 2 && a->size[1] == 3);
  EXPECT_TRUE(a->allocatedSize == 6 && a->data == host);
  arrayFree(&a);
  EXPECT_EQ(host[5], 6);
  std::vector<real_T> one(1, 4.5);
  RealArray* claims = QUENT_emxCreateWrapper_real_T(one.data(), -3, -3);
  ASSERT_TRUE(claims != nullptr && claims->allocatedSize == 0);
  ASSERT_TRUE(arrayResizeRow(claims, 9));
  for (int i = 0; i < 9; ++i) EXPECT_EQ(claims->data[i], 0.0) << i;
  arrayFree(&claims);
  real_T cell = 0.0;
  RealArray* negative = QUENT_emxCreateWrapper_real_T(&cell, -1, 5);
  RealArray* huge = QUENT_emxCreateWrapper_real_T(&cell, 65536, 65536);
  EXPECT_TRUE(negative->allocatedSize == 0 && huge->allocatedSize == 2147483647);
  arrayFree(&negative), arrayFree(&huge);
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
  EXPECT_TRUE(pair[0] == nullptr && pair[1] == nullptr);
}

// Bit for bit: small negatives round to -0.0.  The largest double below 0.5
// must not reach 1 through x + 0.5, nor must halves near 2^52.
TEST(RoundHalfAway, HalvesGoAwayFromZero) {
  const double cases[][2] = {{0.5, 1.0}, {-0.5, -1.0}, {2.5, 3.0}, {0.49, 0.0}, {-0.49, -0.0},
                             {0.49999999999999994, 0.0}, {4503599627370495.5, 4503599627370496.0},
                             {4503599627370497.0, 4503599627370497.0}, {-INFINITY, -INFINITY}, {NAN, NAN}};
  for (const auto& c : cases) EXPECT_TRUE(test::sameBits(roundHalfAway(c[0]), c[1])) << c[0];
}

TEST(SaturatingInt32, TruncatesAndClips) {
  const double cases[][2] = {{3.9, 3}, {-3.9, -3}, {2147483647.5, 2147483647}, {2147483648.0, 2147483647},
                             {-2147483648.0, -2147483648.0}, {-2147483649.0, -2147483648.0},
                             {INFINITY, 2147483647}, {roundHalfAway(NAN), 0}};
  for (const auto& c : cases) EXPECT_EQ(saturatingInt32(c[0]), c[1]) << c[0];
  EXPECT_EQ(saturatingMul(65536, 65536), 2147483647);
  EXPECT_EQ(saturatingAdd(-2147483647, -5), -2147483647 - 1);
}

}  // namespace
}  // namespace quent
