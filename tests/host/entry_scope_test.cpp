#include "host/entry_scope.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/host/entry_access.h"

namespace host {
namespace {

using Lines = std::vector<std::string>;

TEST(EntryScope, TracesHandlesByNameAndResultsBehindThem) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  EntryOf<REALLockObjectEntry>("REALLockObject")(Handle(picture));
  EntryOf<REALUnlockObjectEntry>("REALUnlockObject")(Handle(picture));
  REALpictureDescription description{};
  EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(Handle(picture),
                                                                         &description, 8);
  EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(Handle(picture),
                                                                         &description, 10);
  EntryOf<NewPictureEntry>("newPicture")(4, 3, 32);
  EntryOf<NewPictureEntry>("newPicture")(0, 3, 32);
  EntryOf<REALLockObjectEntry>("REALLockObject")(nullptr);
  EntryOf<REALLockObjectEntry>("REALLockObject")(&runtime);
  EntryOf<REALBuildStringEntry>("REALBuildString")("text", 4);
  EXPECT_EQ(
      runtime.Calls().Calls(),
      (Lines{"REALLockObject(Picture#1)", "REALUnlockObject(Picture#1)",
             "REALLockPictureDescription(Picture#1, 8) = 1",
             "REALLockPictureDescription(Picture#1, 10) = 0", "newPicture(4, 3, 32) = Picture#2",
             "newPicture(0, 3, 32) = nil", "REALLockObject(nil)", "REALLockObject(unknown)",
             "REALBuildString(\"text\", 4) = String#3"}));
}

TEST(EntryScope, AsksTheInterceptorWithNameAndNumberBeforeTheWork) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  std::vector<std::pair<std::string, int>> asked;
  runtime.intercept = [&](const EntryCall& call) {
    asked.emplace_back(call.entry, call.number);
    return call.number == 2 ? Verdict::kFail : Verdict::kProceed;
  };
  const auto lock = EntryOf<REALLockObjectEntry>("REALLockObject");
  lock(Handle(picture));
  lock(Handle(picture));
  EntryOf<REALUnlockObjectEntry>("REALUnlockObject")(Handle(picture));
  EXPECT_EQ(asked, (std::vector<std::pair<std::string, int>>{
                       {"REALLockObject", 1}, {"REALLockObject", 2}, {"REALUnlockObject", 3}}));
  EXPECT_EQ(picture->References(), 1);
}

TEST(EntryScope, TheInterceptorsExceptionPassesOut) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  runtime.intercept = [](const EntryCall&) -> Verdict { throw std::range_error("far"); };
  EXPECT_THROW(EntryOf<REALLockObjectEntry>("REALLockObject")(Handle(picture)), std::range_error);
  EXPECT_THROW(EntryOf<NewPictureEntry>("newPicture")(1, 1, 32), std::range_error);
  EXPECT_EQ(picture->References(), 1);
  EXPECT_EQ(runtime.Calls().Calls(),
            (Lines{"REALLockObject(Picture#1)", "newPicture(1, 1, 32) threw"}));
}

// Every entry, failed: the neutral answer, nothing made, nothing changed, no violation.
TEST(EntryScope, AFailedEntryAnswersNeutrallyAndDoesNothing) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  void* object = Handle(picture);
  const REALpicture handle = Handle(picture);
  const REALstring text = EntryOf<REALBuildStringEntry>("REALBuildString")("a", 1);
  const auto before = runtime.Book().Take();
  const std::size_t objects = runtime.Book().Objects().size();
  runtime.intercept = [](const EntryCall&) { return Verdict::kFail; };
  std::int32_t number = 0;
  std::uint8_t byte = 0;
  REALpictureDescription description{};
  REALclassDefinition definition{};
  REALmoduleDefinition module{};
  EntryOf<PluginRegisterModuleEntry>("PluginRegisterModule")(&module);
  EntryOf<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension")(&definition);
  EntryOf<RegisterPluginVersionEntry>("RegisterPluginVersion")(13);
  EXPECT_EQ(EntryOf<PluginNewInstanceEntry>("PluginNewInstance")("Picture"), nullptr);
  EXPECT_EQ(EntryOf<PluginObjectTypeEntry>("pluginObjectType")("Picture"), nullptr);
  EntryOf<REALLockObjectEntry>("REALLockObject")(object);
  EntryOf<REALUnlockObjectEntry>("REALUnlockObject")(object);
  EntryOf<REALUnlockStringEntry>("REALUnlockString")(text);
  EXPECT_EQ(
      EntryOf<REALGetPropValueIntegerEntry>("REALGetPropValueInteger")(object, "Width", &number),
      0);
  EXPECT_EQ(EntryOf<REALGetPropValueIntegerEntry>("REALGetPropValueInt")(object, "Width", &number),
            0);
  EXPECT_EQ(
      EntryOf<REALGetPropValueBoolEntry>("REALGetPropValueBool")(object, "HasAlphaChannel", &byte),
      0);
  EXPECT_EQ(
      EntryOf<REALLoadObjectMethodEntry>("REALLoadObjectMethod")(object, kCopyMaskDeclaration),
      nullptr);
  EXPECT_EQ(EntryOf<NewPictureEntry>("newPicture")(1, 1, 32), nullptr);
  EXPECT_EQ(EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(handle,
                                                                                   &description, 8),
            0);
  EntryOf<UnlockPictureDescriptionEntry>("unlockPictureDescription")(handle);
  EXPECT_EQ(EntryOf<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(handle),
            nullptr);
  EXPECT_EQ(EntryOf<REALGetPictureMaskEntry>("REALGetPictureMask")(handle, 1), nullptr);
  EntryOf<REALPictureClearCacheEntry>("REALPictureClearCache")(handle);
  EXPECT_EQ(
      EntryOf<REALBuildPictureFromBufferEntry>("REALBuildPictureFromBuffer")(1, 1, 1, &number, 4),
      nullptr);
  EXPECT_EQ(EntryOf<REALBuildStringEntry>("REALBuildString")("a", 1), nullptr);
  EXPECT_EQ(EntryOf<REALBuildStringWithEncodingEntry>("REALBuildStringWithEncoding")("a", 1, 0),
            nullptr);
  EntryOf<REALSetStringEncodingEntry>("REALSetStringEncoding")(text, 0x0600);
  EXPECT_EQ(EntryOf<REALConvertStringEntry>("REALConvertString")(text, 0x0600), nullptr);
  EntryOf<REALYieldToRBEntry>("REALYieldToRB")();
  EXPECT_EQ(EntryOf<REALGetRBVersionEntry>("REALGetRBVersion")(), 0.0);
  EXPECT_TRUE(runtime.Book().Differences(before, nullptr).empty());
  EXPECT_EQ(runtime.Book().Objects().size(), objects);
  EXPECT_TRUE(runtime.Book().Violations().empty());
  EXPECT_EQ(runtime.Registered().calls, 0);
  EXPECT_EQ(runtime.Registered().announcedVersion, 0);
  EXPECT_EQ(picture->CacheClears(), 0);
  EXPECT_EQ(picture->Mask(), nullptr);
  EXPECT_EQ(ObjectOf<Text>(text)->Encoding(), kEncodingUnknown);
  EXPECT_EQ(runtime.Yields(), 0);
}

TEST(EntryScope, NilUnknownDeadAndWrongHandlesAreViolationsAtOnce) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  const REALstring text = EntryOf<REALBuildStringEntry>("REALBuildString")("a", 1);
  const auto clear = EntryOf<REALPictureClearCacheEntry>("REALPictureClearCache");
  clear(nullptr);
  EXPECT_TRUE(LastViolationSays(runtime, "given nil"));
  clear(reinterpret_cast<REALpicture>(&runtime));
  EXPECT_TRUE(LastViolationSays(runtime, "never gave out"));
  clear(reinterpret_cast<REALpicture>(text));
  EXPECT_TRUE(LastViolationSays(runtime, "wrong class"));
  runtime.Release(picture);
  clear(Handle(picture));
  EXPECT_TRUE(LastViolationSays(runtime, "Picture#1, whose last reference is gone"));
  EXPECT_EQ(runtime.Book().Violations().size(), 4u);
  EXPECT_EQ(picture->CacheClears(), 0);
}

}  // namespace
}  // namespace host
