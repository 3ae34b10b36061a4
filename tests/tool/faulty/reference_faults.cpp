// Faults in references, locks and what the host must be told of its pictures.
#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void LeakReference(MethodCall& call) {
  Take(call.self);
  call.Proceed();
}

void LeakAfterRefusal(MethodCall& call) {
  call.Proceed();
  if (call.Refused()) Take(call.self);
}

void ReturnTwice(MethodCall& call) {
  call.Proceed();
  Take(call.result);
}

void ClearNothing(REALpicture) {}
void UnlockNothing(REALpicture) {}

bool gLockFailed;  // the latest lock of a description

std::uint8_t NoteLock(REALpicture picture, REALpictureDescription* description, std::int32_t type) {
  const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  const std::uint8_t locked = lock(picture, description, type);
  gLockFailed = locked == 0;
  return locked;
}

void UnlockUnlessFailed(REALpicture picture) {
  const bool owed = gLockFailed;
  gLockFailed = false;
  if (!owed) Get<UnlockPictureDescriptionEntry>("unlockPictureDescription")(picture);
}

const Fault kFaults[] = {
    {"leaked-reference", LeakReference},
    {"leak-after-refusal", LeakAfterRefusal},
    {"returned-twice", ReturnTwice},
    {"silent-changes", {{"REALPictureClearCache", ClearNothing}}},
    {"missing-unlock", {{"unlockPictureDescription", UnlockNothing}}},
    {"half-made-locks-stay",
     {{"REALLockPictureDescription", NoteLock}, {"unlockPictureDescription", UnlockUnlessFailed}}},
};

}  // namespace

std::span<const Fault> ReferenceFaults() { return kFaults; }

}  // namespace faulty
