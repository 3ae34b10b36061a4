// Makes the calls of a gallery: pictures go into the host and come out of it, timed.
#pragma once

#include "host/plugin_library.h"
#include "tool/gallery_plan.h"

namespace tool {

class GalleryHost {
 public:
  // Pictures enter in `pixelFormat` (1..6). With `yielding` the methods are asked to yield. Both
  // objects must live as long as this one.
  GalleryHost(host::Runtime& runtime, host::PluginLibrary& plugin, int pixelFormat, bool yielding)
      : runtime_(runtime), plugin_(plugin), pixelFormat_(pixelFormat), yielding_(yielding) {}

  // Throws Interrupted when a person ends the program meanwhile, and nothing for what the plug-in
  // does or lacks: that is a fault in the result. Nothing that the call needed stays in the host.
  TileResult Make(const PlannedCall& planned);

 private:
  void Run(const PlannedCall& planned, TileResult& outcome);
  host::CallReport TimedCall(const std::string& method, host::Picture* receiver,
                             const std::vector<host::Value>& values, double& seconds);
  // Makes a quick call again, and keeps the least time.
  void Retime(const Subject& subject, host::Picture* receiver, const host::Declaration& declaration,
              const std::vector<host::Value>& values, double& seconds);
  host::Picture* Enter(const Subject& subject);

  host::Runtime& runtime_;
  host::PluginLibrary& plugin_;
  int pixelFormat_;
  bool yielding_;
};

}  // namespace tool
