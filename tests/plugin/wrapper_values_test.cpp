// What counts as success and as true in the answers of the host, and what its failures leave.
#include <gtest/gtest.h>

#include "plugin/methods.h"
#include "plugin/wrappers.h"
#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::FakeHandle;
using plugin_test::FakeHost;
using Lines = std::vector<std::string>;

constexpr std::int32_t kLeast = -2147483647 - 1;

// The next answer: the register with the success byte, whose other bytes mean nothing, and what is
// written into the out-value.
std::uint32_t gAnswer;
std::int32_t gInteger;
std::uint8_t gBoolean;
bool gWrites;

std::uint32_t ReadInteger(REALobject, const char*, std::int32_t* value) {
  if (gWrites) *value = gInteger;
  return gAnswer;
}

std::uint32_t ReadBoolean(REALobject, const char*, std::uint8_t* value) {
  if (gWrites) *value = gBoolean;
  return gAnswer;
}

std::uint32_t LockDescription(REALpicture, REALpictureDescription*, std::int32_t) {
  return gAnswer;
}

class WrapperValues : public testing::Test {
 protected:
  WrapperValues() {
    host_.Offer("REALGetPropValueInteger", ReadInteger);
    host_.Offer("REALGetPropValueBool", ReadBoolean);
    host_.Offer("REALLockPictureDescription", LockDescription);
    gWrites = true;
  }
  FakeHost host_;
  const REALobject object_ = FakeHandle<REALobject>(1);
};

struct IntegerCase {
  std::uint32_t answer;
  std::int32_t written;
  std::int32_t expected;
};

TEST_F(WrapperValues, IntegersCountOnlyWhenTheirReadingSucceeds) {
  const IntegerCase cases[] = {
      {1, 17, 17},
      {1, 0, 0},
      {1, -17, -17},
      {1, kLeast, kLeast},
      {0x40, 17, 17},
      {0x80, 17, 17},
      {0xFF, 2147483647, 2147483647},
      {2, 17, 17},
      {0, 17, 0},
      {0, -1, 0},
      {0xFFFFFF00, 17, 0},
      {0x100, 17, 0},
      {0xA5A5A501, 17, 17},
  };
  for (const IntegerCase& row : cases) {
    gAnswer = row.answer;
    gInteger = row.written;
    EXPECT_EQ(REALGetPropValueInteger(object_, "Width"), row.expected) << row.answer;
  }
}

struct BooleanCase {
  std::uint32_t answer;
  std::uint8_t written;
  bool expected;
};

TEST_F(WrapperValues, BooleansCountOnlyWhenTheirReadingSucceedsAndAnyNonZeroByteIsTrue) {
  const BooleanCase cases[] = {
      {1, 0, false},         {1, 1, true},           {1, 2, true},     {1, 0x40, true},
      {1, 0x80, true},       {1, 0xFF, true},        {0x40, 1, true},  {0x80, 1, true},
      {0x80, 0, false},      {0, 1, false},          {0, 0xC7, false}, {0xFFFFFF00, 1, false},
      {0xA5A5A501, 1, true}, {0xA5A5A501, 0, false},
  };
  for (const BooleanCase& row : cases) {
    gAnswer = row.answer;
    gBoolean = row.written;
    EXPECT_EQ(REALGetPropValueBoolean(object_, "HasAlphaChannel"), row.expected) << row.answer;
  }
}

TEST_F(WrapperValues, ASuccessThatWritesNothingReadsAs0) {
  gWrites = false;
  gAnswer = 1;
  EXPECT_EQ(REALGetPropValueInteger(object_, "Width"), 0);
  EXPECT_FALSE(REALGetPropValueBoolean(object_, "HasAlphaChannel"));
}

struct LockCase {
  std::uint32_t answer;
  bool expected;
};

TEST_F(WrapperValues, ALockSucceedsWithAnyNonZeroByte) {
  const LockCase cases[] = {
      {0, false},   {1, true},           {2, true},      {0x40, true},  {0x80, true},
      {0xFF, true}, {0xFFFFFF00, false}, {0x100, false}, {0x101, true}, {0xA5A5A500, false},
  };
  REALpictureDescription description;
  for (const LockCase& row : cases) {
    gAnswer = row.answer;
    const auto picture = FakeHandle<REALpicture>(2);
    EXPECT_EQ(REALLockPictureDescription(picture, &description, 8), row.expected) << row.answer;
  }
}

std::uint8_t ReadSize(REALobject, const char* property, std::int32_t* value) {
  FakeHost::Current().Note(property);
  *value = std::string(property) == "Width" ? 4 : 3;
  return 1;
}

TEST(MissingLockObject, AMethodReturnsItsOwnPictureWithoutTakingAReference) {
  FakeHost host;
  host.Offer("REALGetPropValueInt", ReadSize);
  const auto picture = FakeHandle<REALpicture>(2);
  EXPECT_EQ(ScaleZVQ(picture, 4, 3, 0, 0), picture);
  EXPECT_EQ(host.Calls(), (Lines{"Width", "Height"}));
  EXPECT_EQ(host.LookUps("REALLockObject"), 1);
  EXPECT_EQ(host.LookUps("REALGetPropValueInteger"), 1);
  EXPECT_EQ(host.LookUps("REALGetPropValueInt"), 1);
}

}  // namespace
