// The pictures and the call of a work, in the reference host.
#pragma once

#include <string>
#include <vector>

#include "bench/work.h"
#include "host/plugin_library.h"

namespace bench {

class PluginScene {
 public:
  // Throws std::bad_alloc.
  PluginScene(host::Runtime& runtime, const Work& work);
  ~PluginScene();  // releases the pictures
  PluginScene(const PluginScene&) = delete;
  PluginScene& operator=(const PluginScene&) = delete;

  const std::string& Method() const { return method_; }
  host::Picture* Receiver() const { return receiver_; }
  const std::vector<host::Value>& Arguments() const { return arguments_; }

  // Page faults of what the host does in such a call, counted by doing it once more.
  long HostFaults() const;

 private:
  explicit PluginScene(host::Runtime& runtime) : runtime_(runtime) {}
  host::Picture* Make(int width, int height);

  host::Runtime& runtime_;
  Work work_;
  std::string method_;
  host::Picture* receiver_ = nullptr;
  std::vector<host::Value> arguments_;
  std::vector<host::Picture*> pictures_;
};

}  // namespace bench
