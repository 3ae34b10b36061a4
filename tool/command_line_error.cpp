#include "tool/command_line_error.h"

#include <CLI/CLI.hpp>

#include "tool/exit_status.h"
#include "tool/help_text.h"
#include "tool/option_table.h"
#include "tool/shell_completion.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

std::string SeeHelp(const CommandEntry& command) { return "; see " + command.name + " --help"; }

// The first word that nothing took, options before others; empty when there is none.
std::string FirstExtra(const CLI::App& command) {
  const std::vector<std::string> extras = command.remaining();
  for (const std::string& word : extras) {
    if (word.size() > 1 && word[0] == '-') return word;
  }
  return extras.empty() ? std::string() : extras.front();
}

std::string ExplainExtra(const CommandEntry& entry, const std::string& word) {
  if (word[0] == '-') {
    const std::string name = word.substr(0, word.find('='));
    return "there is no option '" + name + "'" + DidYouMean(name, NamesOf(entry.options)) +
           SeeHelp(entry);
  }
  if (entry.commands.empty()) return "'" + word + "' is too much; usage: " + entry.Usage();
  std::vector<std::string> names;
  for (const CommandEntry& command : entry.commands) names.push_back(command.OwnName());
  const std::string meant = DidYouMean(word, names);
  return "there is no command '" + word + "'" +
         (meant.empty() ? "; there are " + Enumerated(names, "and") : meant) + SeeHelp(entry);
}

// What is required and was not given.
std::string Missing(const CLI::App& command, const CommandEntry& entry) {
  std::vector<std::string> missing;
  for (const std::vector<OptionEntry>* entries : {&entry.arguments, &entry.options}) {
    for (const OptionEntry& option : *entries) {
      if (!option.required || command.count(option.names[0]) > 0) continue;
      missing.push_back(option.names[0] + (option.value.empty() ? "" : " " + option.value));
    }
  }
  return Enumerated(missing, "and") + (missing.size() == 1 ? " is" : " are") +
         " missing; usage: " + entry.Usage();
}

// A wrong number of values: the error's text starts with the option's name.
std::string ExplainMismatch(const CLI::App& command, const std::string& text) {
  const std::string name = text.substr(0, text.find(':'));
  const CLI::Option* option = command.get_option_no_throw(name);
  if (option == nullptr) return text;
  if (option->count() > 1) return name + " is given more than once";
  const std::string typeName = option->get_type_name();
  return name + " needs a value: " + name + " " + typeName.substr(0, typeName.find(':'));
}

}  // namespace

std::string Explain(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> parsed = app.get_subcommands();
  const CLI::App& command = parsed.empty() ? app : *parsed.front();
  const CommandEntry entry = Describe(command);
  const std::string extra = FirstExtra(command);
  if (!extra.empty()) return ExplainExtra(entry, extra);
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) return Missing(command, entry);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return ExplainMismatch(command, error.what());
  }
  std::string text = error.what();
  const std::size_t must = text.find(": must be ");
  if (must != std::string::npos) text.erase(must, 1);
  return text;
}

void CheckDashes(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* command = &app;
  for (const std::string& word : words) {
    if (word == "--") return;
    if (command == &app && !word.empty() && word[0] != '-') {
      const auto found =
          app.get_subcommands([&](const CLI::App* one) { return one->get_name() == word; });
      if (found.empty()) return;
      command = found.front();
    }
    const std::string meant = "-" + word.substr(0, word.find('='));
    if (word.size() > 2 && word[0] == '-' && word[1] != '-' &&
        command->get_option_no_throw(meant) != nullptr) {
      throw UsageError("there is no option '" + meant.substr(1) + "'; did you mean '" + meant +
                       "'?");
    }
  }
}

}  // namespace tool
