// The plug-in's file loaded by the host: what is registered for every version, and what is not when
// the host lacks an entry.
#include <gtest/gtest.h>

#include <limits>

#include "tests/plugin/leftovers.h"
#include "tests/plugin/plugin_file.h"
#include "tests/support/plugin_under_test.h"

namespace {

using host::Registration;
using plugin_test::DeliberateLeftovers;
using plugin_test::kDeclarations;
using plugin_test::kExtendedDeclarations;
using support::LoadedPlugin;
using Lines = std::vector<std::string>;

constexpr auto kClass = Registration::Path::kClassExtension;
constexpr auto kModule = Registration::Path::kModule;

host::RuntimeOptions HostOf(double version) {
  host::RuntimeOptions options;
  options.version = version;
  return options;
}

struct VersionCase {
  double version;
  int recordVersion;
  Registration::Path path;
  std::uintptr_t methodFlags;
};

const VersionCase kVersions[] = {
    {0.0, 9, kClass, 0},
    {-1.0, 9, kClass, 0},
    {2008.0, 9, kClass, 0},
    {2010.028, 9, kClass, 0},
    {2010.0289999, 9, kClass, 0},
    {2010.029, 9, kClass, 4},
    {2010.05, 9, kClass, 4},
    {2011.04, 9, kClass, 4},
    {2011.9999, 9, kClass, 4},
    {2012.0, 10, kClass, 4},
    {2012.021, 10, kClass, 4},
    {2012.9999, 10, kClass, 4},
    {2013.0, 11, kModule, 20},
    {2013.0299, 11, kModule, 20},
    {2013.03, 12, kModule, 20},
    {2013.0399, 12, kModule, 20},
    {2013.04, 13, kModule, 20},
    {2014.02, 13, kModule, 20},
    {2999.9999, 13, kModule, 20},
    {3000.0, 13, kClass, 4},
    {1e9, 13, kClass, 4},
    {std::numeric_limits<double>::infinity(), 13, kClass, 4},
    {std::numeric_limits<double>::quiet_NaN(), 9, kClass, 0},
};

TEST(LoadedPlugin, RegistersByTheRecordVersionThePathAndTheFlagsOfTheHostsVersion) {
  for (const VersionCase& row : kVersions) {
    LoadedPlugin loaded(HostOf(row.version));
    const Registration& registered = loaded.Host().Registered();
    EXPECT_EQ(registered.announcedVersion, row.recordVersion) << row.version;
    EXPECT_EQ(registered.recordVersion, row.recordVersion) << row.version;
    EXPECT_EQ(registered.path, row.path) << row.version;
    EXPECT_EQ(registered.calls, 1) << row.version;
    EXPECT_EQ(registered.problems, Lines{}) << row.version;
    const bool isModule = row.path == kModule;
    EXPECT_EQ(registered.name, isModule ? "PictureVarnellExtensionZVQ" : "Picture") << row.version;
    EXPECT_EQ(registered.classFlags, isModule ? 0 : row.methodFlags) << row.version;
    ASSERT_EQ(registered.methods.size(), 5u) << row.version;
    for (std::size_t i = 0; i < 5; ++i) {
      const char* text = isModule ? kExtendedDeclarations[i] : kDeclarations[i];
      EXPECT_EQ(registered.methods[i].declaration.text, text) << row.version;
      EXPECT_EQ(registered.methods[i].flags, row.methodFlags) << row.version;
    }
  }
}

struct WithheldCase {
  double version;
  const char* entry;
  int calls;  // of registration
  int announcedVersion;
  Registration::Path path;
};

TEST(LoadedPlugin, DoesWithoutTheEntriesThatTheHostLacks) {
  const WithheldCase cases[] = {
      {2013.04, "REALGetRBVersion", 1, 9, kClass},
      {2012.0, "REALGetRBVersion", 1, 9, kClass},
      {2013.04, "RegisterPluginVersion", 1, 0, kModule},
      {2012.0, "RegisterPluginVersion", 1, 0, kClass},
      {2011.04, "RegisterPluginVersion", 1, 0, kClass},
      {2013.04, "PluginRegisterModule", 0, 13, Registration::Path::kNone},
      {2013.04, "PluginRegisterClassExtension", 1, 13, kModule},
      {2012.0, "PluginRegisterClassExtension", 0, 10, Registration::Path::kNone},
      {2012.0, "PluginRegisterModule", 1, 10, kClass},
      {2011.04, "PluginRegisterClassExtension", 0, 9, Registration::Path::kNone},
      {3000.0, "PluginRegisterClassExtension", 0, 13, Registration::Path::kNone},
  };
  for (const WithheldCase& row : cases) {
    const DeliberateLeftovers leftovers;  // a module that no host took
    LoadedPlugin loaded(HostOf(row.version),
                        [&row](host::Runtime& runtime) { runtime.Withhold(row.entry); });
    const Registration& registered = loaded.Host().Registered();
    EXPECT_EQ(registered.calls, row.calls) << row.version << row.entry;
    EXPECT_EQ(registered.announcedVersion, row.announcedVersion) << row.version << row.entry;
    EXPECT_EQ(registered.path, row.path) << row.version << row.entry;
    EXPECT_EQ(registered.methods.size(), row.calls == 0 ? 0u : 5u) << row.version << row.entry;
  }
}

TEST(LoadedPlugin, AsksForTheVersionThenAnnouncesThenRegisters) {
  LoadedPlugin loaded(HostOf(2013.03));
  EXPECT_EQ(loaded.Host().Calls().Lines(),
            (Lines{"resolve(REALGetRBVersion)", "REALGetRBVersion() = 2013.03",
                   "resolve(RegisterPluginVersion)", "RegisterPluginVersion(12)",
                   "resolve(PluginRegisterModule)",
                   "PluginRegisterModule(\"PictureVarnellExtensionZVQ\")"}));
}

TEST(LoadedPlugin, FindsEverythingElseThroughTheSameResolver) {
  for (const double version : {2011.04, 2012.0, 2013.04, 3000.0}) {
    LoadedPlugin loaded(HostOf(version));
    host::Picture* picture = loaded.Host().NewPicture(loaded.Host().NewPictureSpec(4, 3));
    loaded.Host().Calls().Clear();
    const host::CallReport report = loaded.Library().Call("ScaleZVQ", picture, {4, 3});
    EXPECT_EQ(report.ResultPicture(), picture);
    EXPECT_TRUE(report.Clean()) << version;
    EXPECT_EQ(loaded.Host().Calls().Lines(),
              (Lines{"resolve(REALGetPropValueInteger)",
                     "REALGetPropValueInteger(Picture#1, \"Width\") = 4",
                     "REALGetPropValueInteger(Picture#1, \"Height\") = 3",
                     "resolve(REALLockObject)", "REALLockObject(Picture#1)"}));
    loaded.Host().Release(picture);
    loaded.Host().Release(picture);
  }
}

TEST(LoadedPlugin, ReturnsItsOwnPictureWithoutAReferenceWhereTheHostCannotCount) {
  LoadedPlugin loaded(HostOf(2013.04));
  loaded.Host().Withhold("REALLockObject");
  host::Picture* picture = loaded.Host().NewPicture(loaded.Host().NewPictureSpec(4, 3));
  const host::CallReport report = loaded.Library().Call("ScaleZVQ", picture, {4, 3});
  EXPECT_EQ(report.ResultPicture(), picture);
  EXPECT_EQ(picture->References(), 1);
  EXPECT_EQ(report.leftOver.size(), 1u);  // the reference that a result has is missing
}

TEST(LoadedPlugin, FallsBackToTheOlderPropertyName) {
  LoadedPlugin loaded(HostOf(2013.04));
  loaded.Host().Withhold("REALGetPropValueInteger");
  host::Picture* picture = loaded.Host().NewPicture(loaded.Host().NewPictureSpec(4, 3));
  loaded.Host().Calls().Clear();
  EXPECT_EQ(loaded.Library().Call("ScaleZVQ", picture, {4, 3}).ResultPicture(), picture);
  const Lines& lines = loaded.Host().Calls().Lines();
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "resolve(REALGetPropValueInteger) = nil");
  EXPECT_EQ(lines[1], "resolve(REALGetPropValueInt)");
  EXPECT_EQ(lines[2], "REALGetPropValueInt(Picture#1, \"Width\") = 4");
  EXPECT_EQ(lines[3], "REALGetPropValueInt(Picture#1, \"Height\") = 3");
  EXPECT_EQ(lines[4], "resolve(REALLockObject)");
}

}  // namespace
