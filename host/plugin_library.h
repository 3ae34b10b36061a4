// A plug-in loaded as a host loads it: by its one export. And calls of the methods it registered.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

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
  // runtime.Registered(). Throws std::runtime_error with one clear line.
  PluginLibrary(Runtime& runtime, const std::string& path);
  ~PluginLibrary();  // unloads; process-wide variables of the plug-in start anew at the next load
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  // By name in any case; null when not registered.
  const RegisteredMethod* Find(const std::string& name) const;

  // Calls a method on a receiver with all declared parameters after it. Missing arguments at the
  // end take the declared defaults. Throws std::invalid_argument for a wrong number or kind of
  // argument; what a host entry throws passes out unchanged.
  CallReport Call(const std::string& name, Picture* receiver, std::vector<Value> arguments);

 private:
  Runtime& runtime_;
  void* handle_ = nullptr;
};

// Calls any routine by the machine's C calling convention with integers, doubles and pointers. A
// double or a Boolean result is asked for by type; Type::kPicture gives the raw handle.
struct NativeResult {
  std::uintptr_t word = 0;
  double number = 0;
};
struct NativeArgument {
  bool isDouble = false;
  std::uintptr_t word = 0;
  double number = 0;
};
NativeResult CallNative(REALroutine routine, const std::vector<NativeArgument>& arguments,
                        Type result);

}  // namespace host
