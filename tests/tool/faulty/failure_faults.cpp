// Faults in refusals and exceptions, and the ends that a process can come to.
#include <cstdlib>

#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

REALpicture NewPicture(std::int32_t width, std::int32_t height) {
  return Get<NewPictureEntry>("newPicture")(width, height, 32);
}

void MakePictureOfNil(MethodCall& call) {
  call.Proceed();
  if (!call.Draws() && call.self == nullptr) call.result = NewPicture(1, 1);
}

void NeverRefuse(MethodCall& call) {
  call.Proceed();
  if (!call.Refused() || call.self == nullptr) return;
  if (!call.Draws()) call.result = NewPicture(9, 7);
  if (call.Draws()) call.done = call.drawn != nullptr;
}

void CallMissingEntry(MethodCall& call) {
  if (call.self != nullptr) Get<REALPictureClearCacheEntry>("REALPictureClearCache")(call.self);
  call.Proceed();
}

void CallMissingMethod(MethodCall& call) {
  if (call.self != nullptr) {
    const auto load = Get<REALLoadObjectMethodEntry>("REALLoadObjectMethod");
    const auto copy = reinterpret_cast<CopyMaskMethod*>(load(call.self, kCopyMaskDeclaration));
    Give(copy(call.self));
  }
  call.Proceed();
}

void SwallowExceptions(MethodCall& call) {
  try {
    call.Proceed();
  } catch (...) {
  }
}

void RaiseNothing(REALobject) {}

void Crash(MethodCall&) { std::abort(); }

void CrashInBlur(MethodCall& call) {
  if (call.method == Method::kBlur) std::abort();
  call.Proceed();
}

void CrashAtHugeRadius(MethodCall& call) {
  if (call.radius > 1e6 && call.radius < 2e9) std::abort();
  call.Proceed();
}

void HangInBlur(MethodCall& call) {
  for (volatile bool wait = call.method == Method::kBlur; wait;) {
  }
  call.Proceed();
}

const Fault kFaults[] = {
    {"nil-makes-a-picture", MakePictureOfNil},
    {"never-refuses", NeverRefuse},
    {"calls-missing-entry", CallMissingEntry},
    {"calls-missing-method", CallMissingMethod},
    {"swallows-exceptions", SwallowExceptions},
    {"silent-nil", {{"RuntimeRaiseException", RaiseNothing}}},
    {"crash", Crash},
    {"crash-in-blur", CrashInBlur},
    {"crash-at-huge-radius", CrashAtHugeRadius},
    {"hang", HangInBlur},
};

}  // namespace

std::span<const Fault> FailureFaults() { return kFaults; }

}  // namespace faulty
