// The book of all host objects: who holds which reference and which description lock, and what was
// done wrong. A method call is proved clean by comparing the book before it and after it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/object.h"

namespace host {

class Ledger {
 public:
  // One reference or one description lock that somebody holds.
  struct Holding {
    std::string
        taker;  // "test", or "ScaleZVQ: newPicture, call 7": the method, the entry, its number
    bool isLock = false;
  };

  // What is held at one moment, by object number.
  using Snapshot = std::map<int, std::vector<Holding>>;

  // Takes ownership; the object starts with one reference held by `taker`.
  template <typename T>
  T* Add(std::unique_ptr<T> object, const std::string& taker) {
    T* raw = object.get();
    Enter(std::move(object), taker);
    return raw;
  }

  // The object behind a handle, dead or alive; null for a handle that was never given out.
  Object* Find(const void* handle) const;

  void Lock(Object* object, const std::string& taker);
  // Gives up the newest reference. A dead object is a violation and stays dead.
  void Unlock(Object* object, const std::string& taker);
  void LockDescription(Object* object, const std::string& taker);
  // A lock that is not there is a violation, unless `forgiving`.
  void UnlockDescription(Object* object, const std::string& taker, bool forgiving);
  int DescriptionLocks(const Object* object) const;

  // Misuse seen so far, one sentence each; empty when all was well.
  const std::vector<std::string>& Violations() const { return violations_; }
  void AddViolation(std::string sentence);
  void ForgetViolations() { violations_.clear(); }

  Snapshot Take() const;
  // What differs between `before` and now, one sentence each, naming the taker of every reference
  // and lock that is left over. `result`, when not null, is expected to have exactly one reference
  // more.
  std::vector<std::string> Differences(const Snapshot& before, const Object* result) const;

 private:
  void Enter(std::unique_ptr<Object> object, const std::string& taker);

  std::vector<std::unique_ptr<Object>> objects_;
  std::map<const void*, Object*> byHandle_;
  std::map<const Object*, std::vector<Holding>> holdings_;
  std::vector<std::string> violations_;
};

}  // namespace host
