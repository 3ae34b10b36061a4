#include "tests/support/plugin_under_test.h"

#include <cstdlib>

namespace support {

std::string PluginPath() {
  const char* chosen = std::getenv("VARNELL_PLUGIN");
  return chosen != nullptr ? chosen : VARNELL_PLUGIN_FILE;
}

namespace {

host::Runtime& Prepared(host::Runtime& runtime,
                        const std::function<void(host::Runtime&)>& prepare) {
  if (prepare) prepare(runtime);
  return runtime;
}

}  // namespace

LoadedPlugin::LoadedPlugin(host::RuntimeOptions options,
                           const std::function<void(host::Runtime&)>& prepare)
    : runtime_(options), library_(Prepared(runtime_, prepare), PluginPath()) {}

}  // namespace support
