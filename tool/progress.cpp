#include "tool/progress.h"

#include <strings.h>
#include <unistd.h>

#include <cstdio>

namespace tool {

bool SomebodyWatches() { return ::isatty(STDERR_FILENO) == 1; }

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

Progress::Progress(host::Runtime& runtime, std::string what)
    : runtime_(runtime), what_(std::move(what)) {
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
  std::fprintf(stderr, "\r\033[K%s: working, %.1f s", what_.c_str(), passed.count());
  std::fflush(stderr);
  shown_ = true;
  next_ = now + std::chrono::milliseconds(100);
}

}  // namespace tool
