// Reads method declarations of the host's language: "Name(a as integer, b as double = 1.0) as
// picture".
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

enum class Type { kNone, kInteger, kDouble, kBoolean, kPicture, kString, kOther };

struct Parameter {
  std::string name;
  Type type = Type::kOther;
  std::string typeName;                     // as written
  std::optional<std::string> defaultValue;  // as written
  bool extends = false;                     // the receiver of a module's extension method
  bool assigns = false;
};

struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;  // with the receiver first where the text names it
  Type result = Type::kNone;
  std::string text;  // as registered
};

// Keywords and type names in any case, blanks anywhere they may stand. No value for text that is
// not a declaration; `error`, when not null, then says why in one sentence.
std::optional<Declaration> ParseDeclaration(const std::string& text, std::string* error = nullptr);

}  // namespace host
