// The method ScaleZVQ as a host calls it: which scaler runs, references, refusals, nested calls.
#include <gtest/gtest.h>

#include <utility>

#include "platform/linux/clocks.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/smooth_enlarge.h"
#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

const Image kFour = Words(6, {{0x11223344, 0x55667788}, {0x99AABBCC, 0xDDEEFF00}});

TEST(ScaleZVQ, ThePicturesOwnSizeGivesThePictureWithOneMoreReference) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  plugin.Host().Calls().Clear();
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {2, 2, true, 0});
  EXPECT_EQ(report.ResultPicture(), source);
  EXPECT_EQ(source->References(), 2);
  EXPECT_EQ(support::Complaints(report), "");
  const std::vector<std::string> lines = plugin.Host().Calls().Calls();
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_NE(lines[0].find("\"Width\""), std::string::npos);
  EXPECT_NE(lines[1].find("\"Height\""), std::string::npos);
  EXPECT_EQ(lines[2], "REALLockObject(Picture#1)");
}

TEST(ScaleZVQ, AHostThatCannotLockObjectsGetsThePictureWithoutAReference) {
  support::LoadedPlugin plugin;
  plugin.Host().Withhold("REALLockObject");
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {2, 2, false, 0});
  EXPECT_EQ(report.ResultPicture(), source);
  EXPECT_EQ(source->References(), 1);
}

TEST(ScaleZVQ, WideRowsOfTheirOwnWidthAreCopiedInPieces) {
  support::LoadedPlugin plugin;
  Image wide;
  wide.width = 9001;
  wide.height = 3;
  wide.format = 6;
  for (std::uint32_t i = 0; i < 9001U * 3U; ++i) wide.words.push_back(i * 2654435761U);
  host::Picture* source = support::PictureOf(plugin.Host(), wide);
  for (const int height : {2, 7}) {
    const host::CallReport report =
        plugin.Library().Call("ScaleZVQ", source, {9001, height, false, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Difference(oracle::FastScale(wide, 9001, height, 6),
                                  support::ImageOf(*report.ResultPicture())),
              "");
  }
}

struct ChoiceCase {
  const char* name;
  int width, height;
  bool antiAlias;
  bool smooth;
};

class ScaleZvqChoice : public testing::TestWithParam<ChoiceCase> {};

TEST_P(ScaleZvqChoice, RunsTheScalerThatTheSizesCallFor) {
  const ChoiceCase& c = GetParam();
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  const host::CallReport report =
      plugin.Library().Call("ScaleZVQ", source, {c.width, c.height, c.antiAlias, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  const Image fast = oracle::FastScale(kFour, c.width, c.height, 6);
  const Image smooth = oracle::SmoothEnlarge(kFour, c.width, c.height, 6);
  ASSERT_NE(support::Difference(fast, smooth), "") << "the case cannot tell the scalers apart";
  EXPECT_EQ(
      support::Difference(c.smooth ? smooth : fast, support::ImageOf(*report.ResultPicture())), "");
}

const ChoiceCase kChoices[] = {
    {"EnlargingBothSidesSmoothly", 3, 3, true, true},
    {"EnlargingBothSidesWithoutAntiAliasing", 3, 3, false, false},
    {"OneSideEqual", 3, 2, true, false},
    {"OtherSideEqual", 2, 3, true, false},
    {"OneSideShrinking", 1, 4, true, false},
    {"ShrinkingBothSides", 1, 1, true, false},
};

INSTANTIATE_TEST_SUITE_P(ScaleZVQ, ScaleZvqChoice, testing::ValuesIn(kChoices),
                         support::CaseName<ChoiceCase>);

TEST(ScaleZVQ, ANilPictureGivesNil) {
  for (const bool antiAlias : {false, true}) {
    support::LoadedPlugin plugin;
    plugin.Host().Calls().Clear();
    const host::CallReport report =
        plugin.Library().Call("ScaleZVQ", nullptr, {4, 4, antiAlias, 0});
    EXPECT_EQ(report.ResultPicture(), nullptr);
    EXPECT_TRUE(plugin.Host().Calls().Calls().empty());
  }
}

TEST(ScaleZVQ, ANilPictureOfNoSizeGivesNilWithoutLockingAnything) {
  support::LoadedPlugin plugin;
  plugin.Host().Calls().Clear();
  EXPECT_EQ(plugin.Library().Call("ScaleZVQ", nullptr, {0, 0, false, 0}).ResultPicture(), nullptr);
  EXPECT_TRUE(plugin.Host().Calls().Calls().empty());
}

struct RefusedSize {
  int width, height;
};

TEST(ScaleZVQ, SizesOutsideTheLimitsGiveNil) {
  const RefusedSize sizes[] = {{0, 5},         {5, 0},        {-1, 5},        {5, -1},
                               {32768, 1},     {1, 32768},    {INT32_MIN, 1}, {1, INT32_MIN},
                               {INT32_MAX, 1}, {1, INT32_MAX}};
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  for (const RefusedSize& size : sizes) {
    for (const bool antiAlias : {false, true}) {
      const host::CallReport report =
          plugin.Library().Call("ScaleZVQ", source, {size.width, size.height, antiAlias, 0});
      EXPECT_EQ(report.ResultPicture(), nullptr) << size.width << "x" << size.height;
      EXPECT_EQ(support::Complaints(report), "");
    }
  }
}

TEST(ScaleZVQ, TheLargestOpaqueSidesAreMade) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  EXPECT_NE(plugin.Library().Call("ScaleZVQ", source, {32767, 1, false, 0}).ResultPicture(),
            nullptr);
  EXPECT_NE(plugin.Library().Call("ScaleZVQ", source, {1, 32767, false, 0}).ResultPicture(),
            nullptr);
}

TEST(ScaleZVQ, APictureWithAnAlphaChannelMayBecomeLarger) {
  support::LoadedPlugin plugin({.version = 2011.04});
  host::Picture* source = plugin.Host().NewPicture(
      {.width = 2, .height = 2, .pixelFormat = 2, .hasAlphaChannel = true});
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {32768, 1, false, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(report.ResultPicture()->Width(), 32768);
  EXPECT_TRUE(report.ResultPicture()->HasAlphaChannel());
  EXPECT_EQ(support::Complaints(report), "");
}

TEST(ScaleZVQ, APictureWithAnAlphaChannelGivesNilBefore201104) {
  support::LoadedPlugin plugin({.version = 2011.03});
  host::Picture* source = plugin.Host().NewPicture(
      {.width = 2, .height = 2, .pixelFormat = 2, .hasAlphaChannel = true});
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {3, 1, false, 0});
  EXPECT_EQ(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
}

TEST(ScaleZVQ, ASizeThatCannotBeReadCountsAsNothing) {
  support::LoadedPlugin plugin;
  plugin.Host().Withhold("REALGetPropValueInteger");
  plugin.Host().Withhold("REALGetPropValueInt");
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  // Its own size is scaled, smoothly because 0 < 2: a copy.
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {2, 2, true, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_NE(report.ResultPicture(), source);
  EXPECT_EQ(support::Difference(kFour, support::ImageOf(*report.ResultPicture())), "");
}

TEST(ScaleZVQ, TheSourceIsNeverChanged) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour, {.rowPadding = 12});
  plugin.Library().Call("ScaleZVQ", source, {5, 7, true, 0});
  plugin.Library().Call("ScaleZVQ", source, {1, 1, false, 0});
  EXPECT_EQ(support::Difference(kFour, support::ImageOf(*source)), "");
  EXPECT_EQ(source->CacheClears(), 0);
  EXPECT_EQ(source->DamagedPadding(), 0U);
}

TEST(ScaleZVQ, NoPeriodReadsNoClockAndNeverYields) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  const auto readings = platform::ClockReadings();
  plugin.Library().Call("ScaleZVQ", source, {5, 7, true, 0});
  plugin.Library().Call("ScaleZVQ", source, {1, 7, false, 0});
  EXPECT_EQ(platform::ClockReadings(), readings);
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(ScaleZVQ, ANestedCallTakesOverThePeriod) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  host::Picture* inner = plugin.Host().NewPicture({.width = 3, .height = 3});
  bool nested = false;
  plugin.Host().onYield = [&] {
    if (std::exchange(nested, true)) return;
    plugin.Library().Call("ScaleZVQ", inner, {1, 1, false, 0});
  };
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {5, 9, false, 1});
  EXPECT_EQ(plugin.Host().Yields(), 1)
      << "the inner call's period of 0 ends the outer call's yields";
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(oracle::FastScale(kFour, 5, 9, 6),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

TEST(ScaleZVQ, AHostExceptionPassesOutAndReleasesEverything) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  for (int yieldsBefore : {0, 3, 7}) {  // after the first row, in the middle, at the very end
    int left = yieldsBefore;
    plugin.Host().onYield = [&left] {
      if (left-- == 0) throw std::runtime_error("the window was closed");
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(plugin.Library().Call("ScaleZVQ", source, {4, 7, false, 1}), std::runtime_error);
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty());
    EXPECT_TRUE(plugin.Host().Book().Violations().empty());
  }
}

TEST(ScaleZVQ, AnAntiAliasSlotIsReadAsOneByte) {
  support::LoadedPlugin plugin;
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  const host::RegisteredMethod* method = plugin.Library().Find("ScaleZVQ");
  ASSERT_NE(method, nullptr);
  for (const bool antiAlias : {false, true}) {
    const std::uintptr_t slot = 0xA5A5A500U | (antiAlias ? 0x80U : 0U);
    const auto raw = host::CallNative(
        method->routine,
        {{.word = reinterpret_cast<std::uintptr_t>(static_cast<host::Object*>(source))},
         {.word = 3},
         {.word = 3},
         {.word = slot},
         {.word = 0}},
        host::Type::kPicture);
    auto* object = reinterpret_cast<host::Object*>(raw.word);
    const Image expected =
        antiAlias ? oracle::SmoothEnlarge(kFour, 3, 3, 6) : oracle::FastScale(kFour, 3, 3, 6);
    EXPECT_EQ(support::Difference(expected, support::ImageOf(*static_cast<host::Picture*>(object))),
              "");
  }
}

}  // namespace
