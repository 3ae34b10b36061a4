// The smooth enlarger, through the loaded plug-in: results worked out by hand, and its working
// memory.
#include <gtest/gtest.h>

#include "tests/oracles/fast_scale.h"
#include "tests/support/allocation_faults.h"
#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

struct SmoothCase {
  const char* name;
  host::ApplicationKind kind;
  Image source;
  int width, height;
  Image expected;
};

class SmoothEnlargerByHand : public testing::TestWithParam<SmoothCase> {};

TEST_P(SmoothEnlargerByHand, GivesTheseWords) {
  const SmoothCase& c = GetParam();
  support::LoadedPlugin plugin({.kind = c.kind, .newPixelFormat = c.source.format});
  host::Picture* source = support::PictureOf(plugin.Host(), c.source);
  const host::CallReport report =
      plugin.Library().Call("ScaleZVQ", source, {c.width, c.height, true, 0});
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(c.expected, support::ImageOf(*report.ResultPicture())), "");
}

constexpr auto kDesktop = host::ApplicationKind::kDesktop;
constexpr auto kConsole = host::ApplicationKind::kConsole;

// clang-format off
const SmoothCase kCases[] = {
    // Every tap is the one pixel, and all four bytes are treated alike.
    {"OnePixelGivesAUniformPicture", kDesktop, Words(5, {{0x12345678}}), 3, 2,
     Words(5, {{0x12345678, 0x12345678, 0x12345678}, {0x12345678, 0x12345678, 0x12345678}})},
    // Even columns copy; odd ones are means, 10|20 -> 15, 20|31 -> 25.5 + 0.5 -> 26; the last repeats 31. Rows
    // repeat: 1 -> 2 blends the row with itself.
    {"DoublingCopiesEvenColumnsAndAveragesOddOnes", kDesktop, Words(6, {{10, 20, 31}}), 6, 2,
     Words(6, {{10, 15, 20, 26, 31, 31}, {10, 15, 20, 26, 31, 31}})},
    // The same down the columns, in the top byte.
    {"DoublingDoesTheSameDownTheColumns", kDesktop,
     Words(6, {{0x0A000000}, {0x14000000}, {0x1F000000}}), 2, 6,
     Words(6, {{0x0A000000, 0x0A000000}, {0x0F000000, 0x0F000000}, {0x14000000, 0x14000000},
               {0x1A000000, 0x1A000000}, {0x1F000000, 0x1F000000}, {0x1F000000, 0x1F000000}})},
    // 1 -> 4 columns at t = 0, 1/4, 1/2, 3/4: smoothstep weights 0, 5/32, 1/2, 27/32 of 64: 0, 10, 32, 54; then the
    // border pixel with itself.
    {"TheBlendIsASmoothstep", kDesktop, Words(6, {{0, 64}}), 8, 2,
     Words(6, {{0, 10, 32, 54, 64, 64, 64, 64}, {0, 10, 32, 54, 64, 64, 64, 64}})},
    // Host buffers keep their top byte as interpolated, too: 0x80 and 0 average to 0x40.
    {"HostBuffersInterpolateTheirTopByte", kConsole, Words(8, {{0x80000000, 0x00000000}}), 4, 2,
     Words(8, {{0x80000000, 0x40000000, 0, 0}, {0x80000000, 0x40000000, 0, 0}})},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(SmoothEnlarger, SmoothEnlargerByHand, testing::ValuesIn(kCases),
                         support::CaseName<SmoothCase>);

TEST(SmoothEnlarger, InterpolatesTheAlphaByte) {
  support::LoadedPlugin plugin({.alphaPixelFormat = 1});
  host::Picture* source = support::PictureOf(plugin.Host(), Words(1, {{0x00000000, 0xC8000000}}),
                                             {.hasAlphaChannel = true});
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {4, 2, true, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(report.ResultPicture()->Word(1, 0), 0x64000000U);
  EXPECT_EQ(report.ResultPicture()->Word(2, 1), 0xC8000000U);
}

TEST(SmoothEnlarger, YieldsThriceWhilePreparingAndOnceARowForEachByte) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 2});
  plugin.Library().Call("ScaleZVQ", source, {4, 7, true, -1});
  EXPECT_EQ(plugin.Host().Yields(), 3 + 4 * 7);
}

TEST(SmoothEnlarger, RequestsFiveBlocksInOrder) {
  support::LoadedPlugin plugin;
  host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 2});
  const std::vector<host::Value> request = {10, 12, true, 0};
  std::vector<std::size_t> sizes;
  {
    const support::AllocationWatch watch;
    plugin.Library().Call("ScaleZVQ", source, request);
    EXPECT_EQ(watch.LiveBlocks(), 0);
    sizes = watch.Sizes();
  }
  const std::vector<std::size_t> expected = {12 * 4 + 20, 12 * 4 + 20, 12 * 16 + 20, 12 * 16 + 20,
                                             12 * 4 + 20};
  EXPECT_EQ(sizes, expected);
}

TEST(SmoothEnlarger, AnyMissingBlockLeavesItToTheFastScaler) {
  const Image image = Words(6, {{0x10203040, 0x50607080}, {0x90A0B0C0, 0xD0E0F000}});
  const Image expected = oracle::FastScale(image, 5, 4, 6);
  for (int missing = 1; missing <= 5; ++missing) {
    for (const bool andLater : {false, true}) {
      support::LoadedPlugin plugin;
      const support::RushingClock clock;
      host::Picture* source = support::PictureOf(plugin.Host(), image);
      const std::vector<host::Value> request = {5, 4, true, 1};
      host::CallReport report;
      int calls = 0;
      {
        const support::AllocationWatch watch(missing, andLater);
        report = plugin.Library().Call("ScaleZVQ", source, request);
        calls = watch.Calls();
        EXPECT_EQ(watch.LiveBlocks(), 0);
      }
      ASSERT_NE(report.ResultPicture(), nullptr) << missing;
      EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "");
      EXPECT_EQ(support::Complaints(report), "");
      EXPECT_EQ(calls, 5) << "all five are requested, whichever fails";
      EXPECT_EQ(plugin.Host().Yields(), 4 + 1) << "only the fast scaler came to its yields";
    }
  }
}

TEST(SmoothEnlarger, GivesUpItsMemoryWhenTheHostThrows) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 2});
  for (int yieldsBefore : {0, 2, 3, 20}) {
    int left = yieldsBefore;
    plugin.Host().onYield = [&left] {
      if (left-- == 0) throw std::runtime_error("the window was closed");
    };
    const auto before = plugin.Host().Book().Take();
    EXPECT_THROW(plugin.Library().Call("ScaleZVQ", source, {9, 9, true, 1}), std::runtime_error);
    EXPECT_TRUE(plugin.Host().Book().Differences(before, nullptr).empty());
  }
}

}  // namespace
