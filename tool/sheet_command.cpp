// picturehost sheet: lays several pictures side by side, to compare them.
#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>

#include "tool/command.h"
#include "tool/contact_sheet.h"
#include "tool/exit_status.h"
#include "tool/option_values.h"
#include "tool/picture_files.h"

namespace tool {
namespace {

struct SheetOptions {
  std::vector<std::string> inputs;
  std::string part;
  SheetLayout layout;
  std::string output;
};

Part ParsePart(const std::string& text) {
  Part part;
  const char* at = text.data();
  const char* const end = at + text.size();
  bool fits = true;
  for (int* number : {&part.x, &part.y, &part.width, &part.height}) {
    if (number != &part.x) fits = fits && at != end && *at++ == ',';
    const auto [after, error] = std::from_chars(at, end, *number);
    fits = fits && error == std::errc();
    at = after;
  }
  if (!fits || at != end || part.width < 1 || part.height < 1) {
    throw UsageError("'" + text + "' is no part; it is LEFT,TOP,WIDTH,HEIGHT in pixels");
  }
  return part;
}

int Lay(SheetOptions options) {
  if (!options.part.empty()) options.layout.part = ParsePart(options.part);
  CheckOutput(options.output);
  std::vector<Bitmap> pictures;
  for (const std::string& input : options.inputs) pictures.push_back(LoadPicture(input));
  SavePicture(ContactSheet(pictures, options.layout), options.output);
  return kExitOk;
}

}  // namespace

void AddSheetCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<SheetOptions>();
  CLI::App* command =
      app.add_subcommand("sheet", "Lay pictures side by side on one sheet, to compare them by eye");
  command->add_option("IN", options->inputs, "The pictures, in reading order")
      ->type_name("")
      ->required();
  command
      ->add_option("--columns", options->layout.columns, "Pictures in a row; without it, all are")
      ->type_name("N")
      ->check(Between(1, 1000));
  command->add_option("--zoom", options->layout.zoom, "Magnify so many times, without smoothing")
      ->type_name("N")
      ->capture_default_str()
      ->check(Between(1, 64));
  command
      ->add_option("--part", options->part,
                   "Show only this part of each picture, counted in its own pixels")
      ->type_name("LEFT,TOP,WIDTH,HEIGHT");
  command->add_option("-o,--output", options->output, "Where to save it: .png or .jpg")
      ->type_name("OUT")
      ->required();
  command->footer(
      "Pictures stand 8 pixels apart on white, in cells of the size of the largest.\n\n"
      "Examples:\n"
      "  picturehost sheet before.png after.png -o sheet.png\n"
      "  picturehost sheet [1-7].png --columns 4 --part 20,30,16,16 --zoom 8 -o detail.png");
  command->callback([options, &chosen] { chosen = [options] { return Lay(*options); }; });
}

}  // namespace tool
