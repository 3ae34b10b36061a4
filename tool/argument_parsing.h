// From the words of a command line to the arguments of a registered method.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/declaration.h"
#include "tool/size_word.h"

namespace tool {

// A picture argument: the file to load, or no file for nil.
struct PictureArgument {
  std::string path;
  friend bool operator==(const PictureArgument&, const PictureArgument&) = default;
};

// One parsed argument, in the type that its parameter declares.
using Argument = std::variant<std::int32_t, double, bool, PictureArgument>;

// Where a size stands among the arguments.
struct GivenSize {
  SizeWord size;
  std::size_t width, height;  // indices of the two parameters
};

struct Arguments {
  std::vector<Argument> values;   // one per parameter of CallParameters
  std::vector<bool> given;        // false where the declaration's default stands
  std::optional<GivenSize> size;  // to be settled by FitSize; until then both values are 0
};

// The parameters that a caller writes: all but the receiver.
std::vector<host::Parameter> CallParameters(const host::Declaration& declaration);

// The declaration as a caller sees it: "ScaleZVQ(width as integer, ...) as picture".
std::string Signature(const host::Declaration& declaration);

// Each word is a value for the next parameter, or "name=value" (the name in any letter case).
// Integers are decimal or 0x… and fit 32 bits; doubles are decimal; Booleans are true, false, 1 or
// 0; a picture is the name of a file, or nil. Where the declaration has integers named width and
// height (in any letter case), a size such as 800x stands for both in the place of the width: the
// next word without a name is the parameter after them. A text that is an integer (0x10) is one.
// Throws UsageError with one line that names the declaration.
Arguments ParseArguments(const host::Declaration& declaration,
                         const std::vector<std::string>& words);

// Puts the size, where one was given, into the values: for a receiver of that extent.
void FitSize(Arguments& arguments, const Extent& receiver);

// "ScaleZVQ(400, 300, true, 0)"
std::string CallText(const host::Declaration& declaration, const Arguments& arguments);

}  // namespace tool
