// picturehost sample: draws one of the project's own test pictures.
#include <CLI/CLI.hpp>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/picture_files.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

struct SampleOptions {
  std::string name;
  std::string output;
};

std::string Names() {
  std::string names;
  for (const TestPicture& picture : TestPictures()) {
    names +=
        std::string(names.empty() ? "" : ", ") + picture.name + " (" + picture.description + ")";
  }
  return names;
}

int Draw(const SampleOptions& options) {
  for (const TestPicture& picture : TestPictures()) {
    if (options.name == picture.name) {
      CheckOutput(options.output);
      SavePicture(picture.draw(), options.output);
      return kExitOk;
    }
  }
  throw UsageError("there is no test picture '" + options.name + "'; there are " + Names());
}

}  // namespace

void AddSampleCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<SampleOptions>();
  CLI::App* command = app.add_subcommand("sample", "Draw one of the project's own test pictures");
  command->add_option("NAME", options->name, Names())->type_name("")->required();
  command->add_option("-o,--output", options->output, "Where to save it: .png or .jpg")
      ->type_name("OUT")
      ->required();
  command->callback([options, &chosen] { chosen = [options] { return Draw(*options); }; });
}

}  // namespace tool
