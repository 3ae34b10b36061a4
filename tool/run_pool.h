// The processes of a run of several pictures.
#pragma once

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "tool/argument_parsing.h"
#include "tool/child_process.h"
#include "tool/run_options.h"
#include "tool/run_outcome.h"

namespace tool {

// "its process was ended by signal 11 (Segmentation fault)"
std::string HowItEnded(const ChildProcess& child);

class RunPool {
 public:
  // `inputs` and `outputs` belong together in their order.
  RunPool(const RunOptions& options, std::string method, const Arguments& arguments,
          const std::vector<std::string>& inputs, const std::vector<std::string>& outputs);

  // Runs all, or those begun before a signal came. What was written and found of a picture is
  // passed on when it and all before it have ended. Signals that end the program stay held back
  // after it.
  const std::vector<RunOutcome>& Run();

  // The signal that came, or 0.
  int Signal() const { return signal_; }

 private:
  bool MayBegin() const;
  bool Begin(std::size_t index);  // false when the system has no room for another process now
  void Work(std::size_t index, const ChildProcess::Tell& tell) const;
  void Wait();
  void Settle(std::size_t index);
  void PassOn();
  void Show(bool nothing) const;

  const RunOptions& options_;
  std::string method_;
  Arguments arguments_;
  std::vector<RunOutcome> outcomes_;
  std::vector<std::unique_ptr<ChildProcess>> children_;  // of the pictures begun, until passed on
  std::vector<std::size_t> running_;
  std::size_t passedOn_ = 0;  // pictures
  std::size_t ended_ = 0;
  sigset_t awaited_;
  sigset_t before_;
  int signal_ = 0;
  bool isWatched_;
};

}  // namespace tool
