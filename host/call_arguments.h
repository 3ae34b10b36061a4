// Values of the host's language to native arguments of a declared method, and its result back.
#pragma once

#include <string>
#include <vector>

#include "host/plugin_library.h"

namespace host {

// The receiver and all declared parameters, defaults filled in; throws std::invalid_argument.
std::vector<NativeArgument> NativeArguments(const RegisteredMethod& method, Picture* receiver,
                                            const std::vector<Value>& arguments);

// The value of a declared default ("1.0", "false", "&hFF", "nil"); throws std::invalid_argument.
Value DefaultValue(const Parameter& parameter);

}  // namespace host
