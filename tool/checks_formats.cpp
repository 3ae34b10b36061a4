// Pixel formats and kinds of application: the same colours everywhere.
#include <map>

#include "tool/check_bench.h"

namespace tool {
namespace {

using host::ApplicationKind;

// What a use makes: the colours of its result, or of the receiver where it returns none.
std::vector<std::uint32_t> ColoursOf(Bench& bench, const Use& use, Picture* receiver,
                                     Picture* second, const Picture** seen = nullptr) {
  const auto report = bench.Call(use.method, receiver, Bench::Arguments(use, second));
  const Picture* picture = report.ResultPicture();
  if (picture == nullptr) {
    const bool* done = std::get_if<bool>(&report.result);
    Require(done != nullptr && *done, use.Text() + " was refused.");
    picture = receiver;
  }
  if (seen != nullptr) *seen = picture;
  std::vector<std::uint32_t> colours;
  for (int y = 0; y < picture->Height(); ++y) {
    for (int x = 0; x < picture->Width(); ++x) {
      const Rgba colour = picture->Get(x, y);
      colours.push_back(colour.r | std::uint32_t(colour.g) << 8 | std::uint32_t(colour.b) << 16);
    }
  }
  return colours;
}

std::vector<std::vector<std::uint32_t>> ColoursOfAll(Bench& bench) {
  std::vector<std::vector<std::uint32_t>> all;
  for (const Use& use : Uses()) {
    all.push_back(ColoursOf(bench, use, bench.Receiver(), bench.Pattern(4, 3, false, 5)));
  }
  return all;
}

void RequireTheSame(const CheckContext& context, const host::RuntimeOptions& options,
                    const std::vector<std::vector<std::uint32_t>>& expected,
                    const std::string& where) {
  Bench bench(context, options);
  const auto all = ColoursOfAll(bench);
  for (std::size_t i = 0; i < all.size(); ++i) {
    Require(all[i] == expected[i], Uses()[i].Text() + " makes other colours " + where + ".");
  }
}

std::vector<std::vector<std::uint32_t>> UsualColours(const CheckContext& context) {
  Bench bench(context);
  return ColoursOfAll(bench);
}

void EveryPixelFormat(const CheckContext& context) {
  const auto expected = UsualColours(context);
  for (int format = 5; format <= 6; ++format) {
    host::RuntimeOptions options;
    options.newPixelFormat = format;
    RequireTheSame(context, options, expected, "in format " + std::to_string(format));
  }
  // Pictures in the formats of alpha channels, but opaque; new pictures are in format 6.
  for (int format = 1; format <= 4; ++format) {
    Bench bench(context);
    for (std::size_t i = 0; i < Uses().size(); ++i) {
      host::PictureSpec spec = bench.Host().NewPictureSpec(9, 7);
      spec.pixelFormat = format;
      host::PictureSpec other = bench.Host().NewPictureSpec(4, 3);
      other.pixelFormat = format;
      const bool* smooth = std::get_if<bool>(&Uses()[i].arguments.back());
      const bool oneLayout =
          (smooth != nullptr && *smooth) || std::string(Uses()[i].method) == "BlurZVQ";
      // These take the new picture's layout for the source's.
      if (oneLayout && format % 2 == 1) continue;
      Require(ColoursOf(bench, Uses()[i], bench.PatternOf(spec), bench.PatternOf(other, 5)) ==
                  expected[i],
              Uses()[i].Text() + " makes other colours of format " + std::to_string(format) + ".");
    }
  }
}

void EveryKindOfApplication(const CheckContext& context) {
  const auto expected = UsualColours(context);
  for (const host::RuntimeOptions& options : VariousHosts()) {
    RequireTheSame(context, options, expected, "in " + HostText(options));
  }
}

void ResultsAreOpaque(const CheckContext& context) {
  for (const auto& [kind, format] : {std::pair{ApplicationKind::kDesktop, 5},
                                     {ApplicationKind::kDesktop, 6},
                                     {ApplicationKind::kDesktop, 1},
                                     {ApplicationKind::kDesktop, 4},
                                     {ApplicationKind::kConsole, 8}}) {
    host::RuntimeOptions options = HostOf(kind);
    if (format != 8) options.newPixelFormat = format;
    Bench bench(context, options);
    for (const Use& use : Uses()) {
      const bool* smooth = std::get_if<bool>(&use.arguments.back());
      if (smooth != nullptr && *smooth) continue;  // interpolates that byte too
      const Picture* seen = nullptr;
      ColoursOf(bench, use, bench.Receiver(), bench.Pattern(4, 3, false, 5), &seen);
      const int shift = format == 8 || format % 2 == 1 ? 24 : 0;
      for (const std::uint32_t word : Words(*seen)) {
        Require(
            ((word >> shift) & 255) == (format == 8 ? 0u : 255u),
            use.Text() + " writes another unused byte in format " + std::to_string(format) + ".");
      }
    }
  }
}

// A receiver whose pixels no method can use.
struct Unusable {
  const char* what;
  int format;
  int bits;
  bool alpha;
};
constexpr Unusable kUnusable[] = {{"of format 0", 0, 32, false},
                                  {"of format 7", 7, 32, false},
                                  {"of 24 bits a pixel", 6, 24, false},
                                  {"of 16 bits a pixel", 5, 16, false},
                                  {"with an alpha channel in format 4", 4, 32, true}};

void UnusableFormatsAreRefused(const CheckContext& context) {
  Bench bench(context);
  for (const Unusable& unusable : kUnusable) {
    host::PictureSpec spec = bench.Host().NewPictureSpec(9, 7);
    spec.pixelFormat = unusable.format;
    spec.bitsPerPixel = unusable.bits;
    spec.hasAlphaChannel = unusable.alpha;
    for (const Use& use : Uses()) {
      // The copy into a picture with a mask is the host's to make.
      if (unusable.alpha && std::string(use.method) == "ScaleImageAndMaskZVQ") continue;
      Picture* receiver = bench.PatternOf(spec);
      const auto before = Words(*receiver);
      const auto report =
          bench.Try(use.method, receiver, Bench::Arguments(use, bench.Pattern(4, 3)));
      const bool* done = std::get_if<bool>(&report.result);
      Require(report.ResultPicture() == nullptr && (done == nullptr || !*done),
              use.Text() + " takes a picture " + unusable.what + ".");
      Require(Words(*receiver) == before, use.Text() + " changes a picture " + unusable.what + ".");
      Require(report.violations.empty() || unusable.bits == 32,
              use.Text() + " misuses a picture " + unusable.what + ".");
      Require(report.leftOver.empty() || unusable.bits == 32,
              use.Text() + " leaves something over of a picture " + unusable.what + ".");
    }
  }
}

constexpr Check kChecks[] = {
    {"every-pixel-format", "Every method makes the same colours of pictures in every format.",
     EveryPixelFormat},
    {"works-in-every-kind-of-application",
     "Every method makes the same colours in every kind and version of application.",
     EveryKindOfApplication},
    {"results-are-opaque",
     "What is written has an alpha byte of 255, and in a host buffer a top byte of 0.",
     ResultsAreOpaque},
    {"unusable-formats-are-refused",
     "Pictures of other depths and formats are refused and stay unchanged.",
     UnusableFormatsAreRefused},
};

}  // namespace

std::span<const Check> FormatChecks() { return kChecks; }

}  // namespace tool
