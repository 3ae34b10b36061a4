// picturehost: runs the methods of a picture plug-in on picture files.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <memory>
#include <new>

#include "tool/command.h"
#include "tool/command_line_error.h"
#include "tool/exit_status.h"
#include "tool/help_text.h"
#include "tool/option_table.h"

namespace {

constexpr const char* kFooter =
    "The plug-in is Varnell.so beside this tool or in ../lib/varnell; --plugin names another. "
    "Results "
    "go to standard output or the named files, all else to standard error.\n\n"
    "Examples:\n"
    "  picturehost run photo.jpg ScaleZVQ 400 300 -o small.png\n"
    "  picturehost run photo.jpg BlurZVQ Radius=8 -o blurred.png\n\n"
    "Exit status:\n"
    "  0  done; help was asked for, or no command given\n"
    "  1  failed: the plug-in refused, raised an exception, leaked or misused\n"
    "     something, a check failed, pictures differ, an output cannot be written\n"
    "  2  not understood: bad command line, unknown method or check, wrong number\n"
    "     or kind of argument, no such file, not a picture, not a plug-in\n"
    "  130  ended by Ctrl-C; 128 and the number of the signal by another one\n\n"
    "Each failure is one line on standard error. picturehost COMMAND --help tells more about a "
    "command.";

class HelpFormatter : public CLI::FormatterBase {
 public:
  std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override {
    return tool::HelpText(tool::Describe(*app));
  }
};

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): what is thrown before the parsing is a mistake in it.
int main(int argc, char** argv) {
  // A file that grows beyond its limit is a failed write, not the end of the program.
  std::signal(SIGXFSZ, SIG_IGN);

  CLI::App app("Run the methods of a picture plug-in on picture files, in a stand-in host",
               "picturehost");
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_help_flag("-h,--help", "Show this help");
  app.set_version_flag("--version", "picturehost " PICTUREHOST_VERSION, "Show the version");
  app.require_subcommand(1);
  tool::Action chosen;
  tool::AddRunCommand(app, chosen);
  tool::AddMethodsCommand(app, chosen);
  tool::AddSampleCommand(app, chosen);
  tool::AddInfoCommand(app, chosen);
  tool::AddCompareCommand(app, chosen);
  tool::AddSheetCommand(app, chosen);
  tool::AddGalleryCommand(app, chosen);
  tool::AddValidateCommand(app, chosen);
  tool::AddDocumentationCommands(app, chosen);
  app.footer(kFooter);  // last, for commands inherit it

  try {
    if (argc <= 1) {
      chosen = [&app] {
        std::fputs(tool::Overview(tool::Describe(app)).c_str(), stdout);
        return tool::kExitOk;
      };
    } else {
      tool::CheckDashes(app, {argv + 1, argv + argc});
      app.parse(argc, argv);
    }
    const int status = chosen();
    tool::CheckPrinted();
    return status;
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    tool::Complain(tool::Explain(app, error));
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
