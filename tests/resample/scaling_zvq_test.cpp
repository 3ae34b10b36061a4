// The method ScalingZVQ as a host calls it: results worked out by hand, refusals, yields.
#include <gtest/gtest.h>

#include <utility>

#include "tests/support/allocation_faults.h"
#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

constexpr int kModes[] = {1, 2, 3, 4, 5, 6, 7};

struct ScalingCase {
  const char* name;
  host::ApplicationKind kind;
  int resultFormat;
  int mode;
  Image source;
  int width, height;
  Image expected;
};

class ScalingByHand : public testing::TestWithParam<ScalingCase> {};

TEST_P(ScalingByHand, GivesTheseWords) {
  const ScalingCase& c = GetParam();
  support::LoadedPlugin plugin({.kind = c.kind, .newPixelFormat = c.resultFormat});
  host::Picture* source = support::PictureOf(plugin.Host(), c.source);
  const host::CallReport report =
      plugin.Library().Call("ScalingZVQ", source, {c.mode, c.width, c.height, 0});
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(c.expected, support::ImageOf(*report.ResultPicture())), "");
  EXPECT_EQ(support::Difference(c.source, support::ImageOf(*source)), "");
}

constexpr auto kDesktop = host::ApplicationKind::kDesktop;
constexpr auto kConsole = host::ApplicationKind::kConsole;

// clang-format off
const ScalingCase kCases[] = {
    // 2 -> 4 with the triangle: 0, (3·0 + 1·100)/4 = 25, 75, 100; the border is normalised by its smaller total.
    {"TriangleDoublesByQuarters", kDesktop, 5, 1, Words(5, {{0, 100}}), 4, 1,
     Words(5, {{0xFF000000, 0xFF000019, 0xFF00004B, 0xFF000064}})},
    // 4 -> 2: (0.75·10 + 0.75·20 + 0.25·40)/1.75 = 32.5/1.75 = 18.57 -> 19; (0.25·20 + 0.75·40 + 0.75·90)/1.75 =
    // 102.5/1.75 = 58.57 -> 59.
    {"TriangleHalvesByFourTaps", kDesktop, 5, 1, Words(5, {{10, 20, 40, 90}}), 2, 1,
     Words(5, {{0xFF000013, 0xFF00003B}})},
    // All five columns count alike: (1+2+3+4+90)/5 = 20.
    {"BoxAveragesTheWholeRow", kDesktop, 5, 2, Words(5, {{1, 2, 3, 4, 90}}), 1, 1,
     Words(5, {{0xFF000014}})},
    // 2 -> 3: the middle takes both, (10 + 21)/2 + 0.5 = 16.
    {"BoxTakesBothNeighboursOfATie", kDesktop, 5, 2, Words(5, {{10, 21}}), 3, 1,
     Words(5, {{0xFF00000A, 0xFF000010, 0xFF000015}})},
    // 1×4 -> 1×2 with the box: rows in pairs, (10+20)/2 = 15, (40+91)/2 + 0.5 = 66.
    {"BoxHalvesColumnsToo", kDesktop, 6, 2, Words(6, {{0x0A00}, {0x1400}, {0x2800}, {0x5B00}}), 1, 2,
     Words(6, {{0x0FFF}, {0x42FF}})},
    // 2 -> 4 with a = -0.75: column 1 has centre 0.75 and neighbours at 0.25 and 0.75: 0.87890625 and 0.26171875; none
    // further. (0.26171875·255)/1.140625 = 58.5 + 0.5 -> 59. Column 0, at 0.25 and 1.25: 0.87890625 and -0.10546875: below 0.
    {"BicubicRingsAndIsClamped", kDesktop, 5, 6, Words(5, {{0, 255}}), 4, 1,
     Words(5, {{0xFF000000, 0xFF00003B, 0xFF0000C4, 0xFF0000FF}})},
    // Format 8 gets a top byte of 0, whatever the source held there.
    {"HostBuffersGetATopByteOfZero", kConsole, 8, 2, Words(8, {{0xFF102030, 0x80304050}}), 1, 1,
     Words(8, {{0x00203040}})},
    // From red-first to alpha-first, opaque: red 4+8, green 6+6, blue 0xFF+1.
    {"ChannelsKeepTheirMeaningAcrossFormats", kDesktop, 4, 2, Words(1, {{0x00FF0604, 0xFF010608}}), 1, 1,
     Words(4, {{0x800606FF}})},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(ScalingZVQ, ScalingByHand, testing::ValuesIn(kCases),
                         support::CaseName<ScalingCase>);

TEST(ScalingZVQ, OnePixelGivesAUniformOpaquePictureInEveryMode) {
  for (int mode : kModes) {
    support::LoadedPlugin plugin({.newPixelFormat = 1});
    host::Picture* source = support::PictureOf(plugin.Host(), Words(1, {{0x00C08040}}));
    for (int size : {1, 2, 3, 7, 50}) {
      const host::CallReport report =
          plugin.Library().Call("ScalingZVQ", source, {mode, size, size, 0});
      ASSERT_NE(report.ResultPicture(), nullptr);
      const Image expected = oracle::NewImage(size, size, 1, 0xFFC08040);
      EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "")
          << "mode " << mode << ", size " << size;
    }
  }
}

TEST(ScalingZVQ, AUniformPictureStaysUniformToItsBorder) {
  const int sizes[][2] = {{3, 5}, {17, 9}, {16, 8}, {40, 33}, {1, 1}, {64, 2}};
  for (int mode : kModes) {
    support::LoadedPlugin plugin({.newPixelFormat = 2});
    host::Picture* source =
        support::PictureOf(plugin.Host(), oracle::NewImage(16, 11, 2, 0x01FE80AA));
    for (const auto& size : sizes) {
      const host::CallReport report =
          plugin.Library().Call("ScalingZVQ", source, {mode, size[0], size[1], 0});
      ASSERT_NE(report.ResultPicture(), nullptr);
      const Image expected = oracle::NewImage(size[0], size[1], 2, 0x01FE80FF);
      EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "")
          << "mode " << mode;
    }
  }
}

TEST(ScalingZVQ, AllLevelsSurviveTheOwnSizeInModes1And2) {
  Image levels = oracle::NewImage(16, 16, 3);
  Image opaque = levels;
  for (std::uint32_t i = 0; i < 256; ++i) {
    const std::uint32_t colour = i | (255 - i) << 8 | (i * 7 % 256) << 16;
    levels.words[i] = colour | i << 24;
    opaque.words[i] = colour | 0xFF000000;
  }
  for (int mode : {1, 2}) {
    support::LoadedPlugin plugin({.newPixelFormat = 3});
    host::Picture* source = support::PictureOf(plugin.Host(), levels);
    const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, {mode, 16, 16, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_NE(report.ResultPicture(), source) << "the own size is a copy";
    EXPECT_EQ(support::Difference(opaque, support::ImageOf(*report.ResultPicture())), "");
  }
}

TEST(ScalingZVQ, RingingStaysWithinTheRange) {
  const Image edge =
      Words(5, {{0, 0, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255}});
  for (int mode : {3, 4, 6, 7}) {
    support::LoadedPlugin plugin({.newPixelFormat = 5});
    host::Picture* source = support::PictureOf(plugin.Host(), edge);
    const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, {mode, 54, 1, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    const Image result = support::ImageOf(*report.ResultPicture());
    // Under- and overshoot wrap nowhere: dark on the left, bright on the right.
    for (int x = 0; x < 24; ++x)
      EXPECT_LT(oracle::Red(result.At(x, 0), 5), 64) << mode << ", " << x;
    for (int x = 30; x < 54; ++x)
      EXPECT_GT(oracle::Red(result.At(x, 0), 5), 191) << mode << ", " << x;
  }
}

TEST(ScalingZVQ, TheSourcesAlphaIsNotCarriedOver) {
  support::LoadedPlugin plugin({.alphaPixelFormat = 1});
  host::Picture* source = support::PictureOf(plugin.Host(), Words(1, {{0x00102030, 0x40506070}}),
                                             {.hasAlphaChannel = true});
  const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, {1, 5, 3, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_TRUE(report.ResultPicture()->HasAlphaChannel());
  for (const std::uint32_t word : support::ImageOf(*report.ResultPicture()).words) {
    EXPECT_EQ(word >> 24, 0xFFU);
  }
}

struct RefusedCase {
  int mode, width, height;
};

TEST(ScalingZVQ, BadArgumentsGiveNilAndTouchNothing) {
  const RefusedCase cases[] = {
      {0, 4, 4}, {8, 4, 4},  {-1, 4, 4}, {INT32_MIN, 4, 4}, {INT32_MAX, 4, 4}, {1, 0, 4},
      {1, 4, 0}, {1, -1, 4}, {1, 4, -1}, {1, INT32_MIN, 4}, {1, 4, INT32_MIN}};
  support::LoadedPlugin plugin;
  host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 3});
  plugin.Host().Calls().Clear();
  for (const RefusedCase& c : cases) {
    const std::vector<host::Value> arguments = {c.mode, c.width, c.height, 1};
    const support::AllocationWatch watch;
    EXPECT_EQ(plugin.Library().Call("ScalingZVQ", source, arguments).ResultPicture(), nullptr);
    EXPECT_EQ(watch.Calls(), 0);
  }
  EXPECT_EQ(plugin.Library().Call("ScalingZVQ", nullptr, {1, 4, 4, 0}).ResultPicture(), nullptr);
  EXPECT_TRUE(plugin.Host().Calls().Lines().empty());
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(ScalingZVQ, AnUnreadablePictureGivesNilWithoutAllocatingOrYielding) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture(plugin.Host().NewAlphaPictureSpec(3, 3));
  source->refuseLocks = true;
  for (int mode = 1; mode <= 7; ++mode) {
    const std::vector<host::Value> arguments = {mode, 2, 2, 1};
    const support::AllocationWatch watch;
    const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, arguments);
    EXPECT_EQ(report.ResultPicture(), nullptr);
    EXPECT_EQ(watch.Calls(), 0);
    EXPECT_EQ(support::Complaints(report), "");
  }
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(ScalingZVQ, SizesWhoseProductsWrapGiveNilWithoutAllocatingOrYielding) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 1, .height = 4});
  // 2^28·4·4 = 2^32 wraps to 0; (2^28 + 1)·16 to 16; 2^27·16 is just too much.
  for (int width : {1 << 28, (1 << 28) + 1, 1 << 27, INT32_MAX}) {
    const std::vector<host::Value> arguments = {1, width, 4, 1};
    const support::AllocationWatch watch;
    const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, arguments);
    EXPECT_EQ(report.ResultPicture(), nullptr);
    EXPECT_EQ(watch.Calls(), 0) << width;
    EXPECT_EQ(support::Complaints(report), "");
  }
  EXPECT_EQ(plugin.Host().Yields(), 0);
}

TEST(ScalingZVQ, AResultThatCannotBeMadeGivesNilAfterFourYields) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 2, .height = 2});
  const host::CallReport report = plugin.Library().Call("ScalingZVQ", source, {1, 32768, 1, 1});
  EXPECT_EQ(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(plugin.Host().Yields(), 4);
}

TEST(ScalingZVQ, YieldsFourTimesThenByRowThenThrice) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 5, .height = 9});
  plugin.Library().Call("ScalingZVQ", source, {4, 6, 11, -1});
  EXPECT_EQ(plugin.Host().Yields(), 4 + 11 + 3);
}

// The host calls of one complete call, with each yield in its place.
TEST(ScalingZVQ, ReleasesTheSourceThenYieldsThenReleasesTheRest) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 2, .height = 3});
  plugin.Host().Calls().Clear();
  plugin.Library().Call("ScalingZVQ", source, {1, 2, 2, 1});
  std::string order;
  for (const std::string& call : plugin.Host().Calls().Calls()) {
    if (call.starts_with("pluginObjectType")) continue;
    order += call.substr(0, call.find(" = ")) + "\n";
  }
  EXPECT_EQ(order,
            "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#1, 8)\n"
            "REALLockObject(Picture#1)\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "newPicture(2, 2, 32)\n"
            "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\")\n"
            "REALLockPictureDescription(Picture#2, 8)\n"
            "REALLockObject(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALYieldToRB()\n"
            "REALLockObject(Picture#2)\n"
            "REALPictureClearCache(Picture#2)\n"
            "unlockPictureDescription(Picture#2)\n"
            "REALPictureClearCache(Picture#2)\n"
            "REALUnlockObject(Picture#2)\n"
            "REALYieldToRB()\n"
            "unlockPictureDescription(Picture#1)\n"
            "REALUnlockObject(Picture#1)\n"
            "REALYieldToRB()\n");
}

TEST(ScalingZVQ, AHostExceptionPassesOutOfEveryYield) {
  for (int yieldsBefore = 0; yieldsBefore < 4 + 5 + 3; ++yieldsBefore) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = plugin.Host().NewPicture({.width = 4, .height = 3});
    int left = yieldsBefore;
    plugin.Host().onYield = [&left] {
      if (left-- == 0) throw std::runtime_error("the window was closed");
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(plugin.Library().Call("ScalingZVQ", source, {3, 6, 5, 1}), std::runtime_error);
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty()) << yieldsBefore;
    EXPECT_TRUE(plugin.Host().Book().Violations().empty()) << yieldsBefore;
  }
}

TEST(ScalingZVQ, KeepsAYieldRecordOfItsOwn) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 4, .height = 3});
  bool nested = false;
  plugin.Host().onYield = [&] {
    if (std::exchange(nested, true)) return;
    plugin.Library().Call("ScalingZVQ", source, {1, 2, 2, 0});
    plugin.Library().Call("ScaleZVQ", source, {2, 2, false, 0});
  };
  plugin.Library().Call("ScalingZVQ", source, {1, 6, 5, 1});
  EXPECT_EQ(plugin.Host().Yields(), 4 + 5 + 3) << "inner calls without yielding change nothing";
}

}  // namespace
