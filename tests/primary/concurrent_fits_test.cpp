// Instrument software fits from several threads at once.  Each thread runs
// the automatic and the user-constrained fit of every family, in an order of
// its own, and every number must equal the serial run's.  The test program
// is also built with the thread sanitizer, which sees any shared state.
#include <functional>
#include <thread>

#include "primary/user_plate.h"

namespace quent::test {
namespace {

// Rows, then the point mask where there is one, of one call.
using Answer = std::vector<real_T>;

template <int T>
void addJobs(std::vector<std::function<Answer()>>& jobs) {
  jobs.push_back([] {
    std::vector<int32_T> mask;
    Answer rows = UserPlate<T>().automatic(mask);
    rows.insert(rows.end(), mask.begin(), mask.end());
    return rows;
  });
  jobs.push_back([] {
    // Curve 2 left out and the first points of curve 5 dropped.
    const UserPlate<T> plate;
    std::vector<int32_T> mask(6 * UserPlate<T>::kPoints, 1), flags(6, 1);
    flags[2] = 0;
    std::fill_n(mask.begin() + 5 * UserPlate<T>::kPoints, 3, 0);
    return plate.user(mask, flags);
  });
}

TEST(ConcurrentFits, EveryThreadGetsTheSerialNumbers) {
  std::vector<std::function<Answer()>> jobs;
  addJobs<1>(jobs);
  addJobs<2>(jobs);
  addJobs<3>(jobs);
  const size_t n = jobs.size();
  std::vector<Answer> serial(n);
  for (size_t j = 0; j < n; ++j) serial[j] = jobs[j]();

  constexpr size_t kThreads = 4;
  std::vector<std::vector<Answer>> got(kThreads, std::vector<Answer>(n));
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      for (size_t k = 0; k < n; ++k) {
        // A different order on each thread: rotated, and backwards on odd ones.
        const size_t j = t % 2 == 0 ? (k + t) % n : n - 1 - (k + t) % n;
        got[t][j] = jobs[j]();
      }
    });
  for (std::thread& thread : threads) thread.join();
  for (size_t t = 0; t < kThreads; ++t)
    for (size_t j = 0; j < n; ++j) {
      ASSERT_EQ(got[t][j].size(), serial[j].size()) << "thread " << t << " job " << j;
      EXPECT_EQ(std::memcmp(got[t][j].data(), serial[j].data(), serial[j].size() * sizeof(real_T)), 0)
          << "thread " << t << " job " << j;
    }
}

}  // namespace
}  // namespace quent::test
