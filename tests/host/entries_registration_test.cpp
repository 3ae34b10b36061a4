#include <gtest/gtest.h>

#include "tests/host/entry_access.h"

namespace host {
namespace {

TEST(RegistrationEntries, TheVersionIsThatOfTheOptions) {
  RuntimeOptions options;
  options.version = 2010.029;
  Runtime runtime(options);
  EXPECT_EQ(EntryOf<REALGetRBVersionEntry>("REALGetRBVersion")(), 2010.029);
  EXPECT_EQ(runtime.ReportedVersion(), 2010.029);
  EXPECT_EQ(runtime.Calls().Calls().back(), "REALGetRBVersion() = 2010.029");
  runtime.intercept = [](const EntryCall&) { return Verdict::kFail; };
  EXPECT_EQ(EntryOf<REALGetRBVersionEntry>("REALGetRBVersion")(), 0.0);
  EXPECT_EQ(runtime.ReportedVersion(), 0.0);
}

TEST(RegistrationEntries, RecordsAreReadAndCounted) {
  Runtime runtime;
  EntryOf<RegisterPluginVersionEntry>("RegisterPluginVersion")(13);
  EXPECT_EQ(runtime.Registered().announcedVersion, 13);
  REALclassDefinition definition{};
  definition.version = 13;
  definition.className = "Picture";
  EntryOf<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension")(&definition);
  EXPECT_EQ(runtime.Calls().Calls().back(), "PluginRegisterClassExtension(\"Picture\")");
  EXPECT_EQ(runtime.Registered().calls, 1);
  EXPECT_EQ(runtime.Registered().path, Registration::Path::kClassExtension);
  static REALmoduleDefinition module{};
  module.version = 13;
  module.name = "Extensions";
  EntryOf<PluginRegisterModuleEntry>("PluginRegisterModule")(&module);
  EXPECT_EQ(runtime.Calls().Calls().back(), "PluginRegisterModule(\"Extensions\")");
  EXPECT_EQ(runtime.Registered().calls, 2);
  EXPECT_EQ(runtime.Registered().path, Registration::Path::kModule);
  EXPECT_TRUE(runtime.Registered().problems.empty());
}

TEST(RegistrationEntries, AVersionNewerThanTheHostKnowsIsAProblem) {
  RuntimeOptions options;
  options.version = 2012.0;
  Runtime runtime(options);
  const auto announce = EntryOf<RegisterPluginVersionEntry>("RegisterPluginVersion");
  announce(10);
  EXPECT_TRUE(runtime.Registered().problems.empty());
  announce(11);
  EXPECT_EQ(
      runtime.Registered().problems,
      std::vector<std::string>{"The announced record version 11 is newer than this host knows."});
}

TEST(RegistrationEntries, RecordsThatCannotBeReadAreProblems) {
  Runtime runtime;
  EntryOf<PluginRegisterModuleEntry>("PluginRegisterModule")(nullptr);
  EntryOf<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension")(
      reinterpret_cast<REALclassDefinition*>(16));
  EXPECT_EQ(runtime.Registered().problems.size(), 2u);
  EXPECT_EQ(runtime.Registered().path, Registration::Path::kNone);
}

TEST(RegistrationEntries, YieldingRunsTheHostsOtherWork) {
  Runtime runtime;
  const auto yield = EntryOf<REALYieldToRBEntry>("REALYieldToRB");
  yield();
  int runs = 0;
  runtime.onYield = [&] {
    ++runs;
    EXPECT_EQ(runtime.Calls().Calls().back(), "REALYieldToRB()") << "traced before the other work";
  };
  yield();
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(runtime.Yields(), 2);
}

TEST(RegistrationEntries, TheOldDrawingEntryIsOnlyLookedUp) {
  Runtime runtime;
  EntryOf<void()>("RuntimeGraphicsDrawPicture")();
  EXPECT_TRUE(LastViolationSays(runtime, "must not be called"));
}

}  // namespace
}  // namespace host
