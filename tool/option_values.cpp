#include "tool/option_values.h"

#include <strings.h>

#include <charconv>

#include "tool/help_text.h"
#include "tool/suggestion.h"

namespace tool {

CLI::Validator OneOf(const std::vector<std::string>& words) {
  const auto check = [words](std::string& given) -> std::string {
    for (const std::string& word : words) {
      if (::strcasecmp(word.c_str(), given.c_str()) == 0) {
        given = word;
        return {};
      }
    }
    return "must be " + Enumerated(words, "or") + ", not '" + given + "'" +
           DidYouMean(given, words);
  };
  return {check, "{" + CLI::detail::join(words, ",") + "}"};
}

CLI::Validator Between(int lowest, int highest) {
  const std::string range = std::to_string(lowest) + " to " + std::to_string(highest);
  const auto check = [=](std::string& given) -> std::string {
    int number = 0;
    const char* const end = given.data() + given.size();
    const auto [after, error] = std::from_chars(given.data(), end, number);
    if (error == std::errc() && after == end && number >= lowest && number <= highest) return {};
    return "must be a whole number of " + range + ", not '" + given + "'";
  };
  return {check, range};
}

}  // namespace tool
