#include "tool/run_words.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "tool/exit_status.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

bool IsThere(const std::string& file) {
  std::error_code ignored;
  return std::filesystem::exists(file, ignored);
}

bool MayBeMethod(const std::string& word) {
  return !word.empty() && std::isdigit(static_cast<unsigned char>(word[0])) == 0 &&
         std::all_of(word.begin(), word.end(),
                     [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

// The word that was most likely meant for the method.
std::string Mistyped(const std::vector<std::string>& words) {
  for (const bool likeMethod : {true, false}) {
    for (std::size_t i = 1; i < words.size(); ++i) {
      if (!IsThere(words[i]) && (!likeMethod || MayBeMethod(words[i]))) return words[i];
    }
  }
  return words.back();
}

[[noreturn]] void RejectMethod(const std::string& word,
                               const std::vector<host::Declaration>& methods) {
  std::vector<std::string> names;
  for (const host::Declaration& method : methods) names.push_back(method.name);
  const std::string meant = DidYouMean(word, names);
  throw UsageError("the plug-in has no method '" + word + "'" +
                   (meant.empty() ? "; picturehost methods lists what it has" : meant));
}

}  // namespace

bool MayBeInput(const std::string& word) { return !MayBeMethod(word) || IsThere(word); }

RunWords Divide(const std::vector<std::string>& words,
                const std::vector<host::Declaration>& methods) {
  for (std::size_t i = 1; i < words.size(); ++i) {
    for (const host::Declaration& method : methods) {
      if (strcasecmp(method.name.c_str(), words[i].c_str()) != 0) continue;
      const auto place = words.begin() + std::ptrdiff_t(i);
      return {{words.begin(), place}, method, {place + 1, words.end()}};
    }
  }
  RejectMethod(Mistyped(words), methods);
}

}  // namespace tool
