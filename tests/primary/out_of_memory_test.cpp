// Memory that runs out in the middle of a fit fails the whole call, the way
// the header documents it, and never hands back a different fit: for a sweep
// of points at which allocation starts to fail, every answer is either the
// fit itself or the call's failure.
#include <thread>

#include "frame/allocation.h"
#include "primary/user_plate.h"

namespace quent::test {
namespace {

template <class P>
class OutOfMemory : public ::testing::Test {};
using Plates = ::testing::Types<UserPlate<1>, UserPlate<2>, UserPlate<3>>;
TYPED_TEST_SUITE(OutOfMemory, Plates);

// The failure of a call of six curves: rows of zeros with -1 in column 12.
// An output that could not even be grown for it comes back empty.
bool isCallFailure(const std::vector<real_T>& rows) {
  if (rows.empty()) return true;
  if (rows.size() != 24u * 6) return false;
  for (size_t k = 0; k < rows.size(); ++k)
    if (rows[k] != (k % 24 == 12 ? -1.0 : 0.0)) return false;
  return true;
}

// Allocation limits from none at all to far more than a call makes.
std::vector<long> limits() {
  std::vector<long> sweep;
  for (long limit = 0; limit < 1000000; limit = limit < 40 ? limit + 1 : limit * 5 / 2)
    sweep.push_back(limit);
  return sweep;
}

// On a thread of its own, whose working space the call must make first.
template <class Call>
auto onNewThread(Call call) {
  decltype(call()) result;
  std::thread([&] { result = call(); }).join();
  return result;
}

TYPED_TEST(OutOfMemory, AutomaticFitFailsWhole) {
  const TypeParam plate;
  std::vector<int32_T> mask, fullMask;
  const std::vector<real_T> full = plate.automatic(fullMask);
  int failures = 0;
  bool completed = false;
  for (const long limit : limits()) {
    const std::vector<real_T> rows = onNewThread([&] { return plate.automatic(mask, limit); });
    if (rows == full && mask == fullMask) {
      completed = true;
      break;
    }
    ++failures;
    EXPECT_TRUE(isCallFailure(rows)) << "limit " << limit;
    EXPECT_TRUE(mask.empty() || (mask.size() == fullMask.size() &&
                                 std::all_of(mask.begin(), mask.end(), [](int32_T m) { return m == 1; })))
        << "limit " << limit;
  }
  EXPECT_TRUE(completed);
  EXPECT_GE(failures, 20);
}

TYPED_TEST(OutOfMemory, UserFitFailsWhole) {
  const TypeParam plate;
  const std::vector<int32_T> mask(6 * TypeParam::kPoints, 1), flags(6, 1);
  const std::vector<real_T> full = plate.user(mask, flags);
  int failures = 0;
  bool completed = false;
  for (const long limit : limits()) {
    const std::vector<real_T> rows = onNewThread([&] { return plate.user(mask, flags, 1, limit); });
    if (rows == full) {
      completed = true;
      break;
    }
    ++failures;
    EXPECT_TRUE(isCallFailure(rows)) << "limit " << limit;
  }
  EXPECT_TRUE(completed);
  EXPECT_GE(failures, 20);
}

}  // namespace
}  // namespace quent::test
