// picturehost info: the size of a picture file and whether it has transparency, for scripts.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/picture_files.h"

namespace tool {

void AddInfoCommand(CLI::App& app, Action& chosen) {
  const auto input = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "info", "Print width, height and 'alpha' or 'opaque' of a picture file, on one line");
  command->add_option("IN", *input, "The picture")->type_name("")->required();
  command->callback([input, &chosen] {
    chosen = [input] {
      const Bitmap picture = LoadPicture(*input);
      std::printf("%d %d %s\n", picture.width, picture.height,
                  picture.hasAlpha ? "alpha" : "opaque");
      return kExitOk;
    };
  });
}

}  // namespace tool
