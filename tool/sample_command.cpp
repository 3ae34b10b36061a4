// picturehost sample: draws one of the project's own test pictures.
#include <CLI/CLI.hpp>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/option_values.h"
#include "tool/picture_files.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

struct SampleOptions {
  std::string name;
  std::string output;
};

std::vector<std::string> Names() {
  std::vector<std::string> names;
  for (const TestPicture& picture : TestPictures()) names.emplace_back(picture.name);
  return names;
}

int Draw(const SampleOptions& options) {
  CheckOutput(options.output);
  for (const TestPicture& picture : TestPictures()) {
    if (options.name == picture.name) SavePicture(picture.draw(), options.output);
  }
  return kExitOk;
}

std::string Footer() {
  std::string footer = "Pictures:\n";
  for (const TestPicture& picture : TestPictures()) {
    footer += "  " + std::string(picture.name) + "  " + picture.description + "\n";
  }
  return footer +
         "\nThey are the same bytes on every machine.\n\n"
         "Examples:\n"
         "  picturehost sample scene -o scene.png";
}

}  // namespace

void AddSampleCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<SampleOptions>();
  CLI::App* command = app.add_subcommand("sample", "Draw one of the project's own test pictures");
  command->add_option("NAME", options->name, "The picture")
      ->type_name("")
      ->transform(OneOf(Names()))
      ->required();
  command->add_option("-o,--output", options->output, "Where to save it: .png or .jpg")
      ->type_name("OUT")
      ->required();
  command->footer(Footer());
  command->callback([options, &chosen] { chosen = [options] { return Draw(*options); }; });
}

}  // namespace tool
