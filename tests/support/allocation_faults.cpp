#include "tests/support/allocation_faults.h"

#if defined(__SANITIZE_ADDRESS__)
#define UNDERLYING_CALLOC __interceptor_calloc
#else
#define UNDERLYING_CALLOC __libc_calloc
#endif

extern "C" void* UNDERLYING_CALLOC(std::size_t count, std::size_t size);

namespace {

constexpr int kMostRecorded = 65536;

// Plain data: the allocation function must not allocate.
struct WatchState {
  bool active;
  bool andLater;
  int failAt;
  int calls;
  std::size_t sizes[kMostRecorded];
} state;

}  // namespace

extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (state.active) {
    if (state.calls < kMostRecorded) state.sizes[state.calls] = count * size;
    ++state.calls;
    const bool past = state.andLater && state.calls > state.failAt;
    if (state.failAt != 0 && (state.calls == state.failAt || past)) return nullptr;
  }
  return UNDERLYING_CALLOC(count, size);
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

std::vector<std::size_t> AllocationWatch::Sizes() const {
  const int recorded = state.calls < kMostRecorded ? state.calls : kMostRecorded;
  return {state.sizes, state.sizes + recorded};
}

}  // namespace support
