#include "host/plugin_library.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

namespace host {
namespace {

using Sentences = std::vector<std::string>;

std::string TrialPath(const char* name) {
  return std::string(HOST_TRIAL_FOLDER "/") + name + ".so";
}

// The message of the exception that loading throws; empty when it loads.
std::string LoadError(const std::string& path) {
  Runtime runtime;
  try {
    const PluginLibrary library(runtime, path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

class PluginLibraryTest : public testing::Test {
 protected:
  Runtime runtime_;
  PluginLibrary library_{runtime_, TrialPath("host_trial_module")};
};

TEST_F(PluginLibraryTest, IsRegisteredOnceLoaded) {
  const Registration& registration = runtime_.Registered();
  EXPECT_EQ(registration.path, Registration::Path::kModule);
  EXPECT_EQ(registration.name, "TrialExtensions");
  EXPECT_EQ(registration.announcedVersion, 13);
  EXPECT_EQ(registration.calls, 1);
  EXPECT_EQ(registration.problems, Sentences());
  EXPECT_EQ(registration.methods.size(), 13u);
  EXPECT_NE(library_.Find("sum"), nullptr);
  EXPECT_EQ(library_.Find("sum"), library_.Find("SUM"));
  EXPECT_EQ(library_.Find("Summe"), nullptr);
}

TEST(PluginLibrary, PassesArgumentsAndDefaultsOnEveryPath) {
  for (const char* name : {"host_trial_module", "host_trial_class13", "host_trial_class9"}) {
    Runtime runtime;
    PluginLibrary library(runtime, TrialPath(name));
    EXPECT_EQ(runtime.Registered().problems, Sentences()) << name;
    Picture* picture = runtime.NewPicture({});
    const auto sum = [&](Picture* receiver, const std::vector<Value>& arguments) {
      return std::get<double>(library.Call("Sum", receiver, arguments).result);
    };
    EXPECT_EQ(sum(picture, {-3, 0.5}), 1102.75) << name;
    EXPECT_EQ(sum(picture, {-3, 0.5, false}), 1002.75) << name;
    EXPECT_EQ(sum(nullptr, {0, 7, false, picture, 0, -0.5}), 10006.5) << name;
    EXPECT_EQ(sum(nullptr, {0, 7, false, std::monostate(), 1}), 8.25) << name;
  }
}

TEST_F(PluginLibraryTest, WrongCallsAreRefusedBeforeTheyAreMade) {
  EXPECT_THROW(library_.Call("Nothing", nullptr, {}), std::invalid_argument);
  EXPECT_THROW(library_.Call("Sum", nullptr, {}), std::invalid_argument);
  EXPECT_THROW(library_.Call("Sum", nullptr, {1.5, 1.5}), std::invalid_argument);
  EXPECT_THROW(library_.Call("Itself", nullptr, {1}), std::invalid_argument);
  EXPECT_THROW(library_.Call("Unknown", nullptr, {}), std::invalid_argument);
}

TEST_F(PluginLibraryTest, OnlyTheLowByteOfABooleanArgumentCounts) {
  const auto slot = [&](bool flag) {
    return static_cast<std::uint32_t>(
        std::get<std::int32_t>(library_.Call("Slot", nullptr, {flag}).result));
  };
  EXPECT_EQ(slot(true), 0xA5A5A501u);
  EXPECT_EQ(slot(false), 0xA5A5A500u);
}

TEST_F(PluginLibraryTest, ACleanCallIsReportedClean) {
  Picture* picture = runtime_.NewPicture({});
  const CallReport same = library_.Call("Itself", picture, {});
  EXPECT_TRUE(same.Clean());
  EXPECT_EQ(same.ResultPicture(), picture);
  EXPECT_EQ(picture->References(), 2);
  const CallReport made = library_.Call("New", picture, {3, 2});
  EXPECT_TRUE(made.Clean());
  ASSERT_NE(made.ResultPicture(), nullptr);
  EXPECT_EQ(made.ResultPicture()->Width(), 3);
  const CallReport nil = library_.Call("New", picture, {0, 2});
  EXPECT_TRUE(nil.Clean());
  EXPECT_EQ(nil.ResultPicture(), nullptr);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(nil.result));
}

TEST_F(PluginLibraryTest, LeftOversNameTheirTakers) {
  Picture* picture = runtime_.NewPicture({});
  const CallReport report = library_.Call("Leak", picture, {});
  EXPECT_TRUE(std::get<bool>(report.result));
  EXPECT_FALSE(report.Clean());
  EXPECT_EQ(report.leftOver,
            (Sentences{"Picture#1 is left with a reference taken by Leak: REALLockObject, call 4.",
                       "Picture#1 is left with a description lock taken by Leak: "
                       "REALLockPictureDescription, call 6.",
                       "Picture#2 is left with a reference taken by Leak: newPicture, call 5."}));
  const CallReport again = library_.Call("Itself", picture, {});
  EXPECT_TRUE(again.Clean()) << "what was there before is not held against it";
}

TEST_F(PluginLibraryTest, ALostReferenceAndUseAfterItAreReported) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_EQ(library_.Call("GiveTooMuch", picture, {}).leftOver,
            Sentences{"Picture#1 lost a reference taken by test."});
  const CallReport report = library_.Call("GiveTooMuch", picture, {});
  EXPECT_EQ(report.violations, Sentences{"GiveTooMuch: REALUnlockObject, call 5: it was given "
                                         "Picture#1, whose last reference is gone."});
}

TEST_F(PluginLibraryTest, ResultsThatAreNotTheCallersAreReported) {
  Picture* picture = runtime_.NewPicture({});
  EXPECT_EQ(library_.Call("WithoutReference", picture, {}).leftOver,
            Sentences{"Picture#1 was returned without a reference for the caller."});
  const CallReport dead = library_.Call("Dead", picture, {});
  EXPECT_EQ(dead.violations, Sentences{"Dead returned Picture#2, whose last reference is gone."});
  EXPECT_EQ(dead.ResultPicture(), nullptr);
  EXPECT_EQ(library_.Call("Stranger", picture, {}).violations,
            Sentences{"Stranger returned a handle that the host never gave out."});
  EXPECT_EQ(library_.Call("NoPicture", picture, {}).violations,
            Sentences{"NoPicture returned Graphics#3, which is no picture."});
}

TEST_F(PluginLibraryTest, FindsThePlatformInThisProgram) {
  PictureSpec spec;
  spec.width = 17;
  Picture* picture = runtime_.NewPicture(spec);
  const CallReport report = library_.Call("ContextWidth", picture, {});
  EXPECT_EQ(std::get<std::int32_t>(report.result), 17);
  EXPECT_TRUE(report.Clean());
}

TEST_F(PluginLibraryTest, WhatAnEntryThrowsPassesOut) {
  runtime_.intercept = [](const EntryCall&) -> Verdict { throw std::range_error("thrown"); };
  Picture* picture = runtime_.NewPicture({});
  EXPECT_THROW(library_.Call("Itself", picture, {}), std::range_error);
  EXPECT_EQ(runtime_.Taker("x"), "x, call 4") << "no method is running any more";
}

TEST_F(PluginLibraryTest, CallsMayBeNestedInAYield) {
  bool nested = false;
  runtime_.onYield = [&] {
    if (nested) return;
    nested = true;
    EXPECT_EQ(std::get<std::int32_t>(library_.Call("CountCalls", nullptr, {}).result), 1);
  };
  EXPECT_EQ(std::get<std::int32_t>(library_.Call("CountCalls", nullptr, {}).result), 2);
}

TEST(PluginLibrary, StartsAnewWithEveryLoad) {
  for (int load = 0; load < 3; ++load) {
    Runtime runtime;
    PluginLibrary library(runtime, TrialPath("host_trial_class13"));
    EXPECT_EQ(std::get<std::int32_t>(library.Call("CountCalls", nullptr, {}).result), 1);
  }
}

TEST(PluginLibrary, ARegistrationTakesThePlaceOfAnEarlierOne) {
  Runtime runtime;
  { const PluginLibrary library(runtime, TrialPath("host_trial_module")); }
  const PluginLibrary library(runtime, TrialPath("host_trial_class9"));
  EXPECT_EQ(runtime.Registered().calls, 1);
  EXPECT_EQ(runtime.Registered().path, Registration::Path::kClassExtension);
  EXPECT_EQ(runtime.Registered().methods.size(), 13u);
}

TEST(PluginLibrary, TellsInOneLineWhyItCannotBeLoaded) {
  const std::string missing = TrialPath("no_such");
  EXPECT_EQ(LoadError(missing), missing + ": no such file");
  const std::string without = TrialPath("host_trial_without_export");
  EXPECT_EQ(LoadError(without), without + ": does not export REALPluginMain");
  const std::string text = testing::TempDir() + "host_trial_text.so";
  std::ofstream(text) << "not a library";
  EXPECT_EQ(LoadError(text), text + ": not a shared library");
  const std::string unresolved = LoadError(TrialPath("host_trial_unresolved"));
  EXPECT_NE(unresolved.find("NobodyDefinesThis"), std::string::npos) << unresolved;
  EXPECT_EQ(unresolved.find('\n'), std::string::npos);
}

TEST(PluginLibrary, AFailedStartIsUnloadedAndPassesOut) {
  Runtime runtime;
  runtime.intercept = [](const EntryCall&) -> Verdict { throw std::range_error("thrown"); };
  EXPECT_THROW(PluginLibrary(runtime, TrialPath("host_trial_module")), std::range_error);
  runtime.intercept = nullptr;
  const PluginLibrary library(runtime, TrialPath("host_trial_module"));
  EXPECT_EQ(runtime.Registered().calls, 1);
}

}  // namespace
}  // namespace host
