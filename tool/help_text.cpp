#include "tool/help_text.h"

#include <sstream>

namespace tool {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kTextColumn = 26;

// `head`, then the words of `text` from `column` on; below a head that is too long.
std::string Wrapped(const std::string& head, const std::string& text, std::size_t column) {
  std::string lines;
  std::string line = head;
  if (!head.empty() && head.size() + 1 > column) {
    lines = head + "\n";
    line.clear();
  }
  line.resize(column, ' ');
  std::istringstream words(text);
  bool first = true;
  for (std::string word; words >> word; first = false) {
    if (!first && line.size() + 1 + word.size() > kWidth) {
      lines += line + "\n";
      line.assign(column, ' ');
      first = true;
    }
    line += (first ? "" : " ") + word;
  }
  return lines + line + "\n";
}

std::string Entries(const std::string& title, const std::vector<OptionEntry>& entries) {
  if (entries.empty()) return {};
  std::string text = "\n" + title + ":\n";
  for (const OptionEntry& entry : entries) {
    text += Wrapped("  " + OptionHead(entry), OptionText(entry), kTextColumn);
  }
  return text;
}

std::string Commands(const CommandEntry& command) {
  if (command.commands.empty()) return {};
  std::string text = "\nCommands:\n";
  for (const CommandEntry& inner : command.commands) {
    text += Wrapped("  " + inner.OwnName(), inner.purpose, kTextColumn / 2);
  }
  return text;
}

std::string SectionText(const HelpSection& section) {
  std::string text = "\n";
  if (section.title.empty()) {
    for (const std::string& paragraph : section.lines) {
      text += (text.size() > 1 ? "\n" : "") + Wrapped("", paragraph, 0);
    }
    return text;
  }
  text += section.title + ":\n";
  for (const std::string& line : section.lines) text += "  " + line + "\n";
  return text;
}

}  // namespace

std::string Enumerated(const std::vector<std::string>& words, const std::string& last) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " " + last + " " : ", ";
    text += words[i];
  }
  return text;
}

std::string OptionHead(const OptionEntry& option) {
  std::string head;
  for (const std::string& name : option.names) head += (head.empty() ? "" : ", ") + name;
  if (option.repeats) head += "...";
  return option.value.empty() ? head : head + " " + option.value;
}

std::string OptionText(const OptionEntry& option) {
  std::string remarks = option.range;
  if (!option.allowed.empty()) remarks = Enumerated(option.allowed, "or");
  if (!option.standard.empty()) {
    remarks += (remarks.empty() ? "default: " : "; default: ") + option.standard;
  }
  return remarks.empty() ? option.purpose : option.purpose + " (" + remarks + ")";
}

std::string Overview(const CommandEntry& tool) {
  std::string text = Wrapped("", tool.purpose, 0);
  for (const HelpSection& section : tool.sections) {
    if (section.title != "Examples") continue;
    text += "\nExamples:\n";
    for (std::size_t i = 0; i < 2 && i < section.lines.size(); ++i) {
      text += "  " + section.lines[i] + "\n";
    }
  }
  return text + Commands(tool) + "\n" + tool.name + " --help tells more, " + tool.name +
         " COMMAND --help all about a command.\n";
}

std::string HelpText(const CommandEntry& command) {
  std::string text = Wrapped("", command.purpose, 0) + "\n";
  text += Wrapped("Usage:", command.Usage(), 7);
  text += Commands(command);
  text += Entries("Arguments", command.arguments);
  text += Entries("Options", command.options);
  bool tellsStatus = !command.commands.empty();
  for (const HelpSection& section : command.sections) {
    text += SectionText(section);
    tellsStatus = tellsStatus || section.title == "Exit status";
  }
  if (!tellsStatus) text += "\nExit status: 0 done, 1 failed, 2 not understood.\n";
  return text;
}

}  // namespace tool
