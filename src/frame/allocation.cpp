// The mark and the test limit are two words of thread-local storage.
#include "frame/allocation.h"

#include <cstdlib>

namespace quent {
namespace {

thread_local bool callFailed = false;
thread_local long allocationsLeft = -1;  // negative: no limit

// True when the test limit refuses this allocation.
bool refusedByLimit() {
  if (allocationsLeft < 0) return false;
  if (allocationsLeft == 0) return true;
  --allocationsLeft;
  return false;
}

void* marked(void* p) {
  if (p == nullptr) callFailed = true;
  return p;
}

}  // namespace

void* allocate(std::size_t bytes) {
  return marked(refusedByLimit() ? nullptr : std::malloc(bytes));
}

void* allocateZeroed(std::size_t count, std::size_t width) {
  return marked(refusedByLimit() ? nullptr : std::calloc(count, width));
}

CallMemory::CallMemory() { callFailed = false; }

bool CallMemory::failed() const { return callFailed; }

void failAllocationsAfter(long count) { allocationsLeft = count; }

}  // namespace quent
