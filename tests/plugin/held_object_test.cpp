// One reference, given up exactly once.
#include "plugin/held_object.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::FakeHandle;
using plugin_test::FakeHost;
using plugin_test::Show;
using Lines = std::vector<std::string>;

void NoteUnlock(REALobject object) { FakeHost::Current().Note("unlock " + Show(object)); }

class HeldObjectTest : public testing::Test {
 protected:
  HeldObjectTest() { host_.Offer("REALUnlockObject", NoteUnlock); }
  FakeHost host_;
  const REALobject object_ = FakeHandle<REALobject>(1);
};

TEST_F(HeldObjectTest, GivesItsReferenceUpAtTheEndOfTheScope) {
  {
    const HeldObject held(object_);
    EXPECT_EQ(host_.Lines(), Lines{});
  }
  EXPECT_EQ(host_.Calls(), Lines{"unlock " + Show(object_)});
}

TEST_F(HeldObjectTest, GivesItsReferenceUpWhenAnExceptionPasses) {
  try {
    const HeldObject held(object_);
    throw std::runtime_error("passing");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(host_.Calls(), Lines{"unlock " + Show(object_)});
}

TEST_F(HeldObjectTest, KeepsAReferenceThatPassesToTheCaller) {
  {
    HeldObject held(object_);
    held.Keep();
  }
  EXPECT_EQ(host_.Lines(), Lines{});
}

TEST_F(HeldObjectTest, HoldsNothingForNull) {
  { const HeldObject held(nullptr); }
  EXPECT_EQ(host_.Lines(), Lines{});
}

}  // namespace
