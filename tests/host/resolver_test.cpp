#include <gtest/gtest.h>

#include <algorithm>

#include "tests/host/entry_access.h"

namespace host {
namespace {

// Every name a plug-in may ask for.
constexpr const char* kNames[] = {
    "PluginNewInstance",
    "PluginRegisterClassExtension",
    "PluginRegisterModule",
    "REALBuildPictureFromBuffer",
    "REALBuildString",
    "REALBuildStringWithEncoding",
    "REALConvertString",
    "REALGetPictureMask",
    "REALGetPropValueBool",
    "REALGetPropValueInt",
    "REALGetPropValueInteger",
    "REALGetRBVersion",
    "REALLoadObjectMethod",
    "REALLockObject",
    "REALLockPictureDescription",
    "REALPictureClearCache",
    "REALSetPropValueInt",
    "REALSetPropValueInteger",
    "REALSetPropValueString",
    "REALSetStringEncoding",
    "REALUnlockObject",
    "REALUnlockString",
    "REALYieldToRB",
    "RegisterPluginVersion",
    "RuntimeGraphicsDrawPicture",
    "RuntimeRaiseException",
    "newPicture",
    "pluginObjectType",
    "pluginPictureGraphicsGetter",
    "unlockPictureDescription",
};

TEST(Resolver, KnowsExactlyTheEntryNames) {
  const std::vector<std::string> expected(std::begin(kNames), std::end(kNames));
  EXPECT_EQ(Runtime::EntryNames(), expected);
  EXPECT_TRUE(std::is_sorted(expected.begin(), expected.end()));
  Runtime runtime;
  for (const char* name : kNames) EXPECT_NE(Runtime::Resolve(name), nullptr) << name;
  EXPECT_EQ(Runtime::Resolve("REALNewPicture"), nullptr) << "a wrapper's name is no entry name";
  EXPECT_EQ(Runtime::Resolve("NEWPICTURE"), nullptr);
  EXPECT_EQ(Runtime::Resolve(""), nullptr);
}

TEST(Resolver, GivesEveryNameItsOwnRoutine) {
  Runtime runtime;
  std::set<REALroutine> routines;
  for (const char* name : kNames) routines.insert(Runtime::Resolve(name));
  EXPECT_EQ(routines.size(), std::size(kNames));
}

TEST(Resolver, WithholdsAndOffersNames) {
  Runtime runtime;
  runtime.Withhold("newPicture");
  EXPECT_EQ(Runtime::Resolve("newPicture"), nullptr);
  EXPECT_EQ(runtime.Calls().Lines().back(), "resolve(newPicture) = nil");
  runtime.Offer("newPicture");
  EXPECT_NE(Runtime::Resolve("newPicture"), nullptr);
  EXPECT_EQ(runtime.Calls().Lines().back(), "resolve(newPicture)");
}

TEST(Resolver, NoNameIsAViolation) {
  Runtime runtime;
  EXPECT_EQ(Runtime::Resolve(nullptr), nullptr);
  EXPECT_EQ(runtime.Book().Violations().size(), 1u);
}

}  // namespace
}  // namespace host
