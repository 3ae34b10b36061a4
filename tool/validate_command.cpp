// picturehost validate: checks what a plug-in promises, each promise in a process of its own.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>

#include "host/plugin_library.h"
#include "tool/check_process.h"
#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/host_options.h"
#include "tool/json_text.h"
#include "tool/option_values.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

struct ValidateOptions {
  HostOptions host;
  bool list = false;
  std::vector<std::string> names;
  bool onlyFailed = false;
  bool json = false;
  std::string seed = "1";
  int timeout = 20;  // seconds for each check
};

struct Line {
  Check check;
  CheckOutcome outcome;
};

std::uint64_t ParseSeed(const std::string& text) {
  std::uint64_t seed = 0;
  for (const char digit : text) {
    const bool fits = digit >= '0' && digit <= '9' &&
                      seed <= (UINT64_MAX - static_cast<std::uint64_t>(digit - '0')) / 10;
    if (!fits) throw UsageError("'" + text + "' is no seed; it is a number of 0 to 2^64 - 1");
    seed = seed * 10 + static_cast<std::uint64_t>(digit - '0');
  }
  if (text.empty()) throw UsageError("'' is no seed; it is a number of 0 to 2^64 - 1");
  return seed;
}

// In the list's order, each once.
std::vector<Check> Chosen(const std::vector<std::string>& names) {
  std::vector<Check> all = AllChecks();
  if (names.empty()) return all;
  for (const std::string& name : names) {
    const bool known =
        std::any_of(all.begin(), all.end(), [&](const Check& check) { return check.name == name; });
    if (!known) {
      std::vector<std::string> allNames;
      for (const Check& check : all) allNames.emplace_back(check.name);
      throw UsageError("no check '" + name + "'" + DidYouMean(name, allNames) +
                       "; validate --list lists them");
    }
  }
  std::erase_if(all, [&](const Check& check) {
    return std::find(names.begin(), names.end(), check.name) == names.end();
  });
  return all;
}

void List(const std::vector<Check>& checks, bool json) {
  if (json) std::printf("[");
  const char* separator = "\n";
  for (const Check& check : checks) {
    if (json) {
      std::printf("%s  {\"name\": %s, \"sentence\": %s, \"random\": %s}", separator,
                  JsonText(check.name).c_str(), JsonText(check.sentence).c_str(),
                  check.isRandom ? "true" : "false");
      separator = ",\n";
    } else {
      std::printf("%s\n    %s\n", check.name, check.sentence);
    }
  }
  if (json) std::printf("\n]\n");
}

void PrintLine(const Line& line, std::uint64_t seed) {
  const std::string seeded =
      line.check.isRandom ? " (--seed " + std::to_string(seed) + ")" : std::string();
  if (line.outcome.passed) {
    std::printf("ok    %s%s\n", line.check.name, seeded.c_str());
  } else {
    std::printf("FAIL  %s%s: %s\n", line.check.name, seeded.c_str(), line.outcome.message.c_str());
  }
  std::fflush(stdout);
}

void PrintJson(const std::string& path, std::uint64_t seed, const std::vector<Line>& lines,
               std::size_t failed, bool onlyFailed) {
  std::printf("{\n  \"plugin\": %s,\n  \"seed\": %llu,\n", JsonText(path).c_str(),
              static_cast<unsigned long long>(seed));
  std::printf("  \"passed\": %zu,\n  \"failed\": %zu,\n  \"checks\": [", lines.size() - failed,
              failed);
  const char* separator = "\n";
  for (const Line& line : lines) {
    if (onlyFailed && line.outcome.passed) continue;
    std::printf("%s    {\"name\": %s, \"sentence\": %s, \"passed\": %s", separator,
                JsonText(line.check.name).c_str(), JsonText(line.check.sentence).c_str(),
                line.outcome.passed ? "true" : "false");
    if (!line.outcome.passed)
      std::printf(", \"message\": %s", JsonText(line.outcome.message).c_str());
    if (line.check.isRandom) std::printf(", \"seed\": %llu", static_cast<unsigned long long>(seed));
    std::printf("}");
    separator = ",\n";
  }
  std::printf("\n  ]\n}\n");
}

void Load(const CheckContext& context) {
  host::Runtime runtime;
  const host::PluginLibrary plugin(runtime, context.plugin);
}

int Validate(const ValidateOptions& options) {
  const std::vector<Check> checks = Chosen(options.names);
  const std::uint64_t seed = ParseSeed(options.seed);
  if (options.list) {
    List(checks, options.json);
    return kExitOk;
  }
  const PluginFile file = options.host.Plugin();
  const CheckContext context = {file.Path(), seed};
  const std::chrono::seconds timeout(options.timeout);
  // A plug-in that crashes when it starts can be loaded: its checks fail.
  const Check loads = {"loads", "", Load};
  const CheckOutcome loaded = RunCheck(loads, context, timeout);
  if (!loaded.passed && loaded.message.find(context.plugin) != std::string::npos) {
    throw UsageError(file.ForPeople(loaded.message));
  }
  std::vector<Line> lines;
  std::size_t failed = 0;
  for (const Check& check : checks) {
    lines.push_back({check, RunCheck(check, context, timeout)});
    const bool passed = lines.back().outcome.passed;
    failed += passed ? 0 : 1;
    if (!options.json && !(options.onlyFailed && passed)) PrintLine(lines.back(), seed);
  }
  if (options.json) {
    PrintJson(file.Shown(), seed, lines, failed, options.onlyFailed);
  } else {
    std::printf("%zu checks, %zu failed, seed %llu\n", lines.size(), failed,
                static_cast<unsigned long long>(seed));
  }
  return failed == 0 ? kExitOk : kExitFailure;
}

}  // namespace

void AddValidateCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<ValidateOptions>();
  CLI::App* command =
      app.add_subcommand("validate", "Check what a plug-in with the five picture methods promises");
  command
      ->add_option("PLUGIN", options->host.plugin,
                   "The plug-in: a library, or a package or its folder (default: Varnell.so beside "
                   "this tool "
                   "or in ../lib/varnell)")
      ->type_name("");
  command->add_flag("--list", options->list, "Print the checks and what each requires");
  command->add_option("--check", options->names, "Run only this check; may be given several times")
      ->type_name("CHECK");
  command->add_flag("--only-failed", options->onlyFailed, "Leave out the checks that pass");
  command->add_flag("--json", options->json, "Print JSON");
  command
      ->add_option("--timeout", options->timeout,
                   "How long each check may take; one that takes longer has failed")
      ->type_name("SECONDS")
      ->check(Between(1, 3600))
      ->capture_default_str();
  command
      ->add_option("--seed", options->seed,
                   "What random checks choose by, 0 to 2^64 - 1; the same number repeats a failure")
      ->type_name("N")
      ->capture_default_str();
  command->footer(
      "Each check runs in a process of its own, so that a crash is one failed check.\n\n"
      "Examples:\n"
      "  picturehost validate --only-failed\n"
      "  picturehost validate Varnell.xojo_plugin --check registers-once --seed 7\n\n"
      "Exit status:\n"
      "  0  all checks passed\n"
      "  1  some failed\n"
      "  2  could not run: no such check, no such plug-in");
  command->callback([options, &chosen] { chosen = [options] { return Validate(*options); }; });
}

}  // namespace tool
