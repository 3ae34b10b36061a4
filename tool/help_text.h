// The text that --help prints.
#pragma once

#include <string>

#include "tool/option_table.h"

namespace tool {

// At most 80 columns wide, but for words and examples that are longer by themselves.
std::string HelpText(const CommandEntry& command);

// What the tool prints when it is called without a word: what it does, the first two of its
// examples, the commands, and where to read on.
std::string Overview(const CommandEntry& tool);

// What an option says of itself in every document: its purpose, then in parentheses what it may be
// and its default.
std::string OptionText(const OptionEntry& option);

// "red, green or blue", with `last` before the last of several.
std::string Enumerated(const std::vector<std::string>& words, const std::string& last);

// "-o, --output OUT"
std::string OptionHead(const OptionEntry& option);

}  // namespace tool
