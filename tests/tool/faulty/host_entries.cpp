#include "tests/tool/faulty/host_entries.h"

namespace faulty {

REALresolver gHost;

void Take(REALobject object) {
  const auto take = Get<REALLockObjectEntry>("REALLockObject");
  if (take != nullptr && object != nullptr) take(object);
}

void Give(REALobject object) {
  const auto give = Get<REALUnlockObjectEntry>("REALUnlockObject");
  if (give != nullptr && object != nullptr) give(object);
}

bool HasAlpha(REALpicture picture) {
  std::uint8_t has = 0;
  const auto read = Get<REALGetPropValueBoolEntry>("REALGetPropValueBool");
  return read(picture, "HasAlphaChannel", &has) != 0 && has != 0;
}

std::int32_t Size(REALpicture picture, const char* property) {
  std::int32_t value = 0;
  if (picture == nullptr) return 0;
  const auto read = Get<REALGetPropValueIntegerEntry>("REALGetPropValueInteger");
  return read(picture, property, &value) != 0 ? value : 0;
}

}  // namespace faulty
