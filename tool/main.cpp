// picturehost: runs the methods of a picture plug-in on picture files.
#include <CLI/CLI.hpp>
#include <csignal>
#include <new>

#include "tool/command.h"
#include "tool/exit_status.h"

// NOLINTNEXTLINE(bugprone-exception-escape): what is thrown before the parsing is a mistake in it.
int main(int argc, char** argv) {
  // A file that grows beyond its limit is a failed write, not the end of the program.
  std::signal(SIGXFSZ, SIG_IGN);

  CLI::App app("Runs the methods of a picture plug-in on picture files, in a stand-in host.",
               "picturehost");
  app.set_version_flag("--version", "picturehost " PICTUREHOST_VERSION);
  app.require_subcommand(1);
  app.footer(
      "picturehost COMMAND --help tells more about each command.\n"
      "Exit status: 0 done, 1 failed (the plug-in refused, the output cannot be written),\n"
      "2 not understood (bad command line, unknown method, not a picture).");
  tool::Action chosen;
  tool::AddRunCommand(app, chosen);
  tool::AddMethodsCommand(app, chosen);
  tool::AddSampleCommand(app, chosen);
  tool::AddInfoCommand(app, chosen);
  tool::AddSheetCommand(app, chosen);
  tool::AddValidateCommand(app, chosen);

  try {
    app.parse(argc, argv);
    return chosen();
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    tool::Complain(error.what());
    return tool::kExitUsage;
  } catch (const tool::UsageError& error) {
    tool::Complain(error.what());
    return tool::kExitUsage;
  } catch (const std::bad_alloc&) {
    tool::Complain("out of memory");
  } catch (const std::exception& error) {
    tool::Complain(error.what());
  }
  return tool::kExitFailure;
}
