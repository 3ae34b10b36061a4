// When both passes can be done in vector instructions, and in how much memory.
#include <gtest/gtest.h>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"
#include "tests/support/allocation_faults.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::kTriangle;
using resample_tests::Levels;
using support::AllocationWatch;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// What Prepare answers for a source of that size and layout whose rows become one column.
struct Prepared {
  bool answer, holds;
  std::vector<std::size_t> sizes;  // of the blocks requested
  int blocksLeft;                  // once all is over

  Prepared(std::int32_t width, std::int32_t height, std::int32_t pixelFormat, VectorLevel level,
           int failAt = 0) {
    PictureReader reader;
    reader.width = width;
    reader.height = height;
    reader.pixelFormat = pixelFormat;
    const BuiltLists columns(kTriangle, 4, 1, Axis::kAlongRows);
    std::vector<std::uint32_t> image(static_cast<std::size_t>(height));
    const AllocationWatch watch(failAt);
    {
      LanePasses lanes;
      answer = lanes.Prepare(reader, columns, image.data(), 3, level);
      holds = static_cast<bool>(lanes);
      sizes = watch.Sizes();
    }
    blocksLeft = watch.LiveBlocks();
  }
};

TEST(LanePasses, RequestOneBlock) {
  for (const VectorLevel level : Levels()) {
    const Prepared prepared(9, 5, 1, level);
    EXPECT_TRUE(prepared.answer);
    EXPECT_TRUE(prepared.holds);
    EXPECT_EQ(prepared.sizes.size(), 1U);
    EXPECT_EQ(prepared.blocksLeft, 0);
  }
}

TEST(LanePasses, AreNothingWithoutVectorInstructions) {
  const Prepared prepared(9, 5, 1, VectorLevel::kScalar);
  EXPECT_FALSE(prepared.answer);
  EXPECT_FALSE(prepared.holds);
  EXPECT_TRUE(prepared.sizes.empty());
}

TEST(LanePasses, AreNothingForASourceWithoutALayout) {
  for (const VectorLevel level : Levels()) {
    for (const std::int32_t format : {0, 7, 9}) {
      const Prepared prepared(9, 5, format, level);
      EXPECT_FALSE(prepared.answer);
      EXPECT_FALSE(prepared.holds);
      EXPECT_TRUE(prepared.sizes.empty());
    }
  }
}

TEST(LanePasses, AreNothingWithoutTheirBlock) {
  for (const VectorLevel level : Levels()) {
    const Prepared prepared(9, 5, 1, level, 1);
    EXPECT_FALSE(prepared.answer);
    EXPECT_FALSE(prepared.holds);
    EXPECT_EQ(prepared.sizes.size(), 1U);
    EXPECT_EQ(prepared.blocksLeft, 0);
  }
}

// Rows taken apart grow with the source's width, the image only with its height.
TEST(LanePasses, TakeAtMostAMebibyteMoreThanTheImage) {
  for (const VectorLevel level : Levels()) {
    for (const std::int32_t height : {1, 100, 20000}) {
      const std::size_t most = 4 * static_cast<std::size_t>(height) + kMebibyte;
      std::size_t largest = 0;
      int refused = 0;
      for (std::int32_t width = 16; width <= 32768; width += 16) {
        const Prepared prepared(width, height, 1, level);
        EXPECT_EQ(prepared.answer, !prepared.sizes.empty());
        if (!prepared.answer) {
          ++refused;
          continue;
        }
        EXPECT_EQ(refused, 0) << "a narrower source was too wide";
        ASSERT_LE(prepared.sizes[0], most);
        largest = std::max(largest, prepared.sizes[0]);
      }
      EXPECT_GT(refused, 0);
      // The ring of a high image lies in it: what it takes there it may not take beside it.
      const std::size_t ring = 3 * 4 * sizeof(RingBlock);
      EXPECT_GT(largest + (height == 1 ? 0 : ring) + 8 * sizeof(SpreadPair), most);
    }
  }
}

}  // namespace
