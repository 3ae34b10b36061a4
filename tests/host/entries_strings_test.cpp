#include <gtest/gtest.h>

#include "tests/host/entry_access.h"

namespace host {
namespace {

class StringEntries : public testing::Test {
 protected:
  Runtime runtime_;
  REALBuildStringEntry* build_ = EntryOf<REALBuildStringEntry>("REALBuildString");
  REALConvertStringEntry* convert_ = EntryOf<REALConvertStringEntry>("REALConvertString");
};

TEST_F(StringEntries, AStringIsBuiltWithoutAnEncoding) {
  const auto* text = ObjectOf<Text>(build_("abc", 2));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->Bytes(), "ab");
  EXPECT_EQ(text->Encoding(), kEncodingUnknown);
  EXPECT_EQ(text->References(), 1);
  EXPECT_EQ(ObjectOf<Text>(build_(nullptr, 0))->Bytes(), "");
}

TEST_F(StringEntries, AStringIsBuiltWithAnEncodingOrGivenOneLater) {
  const auto* text = ObjectOf<Text>(EntryOf<REALBuildStringWithEncodingEntry>(
      "REALBuildStringWithEncoding")("a\0", 2, kEncodingUtf16));
  EXPECT_EQ(text->Encoding(), kEncodingUtf16);
  EXPECT_EQ(text->Bytes().size(), 2u);
  const REALstring other = build_("a", 1);
  EntryOf<REALSetStringEncodingEntry>("REALSetStringEncoding")(other, kEncodingAscii);
  EXPECT_EQ(ObjectOf<Text>(other)->Encoding(), kEncodingAscii);
}

TEST_F(StringEntries, BytesThatAreNotThereAreAViolation) {
  EXPECT_EQ(build_("abc", -1), nullptr);
  EXPECT_EQ(build_(nullptr, 1), nullptr);
  EXPECT_EQ(runtime_.Book().Violations().size(), 2u);
}

TEST_F(StringEntries, ConvertingMakesANewString) {
  const REALstring text = EntryOf<REALBuildStringWithEncodingEntry>("REALBuildStringWithEncoding")(
      "\xE9\0", 2, kEncodingUtf16);
  const REALstring converted = convert_(text, kEncodingUtf8);
  ASSERT_NE(converted, text);
  EXPECT_EQ(ObjectOf<Text>(converted)->Bytes(), "\xC3\xA9");
  EXPECT_EQ(ObjectOf<Text>(converted)->Encoding(), kEncodingUtf8);
  EXPECT_EQ(ObjectOf<Text>(text)->References(), 1);
  EXPECT_EQ(convert_(nullptr, kEncodingUtf8), nullptr);
  EXPECT_TRUE(runtime_.Book().Violations().empty()) << "nil converts to nil";
}

TEST_F(StringEntries, AReleasedStringIsDead) {
  const auto unlock = EntryOf<REALUnlockStringEntry>("REALUnlockString");
  const REALstring text = build_("a", 1);
  unlock(text);
  EXPECT_FALSE(ObjectOf<Text>(text)->Alive());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  unlock(text);
  EXPECT_EQ(convert_(text, kEncodingUtf8), nullptr);
  EntryOf<REALSetStringEncodingEntry>("REALSetStringEncoding")(text, kEncodingAscii);
  EXPECT_EQ(runtime_.Book().Violations().size(), 3u);
}

TEST_F(StringEntries, ObjectsAreNotUnlockedAsStrings) {
  Picture* picture = runtime_.NewPicture({});
  EntryOf<REALUnlockStringEntry>("REALUnlockString")(HandleOf<REALstring>(picture));
  EXPECT_TRUE(picture->Alive());
  EXPECT_TRUE(LastViolationSays(runtime_, "wrong class"));
}

}  // namespace
}  // namespace host
