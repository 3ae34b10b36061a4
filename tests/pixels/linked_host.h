// A host with the linked plug-in started in it, for one test, and what the host saw and still
// holds.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/runtime.h"
#include "plugin/host_interface.h"

namespace pixels_test {

using Lines = std::vector<std::string>;

// What a test's host throws.
struct HostError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class LinkedHost {
 public:
  // The plug-in asks for the application's kind at its first lock, as in a fresh process.
  explicit LinkedHost(host::RuntimeOptions options = {});
  ~LinkedHost();  // the plug-in forgets everything
  LinkedHost(const LinkedHost&) = delete;
  LinkedHost& operator=(const LinkedHost&) = delete;

  host::Runtime runtime;

  // Tells the plug-in the kind beforehand, so that it does not ask.
  void KnowKind() const;

  // A picture with one reference of the test's. What is held afterwards is what LeftOver compares
  // with.
  host::Picture* Make(const host::PictureSpec& spec);
  // Another starting point for LeftOver and Calls.
  void Mark();

  // Host calls since the last question (or Mark, or Make), without look-ups of entries.
  Lines Calls();
  // The same with look-ups.
  Lines CallsAndLookUps();
  // What differs from the last Make or Mark, and every misuse, one sentence each; empty when the
  // book is balanced. `result` is expected to have one reference more.
  Lines LeftOver(const host::Object* result = nullptr) const;

  // The plug-in finds this routine under that name from now on.
  void ReplaceEntry(const std::string& entryName, REALroutine routine);

  // Call number `nth` (from 1, counted from here on) of an entry fails; 0: every call.
  void FailEntry(const std::string& entryName, int nth = 0);
  // Call number `nth` (from 1, counted from here on) of any entry throws HostError.
  void ThrowAtCall(int nth);
  // Every call of an entry throws HostError.
  void ThrowFrom(const std::string& entryName);

 private:
  host::Ledger::Snapshot before_;
};

inline REALpicture HandleOf(host::Object* picture) { return host::HandleOf<REALpicture>(picture); }

host::RuntimeOptions Desktop(double version = 2013.04);
host::RuntimeOptions Console(double version = 2013.04);
// A host that has no application class, so that the kind is learnt from the first lock.
host::RuntimeOptions Unknown(double version = 2013.04);

// Opaque pictures: a bitmap context with that alpha info, and a host buffer.
host::PictureSpec Context(int width, int height, int alphaInfo = 6);
host::PictureSpec Buffer(int width, int height);
// A picture with an alpha channel in a bitmap context.
host::PictureSpec AlphaContext(int width, int height, int alphaInfo = 2);

// The trace lines of a graphics object's drawing method being asked for, and found or not.
std::string FindsDrawPicture(const std::string& graphics);
std::string LacksDrawPicture(const std::string& graphics);

// Every pixel gets a word of its own: 0x01020300 + 0x100 * row + column.
void Number(host::Picture& picture);
inline std::uint32_t NumberAt(int x, int y) {
  return 0x01020300u + 0x100u * static_cast<std::uint32_t>(y) + static_cast<std::uint32_t>(x);
}

}  // namespace pixels_test
