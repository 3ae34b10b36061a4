// The host runtime: what a plug-in finds behind the resolver. One runtime exists at a time in a
// process, because host routines carry no context; they act on Runtime::Current().
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "host/ledger.h"
#include "host/picture.h"
#include "host/registry.h"
#include "host/text.h"
#include "host/trace.h"

namespace host {

enum class ApplicationKind { kDesktop, kWeb, kConsole, kNone };

struct RuntimeOptions {
  double version = 2013.04;  // what "REALGetRBVersion" reports
  ApplicationKind kind = ApplicationKind::kDesktop;
  // What "newPicture" and the Picture constructor make. On desktop and none hosts pictures are
  // bitmap contexts of this format, on console and web hosts host buffers. The constructor's
  // pictures have an alpha channel and alphaPixelFormat.
  int newPixelFormat = 6;
  int alphaPixelFormat = 2;
  int newRowPadding = 0;
  Guard newGuard = Guard::kNone;
  Rgba newFill = {255, 255, 255, 255};  // opaque new pictures
  Rgba newAlphaFill = {0, 0, 0, 0};     // new pictures with an alpha channel
};

// One call of a host entry, as an interceptor sees it.
struct EntryCall {
  const char*
      entry;  // "REALLockObject"; "DrawPicture", "Constructor", "CopyMask", "Mask" for host methods
  int number;  // counted from 1 over all calls of the runtime
};

enum class Verdict {
  kProceed,
  // The entry does nothing and answers its neutral result (0, null, false). Out-values get noise; a
  // description lock on a host below 2012.0 leaves its half-made lock behind, as every failure
  // there does.
  kFail,
};

class Runtime {
 public:
  explicit Runtime(RuntimeOptions options = {});  // throws std::logic_error beside another one
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;
  static Runtime& Current();  // throws std::logic_error when there is none

  // The resolver that a plug-in is given.
  static REALroutine Resolve(const char* entryName);
  static const std::vector<std::string>& EntryNames();  // all the host knows, sorted
  void Withhold(const std::string& entryName) { withheld_.insert(entryName); }
  void WithholdHostMethod(const std::string& declaration) { withheld_.insert(declaration); }
  void Offer(const std::string& entryName) { withheld_.erase(entryName); }
  bool IsWithheld(const std::string& name) const { return withheld_.contains(name); }
  // Classes that "PluginNewInstance" and "pluginObjectType" do not know.
  void RemoveClass(const std::string& className) { removedClasses_.insert(className); }
  // Whether the application has the class: the application class of its kind, pictures, graphics,
  // exceptions; none that was removed.
  bool HasClass(const std::string& className) const;

  // Time spent within entries; measured while `on`.
  struct EntryTime {
    bool on = false;
    double seconds = 0;
    int depth = 0;  // entries that are running
  };
  EntryTime entryTime;

  // Called before each entry does its work; may throw (the exception passes through the plug-in).
  std::function<Verdict(const EntryCall&)> intercept;
  // Called by "REALYieldToRB"; may call plug-in methods. Like the interceptor, it keeps its own
  // state from call to call and must not replace itself while it runs.
  std::function<void()> onYield;
  // Changes what newPicture and the constructor make: a hostile host, or one of other formats.
  std::function<void(PictureSpec&)> adjustNewPicture;

  // Makes a picture with one reference held by `taker`.
  Picture* NewPicture(const PictureSpec& spec, const std::string& taker = "test");
  // The picture gets `mask` (or none, for null) and takes over the caller's reference to it. The
  // reference on its earlier mask is given up.
  void SetMask(Picture* picture, Picture* mask);
  void Release(Object* object, const std::string& taker = "test");

  // What the host itself makes: an opaque picture, one with an alpha channel, a mask (black).
  PictureSpec NewPictureSpec(int width, int height) const;
  PictureSpec NewAlphaPictureSpec(int width, int height) const;
  PictureSpec NewMaskSpec(int width, int height) const;

  // Draws the sw×sh region at (sx, sy) of source scaled to w×h at (x, y) of target (nearest
  // neighbour, clipped, alpha and mask blended over the target as a person would see it). A region
  // width or height of -10000 means the source's. Beyond its own edges a mask counts as opaque.
  void Draw(Picture* target, Picture* source, int x, int y, int w, int h, int sx, int sy, int sw,
            int sh);

  const RuntimeOptions& Options() const { return options_; }
  Ledger& Book() { return ledger_; }
  Trace& Calls() { return trace_; }
  Registration& Registered() { return registration_; }
  const std::vector<RaisedException>& Raised() const { return raised_; }
  int Yields() const { return yields_; }
  std::string Taker(const char* entry) const;  // who a holding taken now is written to
  // Name of the method now running, for takers; empty outside a call.
  void EnterMethod(const std::string& name);
  void LeaveMethod();

  // The version as the plug-in knows it: 0 when "REALGetRBVersion" was withheld from it or failed.
  double ReportedVersion() const { return reportedVersion_; }

 private:
  friend struct Entries;
  RuntimeOptions options_;
  double reportedVersion_;
  std::set<std::string> withheld_;
  std::set<std::string> removedClasses_;
  Ledger ledger_;
  Trace trace_;
  Registration registration_;
  std::vector<RaisedException> raised_;
  std::vector<std::string> methodStack_;
  int yields_ = 0;
  int callNumber_ = 0;
};

}  // namespace host
