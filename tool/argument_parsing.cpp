#include "tool/argument_parsing.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <sstream>

#include "tool/exit_status.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return char(std::tolower(c)); });
  return text;
}

// The whole of `text` as a number, or nothing. A leading plus sign is allowed.
template <typename Number, typename... Format>
std::optional<Number> Parse(std::string text, Format... format) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.erase(0, 1);
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, format...);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<std::int32_t> ParseInteger(const std::string& text) {
  if (Lower(text).starts_with("0x")) {
    const auto bits = Parse<std::uint32_t>("+" + text.substr(2), 16);
    if (bits) return std::int32_t(*bits);
    return std::nullopt;
  }
  return Parse<std::int32_t>(text);
}

std::optional<bool> ParseBoolean(const std::string& text) {
  const std::string word = Lower(text);
  if (word == "true" || word == "1") return true;
  if (word == "false" || word == "0") return false;
  return std::nullopt;
}

std::optional<Argument> ParseValue(host::Type type, const std::string& text) {
  switch (type) {
    case host::Type::kInteger:
      return ParseInteger(text);
    case host::Type::kDouble:
      return Parse<double>(text);
    case host::Type::kBoolean:
      return ParseBoolean(text);
    case host::Type::kPicture:
      if (text.empty()) return std::nullopt;
      return PictureArgument{Lower(text) == "nil" ? "" : text};
    default:
      return std::nullopt;
  }
}

const char* Wanted(host::Type type) {
  switch (type) {
    case host::Type::kInteger:
      return "a whole number of 32 bits";
    case host::Type::kDouble:
      return "a number";
    case host::Type::kBoolean:
      return "true or false";
    case host::Type::kPicture:
      return "a picture file or nil";
    default:
      return "of a type that the command line can give";
  }
}

const char* ResultName(host::Type type) {
  switch (type) {
    case host::Type::kInteger:
      return " as integer";
    case host::Type::kDouble:
      return " as double";
    case host::Type::kBoolean:
      return " as boolean";
    case host::Type::kPicture:
      return " as picture";
    case host::Type::kString:
      return " as string";
    default:
      return "";
  }
}

// The index of the parameter that `name` names in any letter case, or -1.
int IndexOf(const std::vector<host::Parameter>& parameters, const std::string& name) {
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (Lower(parameters[i].name) == Lower(name)) return int(i);
  }
  return -1;
}

std::vector<std::string> NamesOf(const std::vector<host::Parameter>& parameters) {
  std::vector<std::string> names;
  for (const host::Parameter& parameter : parameters) names.push_back(parameter.name);
  return names;
}

bool IsInteger(const std::vector<host::Parameter>& parameters, int index) {
  return index >= 0 && parameters[std::size_t(index)].type == host::Type::kInteger;
}

bool IsName(const std::string& text) {
  return !text.empty() && std::isdigit(static_cast<unsigned char>(text[0])) == 0 &&
         std::all_of(text.begin(), text.end(),
                     [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

class Parser {
 public:
  explicit Parser(const host::Declaration& declaration)
      : declaration_(declaration),
        parameters_(CallParameters(declaration)),
        texts_(parameters_.size()) {
    const int width = IndexOf(parameters_, "width");
    const int height = IndexOf(parameters_, "height");
    if (IsInteger(parameters_, width) && IsInteger(parameters_, height)) {
      width_ = std::size_t(width);
      height_ = std::size_t(height);
    }
  }

  void Take(const std::string& word) {
    if (next_ == passedHeight_) ++next_;
    const std::size_t equals = word.find('=');
    if (equals != std::string::npos && IsName(word.substr(0, equals))) {
      const std::string name = word.substr(0, equals);
      const int named = IndexOf(parameters_, name);
      if (named >= 0) return Set(std::size_t(named), word.substr(equals + 1));
      // The name of a file may hold an equals sign; no other value does.
      if (next_ >= parameters_.size() || parameters_[next_].type != host::Type::kPicture) {
        Reject("there is no parameter '" + name + "'" + DidYouMean(name, NamesOf(parameters_)));
      }
    }
    if (next_ >= parameters_.size()) Reject("too many arguments");
    const std::size_t place = next_++;
    Set(place, word);
    if (size_ && place == width_) passedHeight_ = height_;
  }

  Arguments Finish() const {
    Arguments arguments;
    if (size_) arguments.size = GivenSize{*size_, *width_, *height_};
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      arguments.values.push_back(ValueOf(i));
      arguments.given.push_back(texts_[i].has_value());
    }
    return arguments;
  }

 private:
  Argument ValueOf(std::size_t index) const {
    if (size_ && (index == width_ || index == height_)) return std::int32_t(0);
    const host::Parameter& parameter = parameters_[index];
    const std::optional<std::string>& text = texts_[index] ? texts_[index] : parameter.defaultValue;
    if (!text) Reject("'" + parameter.name + "' is missing");
    const std::optional<Argument> value = ParseValue(parameter.type, *text);
    if (value) return *value;
    Reject("'" + parameter.name + "' must be " + Wanted(parameter.type) +
           (index == width_ ? " or a size such as 800x600, 800x, x600 or 50%" : "") + ", not '" +
           *text + "'");
  }

  void Set(std::size_t index, const std::string& text) {
    if (texts_[index]) Reject("'" + parameters_[index].name + "' is given twice");
    texts_[index] = text;
    if (index == width_) size_ = SizeWord::Parse(text);
    if (size_ && index == width_) Set(*height_, text);
  }

  [[noreturn]] void Reject(const std::string& reason) const {
    const char* separator = reason.ends_with('?') ? " The" : "; the";
    throw UsageError(reason + separator + " declaration is " + Signature(declaration_));
  }

  const host::Declaration& declaration_;
  std::vector<host::Parameter> parameters_;
  std::vector<std::optional<std::string>> texts_;
  std::size_t next_ = 0;                       // the parameter of the next word without a name
  std::optional<std::size_t> width_, height_;  // where the declaration has both
  std::optional<SizeWord> size_;               // given in the place of the width
  std::optional<std::size_t> passedHeight_;    // by a word that stood for it and the width
};

}  // namespace

std::vector<host::Parameter> CallParameters(const host::Declaration& declaration) {
  std::vector<host::Parameter> parameters;
  for (const host::Parameter& parameter : declaration.parameters) {
    if (!parameter.extends) parameters.push_back(parameter);
  }
  return parameters;
}

std::string Signature(const host::Declaration& declaration) {
  std::string text = declaration.name + "(";
  const char* separator = "";
  for (const host::Parameter& parameter : CallParameters(declaration)) {
    text += separator + parameter.name + " as " + parameter.typeName;
    if (parameter.defaultValue) text += " = " + *parameter.defaultValue;
    separator = ", ";
  }
  return text + ")" + ResultName(declaration.result);
}

Arguments ParseArguments(const host::Declaration& declaration,
                         const std::vector<std::string>& words) {
  Parser parser(declaration);
  for (const std::string& word : words) parser.Take(word);
  return parser.Finish();
}

void FitSize(Arguments& arguments, const Extent& receiver) {
  if (!arguments.size) return;
  const Extent extent = arguments.size->size.For(receiver);
  arguments.values[arguments.size->width] = extent.width;
  arguments.values[arguments.size->height] = extent.height;
  arguments.size.reset();
}

std::string CallText(const host::Declaration& declaration, const Arguments& arguments) {
  std::ostringstream text;
  text << std::boolalpha << declaration.name << '(';
  const char* separator = "";
  for (const Argument& argument : arguments.values) {
    text << separator;
    if (const auto* picture = std::get_if<PictureArgument>(&argument)) {
      text << (picture->path.empty() ? "nil" : picture->path);
    } else {
      std::visit(
          [&text](const auto& value) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(value)>, PictureArgument>) {
              text << value;
            }
          },
          argument);
    }
    separator = ", ";
  }
  text << ')';
  return text.str();
}

}  // namespace tool
