// Reference and lock bookkeeping.
#include "host/ledger.h"

#include <algorithm>
#include <set>
#include <utility>

namespace host {

namespace {

using Holdings = std::vector<Ledger::Holding>;

bool IsFreeReference(const Ledger::Holding& holding) {
  return !holding.isLock && holding.owner == nullptr;
}

// The index of the newest holding that fits, or the size when none does.
template <typename Fits>
std::size_t Newest(const Holdings& holdings, Fits fits) {
  for (std::size_t i = holdings.size(); i > 0; --i) {
    if (fits(holdings[i - 1])) return i - 1;
  }
  return holdings.size();
}

void Erase(Holdings& holdings, std::size_t index) {
  holdings.erase(holdings.begin() + static_cast<std::ptrdiff_t>(index));
}

std::string What(const Ledger::Holding& holding) {
  if (!holding.isLock) return "a reference";
  return holding.halfMade ? "a half-made description lock" : "a description lock";
}

}  // namespace

void Ledger::Enter(std::unique_ptr<Object> object, const std::string& taker) {
  Object* raw = object.get();
  objects_.push_back(std::move(object));
  raw->number_ = static_cast<int>(objects_.size());
  raw->references_ = 1;
  byHandle_[HandleOf<const void*>(raw)] = raw;
  holdings_[raw].push_back({taker});
}

Object* Ledger::Find(const void* handle) const {
  const auto found = byHandle_.find(handle);
  return found == byHandle_.end() ? nullptr : found->second;
}

void Ledger::AddViolation(std::string sentence) { violations_.push_back(std::move(sentence)); }

bool Ledger::RefuseDead(const Object* object, const std::string& taker) {
  if (object->Alive()) return false;
  AddViolation(object->Name() + " was used by " + taker + " after its last reference was gone.");
  return true;
}

void Ledger::Lock(Object* object, const std::string& taker) {
  if (RefuseDead(object, taker)) return;
  ++object->references_;
  holdings_[object].push_back({taker});
}

void Ledger::Unlock(Object* object, const std::string& taker) {
  if (RefuseDead(object, taker)) return;
  const Holdings& held = holdings_[object];
  const std::size_t index = Newest(held, IsFreeReference);
  if (index == held.size()) {
    AddViolation(taker + " gave up a reference on " + object->Name() +
                 " that belongs to another object.");
    return;
  }
  DropReference(object, index);
}

void Ledger::HandOver(Object* object, const Object* owner) {
  Holdings& held = holdings_[object];
  const std::size_t index = Newest(held, IsFreeReference);
  if (index == held.size()) {
    AddViolation(owner->Name() + " was handed " + object->Name() + " without a reference to it.");
    return;
  }
  held[index].owner = owner;
}

void Ledger::UnlockOwned(Object* object, const Object* owner) {
  const Holdings& held = holdings_[object];
  const std::size_t index =
      Newest(held, [&](const Holding& holding) { return holding.owner == owner; });
  if (index < held.size()) DropReference(object, index);
}

void Ledger::DropReference(Object* object, std::size_t index) {
  Holdings& held = holdings_[object];
  Erase(held, index);
  if (--object->references_ > 0) return;
  for (const Holding& lock : held) {
    AddViolation(object->Name() + " lost its last reference while " + lock.taker + " held " +
                 What(lock) + " on it.");
  }
  holdings_.erase(object);
  object->OnDeath(*this);
}

void Ledger::LockDescription(Object* object, const std::string& taker) {
  if (RefuseDead(object, taker)) return;
  holdings_[object].push_back({taker, true});
}

void Ledger::LeaveHalfMadeLock(Object* object, const std::string& taker) {
  if (RefuseDead(object, taker)) return;
  holdings_[object].push_back({taker, true, true});
}

void Ledger::UnlockDescription(Object* object, const std::string& taker, bool forgiving) {
  if (RefuseDead(object, taker)) return;
  Holdings& held = holdings_[object];
  const std::size_t index = Newest(held, [](const Holding& holding) { return holding.isLock; });
  if (index < held.size()) {
    Erase(held, index);
  } else if (!forgiving) {
    AddViolation(taker + " unlocked the description of " + object->Name() +
                 ", which was not locked.");
  }
}

int Ledger::DescriptionLocks(const Object* object) const {
  const auto found = holdings_.find(object);
  if (found == holdings_.end()) return 0;
  return static_cast<int>(std::count_if(found->second.begin(), found->second.end(),
                                        [](const Holding& holding) { return holding.isLock; }));
}

Ledger::Snapshot Ledger::Take() const {
  Snapshot snapshot;
  for (const auto& [object, held] : holdings_) snapshot[object->Number()] = held;
  return snapshot;
}

std::vector<std::string> Ledger::Differences(const Snapshot& before, const Object* result) const {
  std::set<int> numbers;
  for (const auto& [number, held] : before) numbers.insert(number);
  for (const auto& [object, held] : holdings_) numbers.insert(object->Number());
  if (result != nullptr) numbers.insert(result->Number());
  std::vector<std::string> differences;
  for (const int number : numbers) {
    const Object& object = *objects_[static_cast<std::size_t>(number - 1)];
    const auto earlier = before.find(number);
    CompareObject(object, earlier == before.end() ? Holdings() : earlier->second, &object == result,
                  differences);
  }
  return differences;
}

void Ledger::CompareObject(const Object& object, std::vector<Holding> before, bool isResult,
                           std::vector<std::string>& differences) const {
  const auto found = holdings_.find(&object);
  Holdings surplus;
  if (found != holdings_.end()) {
    for (const Holding& holding : found->second) {
      const auto same = std::find(before.begin(), before.end(), holding);
      if (same != before.end()) {
        before.erase(same);
      } else if (holding.owner == nullptr) {
        surplus.push_back(holding);
      }
    }
  }
  if (isResult) {
    const std::size_t expected = Newest(surplus, IsFreeReference);
    if (expected < surplus.size()) {
      Erase(surplus, expected);
    } else {
      differences.push_back(object.Name() + " was returned without a reference for the caller.");
    }
  }
  for (const Holding& holding : surplus) {
    differences.push_back(object.Name() + " is left with " + What(holding) + " taken by " +
                          holding.taker + ".");
  }
  for (const Holding& holding : before) {
    if (holding.owner != nullptr) continue;
    differences.push_back(object.Name() + " lost " + What(holding) + " taken by " + holding.taker +
                          ".");
  }
}

}  // namespace host
