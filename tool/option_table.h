// What the command line offers, read from the commands' own options. The help, the manual page and
// the completions are written from this.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tool {

struct OptionEntry {
  std::vector<std::string> names;    // "-o", "--output"; of an argument: its one name
  std::string value;                 // "OUT"; empty for flags and arguments
  std::string purpose;               // without a stop at its end
  std::vector<std::string> allowed;  // the words it may be; empty when they are not fixed
  std::string range;                 // "1 to 64"; empty when there is none
  std::string standard;              // the default value; empty when there is none
  bool required = false;
  bool repeats = false;  // an argument that takes several words

  // "METHOD", "OUT": what a person writes there; empty for flags.
  const std::string& Wanted() const { return value.empty() && !IsOption() ? names[0] : value; }
  bool IsOption() const { return names[0][0] == '-'; }
};

// A part of what follows the options. With a title: its lines as they were written, without their
// indentation by two spaces. Without one: its paragraphs, each in one line.
struct HelpSection {
  std::string title;  // "Examples"
  std::vector<std::string> lines;
};

struct CommandEntry {
  std::string name;  // "picturehost run"
  std::string purpose;
  std::vector<OptionEntry> arguments;
  std::vector<OptionEntry> options;
  std::vector<CommandEntry> commands;
  std::vector<HelpSection> sections;  // of the footer

  // "picturehost run IN METHOD [ARGS...] -o OUT [OPTIONS]"
  std::string Usage() const;
  // The last word of the name.
  std::string OwnName() const;
};

// Without what is hidden (the group ""). In a footer, a line that ends with a colon before indented
// lines is the title of a section with these; all other text is paragraphs, divided by empty lines.
CommandEntry Describe(const CLI::App& command);

}  // namespace tool
