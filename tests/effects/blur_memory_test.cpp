// BlurZVQ's working memory: which blocks it asks for, and what happens when one is missing.
#include <gtest/gtest.h>

#include "tests/support/allocation_faults.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using oracle::Image;
using Sizes = std::vector<std::size_t>;

// Fails block `failAt` (0: none), and all later ones if `andLater`.
struct Watched {
  host::CallReport report;
  Sizes sizes;
};
Watched Blur(support::LoadedPlugin& plugin, host::Picture* source, double radius, int failAt,
             bool andLater) {
  const std::vector<host::Value> arguments = {radius, 1};
  Watched watched;
  const support::AllocationWatch watch(failAt, andLater);
  watched.report = plugin.Library().Call("BlurZVQ", source, arguments);
  watched.sizes = watch.Sizes();
  return watched;
}

// Radius 3: a table of 7·1024 + 1024 bytes; three arrays of 5·4 + 20; a row of 5·4 + 12 + 20.
const Sizes kBlocks = {8192, 40, 40, 40, 52};

host::RuntimeOptions PaddedHost() {
  host::RuntimeOptions options;
  options.newPixelFormat = 5;
  options.newRowPadding = 12;
  options.newFill = {1, 2, 3, 255};
  return options;
}

TEST(BlurMemory, FiveBlocksAreRequestedInOrder) {
  support::LoadedPlugin plugin(PaddedHost());
  host::Picture* source = plugin.Host().NewPicture({.width = 5, .height = 4, .rowPadding = 400});
  EXPECT_EQ(Blur(plugin, source, 3.9, 0, false).sizes, kBlocks);
}

TEST(BlurMemory, SizesFollowRadiusAndWidth) {
  struct Row {
    int width, height;
    double radius;
    Sizes sizes;
  };
  const Row rows[] = {{1, 1, 1, {4096, 24, 24, 24, 24}},
                      {100, 3, 1, {4096, 420, 420, 420, 420}},
                      {3, 100, 10, {22528, 32, 32, 32, 32}},
                      {2, 2, 1000, {2050048, 28, 28, 28, 28}}};
  for (const Row& row : rows) {
    support::LoadedPlugin plugin;
    host::Picture* source = plugin.Host().NewPicture({.width = row.width, .height = row.height});
    EXPECT_EQ(Blur(plugin, source, row.radius, 0, false).sizes, row.sizes) << row.radius;
  }
}

TEST(BlurMemory, NoBlockIsRequestedForARefusedReceiver) {
  support::LoadedPlugin plugin;
  host::Picture* wide = plugin.Host().NewPicture({.width = 32768, .height = 1});
  EXPECT_TRUE(Blur(plugin, wide, 1, 0, false).sizes.empty());
  host::Picture* source = plugin.Host().NewPicture({.width = 4, .height = 4});
  EXPECT_TRUE(Blur(plugin, source, 0.5, 0, false).sizes.empty());
  EXPECT_TRUE(Blur(plugin, nullptr, 5, 0, false).sizes.empty());
  plugin.Host().Withhold("newPicture");
  EXPECT_TRUE(Blur(plugin, source, 5, 0, false).sizes.empty());
}

// The new picture as the host made it.
void ExpectUnblurred(const host::CallReport& report, int width, int height) {
  EXPECT_EQ(support::Complaints(report), "");
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(oracle::NewImage(width, height, 5, 0xFF030201),
                                support::ImageOf(*report.ResultPicture())),
            "");
  EXPECT_EQ(report.ResultPicture()->CacheClears(), 2) << "it is handed over as any result is";
}

TEST(BlurMemory, AnyMissingBlockGivesTheUnblurredPictureAfterOneYield) {
  for (int failing = 1; failing <= 5; ++failing) {
    for (const bool andLater : {false, true}) {
      support::LoadedPlugin plugin(PaddedHost());
      const support::RushingClock clock;
      host::Picture* source = plugin.Host().NewPicture({.width = 5, .height = 4});
      const Watched watched = Blur(plugin, source, 3, failing, andLater);
      ExpectUnblurred(watched.report, 5, 4);
      EXPECT_EQ(watched.sizes, kBlocks) << "block " << failing;
      EXPECT_EQ(plugin.Host().Yields(), 1) << "block " << failing;
      EXPECT_TRUE(plugin.Host().Raised().empty());
    }
  }
}

// 2·1048574 + 1 entries of 1024 bytes and 1024 more are 2147481600 bytes: within the rule.
TEST(BlurMemory, TheLargestTableIsRequested) {
  support::LoadedPlugin plugin(PaddedHost());
  host::Picture* source = plugin.Host().NewPicture({.width = 5, .height = 4});
  const Watched watched = Blur(plugin, source, 1048574.75, 1, false);
  EXPECT_EQ(watched.sizes, Sizes({2147481600, 40, 40, 40, 52}));
  ExpectUnblurred(watched.report, 5, 4);
}

TEST(BlurMemory, ALargerTableIsMissing) {
  for (const double radius : {1048575.0, 1048576.0, 2097150.0, 2097151.0, 2097152.0, 2097153.0,
                              4194304.0, 1073741823.0, 1073741824.0, 2147483647.0, 2147483647.9}) {
    support::LoadedPlugin plugin(PaddedHost());
    const support::RushingClock clock;
    host::Picture* source = plugin.Host().NewPicture({.width = 5, .height = 4});
    const Watched watched = Blur(plugin, source, radius, 0, false);
    EXPECT_EQ(watched.sizes, Sizes({40, 40, 40, 52})) << radius;
    ExpectUnblurred(watched.report, 5, 4);
    EXPECT_EQ(plugin.Host().Yields(), 1) << radius;
  }
}

// A fault in one call leaves nothing behind for the next.
TEST(BlurMemory, TheNextCallBlursAgain) {
  support::LoadedPlugin plugin(PaddedHost());
  const Image image = support::Words(5, {{0, 255}});
  host::Picture* source = support::PictureOf(plugin.Host(), image);
  for (int failing = 1; failing <= 5; ++failing) {
    ExpectUnblurred(Blur(plugin, source, 1, failing, true).report, 2, 1);
    const Watched watched = Blur(plugin, source, 1, 0, false);
    ASSERT_NE(watched.report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Difference(support::Words(5, {{0xFF000055, 0xFF0000AA}}),
                                  support::ImageOf(*watched.report.ResultPicture())),
              "");
  }
}

}  // namespace
