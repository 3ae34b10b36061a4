// The subcommands of picturehost. A new one is a file with an Add…Command function, declared here
// and called in main.cpp. Its help, the manual page and the completions are written from its
// options and its footer (option_table.h); names of values such as DIR and METHOD say what
// completes them (shell_completion.cpp).
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace tool {

// What to do once the command line is read: returns the exit status, or throws UsageError or
// Failure.
using Action = std::function<int()>;

// Each adds its subcommand with its options to `app`, and sets `chosen` when the command line names
// it. `chosen` must live as long as `app`; the actions outlive both.
void AddRunCommand(CLI::App& app, Action& chosen);
void AddMethodsCommand(CLI::App& app, Action& chosen);
void AddSampleCommand(CLI::App& app, Action& chosen);
void AddInfoCommand(CLI::App& app, Action& chosen);
void AddSheetCommand(CLI::App& app, Action& chosen);
void AddGalleryCommand(CLI::App& app, Action& chosen);
void AddValidateCommand(CLI::App& app, Action& chosen);
void AddCompareCommand(CLI::App& app, Action& chosen);
// Two that no help shows: `documentation` and `help`.
void AddDocumentationCommands(CLI::App& app, Action& chosen);

}  // namespace tool
