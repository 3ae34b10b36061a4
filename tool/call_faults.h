// What was wrong with a call of a method, in sentences for people.
#pragma once

#include <string>
#include <vector>

#include "host/plugin_library.h"

namespace tool {

// Everything that the plug-in did wrong in one call, a line each, beginning with `call`: misuse of
// the host, what it left over, the exceptions raised since there were `raisedBefore` of them, and a
// result of nil or false. Empty when all went well.
std::vector<std::string> FaultsOf(const host::CallReport& report, const host::Runtime& runtime,
                                  std::size_t raisedBefore, host::Type resultType,
                                  const std::string& call);

}  // namespace tool
