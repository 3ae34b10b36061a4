// A recursive-descent reader of declarations.
#include "host/declaration.h"

#include <utility>

#include "host/object.h"

namespace host {

namespace {

Type TypeOfName(const std::string& name) {
  const std::pair<const char*, Type> names[] = {
      {"integer", Type::kInteger}, {"int32", Type::kInteger},   {"double", Type::kDouble},
      {"boolean", Type::kBoolean}, {"picture", Type::kPicture}, {"string", Type::kString}};
  for (const auto& [known, type] : names) {
    if (SameName(name, known)) return type;
  }
  return Type::kOther;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool IsWordCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.';
}

class Parser {
 public:
  explicit Parser(const std::string& text) : text_(text) {}

  bool Parse(Declaration& declaration) {
    declaration.text = text_;
    declaration.name = Word();
    if (declaration.name.empty()) return Fail("It does not start with a name.");
    if (Take('(') && !ParseParameters(declaration.parameters)) return false;
    SkipBlanks();
    if (AtEnd()) return true;
    std::string resultType;
    if (!ParseType(resultType, declaration.result)) return false;
    SkipBlanks();
    return AtEnd() || Fail("There is text behind its end.");
  }

  const std::string& Error() const { return error_; }

 private:
  bool ParseParameters(std::vector<Parameter>& parameters) {
    if (Take(')')) return true;
    while (true) {
      Parameter parameter;
      if (!ParseParameter(parameter)) return false;
      parameters.push_back(std::move(parameter));
      if (Take(')')) return true;
      if (!Take(',')) return Fail("A parameter is not followed by \",\" or \")\".");
      // A receiver put in front of an empty list leaves its separator behind.
      const bool onlyReceiver = parameters.size() == 1 && parameters[0].extends;
      if (onlyReceiver && Take(')')) return true;
    }
  }

  bool ParseParameter(Parameter& parameter) {
    parameter.name = Word();
    while (IsKeyword(parameter)) parameter.name = Word();
    if (parameter.name.empty()) return Fail("A parameter has no name.");
    if (!ParseType(parameter.typeName, parameter.type)) return false;
    if (Take('=')) {
      parameter.defaultValue = DefaultValue();
      if (parameter.defaultValue->empty()) {
        return Fail("The default of \"" + parameter.name + "\" is missing.");
      }
    }
    return true;
  }

  // A word before a parameter's name; "extends as Picture" declares a parameter called "extends".
  bool IsKeyword(Parameter& parameter) {
    const std::size_t here = at_;
    const std::string next = Word();
    at_ = here;
    if (next.empty() || SameName(next, "as")) return false;
    if (SameName(parameter.name, "extends")) {
      parameter.extends = true;
    } else if (SameName(parameter.name, "assigns")) {
      parameter.assigns = true;
    } else if (!SameName(parameter.name, "byval") && !SameName(parameter.name, "byref") &&
               !SameName(parameter.name, "optional")) {
      return false;
    }
    return true;
  }

  bool ParseType(std::string& typeName, Type& type) {
    if (!SameName(Word(), "as")) return Fail("\"as\" and a type are missing.");
    typeName = Word();
    if (typeName.empty()) return Fail("The type behind \"as\" is missing.");
    type = TypeOfName(typeName);
    return true;
  }

  std::string DefaultValue() {
    SkipBlanks();
    const std::size_t first = at_;
    bool quoted = false;
    while (!AtEnd() && (quoted || (text_[at_] != ',' && text_[at_] != ')'))) {
      if (text_[at_] == '"') quoted = !quoted;
      ++at_;
    }
    std::size_t last = at_;
    while (last > first && IsBlank(text_[last - 1])) --last;
    return text_.substr(first, last - first);
  }

  std::string Word() {
    SkipBlanks();
    const std::size_t first = at_;
    while (!AtEnd() && IsWordCharacter(text_[at_])) ++at_;
    return text_.substr(first, at_ - first);
  }

  bool Take(char wanted) {
    SkipBlanks();
    if (AtEnd() || text_[at_] != wanted) return false;
    ++at_;
    return true;
  }

  void SkipBlanks() {
    while (!AtEnd() && IsBlank(text_[at_])) ++at_;
  }
  bool AtEnd() const { return at_ == text_.size(); }
  bool Fail(std::string error) {
    error_ = std::move(error);
    return false;
  }

  const std::string& text_;
  std::size_t at_ = 0;
  std::string error_;
};

}  // namespace

std::optional<Declaration> ParseDeclaration(const std::string& text, std::string* error) {
  Parser parser(text);
  Declaration declaration;
  if (parser.Parse(declaration)) return declaration;
  if (error != nullptr) *error = parser.Error();
  return std::nullopt;
}

}  // namespace host
