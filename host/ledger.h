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
    // Left behind by a lock that failed on a host below 2012.0; one unlock is owed for it.
    bool halfMade = false;
    // The object this reference belongs to (a mask belongs to its picture); null for everybody
    // else's.
    const Object* owner = nullptr;
    friend bool operator==(const Holding&, const Holding&) = default;
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

  // Takes one more reference. On a dead object that is a violation, and it stays dead.
  void Lock(Object* object, const std::string& taker);
  // Gives up the newest reference that belongs to no object. A dead object is a violation and stays
  // dead; so is an object all of whose references belong to others, and it stays alive. A
  // description lock that is open when the last reference goes is a violation and ends with it.
  void Unlock(Object* object, const std::string& taker);

  // Hands the newest reference that belongs to no object over to `owner`.
  void HandOver(Object* object, const Object* owner);
  // Gives up the reference that belongs to `owner`.
  void UnlockOwned(Object* object, const Object* owner);

  void LockDescription(Object* object, const std::string& taker);
  // A lock that failed on a host below 2012.0 and still wants to be unlocked, once.
  void LeaveHalfMadeLock(Object* object, const std::string& taker);
  // Ends the newest lock, half-made ones included. A lock that is not there is a violation, unless
  // `forgiving`.
  void UnlockDescription(Object* object, const std::string& taker, bool forgiving);
  int DescriptionLocks(const Object* object) const;  // with half-made ones

  // Misuse seen so far, one sentence each; empty when all was well.
  const std::vector<std::string>& Violations() const { return violations_; }
  void AddViolation(std::string sentence);
  void ForgetViolations() { violations_.clear(); }

  Snapshot Take() const;
  // What differs between `before` and now, one sentence each, naming the taker of every reference
  // and lock that is left over or lost. `result`, when not null, is expected to have exactly one
  // reference more. References that belong to objects are not counted: those objects are.
  std::vector<std::string> Differences(const Snapshot& before, const Object* result) const;

  const std::vector<std::unique_ptr<Object>>& Objects() const { return objects_; }

 private:
  void Enter(std::unique_ptr<Object> object, const std::string& taker);
  bool RefuseDead(const Object* object, const std::string& taker);
  void DropReference(Object* object, std::size_t index);
  void CompareObject(const Object& object, std::vector<Holding> before, bool isResult,
                     std::vector<std::string>& differences) const;

  std::vector<std::unique_ptr<Object>> objects_;  // by number - 1
  std::map<const void*, Object*> byHandle_;
  std::map<const Object*, std::vector<Holding>> holdings_;  // of living objects
  std::vector<std::string> violations_;
};

}  // namespace host
