// The resampler's inner loops in vector instructions, each for itself: what it reads, what it
// writes, and where.
#include "resample/lane_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/resample/eight_rows.h"
#include "tests/resample/tap_lists.h"

namespace {

using host::PixelMemory;
using resample_tests::AlongChannel;
using resample_tests::BuiltLists;
using resample_tests::Bytes;
using resample_tests::ChannelOf;
using resample_tests::EightRows;
using resample_tests::FixedLists;
using resample_tests::kLanczos3;
using resample_tests::kLayouts;
using resample_tests::Levels;
using resample_tests::Words;
using support::Random;

TEST(LaneKernels, EveryLevelHasItsOwn) {
  EXPECT_EQ(LaneKernelsFor(VectorLevel::kScalar), nullptr);
  for (const VectorLevel level : Levels()) {
    ASSERT_NE(LaneKernelsFor(level), nullptr);
    EXPECT_EQ(LaneKernelsFor(level)->level, level);
    for (const VectorLevel other : Levels()) {
      if (other == level) continue;
      EXPECT_NE(LaneKernelsFor(level)->spread, LaneKernelsFor(other)->spread);
      EXPECT_NE(LaneKernelsFor(level)->along, LaneKernelsFor(other)->along);
      EXPECT_NE(LaneKernelsFor(level)->down, LaneKernelsFor(other)->down);
      EXPECT_NE(LaneKernelsFor(level)->pick, LaneKernelsFor(other)->pick);
    }
  }
#if defined(__i386__) || defined(__x86_64__)
  EXPECT_EQ(LaneKernelsFor(VectorLevel::kSse41), LaneKernelsFor(VectorLevel::kSse2));
#endif
}

TEST(LaneKernels, SpreadTakesPairsApartAndWritesNoOthers) {
  constexpr std::uint32_t kUntouched = 0x5A5A5A5A;
  Random random(35104000);
  for (int width = 1; width <= 70; ++width) {
    const EightRows source(width, random);
    const int pairs = (width + 1) / 2;
    for (const PixelLayout layout : kLayouts) {
      const int last = random.Coin() ? pairs : random.Between(0, pairs);
      const int first = random.Coin() ? 0 : random.Between(0, last) / 2 * 2;
      for (const VectorLevel level : Levels()) {
        std::vector<std::uint32_t> result(static_cast<std::size_t>(pairs) * 24, kUntouched);
        auto* const spread = reinterpret_cast<SpreadPair*>(result.data());
        LaneKernelsFor(level)->spread(source.rows, layout, width, first, last, spread);
        for (int k = 0; k < pairs * 24; ++k) {
          const int pair = k / 24, channel = k / 8 % 3, row = k % 8;
          const auto at = [&](int x) {
            return x < width ? ChannelOf(Decode(layout, source.rows[row][x]), channel) : 0;
          };
          const bool isAsked = pair >= first && pair < last;
          const std::uint32_t expected =
              isAsked ? at(2 * pair) | at(2 * pair + 1) << 16 : kUntouched;
          ASSERT_EQ(spread[pair][channel][row], expected)
              << width << ", pairs " << first << ".." << last << ", word " << k;
        }
      }
    }
  }
}

TEST(LaneKernels, AlongWritesWholeBlocksAndNoOthers) {
  constexpr int kWidth = 37;
  constexpr std::uint8_t kUntouched = 0x5A;
  Random random(35104001);
  const EightRows source(kWidth, random);
  for (int count = 1; count <= 8; ++count) {
    const BuiltLists lists(kLanczos3, kWidth, count, Axis::kAlongRows);
    const FixedLists fixed(lists, kWidth);
    const Piece piece = {0, count, RoundingOf(fixed.fixed, 0, count), fixed.fixed.heads[0].bits};
    for (const VectorLevel level : Levels()) {
      OpenChannels counts;
      SpreadPair spread[(kWidth + 1) / 2];
      LaneKernelsFor(level)->spread(source.rows, PixelLayout::kRedFirst, kWidth, 0,
                                    (kWidth + 1) / 2, spread);
      // Four pairs of rows, of which each has a block more.
      std::vector<std::uint8_t> bytes(8 * sizeof(RingBlock), kUntouched);
      LaneKernelsFor(level)->along(fixed.fixed, spread, piece,
                                   reinterpret_cast<RingBlock*>(bytes.data()), 2, counts);
      for (int k = 0; k < 8 * 48; ++k) {
        // Of each block three channels of eight columns of two rows.
        const int block = k / 48, channel = k / 16 % 3, column = k / 2 % 8;
        const std::uint32_t* const row = source.rows[block / 2 * 2 + k % 2];
        std::uint32_t expected = kUntouched;
        if (block % 2 == 0) {
          expected = column < count ? AlongChannel(lists[column], row, channel) : 0;
        }
        ASSERT_EQ(bytes[static_cast<std::size_t>(k)], expected) << count << " columns, " << k;
      }
    }
  }
}

TEST(LaneKernels, DownWritesThePieceOnly) {
  constexpr int kHeight = 6, kBlocks = 8;
  Random random(35104002);
  const BuiltLists lists(kLanczos3, kHeight, 1, Axis::kDownColumns);
  const FixedLists fixed(lists, kHeight);
  RingBlock blocks[kHeight / 2][kBlocks];
  for (auto& byte : reinterpret_cast<std::uint8_t(&)[sizeof blocks]>(blocks)) {
    byte = static_cast<std::uint8_t>(random.Word() & 0xFF);
  }
  const RingBlock* const pairs[] = {blocks[0], blocks[1], blocks[2]};
  for (const PixelLayout layout : kLayouts) {
    for (int count = 1; count <= 40; ++count) {
      const Piece piece = {8 * random.Between(0, 3), count, RoundingOf(fixed.fixed, 0, 1),
                           fixed.fixed.heads[0].bits};
      for (const VectorLevel level : Levels()) {
        OpenChannels counts;
        const PixelMemory result(Bytes(count), random.AnyGuard());
        LaneKernelsFor(level)->down(fixed.fixed, pairs, piece, layout, Words(result), counts);
        for (int i = 0; i < count; ++i) {
          std::uint32_t channels[3];
          for (int channel = 0; channel < 3; ++channel) {
            double sum = 0.0;
            for (std::int32_t k = 0; k < lists[0].count; ++k) {
              const Contribution& tap = lists[0].entries[k];
              const int x = piece.first + i;
              const RingBlock& block = blocks[tap.pixel / 2][x / 8];
              sum += static_cast<float>(block[channel][x % 8 * 2 + tap.pixel % 2]) * tap.weight;
            }
            channels[channel] = RoundedQuotient(sum, lists[0].total);
          }
          ASSERT_EQ(Words(result)[i], EncodeOpaque(layout, {channels[0], channels[1], channels[2]}))
              << i << " of " << count;
        }
      }
    }
  }
}

// Eights may overlap; each reads eight pixels from its start on.
TEST(LaneKernels, PickRecoloursEightsAndWritesNoOthers) {
  constexpr int kWidth = 20, kResult = 37;
  constexpr std::uint32_t kUntouched = 0x5A5A5A5A;
  Random random(35104003);
  for (const PixelLayout from : kLayouts) {
    for (const PixelLayout to : kLayouts) {
      for (int round = 0; round < 50; ++round) {
        const EightRows source(kWidth, random);
        std::vector<PickedEight> eights(static_cast<std::size_t>(random.Between(0, 4)));
        std::vector<std::uint32_t> expected(kResult, kUntouched);
        for (PickedEight& eight : eights) {
          eight.first = random.Between(0, kResult - kLanes);
          eight.start = random.Coin() ? kWidth - kLanes : random.Between(0, kWidth - kLanes);
          for (int k = 0; k < kLanes; ++k) {
            eight.places[k] = random.Between(0, kLanes - 1);
            const std::uint32_t word = source.rows[0][eight.start + eight.places[k]];
            expected[static_cast<std::size_t>(eight.first + k)] =
                EncodeOpaque(to, Decode(from, word));
          }
        }
        for (const VectorLevel level : Levels()) {
          const PixelMemory result(Bytes(kResult), random.AnyGuard());
          std::fill_n(Words(result), kResult, kUntouched);
          LaneKernelsFor(level)->pick(source.rows[0], eights.data(),
                                      static_cast<std::int32_t>(eights.size()),
                                      RecolouringOf(from, to), Words(result));
          for (int i = 0; i < kResult; ++i) {
            ASSERT_EQ(Words(result)[i], expected[static_cast<std::size_t>(i)]) << i;
          }
        }
      }
    }
  }
}

}  // namespace
