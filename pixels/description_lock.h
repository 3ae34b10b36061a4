// The lock of a picture's description, given up at the end of a scope, also when an exception
// passes.
#pragma once

#include "plugin/wrappers.h"

// Locks a picture's description as `type`.
// Deliberate: hosts below 2012.0 leave a half-made lock behind when they fail, which is given up
// here.
bool LockPictureDescription(REALpicture picture, REALpictureDescription& description,
                            std::int32_t type);

class DescriptionLock {
 public:
  // Takes over a lock that was made.
  explicit DescriptionLock(REALpicture picture) : picture_(picture) {}
  ~DescriptionLock() {
    if (picture_ != nullptr) REALUnlockPictureDescription(picture_);
  }
  DescriptionLock(const DescriptionLock&) = delete;
  DescriptionLock& operator=(const DescriptionLock&) = delete;

  // The lock stays, whoever gives it up.
  void Keep() { picture_ = nullptr; }

 private:
  REALpicture picture_;
};
