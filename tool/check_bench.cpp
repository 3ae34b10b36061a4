#include "tool/check_bench.h"

#include <algorithm>
#include <cstdio>

#include "host/registry.h"
#include "platform/linux/clocks.h"
#include "tool/check_process.h"

namespace tool {
namespace {

std::string Number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

std::string Shown(const Value& value) {
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return std::to_string(*integer);
  if (const auto* fraction = std::get_if<double>(&value)) return Number(*fraction);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  const auto* picture = std::get_if<Picture*>(&value);
  return picture == nullptr || *picture == nullptr ? "nil" : (*picture)->Name();
}

std::string ColourText(Rgba colour) {
  return "(" + std::to_string(colour.r) + ", " + std::to_string(colour.g) + ", " +
         std::to_string(colour.b) + ")";
}

bool IsNothing(const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  const bool* flag = std::get_if<bool>(&value);
  return flag != nullptr && !*flag;
}

}  // namespace

void Require(bool condition, const std::string& sentence) {
  if (!condition) throw CheckFailed(sentence);
}

std::string CallText(const std::string& method, const std::vector<Value>& arguments) {
  std::string text = method + "(";
  for (const Value& argument : arguments) {
    text += (text.back() == '(' ? "" : ", ") + Shown(argument);
  }
  return text + ")";
}

std::string Use::Text() const { return CallText(method, arguments); }

const std::vector<Use>& Uses() {
  static const std::vector<Use> uses = {
      {"ScaleZVQ", {4, 3, false}},
      {"ScaleZVQ", {12, 10, false}},
      {"ScaleZVQ", {12, 10, true}},
      {"ScaleZVQ", {12, 5, true}},
      {"ScaleImageAndMaskZVQ", {4, 3, false}},
      {"ScaleImageAndMaskZVQ", {12, 10, true}},
      {"ScalingZVQ", {1, 5, 4}},
      {"ScalingZVQ", {2, 12, 4}},
      {"ScalingZVQ", {3, 5, 10}},
      {"ScalingZVQ", {4, 12, 10}},
      {"ScalingZVQ", {5, 5, 4}},
      {"ScalingZVQ", {6, 12, 10}},
      {"ScalingZVQ", {7, 5, 4}},
      {"BlurZVQ", {2.5}},
      {"DrawPictureFZVQ", {Value(), 1.25, -0.5, 0.75}},
  };
  return uses;
}

std::vector<Use> UsesOf(const std::string& method) {
  std::vector<Use> found;
  std::copy_if(Uses().begin(), Uses().end(), std::back_inserter(found),
               [&](const Use& use) { return use.method == method; });
  return found;
}

RushingClock::RushingClock() {
  platform::SetClockScript(
      {[now = std::uint32_t{1000}]() mutable { return now += 60; },
       [now = std::uint64_t{1000000000}]() mutable { return now += 1000000000; }});
}

RushingClock::~RushingClock() { platform::ClearClockScript(); }

namespace {

// What comes before the plug-in starts.
host::Runtime& Prepared(host::Runtime& runtime,
                        const std::function<void(host::Runtime&)>& prepare) {
  NoteDoing("its start in " + HostText(runtime.Options()));
  if (prepare) prepare(runtime);
  return runtime;
}

}  // namespace

Bench::Bench(const CheckContext& context, host::RuntimeOptions options,
             const std::function<void(host::Runtime&)>& prepare)
    : runtime_(options), plugin_(Prepared(runtime_, prepare), context.plugin) {}

Rgba PatternColour(int x, int y, bool alpha, std::uint32_t salt) {
  std::uint32_t h =
      std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA77u ^ (salt + 1) * 0x27D4EB2Fu;
  h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
  h = (h ^ (h >> 12)) * 0x297A2D39u;
  h ^= h >> 15;
  // An alpha of 0 would lose the colour.
  const auto opacity = std::uint8_t(alpha ? (h >> 24) | 1 : 255);
  return {std::uint8_t(h), std::uint8_t(h >> 8), std::uint8_t(h >> 16), opacity};
}

Picture* Bench::PatternOf(host::PictureSpec spec, std::uint32_t salt) {
  Picture* picture = runtime_.NewPicture(spec, "picturehost");
  for (int y = 0; y < picture->Height(); ++y) {
    for (int x = 0; x < picture->Width(); ++x) {
      picture->Set(x, y, PatternColour(x, y, spec.hasAlphaChannel, salt));
    }
  }
  return picture;
}

Picture* Bench::Pattern(int width, int height, bool alpha, std::uint32_t salt) {
  return PatternOf(
      alpha ? runtime_.NewAlphaPictureSpec(width, height) : runtime_.NewPictureSpec(width, height),
      salt);
}

Picture* Bench::Plain(int width, int height, Rgba colour) {
  host::PictureSpec spec = runtime_.NewPictureSpec(width, height);
  spec.fill = colour;
  return runtime_.NewPicture(spec, "picturehost");
}

Picture* Bench::GiveMask(Picture* picture, const std::function<int(int, int)>& level) {
  Picture* mask =
      runtime_.NewPicture(runtime_.NewMaskSpec(picture->Width(), picture->Height()), "picturehost");
  for (int y = 0; y < mask->Height(); ++y) {
    for (int x = 0; x < mask->Width(); ++x) {
      const auto grey = std::uint8_t(level(x, y));
      mask->Set(x, y, {grey, grey, grey, 255});
    }
  }
  runtime_.SetMask(picture, mask);
  return mask;
}

host::CallReport Bench::Try(const std::string& method, Picture* receiver,
                            const std::vector<Value>& arguments) {
  NoteDoing(CallText(method, arguments) + " in " + HostText(runtime_.Options()));
  return plugin_.Call(method, receiver, arguments);
}

host::CallReport Bench::Call(const std::string& method, Picture* receiver,
                             const std::vector<Value>& arguments) {
  const std::string call = CallText(method, arguments);
  const std::size_t raised = runtime_.Raised().size();
  host::CallReport report = Try(method, receiver, arguments);
  Require(runtime_.Raised().size() == raised, call + " raised an exception.");
  if (!report.violations.empty()) throw CheckFailed(call + ": " + report.violations[0]);
  if (!report.leftOver.empty()) throw CheckFailed(call + ": " + report.leftOver[0]);
  return report;
}

Picture* Bench::Made(const std::string& method, Picture* receiver,
                     const std::vector<Value>& arguments, int width, int height) {
  const std::string call = CallText(method, arguments);
  Picture* result = Call(method, receiver, arguments).ResultPicture();
  Require(result != nullptr, call + " returned nil.");
  Require(result->Width() == width && result->Height() == height,
          call + " returned a picture of " + std::to_string(result->Width()) + "x" +
              std::to_string(result->Height()) + ", not " + std::to_string(width) + "x" +
              std::to_string(height) + ".");
  return result;
}

void Bench::Refused(const std::string& method, Picture* receiver,
                    const std::vector<Value>& arguments) {
  Require(IsNothing(Call(method, receiver, arguments).result),
          CallText(method, arguments) + " was not refused.");
}

std::vector<Value> Bench::Arguments(const Use& use, Picture* second, std::int32_t period) {
  std::vector<Value> arguments = use.arguments;
  for (Value& argument : arguments) {
    if (std::holds_alternative<std::monostate>(argument)) argument = second;
  }
  arguments.emplace_back(period);
  return arguments;
}

std::vector<std::uint32_t> Words(const Picture& picture) {
  std::vector<std::uint32_t> words;
  for (int y = 0; picture.HasPixels() && y < picture.Height(); ++y) {
    for (int x = 0; x < picture.Width(); ++x) words.push_back(picture.Word(x, y));
  }
  return words;
}

void RequireColours(const Picture& picture, const std::string& what,
                    const std::function<Rgba(int, int)>& expected) {
  for (int y = 0; y < picture.Height(); ++y) {
    for (int x = 0; x < picture.Width(); ++x) {
      const Rgba wanted = expected(x, y);
      const Rgba got = picture.Get(x, y);
      if (got.r == wanted.r && got.g == wanted.g && got.b == wanted.b) continue;
      throw CheckFailed(what + ": pixel (" + std::to_string(x) + ", " + std::to_string(y) +
                        ") is " + ColourText(got) + ", not " + ColourText(wanted) + ".");
    }
  }
}

host::RuntimeOptions HostOf(host::ApplicationKind kind, double version) {
  host::RuntimeOptions options;
  options.kind = kind;
  options.version = version;
  return options;
}

std::vector<host::RuntimeOptions> VariousHosts() {
  using host::ApplicationKind;
  std::vector<host::RuntimeOptions> hosts;
  for (const ApplicationKind kind : {ApplicationKind::kDesktop, ApplicationKind::kWeb,
                                     ApplicationKind::kConsole, ApplicationKind::kNone}) {
    for (const double version : {2010.0, 2011.04, 2012.0, 2013.04}) {
      hosts.push_back(HostOf(kind, version));
    }
  }
  return hosts;
}

std::string HostText(const host::RuntimeOptions& options) {
  static const char* const kNames[] = {"a desktop host", "a web host", "a console host",
                                       "a host without a kind"};
  char version[40];
  std::snprintf(version, sizeof version, " of version %.10g", options.version);
  return kNames[static_cast<int>(options.kind)] + std::string(version);
}

}  // namespace tool
