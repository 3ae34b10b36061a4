// The resampler's inner loops in single precision, each for itself: what it reads, what it writes,
// where, and which channels it leaves to the definition.
#include "resample/float_kernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tests/resample/float_calls.h"
#include "tests/resample/tap_lists.h"

namespace {

using host::PixelMemory;
using resample_tests::AlongCall;
using resample_tests::BuiltLists;
using resample_tests::ChannelOf;
using resample_tests::DownCall;
using resample_tests::EightRows;
using resample_tests::HandMadeLists;
using resample_tests::kBicubic;
using resample_tests::Kernel;
using resample_tests::kLanczos3;
using resample_tests::kLayouts;
using resample_tests::kPictures;
using resample_tests::kTriangle;
using resample_tests::Picture;
using resample_tests::Taps;
using support::Random;

constexpr std::uint8_t kUntouched = 0x5A;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(LaneFloatKernelsFor, HasThemForAvx2Only) {
  for (const VectorLevel level : {VectorLevel::kScalar, VectorLevel::kSse2, VectorLevel::kSse41}) {
    EXPECT_EQ(FloatKernelsFor(level), nullptr);
  }
#if defined(__i386__) || defined(__x86_64__)
  ASSERT_NE(FloatKernelsFor(VectorLevel::kAvx2), nullptr);
  EXPECT_EQ(FloatKernelsFor(VectorLevel::kAvx2)->level, VectorLevel::kAvx2);
#endif
}

class LaneFloatKernels : public testing::Test {
 protected:
  void SetUp() override {
    if (BestVectorLevel() < VectorLevel::kAvx2) GTEST_SKIP() << "not on this processor";
  }
  static const FloatKernels& Kernels() { return *FloatKernelsFor(VectorLevel::kAvx2); }
};

TEST_F(LaneFloatKernels, SpreadTakesColumnsApartAndWritesNoOthers) {
  Random random(38104000);
  for (int width = 1; width <= 70; ++width) {
    const EightRows source(width, random);
    for (const PixelLayout layout : kLayouts) {
      const int last = random.Coin() ? width : random.Between(0, width);
      const int first = random.Coin() ? 0 : random.Between(0, last);
      const PixelMemory memory(sizeof(FloatColumn) * static_cast<std::size_t>(width),
                               random.AnyGuard());
      std::memset(memory.Data(), kUntouched, memory.Size());
      auto* const columns = reinterpret_cast<FloatColumn*>(memory.Data());
      Kernels().spread(source.rows, layout, width, first, last, columns);
      std::uint8_t untouched[sizeof(FloatColumn)];
      std::memset(untouched, kUntouched, sizeof untouched);
      for (int x = 0; x < width; ++x) {
        if (x < first || x >= last) {
          ASSERT_EQ(std::memcmp(columns[x], untouched, sizeof untouched), 0)
              << width << ", columns " << first << ".." << last << ", " << x;
          continue;
        }
        for (int k = 0; k < kChannels * kLanes; ++k) {
          const Rgb colour = Decode(layout, source.rows[k % kLanes][x]);
          ASSERT_EQ(columns[x][k / kLanes][k % kLanes], ChannelOf(colour, k / kLanes))
              << width << ", columns " << first << ".." << last << ", " << x;
        }
      }
    }
  }
}

TEST_F(LaneFloatKernels, AlongWritesWholeBlocksAndNoOthers) {
  Random random(38104001);
  const struct {
    const Kernel& kernel;
    int source;  // columns for each 16 of the result
  } scales[] = {{kLanczos3, 33}, {kLanczos3, 9}, {kBicubic, 16}, {kBicubic, 8}, {kTriangle, 32}};
  std::int64_t open = 0;
  for (int count = 1; count <= kLongestAlong; ++count) {
    for (const auto& scale : scales) {
      const int first = 8 * random.Between(0, 3), width = first + count + random.Between(0, 9);
      const int sourceWidth = (width * scale.source + 15) / 16;
      const BuiltLists lists(scale.kernel, sourceWidth, width, Axis::kAlongRows);
      AlongCall call(Kernels(), lists, sourceWidth, kPictures[random.Between(0, 7)], random);
      ASSERT_EQ(call.Fault(first, count, random), "")
          << scale.kernel.name << ", " << sourceWidth << " -> " << width;
      open += call.open.channels;
    }
  }
  EXPECT_GT(open, 100);
}

TEST_F(LaneFloatKernels, AlongLeavesNothingOpenWhereSumsAreExact) {
  Random random(38104002);
  const BuiltLists lists(kBicubic, 64, 128, Axis::kAlongRows);
  for (const Picture picture : kPictures) {
    AlongCall call(Kernels(), lists, 64, picture, random);
    ASSERT_EQ(call.Fault(8, kLongestAlong, random), "");
    EXPECT_EQ(call.open.channels, 0);
  }
}

// Half of 255 is a tie, which rounds up: every channel of every column, and the definition knows.
TEST_F(LaneFloatKernels, AlongAsksTheDefinitionForTies) {
  Random random(38104003);
  const BuiltLists lists(kLanczos3, 160, 80, Axis::kAlongRows);
  AlongCall call(Kernels(), lists, 160, Picture::kColumns, random);
  ASSERT_EQ(call.Fault(8, kLongestAlong, random), "");
  EXPECT_EQ(call.open.channels, kLongestAlong * kLanes * kChannels);
}

const Taps kUnusual[] = {
    {3, {}},
    {3, {}, 2.0F},
    {3, {1.0F, -0.96F}},
    {3, {1.0F, -0.96F, 0.3F}, 0.02F},
    {3, {0.96F, -1.0F}},
    {3, {1.0F, -1.0F}},
    {3, {1.0F, -1.0F}, -0.0F},
    {3, {1.0F, -1.0F, 1e-7F}},
    {3, {0.5F, 0.5F}, kNan},
    {3, {0.5F, 0.5F}, kInfinity},
    {3, {1.0F, 0.5F, 0.3F}, 0.4F},
    {3, {-1.0F, 0.25F}},
    {3, {1e-30F, 3e-30F}},
    {3, {1e30F, 3e30F}},
    {3, {0.5F, 0, 0, 0.3F}},
};

TEST_F(LaneFloatKernels, AlongTakesAnyLists) {
  Random random(38104004);
  std::int64_t open = 0;
  for (int round = 0; round < 200; ++round) {
    std::vector<Taps> all;
    const bool same = round % 4 == 0;  // with as many open channels as can be
    for (int i = 0; i < kLongestAlong; ++i) {
      const bool isFirst = i == 0 || !same;
      all.push_back(isFirst ? kUnusual[random.Between(0, std::size(kUnusual) - 1)] : all.back());
      all.back().firstPixel = random.Between(0, 9);
    }
    const HandMadeLists lists(all);
    AlongCall call(Kernels(), lists, 16, kPictures[round / 4 % 8], random);
    ASSERT_EQ(call.Fault(0, kLongestAlong, random), "") << "round " << round;
    open += call.open.channels;
  }
  EXPECT_GT(open, 50000);
}

TEST_F(LaneFloatKernels, DownWritesThePieceOnly) {
  Random random(38104005);
  const struct {
    const Kernel& kernel;
    int height, result;
  } cases[] = {{kLanczos3, 6, 1},   {kLanczos3, 9, 14}, {kBicubic, 8, 16},
               {kTriangle, 12, 10}, {kTriangle, 5, 5},  {kLanczos3, 14, 5}};
  std::int64_t open = 0;
  for (const auto& c : cases) {
    const BuiltLists lists(c.kernel, c.height, c.result, Axis::kDownColumns);
    for (int count = 1; count <= 80; ++count) {
      // The last ten are those up to the longest.
      const int columns = count <= 70 ? count : kLongestDown - 80 + count;
      const ContributionList& list = lists[random.Between(0, c.result - 1)];
      DownCall call(Kernels(), list, c.height);
      const Picture picture = kPictures[random.Between(0, 7)];
      ASSERT_EQ(call.Fault(8 * random.Between(0, 3), columns, kLayouts[count % 3], picture, random),
                "")
          << c.kernel.name << ", " << c.height << " -> " << c.result;
      open += call.open.channels;
    }
  }
  EXPECT_GT(open, 100);
}

TEST_F(LaneFloatKernels, DownLeavesNothingOpenWhereSumsAreExact) {
  Random random(38104006);
  const BuiltLists lists(kBicubic, 16, 32, Axis::kDownColumns);
  for (const Picture picture : kPictures) {
    DownCall call(Kernels(), lists[12], 16);
    ASSERT_EQ(call.Fault(0, 100, PixelLayout::kRedFirst, picture, random), "");
    EXPECT_EQ(call.open.channels, 0);
  }
}

TEST_F(LaneFloatKernels, DownAsksTheDefinitionForTies) {
  Random random(38104007);
  const BuiltLists lists(kLanczos3, 32, 16, Axis::kDownColumns);
  for (const PixelLayout layout : kLayouts) {
    DownCall call(Kernels(), lists[8], 32);
    ASSERT_EQ(call.Fault(16, kLongestDown, layout, Picture::kRows, random), "");
    EXPECT_EQ(call.open.channels, kLongestDown * kChannels);
  }
}

TEST_F(LaneFloatKernels, DownTakesAnyList) {
  Random random(38104008);
  std::int64_t open = 0;
  for (const Taps& taps : kUnusual) {
    const HandMadeLists lists({taps});
    for (const Picture picture : kPictures) {
      DownCall call(Kernels(), lists[0], 8);
      ASSERT_EQ(call.Fault(8, 200, PixelLayout::kAlphaFirst, picture, random), "")
          << &taps - kUnusual;
      open += call.open.channels;
    }
  }
  EXPECT_GT(open, 10000);
}

}  // namespace
