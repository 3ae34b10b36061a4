// References to host objects and strings that are given up at the end of a scope, also when an
// exception passes.
#pragma once

#include <utility>

#include "plugin/wrappers.h"

template <typename Handle, void (*giveUp)(Handle)>
class HeldReference {
 public:
  // Takes over one reference; null holds nothing.
  explicit HeldReference(Handle handle) : handle_(handle) {}
  ~HeldReference() {
    if (handle_ != nullptr) giveUp(handle_);
  }
  HeldReference(const HeldReference&) = delete;
  HeldReference& operator=(const HeldReference&) = delete;

  Handle Get() const { return handle_; }
  // The reference passes to the caller.
  Handle Keep() { return std::exchange(handle_, nullptr); }

 private:
  Handle handle_;
};

using HeldObject = HeldReference<REALobject, REALUnlockObject>;
using HeldString = HeldReference<REALstring, REALUnlockString>;
