// A reference to a host object that is given up at the end of a scope, also when an exception
// passes.
#pragma once

#include <utility>

#include "plugin/wrappers.h"

class HeldObject {
 public:
  // Takes over one reference; null holds nothing.
  explicit HeldObject(REALobject object) : object_(object) {}
  ~HeldObject() {
    if (object_ != nullptr) REALUnlockObject(object_);
  }
  HeldObject(const HeldObject&) = delete;
  HeldObject& operator=(const HeldObject&) = delete;

  // The reference passes to the caller.
  void Keep() { object_ = nullptr; }

 private:
  REALobject object_;
};
