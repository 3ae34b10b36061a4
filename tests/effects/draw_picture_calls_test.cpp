// DrawPictureFZVQ as a host calls it: order of the host calls, yields, nested calls, memory.
#include <gtest/gtest.h>

#include <utility>

#include <stdexcept>

#include "platform/linux/clocks.h"
#include "tests/effects/drawing.h"
#include "tests/effects/host_calls.h"
#include "tests/effects/inner_calls.h"
#include "tests/oracles/draw_picture.h"
#include "tests/support/allocation_faults.h"

namespace {

using oracle::Image;
using support::Words;

const Image kDest = Words(5, {{0x00010203, 0x10203040}, {0x20406080, 0x30507090}});
const Image kSource = Words(2, {{0x11223344, 0x55667788}, {0x99AABBCC, 0xDDEEFF00}});
const Image kMask = Words(6, {{0x00004000, 0x00008000}, {0x00000000, 0x0000FF00}});

TEST(DrawPictureCalls, LocksMaskReceiverAndSourceAndReleasesBackwards) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
  plugin.Host().Calls().Clear();
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0.5, 0, 1.0, 1});
  EXPECT_EQ(CallsMade(plugin.Host()),
            "REALGetPictureMask(Picture#2, 0)\n"
            "REALGetPropValueBool(Picture#3, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#3, 8)\n"
            "REALLockObject(Picture#3)\n"
            "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#1, 8)\n"
            "REALLockObject(Picture#1)\n"
            "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#2, 8)\n"
            "REALLockObject(Picture#2)\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "unlockPictureDescription(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "unlockPictureDescription(Picture#1)\n"
            "REALPictureClearCache(Picture#1)\n"
            "REALUnlockObject(Picture#1)\n"
            "unlockPictureDescription(Picture#3)\n"
            "REALPictureClearCache(Picture#3)\n"
            "REALUnlockObject(Picture#3)\n"
            "REALUnlockObject(Picture#3)\n");
}

TEST(DrawPictureCalls, WithoutAMaskOnlyTheTwoPicturesAreLocked) {
  support::LoadedPlugin plugin({.kind = host::ApplicationKind::kConsole});
  const DrawnPictures pictures(plugin.Host(), Words(8, {{1}}), Words(8, {{2}}));
  plugin.Host().Calls().Clear();
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  EXPECT_EQ(CallsMade(plugin.Host()),
            "REALGetPictureMask(Picture#2, 0)\n"
            "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#1, 10)\n"
            "REALLockObject(Picture#1)\n"
            "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#2, 10)\n"
            "REALLockObject(Picture#2)\n"
            "unlockPictureDescription(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "unlockPictureDescription(Picture#1)\n"
            "REALPictureClearCache(Picture#1)\n"
            "REALUnlockObject(Picture#1)\n");
}

TEST(DrawPictureCalls, ClearsTheCachesOfReceiverAndMaskOnly) {
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  EXPECT_EQ(pictures.dest->CacheClears(), 1);
  EXPECT_EQ(pictures.mask->CacheClears(), 1);
  EXPECT_EQ(pictures.source->CacheClears(), 0);
  EXPECT_EQ(pictures.dest->References(), 1);
  EXPECT_EQ(pictures.source->References(), 1);
  EXPECT_EQ(pictures.mask->References(), 1);
}

TEST(DrawPictureCalls, MissingArgumentsTakeFullOpacityAndNoYields) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  const DrawnPictures pictures(plugin.Host(), kDest, Words(5, {{0x00ABCDEF}}));
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0});
  EXPECT_TRUE(Flag(report));
  EXPECT_EQ(pictures.dest->Word(0, 0), 0xFFABCDEF);
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(DrawPictureCalls, YieldsAtTheStartAfterEveryRowAndAtTheEnd) {
  for (const int period : {1, -1, 60, -1000}) {
    for (const int height : {1, 2, 7}) {
      support::LoadedPlugin plugin;
      const support::RushingClock clock;
      host::Picture* dest = plugin.Host().NewPicture({.width = 3, .height = height});
      host::Picture* source = plugin.Host().NewPicture({.width = 9, .height = 30});
      plugin.Library().Call("DrawPictureFZVQ", dest, {source, 0, 0, 1.0, period});
      EXPECT_EQ(plugin.Host().Yields(), 1 + height + 1) << period;
    }
  }
}

// What is drawn when each yield comes: nothing at the first, one row more at each later one.
TEST(DrawPictureCalls, YieldsOnlyBetweenWholeRows) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  const DrawnPictures pictures(plugin.Host(), oracle::NewImage(2, 3, 5, 0),
                               oracle::NewImage(2, 3, 5, 7));
  std::string drawn;
  plugin.Host().onYield = [&] {
    for (int y = 0; y < 3; ++y) {
      drawn += pictures.dest->Word(0, y) == 0 ? '.' : '#';
      EXPECT_EQ(pictures.dest->Word(0, y), pictures.dest->Word(1, y));
    }
    drawn += ' ';
  };
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 1});
  EXPECT_EQ(drawn, "... #.. ##. ### ### ");
}

TEST(DrawPictureCalls, NoPeriodReadsNoClock) {
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
  const auto readings = platform::ClockReadings();
  plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 1.0, 0});
  EXPECT_EQ(platform::ClockReadings(), readings);
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(DrawPictureCalls, AHostExceptionPassesOutOfEveryYield) {
  for (int yieldsBefore = 0; yieldsBefore < 1 + 2 + 1; ++yieldsBefore) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
    int left = yieldsBefore;
    plugin.Host().onYield = [&left] {
      if (left-- == 0) throw std::runtime_error("the window was closed");
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0.5, 0, 1.0, 1}),
        std::runtime_error);
    EXPECT_EQ(left, -1) << "the yield was not reached";
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty()) << yieldsBefore;
    EXPECT_TRUE(plugin.Host().Book().Violations().empty()) << yieldsBefore;
  }
}

TEST(DrawPictureCalls, AllocatesNothing) {
  support::LoadedPlugin plugin;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
  const std::vector<host::Value> arguments = {pictures.source, 0.5, 0.5, 0.5, 0};
  const support::AllocationWatch watch;
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", pictures.dest, arguments);
  EXPECT_EQ(watch.Calls(), 0);
  EXPECT_TRUE(Flag(report));
}

TEST(DrawPictureCalls, NestedCallsOfEveryMethodLeaveTheDrawingAlone) {
  support::LoadedPlugin plugin;
  InnerCalls inner(plugin);
  const DrawnPictures pictures(plugin.Host(), kDest, kSource, kMask);
  Image expected = kDest;
  oracle::DrawPicture(expected, kSource, &kMask, 0.25, 0.5, 0.75);
  const support::RushingClock clock;
  plugin.Host().onYield = [&] { inner.CallAll(); };
  const host::CallReport report = plugin.Library().Call("DrawPictureFZVQ", pictures.dest,
                                                        {pictures.source, 0.25, 0.5, 0.75, 1});
  EXPECT_EQ(inner.Rounds(), 1 + 2 + 1) << "inner calls without yielding change nothing";
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(expected, support::ImageOf(*pictures.dest)), "");
  EXPECT_EQ(support::Difference(kSource, support::ImageOf(*pictures.source)), "");
  EXPECT_EQ(support::Difference(kMask, support::ImageOf(*pictures.mask)), "");
}

// The pictures of a running drawing may be locked once more and used by others.
TEST(DrawPictureCalls, NestedCallsMayUseTheSamePictures) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  const DrawnPictures pictures(plugin.Host(), kDest, kSource);
  Image expected = kDest;
  oracle::DrawPicture(expected, kSource, nullptr, 0, 0, 0.5);  // by the yield before the first row
  oracle::DrawPicture(expected, kSource, nullptr, 0, 0, 0.25);
  bool nested = false;
  plugin.Host().onYield = [&] {
    if (std::exchange(nested, true)) return;
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 0.5, 0});
    EXPECT_EQ(support::Complaints(report), "");
  };
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", pictures.dest, {pictures.source, 0, 0, 0.25, 1});
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(expected, support::ImageOf(*pictures.dest)), "");
  EXPECT_EQ(plugin.Host().Yields(), 1 + 2 + 1);
}

}  // namespace
