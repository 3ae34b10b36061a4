// Arguments of method calls.
#include "host/call_arguments.h"

#include <cctype>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "host/noise.h"

namespace host {

namespace {

std::invalid_argument Wrong(const Parameter& parameter, const std::string& why) {
  return std::invalid_argument("the argument for \"" + parameter.name + "\" " + why);
}

NativeArgument OfNumber(double number) {
  NativeArgument argument;
  argument.isDouble = true;
  argument.number = number;
  return argument;
}

NativeArgument OfWord(std::uintptr_t word) {
  NativeArgument argument;
  argument.word = word;
  return argument;
}

// A 32-bit integer in a wider register or slot leaves the upper bits open.
NativeArgument OfInteger(std::int32_t number) {
  const auto word = static_cast<std::uintptr_t>(static_cast<std::uint32_t>(number));
  if constexpr (sizeof word > sizeof number) return OfWord(WithNoiseAbove(word, 32));
  return OfWord(word);
}

// Only the low byte of a Boolean counts.
NativeArgument OfBoolean(bool value) { return OfWord(WithNoiseAbove(value ? 1 : 0, 8)); }

NativeArgument OfPicture(Picture* picture) { return OfWord(HandleOf<std::uintptr_t>(picture)); }

NativeArgument Convert(const Value& value, const Parameter& parameter) {
  const bool isNil = std::holds_alternative<std::monostate>(value);
  switch (parameter.type) {
    case Type::kInteger:
      if (const auto* number = std::get_if<std::int32_t>(&value)) return OfInteger(*number);
      throw Wrong(parameter, "must be an integer");
    case Type::kDouble:
      if (const auto* number = std::get_if<double>(&value)) return OfNumber(*number);
      if (const auto* number = std::get_if<std::int32_t>(&value)) return OfNumber(*number);
      throw Wrong(parameter, "must be a number");
    case Type::kBoolean:
      if (const auto* truth = std::get_if<bool>(&value)) return OfBoolean(*truth);
      throw Wrong(parameter, "must be true or false");
    case Type::kPicture:
      if (isNil) return OfPicture(nullptr);
      if (Picture* const* picture = std::get_if<Picture*>(&value)) return OfPicture(*picture);
      throw Wrong(parameter, "must be a picture or nil");
    case Type::kNone:
    case Type::kString:
    case Type::kOther:
      break;
  }
  throw Wrong(parameter, "has a type that cannot be passed: " + parameter.typeName);
}

// A whole number in decimal, "&h" or "&b" notation.
Value IntegerDefault(const Parameter& parameter, const std::string& text) {
  const bool isHex = SameName(text.substr(0, 2), "&h");
  const bool isBinary = SameName(text.substr(0, 2), "&b");
  const char* digits = text.c_str() + (isHex || isBinary ? 2 : 0);
  char* end = nullptr;
  const long long number = std::strtoll(digits, &end, isHex ? 16 : isBinary ? 2 : 10);
  if (end == digits || *end != '\0' || number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::uint32_t>::max()) {
    throw Wrong(parameter, "has a default that is no integer: " + text);
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
}

}  // namespace

Value DefaultValue(const Parameter& parameter) {
  if (!parameter.defaultValue) throw Wrong(parameter, "is missing");
  const std::string& text = *parameter.defaultValue;
  if (parameter.type == Type::kInteger) return IntegerDefault(parameter, text);
  if (parameter.type == Type::kDouble) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (end != text.c_str() && *end == '\0') return number;
  }
  if (parameter.type == Type::kBoolean && SameName(text, "true")) return true;
  if (parameter.type == Type::kBoolean && SameName(text, "false")) return false;
  if (parameter.type == Type::kPicture && SameName(text, "nil")) return std::monostate();
  throw Wrong(parameter, "has a default that is not of its type: " + text);
}

std::vector<NativeArgument> NativeArguments(const RegisteredMethod& method, Picture* receiver,
                                            const std::vector<Value>& arguments) {
  // The receiver comes first, whether the declaration names it (modules) or not (classes).
  const std::vector<Parameter>& parameters = method.declaration.parameters;
  const std::size_t named = !parameters.empty() && parameters[0].extends ? 1 : 0;
  const std::size_t count = parameters.size() - named;
  if (arguments.size() > count) {
    throw std::invalid_argument(method.declaration.name + " takes at most " +
                                std::to_string(count) + " arguments");
  }
  std::vector<NativeArgument> native;
  if (!method.isShared) native.push_back(OfPicture(receiver));
  for (std::size_t i = 0; i < count; ++i) {
    const Parameter& parameter = parameters[named + i];
    native.push_back(
        Convert(i < arguments.size() ? arguments[i] : DefaultValue(parameter), parameter));
  }
  return native;
}

}  // namespace host
