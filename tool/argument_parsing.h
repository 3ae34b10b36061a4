// From the words of a command line to the arguments of a registered method.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/declaration.h"

namespace tool {

// A picture argument: the file to load, or no file for nil.
struct PictureArgument {
  std::string path;
  friend bool operator==(const PictureArgument&, const PictureArgument&) = default;
};

// One parsed argument, in the type that its parameter declares.
using Argument = std::variant<std::int32_t, double, bool, PictureArgument>;

struct Arguments {
  std::vector<Argument> values;  // one per parameter of CallParameters
  std::vector<bool> given;       // false where the declaration's default stands
};

// The parameters that a caller writes: all but the receiver.
std::vector<host::Parameter> CallParameters(const host::Declaration& declaration);

// The declaration as a caller sees it: "ScaleZVQ(width as integer, ...) as picture".
std::string Signature(const host::Declaration& declaration);

// Each word is a value for the next parameter, or "name=value" (the name in any letter case).
// Integers are decimal or 0x… and fit 32 bits; doubles are decimal; Booleans are true, false, 1 or
// 0; a picture is the name of a file, or nil. Throws UsageError with one line that names the
// declaration.
Arguments ParseArguments(const host::Declaration& declaration,
                         const std::vector<std::string>& words);

// "ScaleZVQ(400, 300, true, 0)"
std::string CallText(const host::Declaration& declaration, const Arguments& arguments);

}  // namespace tool
