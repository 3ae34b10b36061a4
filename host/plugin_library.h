// A plug-in loaded as a host loads it: by its one export. And calls of the methods it registered.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/loaded_file.h"
#include "host/native_call.h"
#include "host/runtime.h"

namespace host {

// An argument or a result. std::monostate is nil or no result.
using Value = std::variant<std::monostate, std::int32_t, double, bool, Picture*>;

struct CallReport {
  Value result;
  // Empty when the call left the book balanced and misused nothing.
  std::vector<std::string> leftOver;
  std::vector<std::string> violations;
  bool Clean() const { return leftOver.empty() && violations.empty(); }
  Picture* ResultPicture() const;  // null when the result is not a picture
};

class PluginLibrary {
 public:
  // Loads the library and calls its export with the runtime's resolver; the registration is then in
  // runtime.Registered(), in place of an earlier one. Throws std::runtime_error with one clear
  // line. What a host entry throws meanwhile passes out unchanged, and the library is unloaded.
  PluginLibrary(Runtime& runtime, const std::string& path);
  // Unloads; process-wide variables of the plug-in start anew at the next load.
  ~PluginLibrary() = default;
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  const LoadedFile& File() const { return *file_; }

  // By name in any case; null when not registered.
  const RegisteredMethod* Find(const std::string& name) const;

  // Calls a method on a receiver (null for nil) with all declared parameters after it. Missing
  // arguments at the end take the declared defaults. Integers are taken for doubles too. Throws
  // std::invalid_argument for an unknown method and a wrong number or kind of argument; what a host
  // entry throws passes out unchanged.
  //
  // A result picture carries one reference, which is the caller's to release. Bits of arguments
  // that the calling convention leaves open hold noise.
  CallReport Call(const std::string& name, Picture* receiver, const std::vector<Value>& arguments);

 private:
  Runtime& runtime_;
  std::shared_ptr<LoadedFile> file_;
};

}  // namespace host
