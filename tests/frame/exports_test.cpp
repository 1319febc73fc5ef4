// Giving records back, and the version a host checks against its header.
#include <string>

#include "test_support.h"

namespace quent {
namespace {

// A record around a host's buffer goes back without the buffer; once the
// library grew it, with the grown storage.  The sanitized builds and
// valgrind see a double free, a free of the host's (stack) buffer or a leak.
TEST(DestroyArray, GivesBackTheRecordAndGrownStorageOnly) {
  real_T conc[2] = {1.0, 4.0}, coefficients[2] = {-500.0, 6000.0};
  const int32_T concSize[2] = {1, 2};
  real_T gridBuffer[3] = {7, 7, 7}, curveBuffer[3];
  RealArray* grid = QUENT_emxCreateWrapper_real_T(gridBuffer, 1, 3);
  RealArray* curve = QUENT_emxCreateWrapper_real_T(curveBuffer, 1, 3);
  ASSERT_TRUE(grid != nullptr && curve != nullptr);
  QUENT_dGtrend_trend(conc, concSize, coefficients, 40, grid, curve);
  EXPECT_TRUE(grid->canFreeData && grid->data != gridBuffer && grid->size[1] == 40);
  EXPECT_EQ(gridBuffer[2], 7.0);  // the host's buffer is no longer written
  QUENT_emxDestroyArray_real_T(grid);
  QUENT_emxDestroyArray_real_T(curve);
  gridBuffer[0] = 1.0;  // still the host's

  int32_T maskBuffer[4] = {1, 2, 3, 4};
  Int32Array* mask = QUENT_emxCreateWrapper_int32_T(maskBuffer, 2, 2);
  ASSERT_NE(mask, nullptr);
  QUENT_emxDestroyArray_int32_T(mask);
  EXPECT_EQ(maskBuffer[3], 4);
  QUENT_emxDestroyArray_real_T(nullptr);
  QUENT_emxDestroyArray_int32_T(nullptr);
}

TEST(Version, LibraryHeaderAndBuildAgree) {
  const std::string version = QUENT_dGtrend_version();
  EXPECT_EQ(version, QUENT_PROJECT_VERSION);
  EXPECT_EQ(version, std::to_string(QUENT_DGTREND_VERSION_MAJOR) + "." +
                         std::to_string(QUENT_DGTREND_VERSION_MINOR) + "." +
                         std::to_string(QUENT_DGTREND_VERSION_PATCH));
}

}  // namespace
}  // namespace quent
