// References, locks, and what must stay as it was.
#include "tool/check_bench.h"

namespace tool {
namespace {

std::vector<Use> OwnSizeUses() {
  return {{"ScaleZVQ", {9, 7, true}}, {"ScaleImageAndMaskZVQ", {9, 7, false}}, {"BlurZVQ", {0.5}}};
}

void ResultHasOneReference(const CheckContext& context) {
  Bench bench(context);
  for (const Use& use : Uses()) {
    const auto report =
        bench.Try(use.method, bench.Receiver(), Bench::Arguments(use, bench.Pattern(4, 3)));
    const Picture* result = report.ResultPicture();
    if (result == nullptr) continue;
    Require(result->References() == 1, use.Text() + " returned a picture with " +
                                           std::to_string(result->References()) +
                                           " references, not 1.");
  }
  for (const Use& use : OwnSizeUses()) {
    Picture* receiver = bench.Receiver();
    const auto report = bench.Try(use.method, receiver, Bench::Arguments(use, nullptr));
    Require(report.ResultPicture() == receiver && receiver->References() == 2,
            use.Text() + " did not return its picture with one more reference.");
  }
}

// All uses of a method, and calls of it that are refused, on every host.
void LeavesNothingOver(const CheckContext& context, const std::string& method) {
  for (const host::RuntimeOptions& options : VariousHosts()) {
    Bench bench(context, options);
    for (const bool alpha : {false, true}) {
      for (const bool masked : {false, true}) {
        for (const Use& use : UsesOf(method)) {
          Picture* receiver = bench.Receiver(alpha);
          Picture* second = bench.Pattern(4, 3, alpha, 3);
          if (masked) bench.GiveMask(receiver, [](int x, int) { return 20 * x; });
          if (masked) bench.GiveMask(second, [](int x, int) { return 60 * x; });
          bench.Call(method, receiver, Bench::Arguments(use, second));
          receiver->refuseLocks = true;
          bench.Call(method, receiver, Bench::Arguments(use, second));
          if (method == "DrawPictureFZVQ") continue;
          bench.Call(method, nullptr, Bench::Arguments(use, second));
        }
      }
    }
  }
}

void ScaleLeavesNothing(const CheckContext& context) { LeavesNothingOver(context, "ScaleZVQ"); }
void BothLeaveNothing(const CheckContext& context) {
  LeavesNothingOver(context, "ScaleImageAndMaskZVQ");
}
void ResamplingLeavesNothing(const CheckContext& context) {
  LeavesNothingOver(context, "ScalingZVQ");
}
void BlurLeavesNothing(const CheckContext& context) { LeavesNothingOver(context, "BlurZVQ"); }
void DrawLeavesNothing(const CheckContext& context) {
  LeavesNothingOver(context, "DrawPictureFZVQ");
}

void NilReceiverIsRefused(const CheckContext& context) {
  Bench bench(context);
  for (const Use& use : Uses()) {
    if (std::string(use.method) == "DrawPictureFZVQ") continue;
    bench.Refused(use.method, nullptr, Bench::Arguments(use, nullptr));
  }
  bench.Refused("ScaleZVQ", nullptr, {0, 0, false, 0});
  bench.Refused("BlurZVQ", nullptr, {0.0, 0});
}

void SourceIsUnchanged(const CheckContext& context) {
  for (const auto kind : {host::ApplicationKind::kDesktop, host::ApplicationKind::kConsole}) {
    Bench bench(context, HostOf(kind));
    for (const bool alpha : {false, true}) {
      for (const Use& use : Uses()) {
        const bool draws = std::string(use.method) == "DrawPictureFZVQ";
        Picture* receiver = bench.Receiver(alpha && !draws);
        Picture* second = bench.Pattern(4, 3, alpha, 3);
        Picture* source = draws ? second : receiver;
        Picture* mask = bench.GiveMask(source, [](int x, int y) { return 20 * x + y; });
        const auto words = Words(*source), maskWords = Words(*mask);
        bench.Call(use.method, receiver, Bench::Arguments(use, second));
        Require(Words(*source) == words, use.Text() + " changed its source.");
        Require(source->Mask() == mask && Words(*mask) == maskWords,
                use.Text() + " changed its source's mask.");
      }
    }
  }
}

void HostLearnsOfChanges(const CheckContext& context) {
  Bench bench(context);
  for (const Use& use : Uses()) {
    Picture* receiver = bench.Receiver();
    const auto report =
        bench.Call(use.method, receiver, Bench::Arguments(use, bench.Pattern(4, 3)));
    const Picture* changed = report.ResultPicture() != nullptr ? report.ResultPicture() : receiver;
    Require(changed->CacheClears() > 0, use.Text() + " did not tell the host of changed pixels.");
  }
}

constexpr Check kChecks[] = {
    {"result-has-one-reference", "A result carries one reference, which is the caller's.",
     ResultHasOneReference},
    {"scale-leaves-nothing-over", "After ScaleZVQ no reference and no lock is left or missing.",
     ScaleLeavesNothing},
    {"image-and-mask-leaves-nothing-over",
     "After ScaleImageAndMaskZVQ no reference and no lock is left or missing.", BothLeaveNothing},
    {"resampling-leaves-nothing-over",
     "After ScalingZVQ no reference and no lock is left or missing.", ResamplingLeavesNothing},
    {"blur-leaves-nothing-over", "After BlurZVQ no reference and no lock is left or missing.",
     BlurLeavesNothing},
    {"draw-leaves-nothing-over",
     "After DrawPictureFZVQ no reference and no lock is left or missing.", DrawLeavesNothing},
    {"nil-receiver-is-refused", "Every method that makes a picture returns nil for nil.",
     NilReceiverIsRefused},
    {"source-is-unchanged", "No method changes the picture it reads, or that picture's mask.",
     SourceIsUnchanged},
    {"host-learns-of-changes", "The host is told that the pixels of what was written changed.",
     HostLearnsOfChanges},
};

}  // namespace

std::span<const Check> ReferenceChecks() { return kChecks; }

}  // namespace tool
