// Which application classes decide what kind of application hosts the plug-in.
#include "plugin/application_kind.h"

#include <gtest/gtest.h>

#include <set>

#include "plugin/wrappers.h"
#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::FakeHandle;
using plugin_test::FakeHost;
using Lines = std::vector<std::string>;

std::set<std::string> gClasses;

REALclassRef KnownClass(const char* className) {
  FakeHost::Current().Note(className);
  return gClasses.contains(className) ? FakeHandle<REALclassRef>(1) : nullptr;
}

class ApplicationKindTest : public testing::Test {
 protected:
  ApplicationKindTest() { host_.Offer("pluginObjectType", KnownClass); }
  FakeHost host_;
  const Lines allThree_ = {"Application", "WebApplication", "ConsoleApplication"};
};

struct KindCase {
  std::set<std::string> classes;
  int isDesktop, isConsole;
};

TEST_F(ApplicationKindTest, DesktopWinsAndWebCountsAsConsole) {
  const KindCase cases[] = {
      {{}, 0, 0},
      {{"Application"}, 1, 0},
      {{"WebApplication"}, 0, 1},
      {{"ConsoleApplication"}, 0, 1},
      {{"WebApplication", "ConsoleApplication"}, 0, 1},
      {{"Application", "WebApplication"}, 1, 0},
      {{"Application", "ConsoleApplication"}, 1, 0},
      {{"Application", "WebApplication", "ConsoleApplication"}, 1, 0},
  };
  for (const KindCase& row : cases) {
    gClasses = row.classes;
    IsDesktop = IsConsole = 0;
    host_.ClearLines();
    ProbeApplicationKind();
    EXPECT_EQ(IsDesktop, row.isDesktop) << row.classes.size();
    EXPECT_EQ(IsConsole, row.isConsole) << row.classes.size();
    EXPECT_EQ(host_.Calls(), allThree_);
  }
}

TEST_F(ApplicationKindTest, AsksForNothingOnceTheKindIsKnown) {
  gClasses = {"Application"};
  IsDesktop = 1;
  ProbeApplicationKind();
  IsDesktop = 0;
  IsConsole = 1;
  ProbeApplicationKind();
  EXPECT_EQ(host_.Lines(), Lines{});
  EXPECT_EQ(IsDesktop, 0);
  EXPECT_EQ(IsConsole, 1);
}

TEST_F(ApplicationKindTest, AsksAgainWhileTheKindIsUnknown) {
  gClasses = {};
  ProbeApplicationKind();
  ProbeApplicationKind();
  EXPECT_EQ(host_.Calls().size(), 6u);
  gClasses = {"WebApplication"};
  ProbeApplicationKind();
  EXPECT_EQ(IsConsole, 1);
  EXPECT_EQ(host_.Calls().size(), 9u);
  ProbeApplicationKind();
  EXPECT_EQ(host_.Calls().size(), 9u);
}

TEST_F(ApplicationKindTest, AHostThatCannotTellLeavesTheKindUnknown) {
  gClasses = {"Application"};
  host_.Withdraw("pluginObjectType");
  ProbeApplicationKind();
  EXPECT_EQ(host_.Lines(), Lines(3, "resolve(pluginObjectType)"));
  EXPECT_EQ(IsDesktop, 0);
  EXPECT_EQ(IsConsole, 0);
}

}  // namespace
