// What lets bash and zsh complete the words of the command line.
#pragma once

#include <string>
#include <vector>

#include "tool/option_table.h"

namespace tool {

// A script for bash-completion's folder, which needs nothing of bash-completion itself.
std::string BashCompletion(const CommandEntry& tool);

// A function for zsh's $fpath.
std::string ZshCompletion(const CommandEntry& tool);

// What a value or an argument is completed with.
enum class Completion { kNothing, kWords, kFiles, kFolders, kMethods, kChecks };
Completion CompletionOf(const OptionEntry& option);

// Of kWords: the words that are allowed, or the numbers of a short range.
std::vector<std::string> WordsOf(const OptionEntry& option);

// Shell commands that print the names of the plug-in's methods, or of the checks, one in each line;
// `tool` is how the tool is called there.
std::string ListMethods(const std::string& tool);
std::string ListChecks(const std::string& tool);

// The texts with blanks between them.
std::string Joined(const std::vector<std::string>& texts);

// All names of the options; of those that take a value only, where `valued`.
std::vector<std::string> NamesOf(const std::vector<OptionEntry>& options, bool valued = false);

}  // namespace tool
