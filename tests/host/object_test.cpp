#include "host/object.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Object, HasNoPropertiesOfItsOwn) {
  Object object("Graphics");
  int number = 7;
  bool truth = true;
  EXPECT_FALSE(object.GetInteger("Width", number));
  EXPECT_FALSE(object.GetBoolean("HasAlphaChannel", truth));
  EXPECT_FALSE(object.SetInteger("ErrorNumber", 1));
  EXPECT_FALSE(object.SetString("Message", nullptr));
  EXPECT_EQ(number, 7);
  EXPECT_TRUE(truth);
}

TEST(Object, IsDeadUntilABookHoldsIt) {
  Object object("Picture");
  EXPECT_EQ(object.References(), 0);
  EXPECT_FALSE(object.Alive());
}

TEST(Object, NullHasTheNullHandle) { EXPECT_EQ(HandleOf<void*>(nullptr), nullptr); }

TEST(SameName, IgnoresTheCaseOfAsciiLettersOnly) {
  EXPECT_TRUE(SameName("HasAlphaChannel", "hasALPHAchannel"));
  EXPECT_FALSE(SameName("Width", "Widths"));
  EXPECT_FALSE(SameName("a[", "a{"));
  EXPECT_TRUE(SameName("", ""));
}

}  // namespace
}  // namespace host
