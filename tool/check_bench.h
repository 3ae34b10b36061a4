// What checks work with: a host with the plug-in loaded, pictures of known content, and the uses of
// the methods that checks of every method go through.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/plugin_library.h"
#include "host/runtime.h"
#include "tool/checks.h"

namespace tool {

using host::Picture;
using host::Rgba;
using host::Value;

// Throws CheckFailed with the sentence unless the condition holds.
void Require(bool condition, const std::string& sentence);

// One way to call a method. A nil among the arguments stands for a second picture; the yield
// argument, which comes last in every method, is left out.
struct Use {
  const char* method;
  std::vector<Value> arguments;
  std::string Text() const;  // "ScaleZVQ(4, 3, false)"
};

// Every method, and each of its ways through the plug-in, for a receiver of 9x7 (Bench::Receiver).
const std::vector<Use>& Uses();
// The uses of one method.
std::vector<Use> UsesOf(const std::string& method);

// A period with which every yield point yields under a RushingClock.
inline constexpr std::int32_t kAlwaysYield = 1;

// While it lives, each reading of a clock is a second later than the one before.
class RushingClock {
 public:
  RushingClock();
  ~RushingClock();
  RushingClock(const RushingClock&) = delete;
  RushingClock& operator=(const RushingClock&) = delete;
};

class Bench {
 public:
  // `prepare` may change the host before the plug-in starts. Throws when it cannot be loaded.
  explicit Bench(const CheckContext& context, host::RuntimeOptions options = {},
                 const std::function<void(host::Runtime&)>& prepare = {});

  host::Runtime& Host() { return runtime_; }

  // A picture as this host makes it, opaque or with an alpha channel, each pixel of another colour
  // (and alpha). It carries one reference.
  Picture* Pattern(int width, int height, bool alpha = false, std::uint32_t salt = 0);
  Picture* PatternOf(host::PictureSpec spec, std::uint32_t salt = 0);
  // One colour, opaque.
  Picture* Plain(int width, int height, Rgba colour);
  // The pattern of 9x7 that Uses() is made for.
  Picture* Receiver(bool alpha = false) { return Pattern(9, 7, alpha); }
  // Gives a picture a mask of its size, made by a function of the place: 0 shows, 255 hides.
  Picture* GiveMask(Picture* picture, const std::function<int(int, int)>& level);

  // The call as it comes: nothing is required of it.
  host::CallReport Try(const std::string& method, Picture* receiver,
                       const std::vector<Value>& arguments);
  // Requires in addition that nothing was left over, misused or raised.
  host::CallReport Call(const std::string& method, Picture* receiver,
                        const std::vector<Value>& arguments);
  // Requires in addition a picture of that size.
  Picture* Made(const std::string& method, Picture* receiver, const std::vector<Value>& arguments,
                int width, int height);
  // Requires in addition nil (or false).
  void Refused(const std::string& method, Picture* receiver, const std::vector<Value>& arguments);

  // The arguments of a use, with `second` for nil and the period at the end.
  static std::vector<Value> Arguments(const Use& use, Picture* second, std::int32_t period = 0);

 private:
  host::Runtime runtime_;
  host::PluginLibrary plugin_;
};

// "ScaleZVQ(4, 3, false)"; pictures by their names.
std::string CallText(const std::string& method, const std::vector<Value>& arguments);

// The colour that patterns have at a place.
Rgba PatternColour(int x, int y, bool alpha, std::uint32_t salt);

// All words of a picture, row by row.
std::vector<std::uint32_t> Words(const Picture& picture);

// Requires the colours (alpha aside) that a function of the place gives.
void RequireColours(const Picture& picture, const std::string& what,
                    const std::function<Rgba(int, int)>& expected);

// A host of a kind and version.
host::RuntimeOptions HostOf(host::ApplicationKind kind, double version = 2013.04);
// Hosts of every kind, and of versions on both sides of each that methods compare with.
std::vector<host::RuntimeOptions> VariousHosts();
std::string HostText(const host::RuntimeOptions& options);  // "a desktop host of version 2013.04"

}  // namespace tool
