// picturehost info: the size of a picture file and whether it has transparency, for scripts.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/json_text.h"
#include "tool/picture_files.h"

namespace tool {
namespace {

struct InfoOptions {
  std::string input;
  bool json = false;
};

int Inform(const InfoOptions& options) {
  const Bitmap picture = LoadPicture(options.input);
  if (options.json) {
    std::printf("{\"file\": %s, \"width\": %d, \"height\": %d, \"alpha\": %s}\n",
                JsonText(options.input).c_str(), picture.width, picture.height,
                picture.hasAlpha ? "true" : "false");
  } else {
    std::printf("%d %d %s\n", picture.width, picture.height, picture.hasAlpha ? "alpha" : "opaque");
  }
  return kExitOk;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<InfoOptions>();
  CLI::App* command = app.add_subcommand(
      "info", "Print width, height and 'alpha' or 'opaque' of a picture file, on one line");
  command->add_option("IN", options->input, "The picture")->type_name("")->required();
  command->add_flag("--json", options->json,
                    "Print a JSON object: file, width, height, alpha (true or false)");
  command->footer(
      "Examples:\n"
      "  picturehost info photo.jpg\n"
      "  picturehost info photo.jpg --json");
  command->callback([options, &chosen] { chosen = [options] { return Inform(*options); }; });
}

}  // namespace tool
