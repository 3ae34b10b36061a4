// A host runtime for the linked plug-in's strings and exceptions: throws on demand from chosen
// entries, and tells what was raised and what was left behind.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/runtime.h"

namespace plugin_test {

using ThrowSomething = std::function<void()>;

class StringHost {
 public:
  explicit StringHost(double version = 2013.04);
  ~StringHost();
  StringHost(const StringHost&) = delete;
  StringHost& operator=(const StringHost&) = delete;

  // Every call of `entry` but the first `spared` throws, up to `times` of them.
  void ThrowFrom(const std::string& entry, ThrowSomething throwIt, int times = 1, int spared = 0);

  // The string behind a handle; null when there is none or it is dead.
  const host::Text* TextOf(const void* handle);
  // "UTF-8 string as its bytes, its encoding in decimal": the string is given up, "nil" for null.
  std::string Taken(void* handle);

  // "Class: message" each, "Class: no message" without one; ", number n" behind it unless 0.
  std::vector<std::string> Raised() const;
  // Host calls without look-ups, since the start.
  std::vector<std::string> Calls() { return runtime.Calls().Calls(); }
  // Whatever is still held and whatever was misused since the start.
  std::vector<std::string> LeftOver();

  host::Runtime runtime;
};

}  // namespace plugin_test
