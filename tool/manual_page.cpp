#include "tool/manual_page.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>

#include "tool/help_text.h"

namespace tool {
namespace {

// What has no place in the help.
constexpr const char* kOwnSections = R"(.SH ENVIRONMENT
.TP
.B NO_COLOR
When it is set and not empty, no progress is shown on a terminal.
.SH FILES
.TP
.I ../lib/varnell/Varnell.so
The plug\-in, as seen from the folder of the tool; one beside the tool comes first.
.TP
.I ../share/doc/varnell
The methods, the pixel formats and the history of versions.
.SH SEE ALSO
.BR cmp (1),
.BR diff (1)
)";

// ASCII text that stands for itself, also at the start of a line and in an argument of a macro.
std::string Plain(const std::string& text) {
  static const std::map<char, const char*> escapes = {
      {'\\', "\\(rs"}, {'-', "\\-"},   {'"', "\\(dq"}, {'\'', "\\(aq"},
      {'`', "\\(ga"},  {'^', "\\(ha"}, {'~', "\\(ti"},
  };
  std::string plain = text.empty() || text[0] != '.' ? "" : "\\&";
  for (const char c : text) {
    const auto escape = escapes.find(c);
    plain += escape == escapes.end() ? std::string(1, c) : escape->second;
  }
  return plain;
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return char(std::toupper(c)); });
  return text;
}

std::string Bold(const std::string& text) { return "\\fB" + Plain(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Plain(text) + "\\fR"; }

// A usage line: what is typed as it stands in bold, what stands for something else in italics.
std::string Emphasised(const std::string& usage) {
  std::string text;
  std::istringstream words(usage);
  for (std::string word; words >> word;) {
    const bool isPlaceholder = std::none_of(word.begin(), word.end(),
                                            [](unsigned char c) { return std::islower(c) != 0; });
    text +=
        (text.empty() ? "" : " ") + (isPlaceholder && word[0] != '-' ? Italic(word) : Bold(word));
  }
  return text;
}

std::string Head(const OptionEntry& option) {
  std::string head;
  if (!option.IsOption()) return Italic(OptionHead(option));
  for (const std::string& name : option.names) head += (head.empty() ? "" : ", ") + Bold(name);
  return option.value.empty() ? head : head + " " + Italic(option.value);
}

std::string LowerFirst(std::string text) {
  if (!text.empty()) text[0] = char(std::tolower(static_cast<unsigned char>(text[0])));
  return text;
}

std::string Tagged(const std::string& head, const std::string& text) {
  return ".TP\n" + head + "\n" + Plain(text) + "\n";
}

bool IsExamples(const HelpSection& section) { return section.title == "Examples"; }

std::string Verbatim(const std::vector<std::string>& lines) {
  std::string text = ".EX\n";
  for (const std::string& line : lines) text += Plain(line) + "\n";
  return text + ".EE\n";
}

// Lines such as "0  done" become tagged paragraphs; what is indented further goes on with the text.
std::string Definitions(const std::vector<std::string>& lines) {
  std::vector<std::pair<std::string, std::string>> found;
  for (const std::string& line : lines) {
    const std::size_t gap = line.find("  ");
    const std::size_t text = line.find_first_not_of(' ', gap == 0 ? 0 : gap);
    if (gap == 0 && !found.empty()) {
      found.back().second += " " + line.substr(text);
    } else if (gap != std::string::npos && gap != 0) {
      found.emplace_back(line.substr(0, gap), line.substr(text));
    } else {
      return Verbatim(lines);
    }
  }
  std::string text;
  for (const auto& [head, rest] : found) text += Tagged(Bold(head), rest);
  return text;
}

std::string Paragraphs(const CommandEntry& command) {
  std::string text;
  for (const HelpSection& section : command.sections) {
    if (!section.title.empty()) continue;
    for (const std::string& paragraph : section.lines) text += ".PP\n" + Plain(paragraph) + "\n";
  }
  return text;
}

// Every command has --help; the page says so once.
std::string Options(const std::vector<OptionEntry>& options) {
  std::string text;
  for (const OptionEntry& option : options) {
    if (option.names.back() != "--help") text += Tagged(Head(option), OptionText(option));
  }
  return text;
}

std::string Command(const CommandEntry& command) {
  std::string text = ".SS " + Bold(command.OwnName()) + "\n" + Emphasised(command.Usage()) + "\n";
  text += ".PP\n" + Plain(command.purpose) + ".\n";
  text += Options(command.arguments) + Options(command.options);
  text += Paragraphs(command);
  for (const HelpSection& section : command.sections) {
    if (section.title.empty() || IsExamples(section)) continue;
    text += ".PP\n" + Plain(section.title) + ":\n" + Definitions(section.lines);
  }
  return text;
}

// A heading starts a paragraph by itself.
std::string AfterHeading(const std::string& text) { return text.substr(text.find('\n') + 1); }

std::string Examples(const CommandEntry& command) {
  std::string text;
  for (const HelpSection& section : command.sections) {
    if (IsExamples(section)) text += ".PP\n" + Verbatim(section.lines);
  }
  for (const CommandEntry& inner : command.commands) text += Examples(inner);
  return text;
}

}  // namespace

std::string ManualPage(const CommandEntry& tool, const std::string& version) {
  std::string text = ".TH " + Plain(Upper(tool.name)) + " 1 \"\" \"" + Plain(tool.name) + " " +
                     Plain(version) + "\" \"User Commands\"\n";
  text += ".SH NAME\n" + Plain(tool.name) + " \\- " + Plain(LowerFirst(tool.purpose)) + "\n";
  text += ".SH SYNOPSIS\n";
  for (const CommandEntry& command : tool.commands) text += Emphasised(command.Usage()) + "\n.br\n";
  text += Emphasised(tool.name + " --help") + "\n";
  text += ".SH DESCRIPTION\n" + AfterHeading(Paragraphs(tool));
  text += ".SH OPTIONS\n" +
          Tagged(Bold("-h") + ", " + Bold("--help"), "Show help; of a command, after its name");
  text += Options(tool.options);
  text += ".SH COMMANDS\n";
  for (const CommandEntry& command : tool.commands) text += Command(command);
  text += ".SH EXAMPLES\n" + AfterHeading(Examples(tool));
  for (const HelpSection& section : tool.sections) {
    if (section.title.empty() || IsExamples(section)) continue;
    text += ".SH " + Plain(Upper(section.title)) + "\n" + Definitions(section.lines);
  }
  return text + kOwnSections;
}

}  // namespace tool
