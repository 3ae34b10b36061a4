// Fuzzes the rewriting of method declarations: any text, any class name, against the rules stated
// with strings.
#include <cstdint>
#include <memory>
#include <optional>

#include "fuzz/input.h"
#include "plugin/declarations.h"

namespace {

constexpr std::size_t kLongest = 998;

struct Freed {
  void operator()(char* text) const { std::free(text); }
};
using OwnedText = std::unique_ptr<char, Freed>;

std::string Extended(const std::string& declaration, const std::string& className) {
  const std::size_t place = declaration.find_first_of("( ");
  if (place > kLongest) {  // or nowhere
    return (declaration + "(extends ref as " + className + ")").substr(0, kLongest + 1);
  }
  const std::string start = declaration.substr(0, place) + "(extends ref as " + className;
  const std::string rest = declaration[place] == '(' ? ", " + declaration.substr(place + 1)
                                                     : ")" + declaration.substr(place);
  return (start + rest).substr(0, kLongest);
}

std::optional<std::string> WithAssigns(const std::string& extended) {
  const std::size_t close = extended.find(')');
  if (close <= kLongest) {
    return (extended.substr(0, close) + ", assigns value" + extended.substr(close + 1) + ")")
        .substr(0, kLongest);
  }
  const std::size_t blank = extended.find(' ');
  if (blank > kLongest) return std::nullopt;
  return (extended.substr(0, blank) + "(assigns value" + extended.substr(blank) + ")")
      .substr(0, kLongest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string className = input.Text();
  const std::string declaration = input.Text();
  const OwnedText extended(AddClassParameter(declaration.c_str(), className.c_str()));
  fuzz::Require(extended.get() == Extended(declaration, className), "the class parameter is wrong");

  const OwnedText setter(AddAssignsParameter(declaration.c_str()));
  const auto expected = WithAssigns(declaration);
  fuzz::Require((setter != nullptr) == expected.has_value(), "a setter form or none");
  if (setter) fuzz::Require(setter.get() == *expected, "the assigns parameter is wrong");
  return 0;
}
