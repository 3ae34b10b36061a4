#include "tool/progress.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tool {

bool SomebodyWatches() {
  const char* noColour = std::getenv("NO_COLOR");
  return ::isatty(STDERR_FILENO) == 1 && (noColour == nullptr || *noColour == '\0');
}

void AskForYields(const host::Declaration& declaration, Arguments& arguments) {
  const std::vector<host::Parameter> parameters = CallParameters(declaration);
  if (parameters.empty() || arguments.given.back()) return;
  const host::Parameter& last = parameters.back();
  if (last.type != host::Type::kInteger) return;
  if (strcasecmp(last.name.c_str(), "yield") == 0 ||
      strcasecmp(last.name.c_str(), "YieldTicks") == 0) {
    arguments.values.back() = std::int32_t{3};
  }
}

Progress::Progress(host::Runtime& runtime, std::string what, int steps, double work)
    : runtime_(runtime), what_(std::move(what)), steps_(steps), work_(work) {
  runtime_.onYield = [this] { Show(); };
}

Progress::~Progress() {
  runtime_.onYield = nullptr;
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::Show() {
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  const std::chrono::duration<double> passed = now - start_;
  if (steps_ > 0) {
    std::fprintf(stderr, "\r\033[K%s", Bar(now).c_str());
  } else {
    std::fprintf(stderr, "\r\033[K%s: working, %.1f s", what_.c_str(), passed.count());
  }
  std::fflush(stderr);
  shown_ = true;
  next_ = now + std::chrono::milliseconds(100);
}

void Progress::Begin(const std::string& step, double work) {
  ++step_;
  stepName_ = step;
  workBefore_ += workNow_;
  workNow_ = work;
  stepStart_ = Clock::now();
  Show();
}

double Progress::Done(Clock::time_point now) const {
  const double before = std::chrono::duration<double>(stepStart_ - start_).count();
  const double within = std::chrono::duration<double>(now - stepStart_).count();
  double part = 0;  // of the first step nothing is known yet
  if (workBefore_ > 0 && before > 0) part = 1 - std::exp(-within * workBefore_ / before / workNow_);
  return (workBefore_ + part * workNow_) / work_;
}

std::string Progress::Bar(Clock::time_point now) const {
  constexpr int kCells = 24;
  const double done = std::clamp(Done(now), 0.0, 1.0);
  std::string cells(kCells, '-');
  std::fill_n(cells.begin(), int(done * kCells), '#');
  char numbers[80];
  std::snprintf(numbers, sizeof numbers, "] %3d %%  %d of %d", int(done * 100), step_, steps_);
  return what_ + " [" + cells + numbers + (stepName_.empty() ? "" : ": " + stepName_);
}

}  // namespace tool
