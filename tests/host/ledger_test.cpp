#include "host/ledger.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using Sentences = std::vector<std::string>;

class Mortal : public Object {
 public:
  explicit Mortal(int& deaths) : Object("Mortal"), deaths_(deaths) {}
  void OnDeath(Ledger&) override { ++deaths_; }

 private:
  int& deaths_;
};

class LedgerTest : public testing::Test {
 protected:
  Object* Add(const std::string& taker = "test") {
    return book_.Add(std::make_unique<Mortal>(deaths_), taker);
  }
  Ledger book_;
  int deaths_ = 0;
};

TEST_F(LedgerTest, NumbersObjectsFromOneAndFindsThemDeadOrAlive) {
  Object* first = Add();
  Object* second = Add();
  EXPECT_EQ(first->Name(), "Mortal#1");
  EXPECT_EQ(second->Name(), "Mortal#2");
  EXPECT_EQ(book_.Find(HandleOf<void*>(second)), second);
  book_.Unlock(second, "test");
  EXPECT_EQ(book_.Find(HandleOf<void*>(second)), second);
  EXPECT_EQ(book_.Find(&book_), nullptr);
  EXPECT_EQ(book_.Find(nullptr), nullptr);
}

TEST_F(LedgerTest, TheLastReferenceKillsOnce) {
  Object* object = Add();
  book_.Lock(object, "a");
  EXPECT_EQ(object->References(), 2);
  book_.Unlock(object, "b");
  EXPECT_TRUE(object->Alive());
  EXPECT_EQ(deaths_, 0);
  book_.Unlock(object, "c");
  EXPECT_FALSE(object->Alive());
  EXPECT_EQ(deaths_, 1);
  EXPECT_TRUE(book_.Violations().empty());
}

TEST_F(LedgerTest, EveryUseOfADeadObjectIsAViolationAndItStaysDead) {
  Object* object = Add();
  book_.Unlock(object, "a");
  book_.Unlock(object, "b");
  book_.Lock(object, "c");
  book_.LockDescription(object, "d");
  book_.UnlockDescription(object, "e", true);
  book_.LeaveHalfMadeLock(object, "f");
  EXPECT_EQ(book_.Violations().size(), 5u);
  EXPECT_EQ(book_.Violations()[0], "Mortal#1 was used by b after its last reference was gone.");
  EXPECT_FALSE(object->Alive());
  EXPECT_EQ(deaths_, 1);
  book_.ForgetViolations();
  EXPECT_TRUE(book_.Violations().empty());
}

TEST_F(LedgerTest, DescriptionLocksAreCountedAndUnlockedOneByOne) {
  Object* object = Add();
  book_.LockDescription(object, "a");
  book_.LockDescription(object, "b");
  EXPECT_EQ(book_.DescriptionLocks(object), 2);
  book_.UnlockDescription(object, "c", false);
  book_.UnlockDescription(object, "c", false);
  EXPECT_EQ(book_.DescriptionLocks(object), 0);
  EXPECT_TRUE(book_.Violations().empty());
  book_.UnlockDescription(object, "c", true);
  EXPECT_TRUE(book_.Violations().empty()) << "forgiving";
  book_.UnlockDescription(object, "c", false);
  EXPECT_EQ(book_.Violations(),
            Sentences{"c unlocked the description of Mortal#1, which was not locked."});
  EXPECT_EQ(object->References(), 1) << "locks are no references";
}

TEST_F(LedgerTest, AHalfMadeLockWantsExactlyOneUnlock) {
  Object* object = Add();
  const auto before = book_.Take();
  book_.LeaveHalfMadeLock(object, "a");
  EXPECT_EQ(book_.Differences(before, nullptr),
            Sentences{"Mortal#1 is left with a half-made description lock taken by a."});
  book_.UnlockDescription(object, "b", false);
  EXPECT_TRUE(book_.Differences(before, nullptr).empty());
  book_.UnlockDescription(object, "b", false);
  EXPECT_EQ(book_.Violations().size(), 1u);
}

TEST_F(LedgerTest, DyingWithAnOpenLockIsAViolation) {
  Object* object = Add();
  book_.LockDescription(object, "a");
  book_.Unlock(object, "test");
  EXPECT_EQ(book_.Violations(),
            Sentences{"Mortal#1 lost its last reference while a held a description lock on it."});
  EXPECT_EQ(book_.DescriptionLocks(object), 0);
}

TEST_F(LedgerTest, DifferencesNameWhatIsLeftOverAndWhatIsLost) {
  Object* kept = Add();
  Object* lost = Add("owner");
  const auto before = book_.Take();
  book_.Lock(kept, "Method: entry, call 3");
  book_.LockDescription(kept, "Method: lock, call 4");
  Object* leaked = Add("Method: new, call 5");
  book_.Unlock(lost, "Method: unlock, call 6");
  EXPECT_EQ(book_.Differences(before, nullptr),
            (Sentences{"Mortal#1 is left with a reference taken by Method: entry, call 3.",
                       "Mortal#1 is left with a description lock taken by Method: lock, call 4.",
                       "Mortal#2 lost a reference taken by owner.",
                       "Mortal#3 is left with a reference taken by Method: new, call 5."}));
  EXPECT_EQ(leaked->References(), 1);
}

TEST_F(LedgerTest, AResultHasExactlyOneReferenceMore) {
  Object* object = Add();
  const auto before = book_.Take();
  EXPECT_EQ(book_.Differences(before, object),
            Sentences{"Mortal#1 was returned without a reference for the caller."});
  book_.Lock(object, "a");
  EXPECT_TRUE(book_.Differences(before, object).empty());
  book_.Lock(object, "b");
  EXPECT_EQ(book_.Differences(before, object),
            Sentences{"Mortal#1 is left with a reference taken by a."});
  Object* made = Add("c");
  EXPECT_EQ(book_.Differences(before, made).size(), 2u) << "only those of the other object";
}

TEST_F(LedgerTest, EqualTakersAreToldApartByTheirNumber) {
  Object* object = Add("test");
  book_.Lock(object, "test");
  const auto before = book_.Take();
  book_.Lock(object, "test");
  EXPECT_EQ(book_.Differences(before, nullptr).size(), 1u);
  book_.Unlock(object, "test");
  EXPECT_TRUE(book_.Differences(before, nullptr).empty());
  book_.Unlock(object, "test");
  EXPECT_EQ(book_.Differences(before, nullptr),
            Sentences{"Mortal#1 lost a reference taken by test."});
}

TEST_F(LedgerTest, AReferenceThatBelongsToAnObjectIsTheObjectsToGiveUp) {
  Object* owner = Add();
  Object* owned = Add();
  const auto before = book_.Take();
  book_.Lock(owned, "a");
  book_.HandOver(owned, owner);
  EXPECT_TRUE(book_.Differences(before, nullptr).empty()) << "the owner is in the book itself";
  book_.Unlock(owned, "test");
  EXPECT_TRUE(owned->Alive());
  book_.Unlock(owned, "test");
  EXPECT_TRUE(owned->Alive());
  EXPECT_EQ(book_.Violations(),
            Sentences{"test gave up a reference on Mortal#2 that belongs to another object."});
  book_.UnlockOwned(owned, owner);
  EXPECT_FALSE(owned->Alive());
}

TEST_F(LedgerTest, HandingOverWithoutAReferenceIsAViolation) {
  Object* owner = Add();
  Object* owned = Add();
  book_.HandOver(owned, owner);
  EXPECT_TRUE(book_.Violations().empty());
  book_.HandOver(owned, owner);
  EXPECT_EQ(book_.Violations(),
            Sentences{"Mortal#1 was handed Mortal#2 without a reference to it."});
}

}  // namespace
}  // namespace host
