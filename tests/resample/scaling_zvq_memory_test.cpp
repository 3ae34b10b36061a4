// The working blocks of ScalingZVQ: which it requests, and what happens without each.
#include <gtest/gtest.h>

#include <numeric>
#include <optional>

#include "plugin/processor.h"
#include "resample/contributions.h"
#include "tests/support/allocation_faults.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/random.h"

namespace {

using support::AllocationWatch;

constexpr std::size_t kHead = sizeof(ContributionList);
constexpr std::size_t kTap = sizeof(Contribution);
constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// Whether the plug-in under test has a level of vector instructions. All have but the one that is
// held to none, which goes by its file's name.
bool HasVectorInstructions() {
  const bool isHeldToNone = support::PluginPath().ends_with("Varnell-scalar.so");
  return BestVectorLevel() > VectorLevel::kScalar && !isHeldToNone;
}

// With vector instructions one more block is requested after the columns' lists.
int FurtherBlocks() { return HasVectorInstructions() ? 1 : 0; }

struct BlocksCase {
  const char* name;
  int mode, sourceWidth, sourceHeight, width, height;
  std::size_t columnTaps, rowTaps;  // that a list has room for
};

// The blocks that the plug-in requests, in their order.
std::vector<std::size_t> SizesOf(const BlocksCase& c) {
  support::LoadedPlugin plugin;
  host::Picture* source =
      plugin.Host().NewPicture({.width = c.sourceWidth, .height = c.sourceHeight});
  const std::vector<host::Value> arguments = {c.mode, c.width, c.height, 0};
  const AllocationWatch watch;
  plugin.Library().Call("ScalingZVQ", source, arguments);
  return watch.Sizes();
}

TEST(ScalingZVQ, RequestsItsBlocksInOrder) {
  const BlocksCase cases[] = {
      {"triangle, new heads", 1, 3, 2, 4, 5, 4, 4},
      {"triangle, no new heads", 1, 3, 2, 5, 4, 4, 4},
      {"triangle, as many heads", 1, 3, 2, 4, 4, 4, 4},
      {"box", 2, 3, 2, 4, 5, 2, 3},
      {"wide windowed sinc, rows alone", 4, 1, 7, 1, 9, 18, 18},
      // 10 -> 3: 3/0.3 = 10 pixels on either side, 2·10 + 2; 9 -> 2: 4.5·3 = 13.5, 27 + 2.
      {"windowed sinc shrinks", 3, 10, 9, 3, 2, 22, 29},
  };
  for (const BlocksCase& c : cases) {
    const auto columns = static_cast<std::size_t>(c.width);
    const auto rows = static_cast<std::size_t>(c.height);
    const std::size_t image = columns * static_cast<std::size_t>(c.sourceHeight) * 4;
    std::vector<std::size_t> expected = {image, columns * kHead};
    expected.insert(expected.end(), columns, c.columnTaps * kTap);
    const auto further = static_cast<std::ptrdiff_t>(expected.size());
    if (rows > columns) expected.push_back(rows * kHead);
    expected.insert(expected.end(), rows, c.rowTaps * kTap);

    std::vector<std::size_t> sizes = SizesOf(c);
    if (HasVectorInstructions()) {
      ASSERT_EQ(sizes.size(), expected.size() + 1) << c.name;
      EXPECT_LE(sizes[static_cast<std::size_t>(further)], image + kMebibyte) << c.name;
      sizes.erase(sizes.begin() + further);
    }
    EXPECT_EQ(sizes, expected) << c.name;
  }
}

// 32000 columns taken apart would be larger than the image, and it is a mebibyte larger.
TEST(ScalingZVQ, RequestsNoFurtherBlockThatWouldBeMuchLargerThanTheImage) {
  EXPECT_EQ(SizesOf({"", 2, 32000, 1, 2, 1, 0, 0}).size(), 1U + 1U + 2U + 1U);
}

// Everything that a call gives and does, with its yields.
struct Observed {
  oracle::Image image;
  std::vector<std::string> calls;
  int yields, allocations;

  Observed(int mode, const oracle::Image& picture, int width, int height, int failAt) {
    support::LoadedPlugin plugin({.newPixelFormat = 5});
    const support::RushingClock clock;
    host::Picture* source = support::PictureOf(plugin.Host(), picture);
    const std::vector<host::Value> arguments = {mode, width, height, 1};
    plugin.Host().Calls().Clear();
    host::CallReport report;
    {
      const AllocationWatch watch(failAt);
      report = plugin.Library().Call("ScalingZVQ", source, arguments);
      allocations = watch.Calls();
      EXPECT_EQ(watch.LiveBlocks(), 0);
    }
    EXPECT_EQ(support::Complaints(report), "");
    if (report.ResultPicture() != nullptr) image = support::ImageOf(*report.ResultPicture());
    calls = plugin.Host().Calls().Calls();
    yields = plugin.Host().Yields();
  }
};

// One that vector instructions need, and one more where pixels are only copied: each alone.
TEST(ScalingZVQ, GivesTheSameWithoutTheFurtherBlocks) {
  if (!HasVectorInstructions()) {
    const std::size_t blocks = SizesOf({"", 1, 9, 7, 12, 5, 0, 0}).size();
    EXPECT_EQ(blocks, 1U + 1U + 12U + 5U) << "there is none";
    return;
  }
  const int sizes[][4] = {{9, 7, 12, 5}, {20, 30, 5, 40}, {33, 17, 16, 8}, {8, 8, 8, 8}};
  support::Random random(37104000);
  int copied = 0;
  for (int mode = 1; mode <= 7; ++mode) {
    for (const auto& [fromWidth, fromHeight, width, height] : sizes) {
      const oracle::Image picture = random.Noise(fromWidth, fromHeight, 5);
      const Observed whole(mode, picture, width, height, 0);
      ASSERT_FALSE(whole.image.words.empty());
      ASSERT_EQ(whole.yields, 4 + height + 3);
      const int columns = 1 + 1 + width;  // the image, and the lists
      const int rows = height + (height > width ? 1 : 0);
      const int further = whole.allocations - columns - rows;
      ASSERT_TRUE(further == 1 || further == 2) << further;
      copied += further - 1;
      for (int failing = 1; failing <= further; ++failing) {
        const Observed without(mode, picture, width, height, columns + failing);
        EXPECT_EQ(support::Difference(whole.image, without.image), "") << mode;
        ASSERT_EQ(without.calls, whole.calls);
        ASSERT_EQ(without.yields, whole.yields);
        // Without the first one there is no use for the other.
        ASSERT_EQ(without.allocations, columns + rows + failing);
      }
    }
  }
  EXPECT_GE(copied, 2) << "of sizes and modes";
}

TEST(ScalingZVQ, GivesBackAllItsMemoryWhicheverBlockFails) {
  support::LoadedPlugin plugin;
  host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 2});
  const std::vector<host::Value> arguments = {1, 4, 5, 0};
  for (int failing = 0; failing <= 2 + 4 + FurtherBlocks() + 1 + 5; ++failing) {
    for (const bool andLater : {false, true}) {
      const AllocationWatch watch(failing, andLater);
      plugin.Library().Call("ScalingZVQ", source, arguments);
      EXPECT_EQ(watch.LiveBlocks(), 0) << failing;
    }
  }
}

TEST(ScalingZVQ, AMissingImageOrHeadArrayGivesNil) {
  struct Row {
    int failing, yields;
  };
  // The image, the heads along rows, the larger heads down columns after two lists.
  for (const Row& row : {Row{1, 0}, {2, 0}, {5 + FurtherBlocks(), 3}}) {
    support::LoadedPlugin plugin;
    const support::RushingClock clock;
    host::Picture* source = plugin.Host().NewPicture({.width = 3, .height = 2});
    const std::vector<host::Value> arguments = {1, 2, 5, 1};
    host::CallReport report;
    {
      const AllocationWatch watch(row.failing);
      report = plugin.Library().Call("ScalingZVQ", source, arguments);
    }
    EXPECT_EQ(report.ResultPicture(), nullptr) << row.failing;
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(plugin.Host().Yields(), row.yields);
  }
}

TEST(ScalingZVQ, AMissingTapListMakesItsPixelsBlack) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  host::Picture* source = support::PictureOf(plugin.Host(), oracle::NewImage(3, 3, 5, 0x00646464));
  // Image, heads, three lists along rows, perhaps the further block, and three down columns.
  const int columns = 3, rows = 6 + FurtherBlocks();
  for (const int mode : {1, 2, 3}) {
    for (int missing = 0; missing < 3; ++missing) {
      for (const bool isColumn : {false, true}) {
        const std::vector<host::Value> arguments = {mode, 3, 3, 0};
        host::CallReport report;
        {
          const AllocationWatch watch((isColumn ? columns : rows) + missing);
          report = plugin.Library().Call("ScalingZVQ", source, arguments);
        }
        ASSERT_NE(report.ResultPicture(), nullptr);
        for (int y = 0; y < 3; ++y) {
          for (int x = 0; x < 3; ++x) {
            const bool isBlack = (isColumn ? x : y) == missing;
            EXPECT_EQ(report.ResultPicture()->Word(x, y), isBlack ? 0xFF000000 : 0xFF646464);
          }
        }
      }
    }
  }
}

}  // namespace
