#include "tool/run_pool.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <utility>

#include "tool/interruption.h"
#include "tool/progress.h"
#include "tool/run_host.h"

namespace tool {
namespace {

// How many pictures may be begun before the first of them is passed on; each has open files.
constexpr std::size_t kMostBegun = 200;

std::string Text(const RunOutcome& outcome) {
  std::ostringstream text;
  Write(text, outcome);
  return text.str();
}

void Interrupt(RunOutcome& outcome) {
  outcome.status = RunStatus::kInterrupted;
  outcome.faults = {"interrupted"};
}

}  // namespace

std::string HowItEnded(const ChildProcess& child) {
  if (child.Signal() == 0) {
    return "its process ended by itself, with status " + std::to_string(child.ExitStatus());
  }
  return "its process was ended by signal " + std::to_string(child.Signal()) + " (" +
         strsignal(child.Signal()) + ")";
}

RunPool::RunPool(const RunOptions& options, std::string method, const Arguments& arguments,
                 const std::vector<std::string>& inputs, const std::vector<std::string>& outputs)
    : options_(options),
      method_(std::move(method)),
      arguments_(arguments),
      outcomes_(inputs.size()),
      awaited_(EndingSignals()),
      isWatched_(SomebodyWatches() && !options.quiet) {
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    outcomes_[i].input = inputs[i];
    outcomes_[i].output = outputs[i];
  }
  std::signal(SIGCHLD, SIG_DFL);
  sigaddset(&awaited_, SIGCHLD);
  sigprocmask(SIG_BLOCK, &awaited_, &before_);
}

const std::vector<RunOutcome>& RunPool::Run() {
  while (true) {
    while (MayBegin() && Begin(children_.size())) {
    }
    if (running_.empty()) break;
    Show(false);
    Wait();
    PassOn();
  }
  while (children_.size() < outcomes_.size()) {
    Interrupt(outcomes_[children_.size()]);
    children_.push_back(nullptr);
  }
  PassOn();
  return outcomes_;
}

bool RunPool::MayBegin() const {
  return signal_ == 0 && running_.size() < std::size_t(options_.jobs) &&
         children_.size() < outcomes_.size() && children_.size() < passedOn_ + kMostBegun;
}

bool RunPool::Begin(std::size_t index) {
  try {
    children_.push_back(
        std::make_unique<ChildProcess>([this, index](const ChildProcess::Tell& tell) {
          sigprocmask(SIG_SETMASK, &before_, nullptr);
          Work(index, tell);
        }));
  } catch (const std::exception&) {
    if (running_.empty()) throw;
    return false;  // when one has ended there may be room for another
  }
  running_.push_back(index);
  return true;
}

void RunPool::Work(std::size_t index, const ChildProcess::Tell& tell) const {
  RunOutcome outcome = outcomes_[index];
  try {
    RunHost host(options_);
    const host::Declaration* method = host.Find(method_);
    if (method == nullptr) throw std::runtime_error("the plug-in has lost its method " + method_);
    outcome = host.Run(outcome.input, outcome.output, *method, arguments_,
                       [&](const RunOutcome& begun) { tell(Text(begun)); });
  } catch (const std::exception& error) {
    outcome.faults = {error.what()};
  }
  tell(Text(outcome));
}

// Until a process has ended, or a signal has come that ends them all.
void RunPool::Wait() {
  const int signal = sigwaitinfo(&awaited_, nullptr);
  if (signal > 0 && signal != SIGCHLD) {
    signal_ = signal;
    for (const std::size_t index : running_) children_[index]->Send(signal);
  }
  std::erase_if(running_, [this](std::size_t index) {
    if (!children_[index]->HasEnded(false)) return false;
    Settle(index);
    return true;
  });
}

void RunPool::Settle(std::size_t index) {
  RunOutcome& outcome = outcomes_[index];
  const ChildProcess& child = *children_[index];
  ++ended_;
  std::istringstream told(child.Told());
  const bool isWhole = Read(told, outcome) && child.Signal() == 0;
  if (isWhole && (outcome.status != RunStatus::kFailed || !outcome.faults.empty())) return;
  if (signal_ != 0 && child.Signal() == signal_) return Interrupt(outcome);
  outcome.status = RunStatus::kFailed;
  outcome.faults = {(outcome.call.empty() ? "" : outcome.call + ": ") + HowItEnded(child)};
}

void RunPool::PassOn() {
  for (; passedOn_ < children_.size(); ++passedOn_) {
    const auto isThis = [this](std::size_t index) { return index == passedOn_; };
    if (std::any_of(running_.begin(), running_.end(), isThis)) return;
    Show(true);
    if (children_[passedOn_]) children_[passedOn_]->PassOnWhatItWrote();
    children_[passedOn_].reset();
    const RunOutcome& outcome = outcomes_[passedOn_];
    if (options_.json) {
      std::printf("%s\n", JsonOf(outcome).c_str());
    } else if (!outcome.number.empty()) {
      std::printf("%s: %s\n", outcome.input.c_str(), outcome.number.c_str());
    }
    std::fflush(stdout);
  }
}

// On a terminal: how far it is, or nothing more of that.
void RunPool::Show(bool nothing) const {
  if (!isWatched_) return;
  std::fprintf(stderr, "\r\033[K");
  if (!nothing) std::fprintf(stderr, "%s: %zu of %zu", method_.c_str(), ended_, outcomes_.size());
  std::fflush(stderr);
}

}  // namespace tool
