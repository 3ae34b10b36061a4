#include "tool/host_options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>

#include "tool/exit_status.h"
#include "tool/option_values.h"

namespace tool {
namespace {

const std::map<std::string, host::ApplicationKind> kKinds = {
    {"desktop", host::ApplicationKind::kDesktop},
    {"web", host::ApplicationKind::kWeb},
    {"console", host::ApplicationKind::kConsole},
    {"none", host::ApplicationKind::kNone},
};
const std::map<std::string, AlphaEntry> kAlphas = {
    {"channel", AlphaEntry::kChannel},
    {"mask", AlphaEntry::kMask},
    {"drop", AlphaEntry::kDrop},
};

std::string CheckVersion(const std::string& text) {
  char* end = nullptr;
  const double version = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !std::isfinite(version) || version < 0) {
    return "must be a number such as 2013.04, not '" + text + "'";
  }
  return {};
}

}  // namespace

int AlphaPixelFormat(int pixelFormat) { return pixelFormat % 2 == 1 ? 1 : 2; }

host::RuntimeOptions HostOptions::Runtime() const {
  host::RuntimeOptions options;
  options.version = version;
  options.kind = kKinds.at(kind);
  options.newPixelFormat = pixelFormat;
  options.alphaPixelFormat = AlphaPixelFormat(pixelFormat);
  options.newFill = {255, 255, 255, 255};
  options.newAlphaFill = {0, 0, 0, 0};
  return options;
}

AlphaEntry HostOptions::Alpha() const { return kAlphas.at(alpha); }

PluginFile HostOptions::Plugin() const {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!plugin.empty()) return PluginFile(plugin);
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const fs::path& candidate :
       {folder / "Varnell.so", (folder / "../lib/varnell/Varnell.so").lexically_normal()}) {
    if (fs::is_regular_file(candidate, error)) return PluginFile(candidate.string());
  }
  throw UsageError("no plug-in beside " + (folder / "picturehost").string() +
                   "; name one with --plugin");
}

void HostOptions::Follow(host::Runtime& runtime) const {
  if (!trace) return;
  runtime.Calls().onLine = [](const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
  };
}

void AddHostOptions(CLI::App& command, HostOptions& options) {
  command
      .add_option("--plugin", options.plugin,
                  "The plug-in: a library, or a package or its folder (default: Varnell.so "
                  "beside this tool or in ../lib/varnell)")
      ->type_name("PATH");
  command.add_option("--host-version", options.version, "The version the host reports")
      ->type_name("NUMBER")
      ->check(CLI::Validator(CheckVersion, ""))
      ->capture_default_str();
  command.add_option("--kind", options.kind, "The kind of application")
      ->type_name("KIND")
      ->transform(OneOf({"desktop", "web", "console", "none"}))
      ->capture_default_str();
  command
      .add_option("--pixel-format", options.pixelFormat,
                  "The format of bitmap contexts; console and web hosts have host buffers")
      ->type_name("FORMAT")
      ->check(Between(1, 6))
      ->capture_default_str();
  command
      .add_option("--alpha", options.alpha,
                  "How a picture with transparency enters the host: with an alpha channel, as an "
                  "opaque picture with a mask, or opaque")
      ->type_name("WAY")
      ->transform(OneOf({"channel", "mask", "drop"}))
      ->capture_default_str();
  command.add_flag("--trace", options.trace, "Write every host call to standard error, in order");
}

}  // namespace tool
