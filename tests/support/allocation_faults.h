// Watches the zero-filling allocations of the plug-in from outside, and makes chosen ones fail. The
// test program defines the allocation function itself, so the plug-in needs no hook for it.
#pragma once

#include <cstddef>
#include <vector>

namespace support {

// Counts the calls of `calloc` while it lives; one watch at a time, on one thread. Nothing but the
// plug-in calls it then: host and tests allocate with `new`.
class AllocationWatch {
 public:
  // Call number `failAt` (from 1) fails, and all later ones too if `andLater`. 0: none fails.
  explicit AllocationWatch(int failAt = 0, bool andLater = false);
  ~AllocationWatch();
  AllocationWatch(const AllocationWatch&) = delete;
  AllocationWatch& operator=(const AllocationWatch&) = delete;

  int Calls() const;
  // Blocks allocated while this watch lived and not freed since.
  int LiveBlocks() const;
  std::vector<std::size_t> Sizes() const;  // bytes of each call, failed ones included
  // The most bytes in blocks that were allocated at one time while this watch lived.
  std::size_t MostBytes() const;
};

}  // namespace support
