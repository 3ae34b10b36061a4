// One check in a process of its own, so that a crash is one failed check.
#pragma once

#include <chrono>
#include <string>

#include "tool/checks.h"

namespace tool {

struct CheckOutcome {
  bool passed = false;
  std::string message;  // one sentence; empty when passed
};

// Notes what the running check is about to do, for the sentence that tells of its crash:
// "ScaleZVQ(4, 3, false, 0)".
void NoteDoing(const std::string& what);

// Runs `check` in a child. A child that crashes, is ended by a signal, exits by itself or takes
// longer than `timeout` is a failed check. What the plug-in writes to standard output goes to
// standard error. Throws std::runtime_error when no child can be made.
CheckOutcome RunCheck(const Check& check, const CheckContext& context,
                      std::chrono::seconds timeout);

}  // namespace tool
