// What was wrong with a command line, told to the person who wrote it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace tool {

// One line: what is wrong, what was perhaps meant, and where to read on. `app` is what threw
// `error` when it parsed the command line.
std::string Explain(const CLI::App& app, const CLI::ParseError& error);

// Throws UsageError for a word such as "-output" where the option is "--output": it would be read
// as
// "-o utput". To be called before the parsing.
void CheckDashes(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace tool
