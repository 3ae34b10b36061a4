#include "tests/tool/faulty/locked_pixels.h"

#include <cstring>

#include "platform/bitmap_context.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void Unlock(REALpicture picture) {
  const auto unlock = Get<UnlockPictureDescriptionEntry>("unlockPictureDescription");
  if (unlock != nullptr) unlock(picture);
}

// A lock that failed on an old host wants to be unlocked.
void EndHalfMadeLock(REALpicture picture) {
  const auto version = Get<REALGetRBVersionEntry>("REALGetRBVersion");
  if (version == nullptr || version() < 2012.0) Unlock(picture);
}

}  // namespace

LockedPixels::LockedPixels(REALpicture p) : picture(p) {
  const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  if (picture == nullptr || lock == nullptr) return;
  REALpictureDescription description = {};
  if (lock(picture, &description, kDescriptionBitmapContext) != 0) {
    const auto context = static_cast<CGContextRef>(description.handle);
    base = static_cast<unsigned char*>(CGBitmapContextGetData(context));
    rowBytes = CGBitmapContextGetBytesPerRow(context);
    format = static_cast<int>(CGBitmapContextGetAlphaInfo(context) & 7);
  } else if (EndHalfMadeLock(picture), lock(picture, &description, kDescriptionHostBuffer) != 0) {
    rows = static_cast<REALhostBuffer*>(description.handle)->rowTable;
    format = 8;
  } else {
    EndHalfMadeLock(picture);
    return;
  }
  width = description.width;
  height = description.height;
}

LockedPixels::~LockedPixels() {
  if (width > 0) Unlock(picture);
}

void FlipBits(unsigned char* word, std::uint32_t bits) {
  std::uint32_t value = 0;
  std::memcpy(&value, word, sizeof value);
  value ^= bits;
  std::memcpy(word, &value, sizeof value);
}

void Touch(unsigned char* word) {
  volatile unsigned char* place = word;
  place[0] = place[0];
  place[3] = place[3];
}

}  // namespace faulty
