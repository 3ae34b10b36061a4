// picturehost compare: tells whether two pictures are the same, and by how much they differ.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <memory>

#include "tool/command.h"
#include "tool/exit_status.h"
#include "tool/json_text.h"
#include "tool/option_values.h"
#include "tool/picture_difference.h"
#include "tool/picture_files.h"

namespace tool {
namespace {

constexpr const char* kChannelNames[] = {"red", "green", "blue", "alpha"};

struct CompareOptions {
  std::string first;
  std::string second;
  std::string output;
  int gain = 0;  // 0: the largest whole one that keeps the largest difference below 256
  int tolerance = 0;
  bool json = false;
  bool quiet = false;
};

std::string Size(const Bitmap& picture) {
  return std::to_string(picture.width) + "x" + std::to_string(picture.height);
}

int Gain(const CompareOptions& options, const PictureDifference& found) {
  if (options.gain > 0) return options.gain;
  return found.all.largest > 0 ? 255 / found.all.largest : 1;
}

void PrintRow(const char* name, const SampleDifference& found) {
  std::string place = "-";
  if (found.largest > 0) place = std::to_string(found.x) + "," + std::to_string(found.y);
  std::printf("%-8s %10.6g %10.6g %8.2f %8d  %-12s %lld\n", name, found.mean, found.rms,
              found.Psnr(), found.largest, place.c_str(), static_cast<long long>(found.pixels));
}

void PrintTable(const CompareOptions& options, const Bitmap& picture,
                const PictureDifference& found) {
  std::printf("channel        mean        RMS  PSNR/dB  largest  at x,y       pixels\n");
  for (std::size_t i = 0; i < found.channels.size(); ++i) {
    PrintRow(kChannelNames[i], found.channels[i]);
  }
  PrintRow("all", found.all);
  if (found.all.largest == 0) {
    std::printf("The pictures are equal.\n");
    return;
  }
  const std::string within = " within the tolerance of " + std::to_string(options.tolerance);
  std::printf("The pictures %s%s: %lld of %lld pixels, the most in %s at %d,%d.\n",
              found.all.largest > options.tolerance ? "differ" : "are equal",
              found.all.largest > options.tolerance ? "" : within.c_str(),
              static_cast<long long>(found.all.pixels),
              static_cast<long long>(picture.pixels.size()), kChannelNames[found.all.channel],
              found.all.x, found.all.y);
}

void PrintJsonMembers(const SampleDifference& found) {
  std::printf("\"mean\": %.17g, \"rms\": %.17g, \"pixels\": %lld, ", found.mean, found.rms,
              static_cast<long long>(found.pixels));
  if (found.largest == 0) {
    std::printf("\"psnr\": null, \"largest\": null");
  } else {
    std::printf("\"psnr\": %.17g, ", found.Psnr());
    std::printf("\"largest\": {\"difference\": %d, \"x\": %d, \"y\": %d, \"channel\": \"%s\"}",
                found.largest, found.x, found.y, kChannelNames[found.channel]);
  }
}

void PrintJson(const CompareOptions& options, const Bitmap& picture,
               const PictureDifference& found) {
  std::printf("{\n  \"first\": %s,\n  \"second\": %s,\n", JsonText(options.first).c_str(),
              JsonText(options.second).c_str());
  std::printf("  \"width\": %d,\n  \"height\": %d,\n", picture.width, picture.height);
  std::printf("  \"tolerance\": %d,\n  \"equal\": %s,\n", options.tolerance,
              found.all.largest > options.tolerance ? "false" : "true");
  if (!options.output.empty()) {
    std::printf("  \"picture\": {\"path\": %s, \"gain\": %d},\n", JsonText(options.output).c_str(),
                Gain(options, found));
  }
  std::printf("  \"all\": {");
  PrintJsonMembers(found.all);
  std::printf("},\n  \"channels\": {");
  for (std::size_t i = 0; i < found.channels.size(); ++i) {
    std::printf("%s\n    \"%s\": {", i == 0 ? "" : ",", kChannelNames[i]);
    PrintJsonMembers(found.channels[i]);
    std::printf("}");
  }
  std::printf("\n  }\n}\n");
}

int ComparePictures(const CompareOptions& options) {
  if (!options.output.empty()) CheckOutput(options.output);
  const Bitmap first = LoadPicture(options.first);
  const Bitmap second = LoadPicture(options.second);
  if (first.width != second.width || first.height != second.height) {
    throw UsageError("cannot compare '" + options.first + "' of " + Size(first) + " with '" +
                     options.second + "' of " + Size(second) + ": their sizes differ");
  }
  const PictureDifference found = Difference(first, second);
  if (!options.output.empty()) {
    SavePicture(DifferencePicture(first, second, Gain(options, found)), options.output);
  }
  if (options.json) {
    PrintJson(options, first, found);
  } else if (!options.quiet) {
    PrintTable(options, first, found);
    if (!options.output.empty()) {
      std::printf("%s shows the differences times %d.\n", options.output.c_str(),
                  Gain(options, found));
    }
  }
  CheckPrinted();
  return found.all.largest > options.tolerance ? kExitFailure : kExitOk;
}

// Status 1 means that the pictures differ, so all that goes wrong is status 2 here.
int Compare(const CompareOptions& options) {
  try {
    return ComparePictures(options);
  } catch (const std::bad_alloc&) {
    throw UsageError("out of memory");
  } catch (const Failure& failure) {
    throw UsageError(failure.what());
  }
}

}  // namespace

void AddCompareCommand(CLI::App& app, Action& chosen) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App* command = app.add_subcommand(
      "compare", "Tell whether two pictures are the same, and by how much they differ");
  command->add_option("A", options->first, "A picture: PNG, JPEG or BMP")
      ->type_name("")
      ->required();
  command->add_option("B", options->second, "Another of the same size")->type_name("")->required();
  command
      ->add_option("--tolerance", options->tolerance,
                   "Call pictures equal when no sample differs by more than this")
      ->type_name("N")
      ->check(Between(0, 255))
      ->capture_default_str();
  CLI::Option* output =
      command
          ->add_option(
              "-o,--output", options->output,
              "Save a picture of the absolute differences, times the gain: .png or .jpg. A "
              "difference of alpha shows as grey")
          ->type_name("OUT");
  command
      ->add_option(
          "--gain", options->gain,
          "What that picture multiplies differences by; without it, what makes the largest "
          "255 or nearly so, which the output states")
      ->type_name("N")
      ->check(Between(1, 255))
      ->needs(output);
  CLI::Option* json = command->add_flag("--json", options->json, "Print JSON");
  command->add_flag("-q,--quiet", options->quiet, "Print nothing; the exit status tells")
      ->excludes(json);
  command->footer(
      "Channels are red, green, blue, and alpha where either picture has it; alpha that is missing "
      "is 255. Colours of invisible pixels count too.\n\n"
      "PSNR is 10 * log10(255^2 / MSE) in decibels, infinite for equal pictures (null in JSON); "
      "MSE "
      "is the mean of the squared differences, RMS its square root. The mean is that of the "
      "absolute differences; the place of the largest one is the first in reading order.\n\n"
      "Examples:\n"
      "  picturehost compare before.png after.png\n"
      "  picturehost compare a.png b.png --tolerance 2 --quiet && echo close enough\n"
      "  picturehost compare a.png b.png -o difference.png --gain 16\n\n"
      "Exit status:\n"
      "  0  equal, or equal within the tolerance\n"
      "  1  different\n"
      "  2  could not compare: a file cannot be read or written, or the sizes differ");
  command->callback([options, &chosen] { chosen = [options] { return Compare(*options); }; });
}

}  // namespace tool
