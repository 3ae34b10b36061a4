#include "tool/option_table.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace tool {
namespace {

// What a validator says after the name of the value: "{desktop,web}" or "1 to 64".
void TakeRestriction(const std::string& typeName, OptionEntry& entry) {
  const std::size_t colon = typeName.find(':');
  if (colon == std::string::npos) return;
  const std::string text = typeName.substr(colon + 1);
  if (text.front() == '{' && text.back() == '}') {
    entry.allowed = CLI::detail::split(text.substr(1, text.size() - 2), ',');
  } else {
    entry.range = text;
  }
}

OptionEntry DescribeOption(const CLI::Option& option) {
  OptionEntry entry;
  if (option.get_positional()) {
    entry.names = {option.get_name(true)};
  } else {
    for (const std::string& name : option.get_snames()) entry.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) entry.names.push_back("--" + name);
  }
  const std::string typeName = option.get_type_name();
  const bool takesValue = option.get_items_expected_max() > 0;
  if (takesValue && !option.get_positional()) entry.value = typeName.substr(0, typeName.find(':'));
  entry.purpose = option.get_description();
  TakeRestriction(typeName, entry);
  if (takesValue) entry.standard = option.get_default_str();
  entry.required = option.get_required();
  entry.repeats =
      option.get_positional() && option.get_expected_max() >= CLI::detail::expected_max_vector_size;
  return entry;
}

bool IsIndented(const std::string& line) { return line.rfind("  ", 0) == 0; }

std::vector<HelpSection> Sections(const std::string& footer) {
  std::vector<std::string> lines;
  std::istringstream text(footer);
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  std::vector<HelpSection> sections;
  bool startsParagraph = true;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    if (line.empty()) {
      startsParagraph = true;
    } else if (IsIndented(line) && !sections.empty()) {
      sections.back().lines.push_back(line.substr(2));
    } else if (line.back() == ':' && i + 1 < lines.size() && IsIndented(lines[i + 1])) {
      sections.push_back({line.substr(0, line.size() - 1), {}});
    } else {
      if (sections.empty() || !sections.back().title.empty()) sections.push_back({});
      std::vector<std::string>& paragraphs = sections.back().lines;
      if (startsParagraph || paragraphs.empty()) {
        paragraphs.push_back(line);
      } else {
        paragraphs.back() += " " + line;
      }
      startsParagraph = false;
    }
  }
  return sections;
}

}  // namespace

std::string CommandEntry::Usage() const {
  std::string usage = name;
  if (!commands.empty()) usage += " COMMAND";
  for (const OptionEntry& argument : arguments) {
    const std::string word = argument.names[0] + (argument.repeats ? "..." : "");
    usage += argument.required ? " " + word : " [" + word + "]";
  }
  for (const OptionEntry& option : options) {
    if (option.required) usage += " " + option.names[0] + " " + option.value;
  }
  return usage + " [OPTIONS]";
}

std::string CommandEntry::OwnName() const { return name.substr(name.rfind(' ') + 1); }

CommandEntry Describe(const CLI::App& command) {
  CommandEntry entry;
  entry.name = command.get_name();
  for (const CLI::App* parent = command.get_parent(); parent != nullptr;
       parent = parent->get_parent()) {
    entry.name = parent->get_name() + " " + entry.name;
  }
  entry.purpose = command.get_description();
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_group().empty()) continue;
    (option->get_positional() ? entry.arguments : entry.options).push_back(DescribeOption(*option));
  }
  for (const CLI::App* inner : command.get_subcommands({})) {
    if (!inner->get_group().empty()) entry.commands.push_back(Describe(*inner));
  }
  entry.sections = Sections(command.get_footer());
  return entry;
}

}  // namespace tool
