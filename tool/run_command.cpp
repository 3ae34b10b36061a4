// picturehost run: calls one method on picture files and saves what comes out.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <thread>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/interruption.h"
#include "tool/option_values.h"
#include "tool/output_pattern.h"
#include "tool/picture_files.h"
#include "tool/run_host.h"
#include "tool/run_many.h"

namespace tool {
namespace {

constexpr int kMostJobs = 256;

// The words of the command line as its options take them.
struct RunCommandLine {
  RunOptions options;
  std::string input;
  std::string method;
  std::vector<std::string> words;
};

int Tell(const RunOutcome& outcome, bool json) {
  if (json) {
    std::printf("%s\n", JsonOf(outcome).c_str());
  } else if (!outcome.number.empty()) {
    std::printf("%s\n", outcome.number.c_str());
  }
  if (outcome.status == RunStatus::kInterrupted) {
    std::fflush(nullptr);
    EndBySignal(InterruptibleCall::Signal());
  }
  for (const std::string& fault : outcome.faults) Complain(fault);
  return ExitStatusOf(outcome.status);
}

// In this process. Nothing when the plug-in has no such method.
std::optional<int> RunOne(const RunOptions& options, const RunWords& words,
                          const std::string& methodName) {
  const std::string& input = words.inputs[0];
  const std::string output = OutputName(options.output, input, 1, 1);
  CheckOutput(output);
  RunHost host(options);
  const host::Declaration* method = host.Find(methodName);
  if (method == nullptr) return std::nullopt;
  const Arguments arguments = ParseArguments(*method, words.arguments);
  return Tell(host.Run(input, output, *method, arguments, [](const RunOutcome&) {}), options.json);
}

int Run(const RunCommandLine& line) {
  std::optional<int> status;
  if (!MayBeInput(line.method)) {
    status = RunOne(line.options, {{line.input}, {}, line.words}, line.method);
  }
  if (status) return *status;
  std::vector<std::string> words = {line.input, line.method};
  words.insert(words.end(), line.words.begin(), line.words.end());
  const RunWords divided = Divide(words, MethodsOf(line.options));
  if (divided.inputs.size() > 1) return RunMany(line.options, divided);
  status = RunOne(line.options, divided, divided.method.name);
  if (!status) throw Failure("the plug-in has lost its method " + divided.method.name);
  return *status;
}

// A number of processes, or a word for as many as there are processors.
std::string CountJobs(std::string& text) {
  if (text == "auto" || text == "0") {
    const auto processors = int(std::thread::hardware_concurrency());
    text = std::to_string(std::clamp(processors, 1, kMostJobs));
    return {};
  }
  const std::string complaint = Between(1, kMostJobs)(text);
  return complaint.empty() ? complaint : complaint + "; auto is one for each processor";
}

void AddWords(CLI::App& command, RunCommandLine& line) {
  command
      .add_option("IN", line.input,
                  "The picture: PNG, JPEG or BMP, read as stored (orientation tags are not "
                  "applied). More pictures may follow it")
      ->type_name("")
      ->required();
  command
      .add_option("METHOD", line.method,
                  "The method, in any letter case; picturehost methods lists them. A picture that "
                  "is called like one is written with its folder, ./NAME")
      ->type_name("")
      ->required();
  command
      .add_option("ARGS", line.words,
                  "The method's arguments, in the order of its declaration or as name=value; what "
                  "is left out takes its declared default. A picture argument is a file or nil. "
                  "In the place of a width, 800x600, 800x, x600 or 50% stands for width and "
                  "height; the side left out follows the proportions of IN")
      ->type_name("");
}

void AddOutputs(CLI::App& command, RunOptions& options) {
  command
      .add_option("-o,--output", options.output,
                  "Where to save what a person would see: .png, or .jpg on white. {name} is the "
                  "name of IN without folder and ending, {ext} its ending, {index} its place, "
                  "from 1; several pictures need {name} or {index}. Its folder must be there")
      ->type_name("OUT")
      ->required();
  command
      .add_option("--jobs", options.jobs,
                  "How many of several pictures are worked on at a time, each in a process of its "
                  "own; 0 or auto: one for each processor")
      ->type_name("N")
      ->transform(CLI::Validator(CountJobs, "0 to " + std::to_string(kMostJobs) + " or auto"))
      ->default_str("1");
  command.add_flag("--json", options.json,
                   "Print a JSON object for each picture, a line each: input, output, call, width, "
                   "height, milliseconds, yields, number, status, error");
  command.add_flag("--quiet", options.quiet, "No progress and no summary; errors are told");
}

}  // namespace

void AddRunCommand(CLI::App& app, Action& chosen) {
  const auto line = std::make_shared<RunCommandLine>();
  RunOptions& options = line->options;
  CLI::App* command =
      app.add_subcommand("run", "Call a method of the plug-in on pictures and save the results");
  AddWords(*command, *line);
  command
      ->add_option(
          "--mask", options.mask,
          "A picture that becomes the mask of the picture argument, or of IN where there is "
          "none: black shows, white hides. Transparency of that picture itself is dropped")
      ->type_name("MASK");
  AddOutputs(*command, options);
  AddHostOptions(*command, options.host);
  command->footer(
      "A plug-in that refuses does not say why; mostly an argument is out of its range. New "
      "pictures "
      "of the host start white, those with an alpha channel transparent.\n\n"
      "Ctrl-C ends a method at its next yield where it yields, at once where it does not. It "
      "never leaves half an output.\n\n"
      "Examples:\n"
      "  picturehost run photo.jpg ScaleZVQ 800x -o small.png\n"
      "  picturehost run logo.png ScaleZVQ width=200% AntiAlias=true -o large.png\n"
      "  picturehost run *.jpg ScalingZVQ 3 25% --jobs auto -o 'quarter-{name}.png'");
  command->callback([line, &chosen] { chosen = [line] { return Run(*line); }; });
}

}  // namespace tool
