// When both passes can be done in vector instructions, in which way, and in how much memory.
#include <gtest/gtest.h>

#include "tests/resample/lane_stage.h"
#include "tests/resample/tap_lists.h"
#include "tests/support/allocation_faults.h"

namespace {

using resample_tests::BuiltLists;
using resample_tests::kBox;
using resample_tests::Kernel;
using resample_tests::kLanczos3;
using resample_tests::kTriangle;
using resample_tests::Levels;
using support::AllocationWatch;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

// Lists of columns.
struct Columns {
  const char* name;
  const Kernel& kernel;
  std::int32_t from, to;
};

// Means, which integers take at every level; those that single precision takes where it is; and
// those that copy pixels, in integers.
constexpr Columns kMeans = {"means", kBox, 4, 1};
constexpr Columns kForFloats = {"for single precision", kLanczos3, 8, 4};
constexpr Columns kCopies = {"copies", kTriangle, 8, 8};

bool HasFloats(VectorLevel level) { return level >= VectorLevel::kAvx2; }

// What Prepare answers for a source of that size and layout whose rows become those columns.
struct Prepared {
  bool answer, holds;
  std::vector<std::size_t> sizes;  // of the blocks requested
  std::size_t most;                // bytes in blocks at one time
  int blocksLeft;                  // once all is over

  Prepared(const Columns& which, std::int32_t width, std::int32_t height, std::int32_t pixelFormat,
           VectorLevel level, int failAt = 0, bool andLater = false) {
    PictureReader reader;
    reader.width = width;
    reader.height = height;
    reader.pixelFormat = pixelFormat;
    const BuiltLists columns(which.kernel, which.from, which.to, Axis::kAlongRows);
    std::vector<std::uint32_t> image(IndexOf(height, which.to));
    const AllocationWatch watch(failAt, andLater);
    {
      LanePasses lanes;
      answer = lanes.Prepare(reader, columns, image.data(), 3, level);
      holds = static_cast<bool>(lanes);
      sizes = watch.Sizes();
      most = watch.MostBytes();
    }
    blocksLeft = watch.LiveBlocks();
  }
};

TEST(LanePasses, RequestOneBlockAndOneMoreForCopies) {
  for (const VectorLevel level : Levels()) {
    for (const Columns& columns : {kMeans, kForFloats, kCopies}) {
      const Prepared prepared(columns, 9, 5, 1, level);
      EXPECT_TRUE(prepared.answer);
      EXPECT_TRUE(prepared.holds);
      EXPECT_EQ(prepared.sizes.size(), &columns.kernel == &kTriangle ? 2U : 1U) << columns.name;
      EXPECT_EQ(prepared.blocksLeft, 0);
    }
  }
}

TEST(LanePasses, AreNothingWithoutVectorInstructions) {
  for (const Columns& columns : {kMeans, kForFloats, kCopies}) {
    const Prepared prepared(columns, 9, 5, 1, VectorLevel::kScalar);
    EXPECT_FALSE(prepared.answer);
    EXPECT_FALSE(prepared.holds);
    EXPECT_TRUE(prepared.sizes.empty());
  }
}

TEST(LanePasses, AreNothingForASourceWithoutALayout) {
  for (const VectorLevel level : Levels()) {
    for (const Columns& columns : {kMeans, kForFloats, kCopies}) {
      for (const std::int32_t format : {0, 7, 9}) {
        const Prepared prepared(columns, 9, 5, format, level);
        EXPECT_FALSE(prepared.answer);
        EXPECT_FALSE(prepared.holds);
        EXPECT_TRUE(prepared.sizes.empty());
      }
    }
  }
}

TEST(LanePasses, AreNothingWithoutTheirBlock) {
  for (const VectorLevel level : Levels()) {
    for (const Columns& columns : {kMeans, kForFloats, kCopies}) {
      const Prepared prepared(columns, 9, 5, 1, level, 1);
      EXPECT_FALSE(prepared.answer);
      EXPECT_FALSE(prepared.holds);
      EXPECT_EQ(prepared.sizes.size(), 1U);
      EXPECT_EQ(prepared.blocksLeft, 0);
    }
  }
}

TEST(LanePasses, DoWithoutTheBlockForCopies) {
  for (const VectorLevel level : Levels()) {
    const Prepared prepared(kCopies, 9, 5, 1, level, 2);
    EXPECT_TRUE(prepared.answer);
    EXPECT_TRUE(prepared.holds);
    EXPECT_EQ(prepared.sizes.size(), 2U);
    EXPECT_EQ(prepared.blocksLeft, 0);
  }
}

// Both ways take blocks of their own sizes.
TEST(LanePasses, TakeSinglePrecisionWhereItIs) {
  if (!HasFloats(BestVectorLevel())) GTEST_SKIP() << "not on this processor";
  const Prepared integers(kForFloats, 99, 5, 1, VectorLevel::kSse2);
  const Prepared floats(kForFloats, 99, 5, 1, VectorLevel::kAvx2);
  EXPECT_NE(floats.sizes, integers.sizes);
  for (const Columns& columns : {kMeans, kCopies}) {
    EXPECT_EQ(Prepared(columns, 99, 5, 1, VectorLevel::kAvx2).sizes,
              Prepared(columns, 99, 5, 1, VectorLevel::kSse2).sizes)
        << columns.name;
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
        const Prepared prepared(kMeans, width, height, 1, level);
        EXPECT_EQ(prepared.answer, !prepared.sizes.empty());
        if (!prepared.answer) {
          ++refused;
          continue;
        }
        EXPECT_EQ(refused, 0) << "a narrower source was too wide";
        ASSERT_LE(prepared.most, most);
        largest = std::max(largest, prepared.most);
      }
      EXPECT_GT(refused, 0);
      // The ring of a high image lies in it: what it takes there it may not take beside it.
      const std::size_t ring = 3 * 4 * sizeof(RingBlock);
      EXPECT_GT(largest + (height == 1 ? 0 : ring) + 8 * sizeof(SpreadPair), most);
    }
  }
}

// The same in single precision, where each column takes as much as two for integers, which stand in
// for it from some width on.
TEST(LanePasses, TakeAtMostAMebibyteMoreThanTheImageInSinglePrecision) {
  if (!HasFloats(BestVectorLevel())) GTEST_SKIP() << "not on this processor";
  for (const std::int32_t height : {1, 100, 4000}) {
    const std::size_t most = 4 * 4 * static_cast<std::size_t>(height) + kMebibyte;
    std::size_t largest = 0, largestOfIntegers = 0;
    bool areIntegers = false;
    int refused = 0;
    for (std::int32_t width = 16; width <= 32768; width += 16) {
      const Prepared prepared(kForFloats, width, height, 1, VectorLevel::kAvx2);
      EXPECT_EQ(prepared.answer, !prepared.sizes.empty());
      if (!prepared.answer) {
        ++refused;
        continue;
      }
      EXPECT_EQ(refused, 0) << "a narrower source was too wide";
      EXPECT_EQ(prepared.sizes.size(), 1U);
      ASSERT_LE(prepared.most, most);
      const bool isFloat =
          prepared.sizes != Prepared(kForFloats, width, height, 1, VectorLevel::kSse2).sizes;
      EXPECT_FALSE(isFloat && areIntegers) << "a narrower source was too wide";
      areIntegers = !isFloat;
      std::size_t& known = isFloat ? largest : largestOfIntegers;
      known = std::max(known, prepared.most);
    }
    EXPECT_GT(refused, 0);
    const std::size_t ring = 2 * 8 * sizeof(HalfBlock);
    EXPECT_GT(largest + (height == 1 ? 0 : ring) + 16 * sizeof(FloatColumn), most);
    EXPECT_GT(largestOfIntegers, kMebibyte / 2);
  }
}

// Lists of many columns take more than a row or two of the image.
void ExpectNoMoreWhenEnlarging(const Kernel& kernel, std::int32_t step) {
  for (const VectorLevel level : Levels()) {
    for (const std::int32_t height : {1, 100}) {
      int answers = 0, refused = 0;
      for (std::int32_t to = 64; to < 32768; to += step) {
        for (const std::int32_t factor : {2, 8}) {
          const Columns columns = {"", kernel, to / factor, to};
          const Prepared prepared(columns, columns.from, height, 1, level);
          const std::size_t most = 4 * IndexOf(height, to) + kMebibyte;
          ASSERT_LE(prepared.most, most) << columns.from << " -> " << to << ", height " << height;
          ++(prepared.answer ? answers : refused);
        }
      }
      EXPECT_GE(answers, 5);
      EXPECT_EQ(refused > 0, height == 1) << "height " << height;
    }
  }
}

TEST(LanePasses, TakeAtMostAMebibyteMoreThanTheImageWhenEnlarging) {
  ExpectNoMoreWhenEnlarging(kTriangle, 2400);
  ExpectNoMoreWhenEnlarging(kLanczos3, 2400);
}

TEST(LanePasses, TakeAtMostAMebibyteMoreThanTheImageWithCopies) {
  ExpectNoMoreWhenEnlarging(kBox, 800);
}

}  // namespace
