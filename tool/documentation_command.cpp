// picturehost help and picturehost documentation: what the commands say of themselves, for people,
// and as the manual page and the completions that are installed with the tool.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/help_text.h"
#include "tool/manual_page.h"
#include "tool/option_table.h"
#include "tool/option_values.h"
#include "tool/shell_completion.h"
#include "tool/suggestion.h"

namespace tool {
namespace {

int PrintDocument(const CommandEntry& tool, const std::string& kind) {
  std::string text;
  if (kind == "man") text = ManualPage(tool, PICTUREHOST_VERSION);
  if (kind == "bash") text = BashCompletion(tool);
  if (kind == "zsh") text = ZshCompletion(tool);
  std::fputs(text.c_str(), stdout);
  return kExitOk;
}

int PrintHelp(const CommandEntry& tool, const std::string& name) {
  if (name.empty()) {
    std::fputs(HelpText(tool).c_str(), stdout);
    return kExitOk;
  }
  std::vector<std::string> names;
  for (const CommandEntry& command : tool.commands) {
    if (command.OwnName() == name) {
      std::fputs(HelpText(command).c_str(), stdout);
      return kExitOk;
    }
    names.push_back(command.OwnName());
  }
  throw UsageError("there is no command '" + name + "'" + DidYouMean(name, names));
}

// Left out of all documents.
CLI::App* AddHidden(CLI::App& app, const char* name, const char* purpose) {
  CLI::App* command = app.add_subcommand(name, purpose);
  command->group("");
  return command;
}

}  // namespace

void AddDocumentationCommands(CLI::App& app, Action& chosen) {
  const auto word = std::make_shared<std::string>();
  CLI::App* documentation =
      AddHidden(app, "documentation", "Print the manual page or a shell's completion");
  documentation->add_option("KIND", *word, "What to print")
      ->type_name("")
      ->transform(OneOf({"man", "bash", "zsh"}))
      ->required();
  documentation->callback([&app, &chosen, word] {
    chosen = [&app, word] { return PrintDocument(Describe(app), *word); };
  });
  CLI::App* help = AddHidden(app, "help", "Show the help of a command");
  help->add_option("COMMAND", *word, "The command; without it, what all help starts with")
      ->type_name("");
  help->callback(
      [&app, &chosen, word] { chosen = [&app, word] { return PrintHelp(Describe(app), *word); }; });
}

}  // namespace tool
