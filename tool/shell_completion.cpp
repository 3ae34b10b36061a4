#include "tool/shell_completion.h"

#include <algorithm>
#include <sstream>

namespace tool {

std::vector<std::string> WordsOf(const OptionEntry& option) {
  std::vector<std::string> words = option.allowed;
  int lowest = 0, highest = 0;
  std::string to;
  std::istringstream range(option.range);
  range >> lowest >> to >> highest;
  if (!range || highest - lowest >= 10) return words;
  for (int number = lowest; number <= highest; ++number) words.push_back(std::to_string(number));
  return words;
}

Completion CompletionOf(const OptionEntry& option) {
  const std::string& wanted = option.Wanted();
  if (!WordsOf(option).empty()) return Completion::kWords;
  if (wanted == "METHOD") return Completion::kMethods;
  if (wanted == "CHECK") return Completion::kChecks;
  if (wanted == "DIR") return Completion::kFolders;
  const std::vector<std::string> numbers = {"N", "NUMBER", "SECONDS", "LEFT,TOP,WIDTH,HEIGHT"};
  const bool isNumber = std::find(numbers.begin(), numbers.end(), wanted) != numbers.end();
  return wanted.empty() || isNumber || !option.range.empty() ? Completion::kNothing
                                                             : Completion::kFiles;
}

std::string ListMethods(const std::string& tool) {
  return tool + R"( methods 2>/dev/null | sed -n 's/^  0x[0-9a-f]*  \([A-Za-z0-9_]*\)(.*/\1/p')";
}

std::string ListChecks(const std::string& tool) {
  return tool + " validate --list 2>/dev/null | sed -n '/^[a-z]/p'";
}

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : " ") + text;
  return joined;
}

std::vector<std::string> NamesOf(const std::vector<OptionEntry>& options, bool valued) {
  std::vector<std::string> names;
  for (const OptionEntry& option : options) {
    if (valued && option.value.empty()) continue;
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

}  // namespace tool
