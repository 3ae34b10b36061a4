// The method ScaleImageAndMaskZVQ as a host calls it: results worked out by hand, references,
// refusals, yields, nested calls.
#include <gtest/gtest.h>

#include "platform/linux/clocks.h"
#include "plugin/methods.h"
#include "plugin/yield.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/image_and_mask.h"
#include "tests/support/linked_plugin.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using support::Words;

const Image kFour = Words(6, {{0x11223344, 0x55667788}, {0x99AABBCC, 0xDDEEFF00}});

// An opaque grey in format 6.
constexpr std::uint32_t Grey(std::uint32_t level) {
  return level << 24 | level << 16 | level << 8 | 0xFF;
}

Image Greys(const std::vector<std::vector<std::uint32_t>>& rows) {
  Image image = Words(6, rows);
  for (std::uint32_t& word : image.words) word = Grey(word);
  return image;
}

const Image kMask = Greys({{0, 255}, {64, 128}});

host::Picture* Masked(host::Runtime& runtime, const Image& image, const Image& mask) {
  host::Picture* picture = support::PictureOf(runtime, image);
  runtime.SetMask(picture, support::PictureOf(runtime, mask));
  return picture;
}

// By hand. Fast: means of pairs, the half added once. Smooth: t = 0 and 1/2 in turn, the last row
// blended with itself, the fourth byte like a colour; the drawn mask is opaque.
struct HandRow {
  const char* name;
  Image picture, mask;
  int width, height;
  bool antiAlias;
  Image result, resultMask;
};

const HandRow kByHand[] = {
    // (51 + 119 + .5) / 2 = 85.25, (34 + 102 + .5) / 2 = 68.25, (17 + 85 + .5) / 2 = 51.25;
    // (10 + 20 + 30 + 41 + .5) / 4 = 25.375
    {"shrunk", Words(6, {{0x11223344, 0x55667788}}), Greys({{10, 20, 30, 41}}), 1, 1, true,
     Words(6, {{0x334455FF}}), Greys({{25}})},
    // Nearest neighbours.
    {"enlarged fast", Words(6, {{0x0A0A0A00}, {0x15151540}}), Greys({{0}, {64}}), 2, 4, false,
     Greys({{10, 10}, {10, 10}, {21, 21}, {21, 21}}), Greys({{0, 0}, {0, 0}, {64, 64}, {64, 64}})},
    // (10 + 21) / 2 + .5 = 16, (0 + 64) / 2 + .5 = 32.5
    {"enlarged smoothly", Words(6, {{0x0A0A0A00}, {0x15151540}}), Greys({{0}, {64}}), 2, 4, true,
     Words(6, {{0x0A0A0A00, 0x0A0A0A00},
               {0x10101020, 0x10101020},
               {0x15151540, 0x15151540},
               {0x15151540, 0x15151540}}),
     Greys({{0, 0}, {32, 32}, {64, 64}, {64, 64}})},
    // Columns 0 and 2, rows 0 and 1 of the mask, exactly.
    {"smooth, the mask wider than both", Words(6, {{0x12345678}}),
     Greys({{1, 2, 3, 4}, {5, 6, 7, 8}}), 2, 2, true,
     Words(6, {{0x12345678, 0x12345678}, {0x12345678, 0x12345678}}), Greys({{1, 3}, {5, 7}})},
    // Mask columns 0-1 and 1-2 under the new ones: (0 + 255 + .5) / 2, (255 + 51 + .5) / 2.
    {"one side equal, the mask shrunk by 1.5", Words(6, {{0x01020300}, {0x04050600}}),
     Greys({{0, 255, 51}}), 2, 2, true,
     Words(6, {{0x010203FF, 0x010203FF}, {0x040506FF, 0x040506FF}}),
     Greys({{127, 153}, {127, 153}})},
};

TEST(ScaleImageAndMaskZVQ, GivesWhatComesOutByHand) {
  for (const HandRow& row : kByHand) {
    SCOPED_TRACE(row.name);
    support::LoadedPlugin plugin;
    host::Picture* source = Masked(plugin.Host(), row.picture, row.mask);
    const host::CallReport report = plugin.Library().Call(
        "ScaleImageAndMaskZVQ", source, {row.width, row.height, row.antiAlias, 0});
    EXPECT_EQ(support::Complaints(report), "");
    host::Picture* result = report.ResultPicture();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(support::Difference(row.result, support::ImageOf(*result)), "");
    ASSERT_NE(result->Mask(), nullptr);
    EXPECT_EQ(support::Difference(row.resultMask, support::ImageOf(*result->Mask())), "");
    EXPECT_EQ(support::Difference(row.picture, support::ImageOf(*source)), "");
    EXPECT_EQ(support::Difference(row.mask, support::ImageOf(*source->Mask())), "");
  }
}

TEST(ScaleImageAndMaskZVQ, APictureWithoutAMaskGivesThePixelsOfScaleZVQ) {
  struct Row {
    int width, height;
    bool antiAlias;
  };
  const Row rows[] = {{1, 1, false}, {1, 1, true}, {5, 3, false}, {5, 3, true}, {1, 7, true}};
  for (const Row& row : rows) {
    support::LoadedPlugin plugin;
    host::Picture* source = support::PictureOf(plugin.Host(), kFour);
    const std::vector<host::Value> arguments = {row.width, row.height, row.antiAlias, 0};
    const auto plain = plugin.Library().Call("ScaleZVQ", source, arguments);
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, arguments);
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Mask(), nullptr);
    EXPECT_EQ(support::Difference(support::ImageOf(*plain.ResultPicture()),
                                  support::ImageOf(*report.ResultPicture())),
              "");
  }
}

TEST(ScaleImageAndMaskZVQ, ThePicturesOwnSizeGivesThePictureWithItsMaskUntouched) {
  for (const bool alpha : {false, true}) {
    support::LoadedPlugin plugin;
    host::Picture* source = plugin.Host().NewPicture(
        {.width = 2, .height = 2, .pixelFormat = 2, .hasAlphaChannel = alpha});
    host::Picture* mask = support::PictureOf(plugin.Host(), kMask);
    plugin.Host().SetMask(source, mask);
    plugin.Host().Calls().Clear();
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {2, 2, true, 0});
    EXPECT_EQ(report.ResultPicture(), source);
    EXPECT_EQ(source->References(), 2);
    EXPECT_EQ(source->Mask(), mask);
    EXPECT_EQ(mask->References(), 1);
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(plugin.Host().Calls().Calls(),
              (std::vector<std::string>{"REALGetPropValueInteger(Picture#1, \"Width\") = 2",
                                        "REALGetPropValueInteger(Picture#1, \"Height\") = 2",
                                        "REALLockObject(Picture#1)"}));
  }
}

TEST(ScaleImageAndMaskZVQ, OneSideOfItsOwnSizeIsScaledAllTheSame) {
  for (const auto& [width, height] : {std::pair{2, 3}, {3, 2}, {2, 1}, {1, 2}}) {
    support::LoadedPlugin plugin;
    host::Picture* source = support::PictureOf(plugin.Host(), kFour);
    const auto report =
        plugin.Library().Call("ScaleImageAndMaskZVQ", source, {width, height, false, 0});
    ASSERT_NE(report.ResultPicture(), nullptr);
    ASSERT_NE(report.ResultPicture(), source);
    EXPECT_EQ(support::Difference(oracle::FastScale(kFour, width, height, 6),
                                  support::ImageOf(*report.ResultPicture())),
              "");
    EXPECT_EQ(support::Complaints(report), "");
  }
}

TEST(ScaleImageAndMaskZVQ, SizesOutsideTheLimitsGiveNil) {
  struct Row {
    int width, height;
  };
  const Row rows[] = {{0, 5},     {5, 0},     {-1, 5},        {5, -1},        {0, 0},
                      {32768, 1}, {1, 32768}, {INT32_MIN, 1}, {1, INT32_MIN}, {INT32_MAX, 1}};
  for (const bool alpha : {false, true}) {
    support::LoadedPlugin plugin;
    host::Picture* source = plugin.Host().NewPicture(
        {.width = 2, .height = 2, .pixelFormat = 2, .hasAlphaChannel = alpha});
    plugin.Host().SetMask(source, support::PictureOf(plugin.Host(), kMask));
    for (const Row& row : rows) {
      for (const bool antiAlias : {false, true}) {
        const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source,
                                                  {row.width, row.height, antiAlias, 0});
        EXPECT_EQ(report.ResultPicture(), nullptr) << row.width << "x" << row.height;
        EXPECT_EQ(support::Complaints(report), "");
      }
    }
  }
}

TEST(ScaleImageAndMaskZVQ, ANilPictureGivesNilWithoutAHostCall) {
  support::LoadedPlugin plugin;
  plugin.Host().Calls().Clear();
  for (const int size : {0, 4}) {
    const auto report =
        plugin.Library().Call("ScaleImageAndMaskZVQ", nullptr, {size, size, true, 3});
    EXPECT_EQ(report.ResultPicture(), nullptr);
  }
  EXPECT_TRUE(plugin.Host().Calls().Lines().empty());
}

TEST(ScaleImageAndMaskZVQ, ANilPictureLeavesTheYieldRecord) {
  support::ResetLinkedPlugin();
  yield.period = 7;
  yield.last = 9;
  EXPECT_EQ(ScaleImageAndMaskZVQ(nullptr, 3, 4, {}, 11), nullptr);
  EXPECT_EQ(yield.period, 7);
  EXPECT_EQ(yield.last, 9);
  support::ResetLinkedPlugin();
}

TEST(ScaleImageAndMaskZVQ, ANilPictureWithinAYieldLeavesTheOuterPeriod) {
  for (const int innerPeriod : {0, 1000000, -1000000}) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = support::PictureOf(plugin.Host(), kFour);
    plugin.Host().onYield = [&] {
      plugin.Library().Call("ScaleImageAndMaskZVQ", nullptr, {1, 1, false, innerPeriod});
    };
    plugin.Library().Call("ScaleZVQ", source, {5, 9, false, 1});
    EXPECT_EQ(plugin.Host().Yields(), 9 + 1);
  }
}

// On a clock that stands still only the first yield point is due, unless the time is forgotten.
TEST(ScaleImageAndMaskZVQ, ANilPictureLeavesTheTimeOfTheLastYield) {
  support::LoadedPlugin plugin;
  platform::SetClockScript({[] { return 1000U; }, [] { return std::uint64_t{1000000000}; }});
  host::Picture* source = support::PictureOf(plugin.Host(), kFour);
  plugin.Host().intercept = [&](const host::EntryCall& call) {
    if (std::string(call.entry) == "REALPictureClearCache") {
      plugin.Library().Call("ScaleImageAndMaskZVQ", nullptr, {1, 1, false, 100});
    }
    return host::Verdict::kProceed;
  };
  plugin.Library().Call("ScaleZVQ", source, {5, 9, false, 100});
  platform::ClearClockScript();
  EXPECT_EQ(plugin.Host().Yields(), 1);
}

TEST(ScaleImageAndMaskZVQ, YieldsForThePictureAndForTheMask) {
  struct Row {
    bool antiAlias, mask;
    int period, yields;
  };
  const Row rows[] = {{false, false, 1, 10},       {false, true, 1, 20},
                      {false, true, -1, 20},       {true, false, 1, 3 + 4 * 9},
                      {true, true, -5, 6 + 8 * 9}, {true, true, 0, 0}};
  for (const Row& row : rows) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = support::PictureOf(plugin.Host(), kFour);
    if (row.mask) plugin.Host().SetMask(source, support::PictureOf(plugin.Host(), kMask));
    plugin.Library().Call("ScaleImageAndMaskZVQ", source, {5, 9, row.antiAlias, row.period});
    EXPECT_EQ(plugin.Host().Yields(), row.yields);
  }
}

TEST(ScaleImageAndMaskZVQ, ANestedCallTakesOverThePeriodAndNothingElse) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = Masked(plugin.Host(), kFour, kMask);
  host::Picture* other = Masked(plugin.Host(), kMask, kFour);
  std::string inner = "not run";
  plugin.Host().onYield = [&] {
    if (inner != "not run") return;
    const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", other, {1, 1, false, 0});
    inner = support::Complaints(report);
    plugin.Host().Release(report.ResultPicture());
  };
  const auto report = plugin.Library().Call("ScaleImageAndMaskZVQ", source, {5, 9, false, 1});
  EXPECT_EQ(inner, "");
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(plugin.Host().Yields(), 1);
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(oracle::FastScale(kFour, 5, 9, 6),
                                support::ImageOf(*report.ResultPicture())),
            "");
  ASSERT_NE(report.ResultPicture()->Mask(), nullptr);
  EXPECT_EQ(support::Difference(oracle::FastScale(kMask, 5, 9, 6),
                                support::ImageOf(*report.ResultPicture()->Mask())),
            "");
}

}  // namespace
