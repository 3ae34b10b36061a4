#include "tool/gallery_host.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>

#include "tool/argument_parsing.h"
#include "tool/call_faults.h"
#include "tool/drawing.h"
#include "tool/interruption.h"
#include "tool/picture_entry.h"
#include "tool/picture_exit.h"
#include "tool/progress.h"

namespace tool {
namespace {

constexpr char kTaker[] = "picturehost";
// A call that takes less than so many seconds is made so often, to tell its time well.
constexpr double kQuick = 0.02;
constexpr int kCalls = 3;

// A mask that shows an oval as large as the picture and hides its corners, softly.
Bitmap SoftOval(int width, int height) {
  Bitmap mask(width, height, false);
  for (int y = 0; y < height; ++y) {
    const double v = (2.0 * y + 1) / height - 1;
    for (int x = 0; x < width; ++x) {
      const double u = (2.0 * x + 1) / width - 1;
      const double hidden = Smooth(0.8, 1.0, std::sqrt(u * u + v * v));
      mask.At(x, y) = Pixel({hidden, hidden, hidden});
    }
  }
  return mask;
}

Bitmap WithoutAlpha(Bitmap picture) {
  for (host::Rgba& pixel : picture.pixels) pixel.a = 255;
  picture.hasAlpha = false;
  return picture;
}

double Megapixels(const host::Picture& picture) {
  return double(picture.Width()) * picture.Height() / 1e6;
}

// Pictures in the host, given up at the end.
class Kept {
 public:
  explicit Kept(host::Runtime& runtime) : runtime_(runtime) {}
  ~Kept() {
    for (host::Picture* picture : pictures_) runtime_.Release(picture, kTaker);
  }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  host::Picture* Keep(host::Picture* picture) {
    if (picture != nullptr) pictures_.push_back(picture);
    return picture;
  }

 private:
  host::Runtime& runtime_;
  std::vector<host::Picture*> pictures_;
};

host::Value ValueOf(const Argument& argument, host::Picture* drawn) {
  return std::visit(
      [drawn](const auto& value) -> host::Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, PictureArgument>) {
          return drawn == nullptr ? host::Value() : host::Value(drawn);
        } else {
          return value;
        }
      },
      argument);
}

void TakeOut(const host::Picture& picture, TileResult& outcome) {
  outcome.seen = LeaveHost(picture);
  if (picture.Mask() == nullptr) return;
  outcome.colours = WithoutAlpha(outcome.seen);
  outcome.mask = LeaveHost(*picture.Mask());
}

}  // namespace

host::Picture* GalleryHost::Enter(const Subject& subject) {
  const Bitmap& bitmap = *subject.picture;
  host::Picture* picture = EnterHost(runtime_, bitmap, subject.alpha, pixelFormat_);
  if (subject.oval && !bitmap.hasAlpha) {
    GiveMask(runtime_, picture, SoftOval(bitmap.width, bitmap.height), pixelFormat_);
  }
  return picture;
}

host::CallReport GalleryHost::TimedCall(const std::string& method, host::Picture* receiver,
                                        const std::vector<host::Value>& values, double& seconds) {
  using Clock = std::chrono::steady_clock;
  const InterruptibleCall interruptible(runtime_);
  const Clock::time_point start = Clock::now();
  host::CallReport report = plugin_.Call(method, receiver, values);
  seconds = std::chrono::duration<double>(Clock::now() - start).count();
  // The plug-in may have kept the exception to itself.
  if (InterruptibleCall::Signal() != 0) throw Interrupted();
  return report;
}

void GalleryHost::Retime(const Subject& subject, host::Picture* receiver,
                         const host::Declaration& declaration,
                         const std::vector<host::Value>& values, double& seconds) {
  Kept kept(runtime_);
  for (int i = 1; i < kCalls && seconds < kQuick; ++i) {
    // Methods that answer with another thing than a picture work on their receiver.
    if (declaration.result != host::Type::kPicture) receiver = kept.Keep(Enter(subject));
    double again = 0;
    kept.Keep(TimedCall(declaration.name, receiver, values, again).ResultPicture());
    seconds = std::min(seconds, again);
  }
}

void GalleryHost::Run(const PlannedCall& planned, TileResult& outcome) {
  const host::RegisteredMethod* method = plugin_.Find(planned.method);
  if (method == nullptr) {
    outcome.faults.push_back(outcome.call + " on " + planned.on.name +
                             ": the plug-in has no such method");
    return;
  }
  const host::Declaration& declaration = method->declaration;
  Arguments arguments = ParseArguments(declaration, planned.words);
  outcome.call = CallText(declaration, arguments);
  if (yielding_) AskForYields(declaration, arguments);

  Kept kept(runtime_);
  host::Picture* receiver = kept.Keep(Enter(planned.on));
  host::Picture* drawn = planned.drawn.picture ? kept.Keep(Enter(planned.drawn)) : nullptr;
  std::vector<host::Value> values;
  for (const Argument& argument : arguments.values) values.push_back(ValueOf(argument, drawn));

  const std::size_t raisedBefore = runtime_.Raised().size();
  const host::CallReport report = TimedCall(declaration.name, receiver, values, outcome.seconds);
  const host::Picture* result = kept.Keep(report.ResultPicture());
  outcome.faults =
      FaultsOf(report, runtime_, raisedBefore, declaration.result,
               outcome.call + " on " + planned.on.name + " of " +
                   std::to_string(receiver->Width()) + "x" + std::to_string(receiver->Height()));
  if (!outcome.faults.empty()) return;
  if (result == nullptr) result = receiver;
  if (!result->HasPixels()) {
    outcome.faults.push_back(outcome.call + " on " + planned.on.name + ": no pixels in the result");
    return;
  }
  outcome.megapixels = std::max(Megapixels(*receiver), Megapixels(*result));
  TakeOut(*result, outcome);
  Retime(planned.on, receiver, declaration, values, outcome.seconds);
}

TileResult GalleryHost::Make(const PlannedCall& planned) {
  TileResult outcome;
  outcome.call = planned.method + "(…)";
  try {
    if (planned.method.empty()) {
      outcome.seen = *planned.on.picture;
    } else {
      Run(planned, outcome);
    }
  } catch (const std::bad_alloc&) {
    outcome.faults.push_back(outcome.call + " on " + planned.on.name + ": out of memory");
  } catch (const std::exception& error) {
    outcome.faults.push_back(outcome.call + " on " + planned.on.name + ": " + error.what());
  }
  return outcome;
}

}  // namespace tool
