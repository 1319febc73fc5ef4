// Memory taken during a call.  A fit that could not get its working space
// must not quietly become a different fit, so every allocation inside a call
// goes through here: a failure marks the thread's current call, and the
// export turns a marked call into its documented whole-call failure.
#pragma once

#include <cstddef>

namespace quent {

// std::malloc / std::calloc that mark the current call when they fail.
void* allocate(std::size_t bytes);
void* allocateZeroed(std::size_t count, std::size_t width);

// Watches one call on this thread: clears the mark when made, and tells at
// the end whether any allocation of the call failed.  Calls do not nest.
class CallMemory {
 public:
  CallMemory();
  bool failed() const;
};

// For tests: the next `count` allocations on this thread succeed and every
// later one fails, until called again; a negative count lifts the limit.
void failAllocationsAfter(long count);

}  // namespace quent
