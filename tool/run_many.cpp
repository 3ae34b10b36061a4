#include "tool/run_many.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <optional>
#include <sstream>

#include "tool/child_process.h"
#include "tool/exit_status.h"
#include "tool/interruption.h"
#include "tool/output_pattern.h"
#include "tool/picture_files.h"
#include "tool/run_host.h"
#include "tool/run_pool.h"

namespace tool {
namespace {

// The first character of what a process tells of the methods.
constexpr char kRegistered = '+';
constexpr char kNotUnderstood = '?';
constexpr char kFailed = '-';

std::string TellMethods(const RunOptions& options) {
  try {
    std::ostringstream text;
    text << kRegistered;
    for (const host::Declaration& method : RunHost(options).Declarations()) {
      text << std::quoted(method.text) << '\n';
    }
    return text.str();
  } catch (const UsageError& error) {
    return kNotUnderstood + std::string(error.what());
  } catch (const std::exception& error) {
    return kFailed + std::string(error.what());
  }
}

// What is wrong for all pictures alike is told once, before anything runs.
void CheckForAll(const std::vector<std::string>& shared, const std::vector<std::string>& outputs) {
  for (const std::string& picture : shared) LoadPicture(picture);
  std::optional<Failure> first;
  bool someFit = false;
  for (const std::string& output : outputs) {
    try {
      CheckOutput(output);
      someFit = true;
    } catch (const Failure& failure) {
      if (!first) first = failure;
    }
  }
  if (!someFit && first) throw Failure(*first);
}

int TellFaults(const std::vector<RunOutcome>& outcomes) {
  int status = kExitUsage;
  bool allDone = true;
  for (const RunOutcome& outcome : outcomes) {
    allDone = allDone && outcome.status == RunStatus::kDone;
    if (outcome.status != RunStatus::kNotUnderstood) status = kExitFailure;
    if (outcome.status == RunStatus::kDone || outcome.status == RunStatus::kInterrupted) continue;
    for (const std::string& fault : outcome.faults) Complain(outcome.input + ": " + fault);
  }
  return allDone ? kExitOk : status;
}

void Summarise(const std::vector<RunOutcome>& outcomes, bool interrupted) {
  const auto count = [&](auto... status) {
    return std::count_if(outcomes.begin(), outcomes.end(), [&](const RunOutcome& outcome) {
      return ((outcome.status == status) || ...);
    });
  };
  const auto failed = count(RunStatus::kFailed, RunStatus::kNotUnderstood);
  const auto left = count(RunStatus::kInterrupted);
  std::string text = interrupted ? "interrupted; " : "";
  text +=
      std::to_string(count(RunStatus::kDone)) + " of " + std::to_string(outcomes.size()) + " done";
  if (failed > 0) text += ", " + std::to_string(failed) + " failed";
  if (left > 0) text += ", " + std::to_string(left) + " left";
  Complain(text);
}

}  // namespace

std::vector<host::Declaration> MethodsOf(const RunOptions& options) {
  ChildProcess child([&](const ChildProcess::Tell& tell) { tell(TellMethods(options)); });
  child.HasEnded(true);
  const std::string told = child.Told();
  if (told.empty()) throw Failure("the plug-in cannot be loaded: " + HowItEnded(child));
  if (told[0] == kNotUnderstood) throw UsageError(told.substr(1));
  if (told[0] == kFailed) throw Failure(told.substr(1));
  std::vector<host::Declaration> methods;
  std::istringstream text(told.substr(1));
  for (std::string line; text >> std::quoted(line);) {
    if (auto method = host::ParseDeclaration(line)) methods.push_back(*method);
  }
  return methods;
}

int RunMany(const RunOptions& options, const RunWords& words) {
  const Arguments arguments = ParseArguments(words.method, words.arguments);
  std::vector<std::string> shared = PicturesIn(arguments);
  if (!options.mask.empty()) shared.push_back(options.mask);
  const std::vector<std::string> outputs = OutputNames(options.output, words.inputs, shared);
  CheckForAll(shared, outputs);
  RunPool pool(options, words.method.name, arguments, words.inputs, outputs);
  const std::vector<RunOutcome>& outcomes = pool.Run();
  const int status = TellFaults(outcomes);
  if (!options.quiet) Summarise(outcomes, pool.Signal() != 0);
  if (pool.Signal() != 0) {
    std::fflush(nullptr);
    EndBySignal(pool.Signal());
  }
  return status;
}

}  // namespace tool
