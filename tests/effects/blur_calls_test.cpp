// BlurZVQ as a host calls it: order of the host calls, failures, hostile results, yields, nested
// calls.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/linux/clocks.h"
#include "tests/effects/host_calls.h"
#include "tests/effects/inner_calls.h"
#include "tests/oracles/blur.h"
#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

const Image kSource =
    Words(6, {{0x11223344, 0x55667788, 0x99AABBCC}, {0xDDEEFF00, 0x10203040, 0x50607080}});

TEST(BlurCalls, ReleasesTheResultBeforeTheSource) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = support::PictureOf(plugin.Host(), kSource);
  plugin.Host().Calls().Clear();
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 1});
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(CallsMade(plugin.Host()),
            "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#1, 8)\n"
            "REALLockObject(Picture#1)\n"
            "newPicture(3, 2, 32)\n"
            "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#2, 8)\n"
            "REALLockObject(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALLockObject(Picture#2)\n"
            "REALPictureClearCache(Picture#2)\n"
            "unlockPictureDescription(Picture#2)\n"
            "REALPictureClearCache(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "unlockPictureDescription(Picture#1)\n"
            "REALUnlockObject(Picture#1)\n");
}

TEST(BlurCalls, NeverChangesTheSource) {
  support::LoadedPlugin plugin;
  host::Picture* source =
      support::PictureOf(plugin.Host(), kSource, {.rowPadding = 16, .guard = host::Guard::kAfter});
  plugin.Library().Call("BlurZVQ", source, {2, 0});
  EXPECT_EQ(support::Difference(kSource, support::ImageOf(*source)), "");
  EXPECT_EQ(source->CacheClears(), 0);
  EXPECT_EQ(source->References(), 1);
  EXPECT_EQ(source->DamagedPadding(), 0U);
}

struct FailureCase {
  const char* name;
  host::ApplicationKind kind;
  double version;
  int failing;  // which lock: 1 the source's, 2 the result's; 0: the picture is not made
};

class BlurFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(BlurFailure, GivesNilWithoutYieldingOrRaising) {
  const FailureCase& c = GetParam();
  support::LoadedPlugin plugin({.version = c.version, .kind = c.kind});
  const support::RushingClock clock;
  const bool buffers = c.kind == host::ApplicationKind::kConsole;
  // With an alpha channel no private copy is made of it.
  host::Picture* source = plugin.Host().NewPicture(
      {.width = 4,
       .height = 3,
       .storage = buffers ? host::Storage::kHostBuffer : host::Storage::kBitmapContext,
       .pixelFormat = 2,
       .hasAlphaChannel = true});
  if (c.failing == 0) plugin.Host().Withhold("newPicture");
  FailLock(plugin.Host(), c.failing);
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {2, 1});
  EXPECT_EQ(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(plugin.Host().Yields(), 0);
  EXPECT_TRUE(plugin.Host().Raised().empty());
  EXPECT_EQ(source->References(), 1);
  for (const auto& object : plugin.Host().Book().Objects()) {
    EXPECT_EQ(object->Alive(), object.get() == source) << object->Name();
  }
}

const FailureCase kFailures[] = {
    {"SourceNotLockable", host::ApplicationKind::kDesktop, 2013.04, 1},
    {"ResultNotLockable", host::ApplicationKind::kDesktop, 2013.04, 2},
    {"NoPictureMade", host::ApplicationKind::kDesktop, 2013.04, 0},
    {"SourceNotLockableOnConsole", host::ApplicationKind::kConsole, 2013.04, 1},
    {"ResultNotLockableOnConsole", host::ApplicationKind::kConsole, 2013.04, 2},
    {"SourceNotLockableOnOldHost", host::ApplicationKind::kDesktop, 2011.04, 1},
    {"ResultNotLockableOnOldHost", host::ApplicationKind::kDesktop, 2011.04, 2},
};

INSTANTIATE_TEST_SUITE_P(BlurCalls, BlurFailure, testing::ValuesIn(kFailures),
                         support::CaseName<FailureCase>);

TEST(BlurCalls, AnOpaqueSourceThatCannotBeLockedIsReadThroughACopy) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  host::Picture* source = support::PictureOf(plugin.Host(), Words(5, {{0, 255}}));
  source->refuseLocks = true;
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000055, 0xFF0000AA}}),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

TEST(BlurCalls, ANarrowerResultIsRefusedUnwritten) {
  for (const int missing : {1, 8}) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    plugin.Host().adjustNewPicture = [missing](host::PictureSpec& spec) {
      spec.width -= missing;
      spec.guard = host::Guard::kAfter;
    };
    host::Picture* source = plugin.Host().NewPicture({.width = 9, .height = 9});
    const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {2, 1});
    EXPECT_EQ(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(plugin.Host().Yields(), 0);
  }
}

// (0+0+90)/3 = 30, (0+90+30)/3 = 40, (90+30+30)/3 = 50: the third row lands on the first.
TEST(BlurCalls, RowsBeyondAShorterResultLandOnItsFirst) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  plugin.Host().adjustNewPicture = [](host::PictureSpec& spec) {
    spec.height = 2;
    spec.guard = host::Guard::kAfter;
  };
  host::Picture* source = support::PictureOf(plugin.Host(), Words(5, {{0}, {90}, {30}}));
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000032}, {0xFF000028}}),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

TEST(BlurCalls, ALargerResultKeepsWhatLiesBeyond) {
  support::LoadedPlugin plugin({.newPixelFormat = 5, .newFill = {7, 0, 0, 255}});
  plugin.Host().adjustNewPicture = [](host::PictureSpec& spec) {
    spec.width += 1;
    spec.height += 1;
  };
  host::Picture* source = support::PictureOf(plugin.Host(), Words(5, {{0, 255}}));
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000055, 0xFF0000AA, 0xFF000007},
                                          {0xFF000007, 0xFF000007, 0xFF000007}}),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

TEST(BlurCalls, YieldsOnceThenAfterEveryRowOfBothPassesAndAtTheEnd) {
  for (const int period : {1, -1, 60, -1000}) {
    for (const int height : {1, 2, 7}) {
      support::LoadedPlugin plugin;
      const support::RushingClock clock;
      host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = height});
      plugin.Library().Call("BlurZVQ", source, {2, period});
      EXPECT_EQ(plugin.Host().Yields(), 2 * height + 2) << period;
    }
  }
}

TEST(BlurCalls, NoPeriodReadsNoClock) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kSource);
  const auto readings = platform::ClockReadings();
  plugin.Library().Call("BlurZVQ", source, {2});  // the declared default
  plugin.Library().Call("BlurZVQ", source, {2, 0});
  EXPECT_EQ(platform::ClockReadings(), readings);
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(BlurCalls, AHostExceptionPassesOutOfEveryYield) {
  for (int yieldsBefore = 0; yieldsBefore < 2 * 2 + 2; ++yieldsBefore) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = support::PictureOf(plugin.Host(), kSource);
    int left = yieldsBefore;
    plugin.Host().onYield = [&left] {
      if (left-- == 0) throw std::runtime_error("the window was closed");
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(plugin.Library().Call("BlurZVQ", source, {1, 1}), std::runtime_error);
    EXPECT_EQ(left, -1) << "the yield was not reached";
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty()) << yieldsBefore;
    EXPECT_TRUE(plugin.Host().Book().Violations().empty()) << yieldsBefore;
  }
}

TEST(BlurCalls, NestedCallsOfEveryMethodLeaveTheBlurAlone) {
  support::LoadedPlugin plugin;
  InnerCalls inner(plugin);
  host::Picture* source = support::PictureOf(plugin.Host(), kSource);
  const support::RushingClock clock;
  plugin.Host().onYield = [&] { inner.CallAll(); };
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 1});
  EXPECT_EQ(inner.Rounds(), 2 * 2 + 2) << "inner calls without yielding change nothing";
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(oracle::Blur(kSource, 1, 6).image,
                                support::ImageOf(*report.ResultPicture())),
            "");
  EXPECT_EQ(support::Difference(kSource, support::ImageOf(*source)), "");
}

// While the picture is being blurred it may be blurred once more.
TEST(BlurCalls, ANestedBlurOfTheSamePictureGivesTheSame) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = support::PictureOf(plugin.Host(), kSource);
  const Image expected = oracle::Blur(kSource, 1, 6).image;
  plugin.Host().onYield = [&] {
    const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "");
    plugin.Host().Release(report.ResultPicture());
  };
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {1, 1});
  EXPECT_EQ(plugin.Host().Yields(), 2 * 2 + 2);
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "");
}

}  // namespace
