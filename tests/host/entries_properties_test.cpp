#include <gtest/gtest.h>

#include "tests/host/entry_access.h"

namespace host {
namespace {

class PropertyEntries : public testing::Test {
 protected:
  PropertyEntries() {
    PictureSpec spec;
    spec.width = 300;
    spec.height = 2;
    spec.hasAlphaChannel = true;
    spec.pixelFormat = 2;
    picture_ = runtime_.NewPicture(spec);
  }
  Runtime runtime_;
  Picture* picture_;
  REALGetPropValueBoolEntry* getBool_ = EntryOf<REALGetPropValueBoolEntry>("REALGetPropValueBool");
};

TEST_F(PropertyEntries, IntegersAreReadUnderBothNames) {
  for (const char* entry : {"REALGetPropValueInteger", "REALGetPropValueInt"}) {
    std::int32_t value = 0;
    const auto get = EntryOf<REALGetPropValueIntegerEntry>(entry);
    EXPECT_NE(get(Handle(picture_), "Width", &value), 0);
    EXPECT_EQ(value, 300);
    EXPECT_NE(get(Handle(picture_), "Height", &value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(runtime_.Calls().Calls().back(), std::string(entry) + "(Picture#1, \"Height\") = 2");
  }
}

TEST_F(PropertyEntries, SuccessAndTruthAreNotOne) {
  std::uint8_t value = 0;
  const std::uint8_t success = getBool_(Handle(picture_), "HasAlphaChannel", &value);
  EXPECT_GT(success, 1);
  EXPECT_GT(value, 1);
  Picture* opaque = runtime_.NewPicture({});
  EXPECT_NE(getBool_(Handle(opaque), "HasAlphaChannel", &value), 0);
  EXPECT_EQ(value, 0);
}

TEST_F(PropertyEntries, FailedReadsLeaveNoise) {
  std::int32_t number = 0;
  std::uint8_t byte = 0;
  const auto get = EntryOf<REALGetPropValueIntegerEntry>("REALGetPropValueInteger");
  EXPECT_EQ(get(Handle(picture_), "Depth", &number), 0);
  EXPECT_NE(number, 0);
  EXPECT_EQ(getBool_(Handle(picture_), "Width", &byte), 0);
  EXPECT_NE(byte, 0);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PropertyEntries, TheTraceShowsWhatWasReadOrThatReadingFailed) {
  std::int32_t number = 0;
  std::uint8_t byte = 0;
  const auto get = EntryOf<REALGetPropValueIntegerEntry>("REALGetPropValueInteger");
  get(Handle(picture_), "Width", &number);
  get(Handle(picture_), "Depth", &number);
  get(nullptr, "Width", &number);
  getBool_(Handle(picture_), "HasAlphaChannel", &byte);
  getBool_(Handle(runtime_.NewPicture({})), "HasAlphaChannel", &byte);
  getBool_(Handle(picture_), "Width", &byte);
  runtime_.intercept = [](const EntryCall&) { return Verdict::kFail; };
  get(Handle(picture_), "Width", &number);
  getBool_(Handle(picture_), "HasAlphaChannel", &byte);
  EXPECT_EQ(runtime_.Calls().Calls(),
            (std::vector<std::string>{
                "REALGetPropValueInteger(Picture#1, \"Width\") = 300",
                "REALGetPropValueInteger(Picture#1, \"Depth\") = failed",
                "REALGetPropValueInteger(nil, \"Width\") = failed",
                "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = true",
                "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                "REALGetPropValueBool(Picture#1, \"Width\") = failed",
                "REALGetPropValueInteger(Picture#1, \"Width\") = failed",
                "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = failed",
            }));
}

TEST_F(PropertyEntries, NilHasNoPropertiesAndMayBeAsked) {
  std::int32_t number = 0;
  EXPECT_EQ(EntryOf<REALGetPropValueIntegerEntry>("REALGetPropValueInt")(nullptr, "Width", &number),
            0);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PropertyEntries, ReadingWithoutNameOrPlaceIsAViolation) {
  std::uint8_t byte = 0;
  EXPECT_EQ(getBool_(Handle(picture_), nullptr, &byte), 0);
  EXPECT_EQ(getBool_(Handle(picture_), "HasAlphaChannel", nullptr), 0);
  EXPECT_EQ(runtime_.Book().Violations().size(), 2u);
}

TEST_F(PropertyEntries, ExceptionsAreSetUnderBothNames) {
  const REALobject handle =
      EntryOf<PluginNewInstanceEntry>("PluginNewInstance")("RuntimeException");
  const auto* exception = ObjectOf<RuntimeException>(handle);
  EntryOf<REALSetPropValueIntegerEntry>("REALSetPropValueInteger")(handle, "ErrorNumber", 4);
  EXPECT_EQ(exception->errorNumber, 4);
  EntryOf<REALSetPropValueIntegerEntry>("REALSetPropValueInt")(handle, "ErrorNumber", -1);
  EXPECT_EQ(exception->errorNumber, -1);
  EXPECT_EQ(runtime_.Calls().Calls().back(),
            "REALSetPropValueInt(RuntimeException#2, \"ErrorNumber\", -1)");
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(PropertyEntries, SettingWhatIsNotThereIsAViolation) {
  EntryOf<REALSetPropValueIntegerEntry>("REALSetPropValueInteger")(Handle(picture_), "Width", 4);
  EXPECT_TRUE(LastViolationSays(runtime_, "no settable property \"Width\""));
  const auto setString = EntryOf<REALSetPropValueStringEntry>("REALSetPropValueString");
  setString(Handle(picture_), "Message", nullptr);
  EXPECT_TRUE(LastViolationSays(runtime_, "no settable property \"Message\""));
  const REALobject exception =
      EntryOf<PluginNewInstanceEntry>("PluginNewInstance")("RuntimeException");
  setString(exception, "Message", reinterpret_cast<REALstring>(exception));
  EXPECT_TRUE(LastViolationSays(runtime_, "wrong class"));
  EXPECT_FALSE(ObjectOf<RuntimeException>(exception)->hasMessage);
}

}  // namespace
}  // namespace host
