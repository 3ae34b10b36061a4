#include "tests/support/allocation_faults.h"

#if defined(__SANITIZE_ADDRESS__)
#define UNDERLYING_CALLOC __interceptor_calloc
#define UNDERLYING_FREE __interceptor_free
#else
#define UNDERLYING_CALLOC __libc_calloc
#define UNDERLYING_FREE __libc_free
#endif

extern "C" void* UNDERLYING_CALLOC(std::size_t count, std::size_t size);
extern "C" void UNDERLYING_FREE(void* block);

namespace {

constexpr int kMostRecorded = 65536;

// Plain data: the allocation function must not allocate.
struct WatchState {
  bool active;
  bool andLater;
  int failAt;
  int calls;
  std::size_t sizes[kMostRecorded];
  void* blocks[kMostRecorded];  // null once freed
} state;

int Recorded() { return state.calls < kMostRecorded ? state.calls : kMostRecorded; }

void ForgetBlock(const void* block) {
  for (int i = Recorded() - 1; i >= 0; --i) {
    if (state.blocks[i] == block) state.blocks[i] = nullptr;
  }
}

}  // namespace

extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (!state.active) return UNDERLYING_CALLOC(count, size);
  const int index = state.calls++;
  const bool past = state.andLater && state.calls > state.failAt;
  const bool fails = state.failAt != 0 && (state.calls == state.failAt || past);
  void* block = fails ? nullptr : UNDERLYING_CALLOC(count, size);
  if (index < kMostRecorded) {
    state.sizes[index] = count * size;
    state.blocks[index] = block;
  }
  return block;
}

extern "C" void free(void* block) {
  if (state.active && block != nullptr) ForgetBlock(block);
  UNDERLYING_FREE(block);
}

namespace support {

AllocationWatch::AllocationWatch(int failAt, bool andLater) {
  state.calls = 0;
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

}  // namespace support
