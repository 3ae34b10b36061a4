#include "pixels/description_lock.h"

#include "plugin/host_state.h"

bool LockPictureDescription(REALpicture picture, REALpictureDescription& description,
                            std::int32_t type) {
  if (REALLockPictureDescription(picture, &description, type)) return true;
  if (rbversion_rbversion < 2012.0) REALUnlockPictureDescription(picture);
  return false;
}
