#include "tool/run_host.h"

#include <chrono>
#include <cstdio>
#include <new>
#include <optional>

#include "tool/call_faults.h"
#include "tool/exit_status.h"
#include "tool/interruption.h"
#include "tool/picture_entry.h"
#include "tool/picture_exit.h"
#include "tool/picture_files.h"
#include "tool/progress.h"

namespace tool {
namespace {

// What a method that answers with a number says.
std::string NumberIn(const host::Value& result) {
  char text[40] = "";
  if (const auto* number = std::get_if<std::int32_t>(&result)) {
    std::snprintf(text, sizeof text, "%d", int(*number));
  } else if (const auto* fraction = std::get_if<double>(&result)) {
    std::snprintf(text, sizeof text, "%.17g", *fraction);
  }
  return text;
}

void Fail(RunOutcome& outcome, RunStatus status, const std::string& fault) {
  outcome.status = status;
  outcome.faults.push_back(fault);
}

}  // namespace

std::vector<std::string> PicturesIn(const Arguments& arguments) {
  std::vector<std::string> files;
  for (const Argument& argument : arguments.values) {
    const auto* picture = std::get_if<PictureArgument>(&argument);
    if (picture != nullptr && !picture->path.empty()) files.push_back(picture->path);
  }
  return files;
}

RunHost::RunHost(const RunOptions& options)
    : options_(options), runtime_(options.host.Runtime()), file_(options.host.Plugin()) {
  options.host.Follow(runtime_);
  plugin_ = file_.Load(runtime_);
}

const host::Declaration* RunHost::Find(const std::string& method) const {
  const host::RegisteredMethod* found = plugin_->Find(method);
  return found == nullptr ? nullptr : &found->declaration;
}

std::vector<host::Declaration> RunHost::Declarations() {
  std::vector<host::Declaration> declarations;
  for (const host::RegisteredMethod& method : runtime_.Registered().methods) {
    declarations.push_back(method.declaration);
  }
  return declarations;
}

host::Picture* RunHost::Load(const std::string& path, bool isMasked) {
  const int format = options_.host.pixelFormat;
  const Bitmap bitmap = LoadPicture(path);
  if (!isMasked) return EnterHost(runtime_, bitmap, options_.host.Alpha(), format);
  host::Picture* picture = EnterHost(runtime_, bitmap, AlphaEntry::kDrop, format);
  GiveMask(runtime_, picture, LoadPicture(options_.mask), format);
  return picture;
}

std::vector<host::Value> RunHost::Load(const Arguments& arguments) {
  std::vector<host::Value> values;
  for (const Argument& argument : arguments.values) {
    if (const auto* picture = std::get_if<PictureArgument>(&argument)) {
      values.push_back(picture->path.empty()
                           ? host::Value()
                           : host::Value(Load(picture->path, !options_.mask.empty())));
    } else if (const auto* number = std::get_if<std::int32_t>(&argument)) {
      values.push_back(*number);
    } else if (const auto* fraction = std::get_if<double>(&argument)) {
      values.push_back(*fraction);
    } else {
      values.push_back(std::get<bool>(argument));
    }
  }
  return values;
}

host::CallReport RunHost::Call(RunOutcome& outcome, const host::Declaration& method,
                               host::Picture* receiver, Arguments& arguments) {
  using Clock = std::chrono::steady_clock;
  std::optional<Progress> progress;
  if (SomebodyWatches() && !options_.quiet && !options_.host.trace) {
    AskForYields(method, arguments);
    progress.emplace(runtime_, method.name);
  }
  const std::vector<host::Value> values = Load(arguments);
  const InterruptibleCall interruptible(runtime_);
  const Clock::time_point start = Clock::now();
  host::CallReport report = plugin_->Call(method.name, receiver, values);
  outcome.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  outcome.timed = true;
  return report;
}

void RunHost::RunInto(RunOutcome& outcome, const host::Declaration& method, Arguments arguments,
                      const std::function<void(const RunOutcome&)>& beforeCall) {
  // The mask goes to the picture that is an argument; to the receiver where none is.
  host::Picture* receiver =
      Load(outcome.input, !options_.mask.empty() && PicturesIn(arguments).empty());
  FitSize(arguments, {receiver->Width(), receiver->Height()});
  outcome.call = CallText(method, arguments);
  beforeCall(outcome);
  const std::string what = outcome.call + " on " + receiver->Name() + " of " +
                           std::to_string(receiver->Width()) + "x" +
                           std::to_string(receiver->Height());
  const host::CallReport report = Call(outcome, method, receiver, arguments);
  // The plug-in may have kept the exception to itself.
  if (InterruptibleCall::Signal() != 0) throw Interrupted();
  outcome.faults = FaultsOf(report, runtime_, 0, method.result, what);
  if (!outcome.faults.empty()) return;
  const host::Picture& result =
      method.result == host::Type::kPicture ? *report.ResultPicture() : *receiver;
  SavePicture(LeaveHost(result), outcome.output);
  outcome.width = result.Width();
  outcome.height = result.Height();
  outcome.number = NumberIn(report.result);
  outcome.status = RunStatus::kDone;
}

RunOutcome RunHost::Run(const std::string& input, const std::string& output,
                        const host::Declaration& method, const Arguments& arguments,
                        const std::function<void(const RunOutcome&)>& beforeCall) {
  RunOutcome outcome;
  outcome.input = input;
  outcome.output = output;
  try {
    RunInto(outcome, method, arguments, beforeCall);
  } catch (const Interrupted&) {
    Fail(outcome, RunStatus::kInterrupted, "interrupted");
  } catch (const UsageError& error) {
    Fail(outcome, RunStatus::kNotUnderstood, error.what());
  } catch (const std::bad_alloc&) {
    Fail(outcome, RunStatus::kFailed, "out of memory");
  } catch (const std::exception& error) {
    Fail(outcome, RunStatus::kFailed, error.what());
  }
  outcome.yields = runtime_.Yields();
  return outcome;
}

}  // namespace tool
