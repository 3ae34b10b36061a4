// picturehost methods: prints what the plug-in registered.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "host/plugin_library.h"
#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/host_options.h"

namespace tool {
namespace {

int ListMethods(const HostOptions& options) {
  host::Runtime runtime(options.Runtime());
  options.Follow(runtime);
  const PluginFile file = options.Plugin();
  const auto plugin = file.Load(runtime);
  const host::Registration& registered = runtime.Registered();
  if (registered.path == host::Registration::Path::kNone) {
    throw Failure("the plug-in registered nothing");
  }
  const bool asModule = registered.path == host::Registration::Path::kModule;
  std::printf("plug-in: %s\n", file.Shown().c_str());
  std::printf("announced version: %d\n", registered.announcedVersion);
  std::printf("registered as: %s\n", asModule ? "module" : "class extension");
  std::printf("%s: %s\n", asModule ? "module" : "class", registered.name.c_str());
  std::printf("record version: %d\n", registered.recordVersion);
  if (!asModule) std::printf("class flags: 0x%lx\n", (unsigned long)registered.classFlags);
  std::printf("methods: %zu\n", registered.methods.size());
  for (const host::RegisteredMethod& method : registered.methods) {
    std::printf("  0x%lx  %s\n", (unsigned long)method.flags, method.declaration.text.c_str());
  }
  for (const std::string& problem : registered.problems) Complain(problem);
  return registered.problems.empty() ? kExitOk : kExitFailure;
}

}  // namespace

void AddMethodsCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<HostOptions>();
  CLI::App* command = app.add_subcommand(
      "methods", "Print what the plug-in registers: path, record version, flags, declarations");
  AddHostOptions(*command, *options);
  command->callback([options, &chosen] { chosen = [options] { return ListMethods(*options); }; });
}

}  // namespace tool
