// A line on the terminal that shows that work goes on, and how far it is.
#pragma once

#include <chrono>
#include <string>

#include "host/runtime.h"
#include "tool/argument_parsing.h"

namespace tool {

// Whether standard error is a terminal, on which a person may be waiting, and takes more than plain
// lines: NO_COLOR in the environment says that it does not.
bool SomebodyWatches();

// Gives a last parameter named "yield" or "YieldTicks" a period of 3 ticks (50 ms) when the command
// line gave none, so that the method yields to the host.
void AskForYields(const host::Declaration& declaration, Arguments& arguments);

// While it lives, every yield of the plug-in may renew the line: `what` and the time passed, at
// most ten times a second, first after a fifth of a second. The end clears the line.
//
// With `steps` the line shows a bar of the whole. Each step says how much of the whole `work` it
// is, in any unit. Within a step the bar moves by the time that such work has taken so far: evenly
// at first, then slower and slower, so that it never passes the end of the step.
class Progress {
 public:
  Progress(host::Runtime& runtime, std::string what, int steps = 0, double work = 0);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // The step before this one is done.
  void Begin(const std::string& step, double work);

 private:
  using Clock = std::chrono::steady_clock;
  void Show();
  double Done(Clock::time_point now) const;  // 0..1
  std::string Bar(Clock::time_point now) const;

  host::Runtime& runtime_;
  std::string what_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_ + std::chrono::milliseconds(200);
  bool shown_ = false;

  int steps_;
  double work_;
  int step_ = 0;  // the one that runs, from 1
  std::string stepName_;
  double workBefore_ = 0;  // of the steps that are done
  double workNow_ = 0;
  Clock::time_point stepStart_ = start_;
};

}  // namespace tool
