// picturehost run: calls one method on a picture file and saves what comes out.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>

#include "host/plugin_library.h"
#include "tool/argument_parsing.h"
#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/host_options.h"
#include "tool/picture_entry.h"
#include "tool/picture_exit.h"
#include "tool/picture_files.h"
#include "tool/progress.h"

namespace tool {
namespace {

struct RunOptions {
  HostOptions host;
  std::string input;
  std::string method;
  std::vector<std::string> words;
  std::string mask;
  std::string output;
};

enum class Masked { kNo, kYes };

host::Picture* Load(host::Runtime& runtime, const std::string& path, const RunOptions& options,
                    Masked masked) {
  const int format = options.host.pixelFormat;
  const Bitmap bitmap = LoadPicture(path);
  if (masked == Masked::kNo) return EnterHost(runtime, bitmap, options.host.Alpha(), format);
  host::Picture* picture = EnterHost(runtime, bitmap, AlphaEntry::kDrop, format);
  GiveMask(runtime, picture, LoadPicture(options.mask), format);
  return picture;
}

// The mask goes to the picture that is an argument; to the receiver where none is.
bool HasPicture(const Arguments& arguments) {
  for (const Argument& argument : arguments.values) {
    const auto* picture = std::get_if<PictureArgument>(&argument);
    if (picture != nullptr && !picture->path.empty()) return true;
  }
  return false;
}

std::vector<host::Value> LoadArguments(host::Runtime& runtime, const Arguments& arguments,
                                       const RunOptions& options) {
  const Masked masked = options.mask.empty() ? Masked::kNo : Masked::kYes;
  std::vector<host::Value> values;
  for (const Argument& argument : arguments.values) {
    if (const auto* picture = std::get_if<PictureArgument>(&argument)) {
      values.push_back(picture->path.empty()
                           ? host::Value()
                           : host::Value(Load(runtime, picture->path, options, masked)));
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

// Complains about everything that was wrong with a call; false when nothing was.
bool ComplainAbout(const host::CallReport& report, const host::Runtime& runtime,
                   const std::string& call) {
  bool wrong = !report.Clean();
  for (const std::string& sentence : report.violations) {
    Complain(call + ": the plug-in misused the host: " + sentence);
  }
  for (const std::string& sentence : report.leftOver) {
    Complain(call + ": the plug-in left something over: " + sentence);
  }
  for (const host::RaisedException& raised : runtime.Raised()) {
    Complain(call + ": the plug-in raised " + raised.className +
             (raised.hasMessage ? ": " + raised.message : " without a message"));
    wrong = true;
  }
  return wrong;
}

// The picture to save: the result, or the receiver where the result is none. Null, after a
// complaint, when the plug-in refused.
const host::Picture* PictureToSave(const host::CallReport& report, const host::Picture* receiver,
                                   host::Type resultType, const std::string& call) {
  if (resultType == host::Type::kPicture && report.ResultPicture() == nullptr) {
    Complain(call + " was refused by the plug-in: it returned nil");
    return nullptr;
  }
  if (const bool* done = std::get_if<bool>(&report.result); done != nullptr && !*done) {
    Complain(call + " was refused by the plug-in: it returned false");
    return nullptr;
  }
  return resultType == host::Type::kPicture ? report.ResultPicture() : receiver;
}

// A method that answers with a number says it on standard output.
void PrintNumber(const host::Value& result) {
  if (const auto* number = std::get_if<std::int32_t>(&result)) std::printf("%d\n", int(*number));
  if (const auto* fraction = std::get_if<double>(&result)) std::printf("%.17g\n", *fraction);
}

int Run(const RunOptions& options) {
  CheckOutput(options.output);
  host::Runtime runtime(options.host.Runtime());
  options.host.Follow(runtime);
  const PluginFile file = options.host.Plugin();
  const auto plugin = file.Load(runtime);
  const host::RegisteredMethod* method = plugin->Find(options.method);
  if (method == nullptr) {
    throw UsageError("the plug-in has no method '" + options.method +
                     "'; picturehost methods lists what it has");
  }
  const host::Declaration& declaration = method->declaration;
  Arguments arguments = ParseArguments(declaration, options.words);
  const bool maskForReceiver = !options.mask.empty() && !HasPicture(arguments);
  host::Picture* receiver =
      Load(runtime, options.input, options, maskForReceiver ? Masked::kYes : Masked::kNo);
  const std::string call = CallText(declaration, arguments) + " on " + receiver->Name() + " of " +
                           std::to_string(receiver->Width()) + "x" +
                           std::to_string(receiver->Height());
  std::optional<Progress> progress;
  if (SomebodyWatches() && !options.host.trace) {
    AskForYields(declaration, arguments);
    progress.emplace(runtime, declaration.name);
  }
  const host::CallReport report =
      plugin->Call(declaration.name, receiver, LoadArguments(runtime, arguments, options));
  progress.reset();

  const bool wrong = ComplainAbout(report, runtime, call);
  const host::Picture* result = PictureToSave(report, receiver, declaration.result, call);
  if (wrong || result == nullptr) return kExitFailure;
  SavePicture(LeaveHost(*result), options.output);
  PrintNumber(report.result);
  return kExitOk;
}

}  // namespace

void AddRunCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<RunOptions>();
  CLI::App* command =
      app.add_subcommand("run", "Call a method of the plug-in on a picture and save the result");
  command
      ->add_option("IN", options->input,
                   "The picture: PNG, JPEG or BMP, read as stored (orientation tags are not "
                   "applied)")
      ->type_name("")
      ->required();
  command->add_option("METHOD", options->method, "The method, in any letter case")
      ->type_name("")
      ->required();
  command
      ->add_option("ARGS", options->words,
                   "The method's arguments, in the order of its declaration or as name=value; what "
                   "is left out takes its declared default. A picture argument is a file or nil")
      ->type_name("");
  command
      ->add_option(
          "--mask", options->mask,
          "A picture that becomes the mask of the picture argument, or of IN where there is "
          "none: black shows, white hides. Transparency of that picture itself is dropped")
      ->type_name("MASK");
  command
      ->add_option("-o,--output", options->output,
                   "Where to save what a person would see: .png, or .jpg on white")
      ->type_name("OUT")
      ->required();
  AddHostOptions(*command, options->host);
  command->footer("New pictures of the host start white, those with an alpha channel transparent.");
  command->callback([options, &chosen] { chosen = [options] { return Run(*options); }; });
}

}  // namespace tool
