// Pixels that a method must not touch.
#include "tool/check_bench.h"
#include "tool/check_random.h"

namespace tool {
namespace {

void PaddingIsUntouched(const CheckContext& context) {
  for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole}) {
    host::RuntimeOptions options = HostOf(kind);
    options.newRowPadding = 12;
    Bench bench(context, options);
    for (const bool alpha : {false, true}) {
      for (const Use& use : Uses()) {
        Picture* receiver = bench.Receiver(alpha);
        Picture* second = bench.Pattern(4, 3, alpha);
        const auto report = bench.Call(use.method, receiver, Bench::Arguments(use, second));
        for (const Picture* picture :
             {static_cast<const Picture*>(receiver), static_cast<const Picture*>(second),
              static_cast<const Picture*>(report.ResultPicture())}) {
          Require(picture == nullptr || picture->DamagedPadding() == 0,
                  use.Text() + " wrote between the rows of a picture.");
        }
      }
    }
  }
}

// Every method with random sizes; a step outside a picture's memory ends the process.
void StaysInside(const CheckContext& context, host::Guard guard) {
  CheckRandom random(context.seed);
  for (int round = 0; round < 12; ++round) {
    host::RuntimeOptions options = random.Host();
    options.newRowPadding = 0;
    options.newGuard = guard;
    Bench bench(context, options);
    const int width = random.Between(1, 40), height = random.Between(1, 40);
    const int newWidth = random.Between(1, 60), newHeight = random.Between(1, 60);
    const bool alpha = random.Coin(), smooth = random.Coin();
    Picture* picture = bench.Pattern(width, height, alpha);
    if (random.Coin()) bench.GiveMask(picture, [](int x, int y) { return x * y; });
    for (const char* method : {"ScaleZVQ", "ScaleImageAndMaskZVQ"}) {
      bench.Call(method, picture, {newWidth, newHeight, smooth, 0});
    }
    bench.Call("ScaleZVQ", picture, {width * 2, height * 3, true, 0});
    for (int mode = 1; mode <= 7; ++mode) {
      bench.Call("ScalingZVQ", picture, {mode, newWidth, newHeight, 0});
    }
    bench.Call("BlurZVQ", picture, {random.Fraction(1, 50), 0});
    Picture* target = bench.Pattern(newWidth, newHeight);
    for (int draw = 0; draw < 4; ++draw) {
      const double x = random.Fraction(-45, 65), y = random.Fraction(-45, 65);
      bench.Call("DrawPictureFZVQ", target, {picture, x, y, 1.0, 0});
    }
  }
}

void StaysBeforeTheEnd(const CheckContext& context) { StaysInside(context, host::Guard::kAfter); }
void StaysBehindTheStart(const CheckContext& context) {
  StaysInside(context, host::Guard::kBefore);
}

// A mask of another size than its picture.
void MaskOfAnotherSize(const CheckContext& context) {
  for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole}) {
    host::RuntimeOptions options = HostOf(kind);
    options.newGuard = host::Guard::kAfter;
    Bench bench(context, options);
    for (const auto& [width, height] : {std::pair{1, 1}, {3, 9}, {30, 2}, {30, 20}}) {
      Picture* picture = bench.Receiver();
      host::PictureSpec spec = bench.Host().NewMaskSpec(width, height);
      bench.Host().SetMask(picture, bench.PatternOf(spec));
      bench.Made("ScaleImageAndMaskZVQ", picture, {4, 3, false, 0}, 4, 3);
      bench.Made("ScaleImageAndMaskZVQ", picture, {14, 13, true, 0}, 14, 13);
      bench.Call("DrawPictureFZVQ", bench.Pattern(12, 12), {picture, 1.5, 1.5, 1.0, 0});
    }
  }
}

// The host hands out another size than was asked for, or than the picture says of itself.
void OtherSizesAreSurvived(const CheckContext& context) {
  for (const auto& [kind, widen, heighten] : {std::tuple{host::ApplicationKind::kDesktop, -2, 0},
                                              {host::ApplicationKind::kDesktop, 0, -2},
                                              {host::ApplicationKind::kDesktop, 3, 2},
                                              {host::ApplicationKind::kConsole, -2, 0},
                                              {host::ApplicationKind::kConsole, 0, -2},
                                              {host::ApplicationKind::kConsole, 3, 2}}) {
    host::RuntimeOptions options = HostOf(kind);
    options.newGuard = host::Guard::kAfter;
    Bench bench(context, options);
    bool hostile = false;
    const int wider = widen, higher = heighten;
    bench.Host().adjustNewPicture = [&](host::PictureSpec& spec) {
      if (!hostile) return;
      spec.width += wider;
      spec.height += higher;
    };
    for (const Use& use : Uses()) {
      Picture* receiver = bench.Receiver();
      Picture* second = bench.Pattern(4, 3);
      hostile = true;
      bench.Call(use.method, receiver, Bench::Arguments(use, second));
      hostile = false;
    }
  }
}

struct Lie {
  const char* what;
  void (*tell)(Picture::LockedView view);
};
constexpr Lie kLies[] = {
    {"a null data address",
     [](Picture::LockedView view) {
       view.context.data = nullptr;
       view.buffer.rowTable = nullptr;
     }},
    {"rows too short for their pixels",
     [](Picture::LockedView view) {
       view.context.bytesPerRow = view.context.width * 4 - 4;
       view.buffer.valid = 0;
     }},
    {"16 bits a pixel",
     [](Picture::LockedView view) {
       view.context.bitsPerPixel = 16;
       view.buffer.kind = 1;
     }},
    {"no handle", [](Picture::LockedView view) { view.description.handle = nullptr; }},
    {"another type", [](Picture::LockedView view) { view.description.type = 3; }},
};

void WrongLocksAreRefused(const CheckContext& context) {
  for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole}) {
    Bench bench(context, HostOf(kind));
    for (const Lie& lie : kLies) {
      for (const Use& use : Uses()) {
        Picture* receiver = bench.Receiver();
        receiver->distort = lie.tell;
        const auto report =
            bench.Call(use.method, receiver, Bench::Arguments(use, bench.Pattern(4, 3)));
        const bool* done = std::get_if<bool>(&report.result);
        Require(report.ResultPicture() == nullptr && (done == nullptr || !*done),
                use.Text() + " takes a lock with " + lie.what + ".");
      }
    }
  }
}

constexpr Check kChecks[] = {
    {"padding-is-untouched", "Nothing is written between the rows of a picture.",
     PaddingIsUntouched},
    {"stays-before-the-end", "No method reads or writes behind the end of a picture's memory.",
     StaysBeforeTheEnd, true},
    {"stays-behind-the-start", "No method reads or writes before the start of a picture's memory.",
     StaysBehindTheStart, true},
    {"mask-of-another-size", "A mask of another size than its picture is survived.",
     MaskOfAnotherSize},
    {"other-sizes-are-survived",
     "A host that makes pictures of another size than was asked for is survived.",
     OtherSizesAreSurvived},
    {"wrong-locks-are-refused", "Locks that give no usable pixels are refused and given back.",
     WrongLocksAreRefused},
};

}  // namespace

std::span<const Check> MemoryChecks() { return kChecks; }

}  // namespace tool
