// Working space of one routine on one thread.  It is made on the thread's
// first call and kept for the thread's life: a fit allocates nothing per
// curve, and a host that links the library pays no static thread storage
// for it (which would come off every thread's stack).
#pragma once

#include <cstdlib>
#include <memory>
#include <type_traits>

#include "frame/allocation.h"

namespace quent {

// The thread's Block, zeroed when made; null (with the call marked) when no
// memory could be had.
template <class Block>
Block* threadScratch() {
  static_assert(std::is_trivial_v<Block>, "scratch is plain storage");
  struct Free {
    void operator()(Block* b) const { std::free(b); }
  };
  thread_local std::unique_ptr<Block, Free> block;
  if (block == nullptr) block.reset(static_cast<Block*>(allocateZeroed(1, sizeof(Block))));
  return block.get();
}

}  // namespace quent
