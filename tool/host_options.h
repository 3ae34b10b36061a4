// The options that say which host stands around the plug-in, shared by the subcommands that load
// it.
#pragma once

#include <string>

#include "host/runtime.h"
#include "tool/plugin_file.h"

namespace CLI {
class App;
}

namespace tool {

// How a picture with transparency enters the host. Without a choice of the user's it is kChannel.
enum class AlphaEntry {
  kChannel,  // a picture with an alpha channel
  kMask,     // an opaque picture with a mask: black is opaque, white transparent
  kDrop,     // an opaque picture of its colours, the alpha forgotten
};

struct HostOptions {
  std::string plugin;  // empty: the one beside the tool
  double version = 2013.04;
  std::string kind = "desktop";
  int pixelFormat = 6;
  std::string alpha = "channel";
  bool trace = false;

  host::RuntimeOptions Runtime() const;
  AlphaEntry Alpha() const;
  // The plug-in to load. Throws UsageError when there is none.
  PluginFile Plugin() const;
  // Writes each host call to standard error as it happens, when that was asked for.
  void Follow(host::Runtime& runtime) const;
};

// The format of pictures with an alpha channel that goes with an opaque format 1..6: the
// premultiplied one with the same channel order.
int AlphaPixelFormat(int pixelFormat);

// Adds the options to a subcommand; `options` must live as long as it.
void AddHostOptions(CLI::App& command, HostOptions& options);

}  // namespace tool
