// The plug-in as a file, and a host that has loaded it.
#pragma once

#include <string>

#include "host/plugin_library.h"

namespace support {

// The built shared object, or the file that the environment variable VARNELL_PLUGIN names.
std::string PluginPath();

// A host with the plug-in loaded. `prepare`, when given, may withhold entries before the plug-in
// starts.
class LoadedPlugin {
 public:
  explicit LoadedPlugin(host::RuntimeOptions options = {},
                        const std::function<void(host::Runtime&)>& prepare = {});

  host::Runtime& Host() { return runtime_; }
  host::PluginLibrary& Library() { return library_; }

 private:
  host::Runtime runtime_;
  host::PluginLibrary library_;
};

}  // namespace support
