#include <gtest/gtest.h>

#include "tests/host/entry_access.h"

namespace host {
namespace {

class ObjectEntries : public testing::Test {
 protected:
  Runtime runtime_;
  PluginNewInstanceEntry* newInstance_ = EntryOf<PluginNewInstanceEntry>("PluginNewInstance");
  REALUnlockObjectEntry* unlock_ = EntryOf<REALUnlockObjectEntry>("REALUnlockObject");
  RuntimeRaiseExceptionEntry* raise_ = EntryOf<RuntimeRaiseExceptionEntry>("RuntimeRaiseException");
  REALLoadObjectMethodEntry* load_ = EntryOf<REALLoadObjectMethodEntry>("REALLoadObjectMethod");
};

TEST_F(ObjectEntries, ANewPictureInstanceHasNoPixelsAndOneReference) {
  const REALobject handle = newInstance_("Picture");
  auto* picture = ObjectOf<Picture>(handle);
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->References(), 1);
  EXPECT_EQ(picture->Width(), 0);
  EXPECT_EQ(picture->Height(), 0);
  EXPECT_FALSE(picture->HasPixels());
}

TEST_F(ObjectEntries, InstancesOfExceptionClassesAndOfNothingElse) {
  for (const char* name : {"RuntimeException", "NilObjectException", "OutOfMemoryException",
                           "OutOfBoundsException", "IllegalCastException"}) {
    const auto* exception = ObjectOf<RuntimeException>(newInstance_(name));
    ASSERT_NE(exception, nullptr) << name;
    EXPECT_EQ(exception->ClassName(), name);
  }
  for (const char* name : {"Graphics", "String", "Application", "NoSuchException", ""}) {
    EXPECT_EQ(newInstance_(name), nullptr) << name;
  }
  EXPECT_EQ(newInstance_(nullptr), nullptr);
  runtime_.RemoveClass("NilObjectException");
  EXPECT_EQ(newInstance_("NilObjectException"), nullptr);
}

TEST_F(ObjectEntries, ClassReferencesExistForKnownClassesOnly) {
  const auto type = EntryOf<PluginObjectTypeEntry>("pluginObjectType");
  EXPECT_NE(type("Application"), nullptr);
  EXPECT_EQ(type("Application"), type("Application"));
  EXPECT_NE(type("Application"), type("Picture"));
  EXPECT_EQ(type("WebApplication"), nullptr);
  EXPECT_EQ(type(nullptr), nullptr);
  runtime_.RemoveClass("Application");
  EXPECT_EQ(type("Application"), nullptr);
}

TEST_F(ObjectEntries, ReferencesAreTakenAndGivenUp) {
  Picture* picture = runtime_.NewPicture({});
  EntryOf<REALLockObjectEntry>("REALLockObject")(Handle(picture));
  EXPECT_EQ(picture->References(), 2);
  unlock_(Handle(picture));
  unlock_(Handle(picture));
  EXPECT_FALSE(picture->Alive());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  unlock_(Handle(picture));
  EXPECT_EQ(runtime_.Book().Violations().size(), 1u);
}

TEST_F(ObjectEntries, AStringIsNotUnlockedAsAnObject) {
  const REALstring text = EntryOf<REALBuildStringEntry>("REALBuildString")("a", 1);
  unlock_(text);
  EXPECT_TRUE(LastViolationSays(runtime_, "a string"));
  EXPECT_EQ(ObjectOf<Text>(text)->References(), 1);
}

TEST_F(ObjectEntries, APictureThatDiesLockedIsAViolation) {
  Picture* picture = runtime_.NewPicture({});
  REALpictureDescription description{};
  EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(Handle(picture),
                                                                         &description, 8);
  unlock_(Handle(picture));
  EXPECT_TRUE(LastViolationSays(runtime_, "lost its last reference while"));
}

TEST_F(ObjectEntries, HostMethodsAreFoundByClassAndExactDeclaration) {
  Picture* picture = runtime_.NewPicture({});
  const auto graphics =
      EntryOf<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(Handle(picture));
  EXPECT_NE(load_(Handle(picture), kConstructorDeclaration), nullptr);
  EXPECT_NE(load_(Handle(picture), kCopyMaskDeclaration), nullptr);
  EXPECT_NE(load_(Handle(picture), kAssignMaskDeclaration), nullptr);
  EXPECT_NE(load_(graphics, kDrawPictureDeclaration), nullptr);
  EXPECT_EQ(load_(graphics, kCopyMaskDeclaration), nullptr);
  EXPECT_EQ(load_(Handle(picture), kDrawPictureDeclaration), nullptr);
  EXPECT_EQ(load_(Handle(picture), "CopyMask"), nullptr);
  EXPECT_EQ(load_(Handle(picture), nullptr), nullptr);
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  runtime_.WithholdHostMethod(kCopyMaskDeclaration);
  EXPECT_EQ(load_(Handle(picture), kCopyMaskDeclaration), nullptr);
}

TEST_F(ObjectEntries, ARaisedExceptionIsCopiedAtThatMoment) {
  const REALobject exception = newInstance_("NilObjectException");
  const REALstring message = EntryOf<REALBuildStringEntry>("REALBuildString")("source is nil", 13);
  EntryOf<REALSetPropValueStringEntry>("REALSetPropValueString")(exception, "Message", message);
  EntryOf<REALSetPropValueIntegerEntry>("REALSetPropValueInteger")(exception, "ErrorNumber", 5);
  raise_(exception);
  EntryOf<REALSetPropValueStringEntry>("REALSetPropValueString")(exception, "Message", nullptr);
  raise_(exception);
  EXPECT_EQ(ObjectOf<RuntimeException>(exception)->References(), 1) << "none is taken";
  ASSERT_EQ(runtime_.Raised().size(), 2u);
  EXPECT_EQ(runtime_.Raised()[0].className, "NilObjectException");
  EXPECT_TRUE(runtime_.Raised()[0].hasMessage);
  EXPECT_EQ(runtime_.Raised()[0].message, "source is nil");
  EXPECT_EQ(runtime_.Raised()[0].errorNumber, 5);
  EXPECT_FALSE(runtime_.Raised()[1].hasMessage);
}

TEST_F(ObjectEntries, OnlyExceptionsAreRaised) {
  raise_(Handle(runtime_.NewPicture({})));
  EXPECT_TRUE(runtime_.Raised().empty());
  EXPECT_TRUE(LastViolationSays(runtime_, "wrong class"));
}

}  // namespace
}  // namespace host
