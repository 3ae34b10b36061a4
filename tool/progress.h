// A line on the terminal that shows that work goes on.
#pragma once

#include <chrono>
#include <string>

#include "host/runtime.h"
#include "tool/argument_parsing.h"

namespace tool {

// Whether standard error is a terminal, on which a person may be waiting.
bool SomebodyWatches();

// Gives a last parameter named "yield" or "YieldTicks" a period of 3 ticks (50 ms) when the command
// line gave none, so that the method yields to the host.
void AskForYields(const host::Declaration& declaration, Arguments& arguments);

// While it lives, every yield of the plug-in may renew the line: `what` and the time passed, at
// most ten times a second, first after a fifth of a second. The end clears the line.
class Progress {
 public:
  Progress(host::Runtime& runtime, std::string what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  using Clock = std::chrono::steady_clock;
  void Show();

  host::Runtime& runtime_;
  std::string what_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_ + std::chrono::milliseconds(200);
  bool shown_ = false;
};

}  // namespace tool
