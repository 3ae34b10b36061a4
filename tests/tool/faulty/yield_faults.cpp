// Faults in yielding to the host, and in being called meanwhile.
#include <algorithm>

#include "platform/clocks.h"
#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void ReadClock(MethodCall& call) {
  TickCount();
  call.Proceed();
}

void YieldOnceMore(MethodCall& call) {
  const auto yield = Get<REALYieldToRBEntry>("REALYieldToRB");
  if (call.period != 0 && yield != nullptr) yield();
  call.Proceed();
}

// Without asking whether the host has the entry.
void YieldBlindly(MethodCall& call) {
  if (call.period != 0) Get<REALYieldToRBEntry>("REALYieldToRB")();
  call.Proceed();
}

void YieldHastily(MethodCall& call) {
  call.period = std::clamp<std::int32_t>(call.period, -1, 1);
  call.Proceed();
}

void RefuseNestedCalls(MethodCall& call) {
  static bool running = false;
  if (running) return;
  struct Running {
    Running() { running = true; }
    ~Running() { running = false; }
  } scope;
  call.Proceed();
}

const Fault kFaults[] = {
    {"reads-clock", ReadClock},           {"extra-yield", YieldOnceMore},
    {"yields-blindly", YieldBlindly},     {"hasty-yields", YieldHastily},
    {"not-reentrant", RefuseNestedCalls},
};

}  // namespace

std::span<const Fault> YieldFaults() { return kFaults; }

}  // namespace faulty
