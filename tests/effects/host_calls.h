// The host calls of one method call, for tests of their order.
#pragma once

#include <string>
#include <vector>

#include "host/runtime.h"

// One line per call, without results and without the probes for application classes.
inline std::string CallsMade(host::Runtime& runtime) {
  std::string lines;
  for (const std::string& call : runtime.Calls().Calls()) {
    if (call.starts_with("pluginObjectType")) continue;
    lines += call.substr(0, call.find(" = ")) + "\n";
  }
  return lines;
}

// Lets the lock of that number (from 1) fail; 0: none. The number counts all calls of the entry.
inline void FailLock(host::Runtime& runtime, int number) {
  runtime.intercept = [number, locks = 0](const host::EntryCall& call) mutable {
    if (std::string(call.entry) != "REALLockPictureDescription") return host::Verdict::kProceed;
    return ++locks == number ? host::Verdict::kFail : host::Verdict::kProceed;
  };
}
