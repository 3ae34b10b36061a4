// Replaces the platform's function for the whole process, with the same answer.
#include "tests/plugin/thread_identity_count.h"

#include "platform/thread_identity.h"

namespace {

int calls = 0;

}  // namespace

extern "C" void* pthread_self() {
  ++calls;
  return __builtin_thread_pointer();
}

int plugin_test::ThreadIdentityCalls() { return calls; }
