#include "tests/support/allocation_faults.h"

#include <dlfcn.h>

#include "tests/support/sanitizers.h"

#if defined(VARNELL_ADDRESS_SANITIZER)
extern "C" void* __interceptor_calloc(std::size_t count, std::size_t size);
extern "C" void __interceptor_free(void* block);
#endif

namespace {

using CallocFunction = void*(std::size_t, std::size_t);
using FreeFunction = void(void*);

#if defined(VARNELL_ADDRESS_SANITIZER)
CallocFunction* UnderlyingCalloc() { return __interceptor_calloc; }
FreeFunction* UnderlyingFree() { return __interceptor_free; }
#else
// The library's own, by the names that a memory checker may have taken over.
CallocFunction* UnderlyingCalloc() {
  static auto* const next = reinterpret_cast<CallocFunction*>(dlsym(RTLD_NEXT, "calloc"));
  return next;
}
FreeFunction* UnderlyingFree() {
  static auto* const next = reinterpret_cast<FreeFunction*>(dlsym(RTLD_NEXT, "free"));
  return next;
}
#endif

constexpr int kMostRecorded = 262144;

// Plain data: the allocation function must not allocate.
struct WatchState {
  bool active;
  bool andLater;
  int failAt;
  int calls;
  int lastFreed;      // index of a block
  std::size_t bytes;  // in living blocks
  std::size_t mostBytes;
  std::size_t sizes[kMostRecorded];
  void* blocks[kMostRecorded];  // null once freed
} state;

int Recorded() { return state.calls < kMostRecorded ? state.calls : kMostRecorded; }

// Where a living block is recorded, or -1. Blocks are mostly given back in the order in which they
// were requested, or in the opposite one.
int IndexOf(const void* block) {
  const int next = state.lastFreed + 1;
  if (next < Recorded() && state.blocks[next] == block) return next;
  for (int i = Recorded() - 1; i >= 0; --i) {
    if (state.blocks[i] == block) return i;
  }
  return -1;
}

void ForgetBlock(const void* block) {
  const int index = IndexOf(block);
  if (index < 0) return;
  state.blocks[index] = nullptr;
  state.bytes -= state.sizes[index];
  state.lastFreed = index;
}

}  // namespace

extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (!state.active) return UnderlyingCalloc()(count, size);
  const int index = state.calls++;
  const bool past = state.andLater && state.calls > state.failAt;
  const bool fails = state.failAt != 0 && (state.calls == state.failAt || past);
  void* block = fails ? nullptr : UnderlyingCalloc()(count, size);
  if (index < kMostRecorded) {
    state.sizes[index] = count * size;
    state.blocks[index] = block;
    if (block != nullptr) state.bytes += count * size;
    if (state.bytes > state.mostBytes) state.mostBytes = state.bytes;
  }
  return block;
}

extern "C" void free(void* block) {
  if (state.active && block != nullptr) ForgetBlock(block);
  UnderlyingFree()(block);
}

namespace support {

AllocationWatch::AllocationWatch(int failAt, bool andLater) {
  state.calls = 0;
  state.lastFreed = -1;
  state.bytes = state.mostBytes = 0;
  state.failAt = failAt;
  state.andLater = andLater;
  state.active = true;
}

AllocationWatch::~AllocationWatch() { state.active = false; }

int AllocationWatch::Calls() const { return state.calls; }

int AllocationWatch::LiveBlocks() const {
  int live = 0;
  for (int i = 0; i < Recorded(); ++i) live += state.blocks[i] != nullptr ? 1 : 0;
  return live;
}

std::vector<std::size_t> AllocationWatch::Sizes() const {
  return {state.sizes, state.sizes + Recorded()};
}

std::size_t AllocationWatch::MostBytes() const { return state.mostBytes; }

}  // namespace support
