// picturehost methods: prints what the plug-in registered.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "host/plugin_library.h"
#include "tool/argument_parsing.h"
#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/host_options.h"
#include "tool/json_text.h"

namespace tool {
namespace {

struct MethodsOptions {
  HostOptions host;
  bool json = false;
};

void PrintRegistration(const host::Registration& registered, const std::string& plugin) {
  const bool asModule = registered.path == host::Registration::Path::kModule;
  std::printf("plug-in: %s\n", plugin.c_str());
  std::printf("announced version: %d\n", registered.announcedVersion);
  std::printf("registered as: %s\n", asModule ? "module" : "class extension");
  std::printf("%s: %s\n", asModule ? "module" : "class", registered.name.c_str());
  std::printf("record version: %d\n", registered.recordVersion);
  if (!asModule) std::printf("class flags: 0x%lx\n", (unsigned long)registered.classFlags);
  std::printf("methods: %zu\n", registered.methods.size());
  for (const host::RegisteredMethod& method : registered.methods) {
    std::printf("  0x%lx  %s\n", (unsigned long)method.flags, method.declaration.text.c_str());
  }
}

// As a caller sees it: without the receiver.
void PrintMethodJson(const host::RegisteredMethod& method) {
  const host::Declaration& declaration = method.declaration;
  std::printf("    {\"name\": %s, \"flags\": %lu, \"declaration\": %s, \"parameters\": [",
              JsonText(declaration.name).c_str(), (unsigned long)method.flags,
              JsonText(declaration.text).c_str());
  const char* separator = "";
  for (const host::Parameter& parameter : CallParameters(declaration)) {
    std::printf("%s{\"name\": %s, \"type\": %s, \"default\": %s}", separator,
                JsonText(parameter.name).c_str(), JsonText(parameter.typeName).c_str(),
                parameter.defaultValue ? JsonText(*parameter.defaultValue).c_str() : "null");
    separator = ", ";
  }
  std::printf("]}");
}

void PrintRegistrationJson(const host::Registration& registered, const std::string& plugin) {
  const bool asModule = registered.path == host::Registration::Path::kModule;
  std::printf("{\n  \"plugin\": %s,\n", JsonText(plugin).c_str());
  std::printf("  \"announced_version\": %d,\n", registered.announcedVersion);
  std::printf("  \"registered_as\": \"%s\",\n", asModule ? "module" : "class extension");
  std::printf("  \"name\": %s,\n", JsonText(registered.name).c_str());
  std::printf("  \"record_version\": %d,\n", registered.recordVersion);
  std::printf("  \"class_flags\": %s,\n",
              asModule ? "null" : std::to_string(registered.classFlags).c_str());
  std::printf("  \"methods\": [");
  const char* separator = "\n";
  for (const host::RegisteredMethod& method : registered.methods) {
    std::printf("%s", separator);
    PrintMethodJson(method);
    separator = ",\n";
  }
  std::printf("\n  ]\n}\n");
}

int ListMethods(const MethodsOptions& options) {
  host::Runtime runtime(options.host.Runtime());
  options.host.Follow(runtime);
  const PluginFile file = options.host.Plugin();
  const auto plugin = file.Load(runtime);
  const host::Registration& registered = runtime.Registered();
  if (registered.path == host::Registration::Path::kNone) {
    throw Failure("the plug-in registered nothing");
  }
  (options.json ? PrintRegistrationJson : PrintRegistration)(registered, file.Shown());
  for (const std::string& problem : registered.problems) Complain(problem);
  return registered.problems.empty() ? kExitOk : kExitFailure;
}

}  // namespace

void AddMethodsCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<MethodsOptions>();
  CLI::App* command = app.add_subcommand(
      "methods", "Print what the plug-in registers: path, record version, flags, declarations");
  command->add_flag("--json", options->json, "Print a JSON object");
  AddHostOptions(*command, options->host);
  command->footer(
      "Examples:\n"
      "  picturehost methods --host-version 2012\n"
      "  picturehost methods --plugin ./other.so --json");
  command->callback([options, &chosen] { chosen = [options] { return ListMethods(*options); }; });
}

}  // namespace tool
