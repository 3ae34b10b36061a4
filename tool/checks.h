// What a plug-in with the five picture methods promises, as named checks. Nothing here knows more
// of the plug-in than its file.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

struct CheckContext {
  std::string plugin;      // the path of its file
  std::uint64_t seed = 1;  // of what is chosen at random
};

// The promise was not kept; the text is one sentence.
struct CheckFailed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Check {
  const char* name;      // kebab-case; never changes its meaning
  const char* sentence;  // what holds when the check passes
  // Returns when the promise is kept and throws (CheckFailed, or whatever the host throws) when it
  // is not. Runs in a process of its own.
  void (*run)(const CheckContext& context);
  bool isRandom = false;  // the seed decides what is tried
};

// All checks, in the order in which they run.
std::vector<Check> AllChecks();

std::span<const Check> RegistrationChecks();
std::span<const Check> ScalingChecks();
std::span<const Check> ResamplingChecks();
std::span<const Check> EffectChecks();
std::span<const Check> FormatChecks();
std::span<const Check> ReferenceChecks();
std::span<const Check> YieldChecks();
std::span<const Check> MemoryChecks();
std::span<const Check> FailureChecks();
std::span<const Check> RandomChecks();

}  // namespace tool
