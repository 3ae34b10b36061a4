// Calls of the resampler's kernels in single precision, between inaccessible pages, beside the
// definition.
#pragma once

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "resample/float_kernels.h"
#include "tests/resample/eight_rows.h"
#include "tests/resample/float_list.h"

namespace resample_tests {

// The channels that sums leave open, and what a kernel counts. It may count all channels of a pixel
// that has one of them; none is left to finer sums.
struct Counted {
  static constexpr std::int64_t kBefore = 1000;
  OpenChannels counts = {kBefore, kBefore};
  std::int64_t channels = 0;
  std::set<int> pixels;

  void Add(int pixel) {
    ++channels;
    pixels.insert(pixel);
  }
  std::string Fault() const {
    const std::int64_t counted = counts.coarse - kBefore;
    const auto most = static_cast<std::int64_t>(pixels.size()) * kChannels;
    if (counts.fine == counts.coarse && channels <= counted && counted <= most) return "";
    return "counted " + std::to_string(counted) + " of " + std::to_string(channels);
  }
};

// Eight rows filtered along.
class AlongCall {
 public:
  AlongCall(const FloatKernels& kernels, const ContributionLists& lists, int width, Picture picture,
            support::Random& random)
      : kernels_(kernels),
        lists_(lists),
        fixed_(lists, width, Axis::kAlongRows),
        source_(width, random, picture),
        columns_(sizeof(FloatColumn) * static_cast<std::size_t>(width), random.AnyGuard()) {
    kernels.spread(source_.rows, PixelLayout::kRedFirst, width, 0, width, Columns());
  }

  // Filters from that column on. Empty, or what is wrong.
  std::string Fault(int first, int count, support::Random& random) {
    const FloatWeights& floats = fixed_.floats;
    const Rounding rounding = RoundingOf(floats, first, count);
    const int blocks = (count + kLanes - 1) / kLanes;
    const int stride = blocks + random.Between(0, 2);
    const host::PixelMemory result(
        sizeof(HalfBlock) * static_cast<std::size_t>(7 * stride + blocks), random.AnyGuard());
    std::memset(result.Data(), kKept, result.Size());
    auto* const made = reinterpret_cast<HalfBlock*>(result.Data());
    open = {};
    kernels_.along(floats, Columns(), {first, count, rounding, kFloatBits}, made,
                   static_cast<std::size_t>(stride), open.counts);
    for (int block = 0; block < 7 * stride + blocks; ++block) {
      const int row = block / stride;
      for (int k = 0; k < kChannels * kLanes; ++k) {
        const int column = block % stride * kLanes + k % kLanes, channel = k / kLanes;
        std::uint16_t expected = 0;
        if (block % stride >= blocks) {
          expected = kKept << 8 | kKept;
        } else if (column < count) {
          expected = static_cast<std::uint16_t>(
              AlongChannel(lists_[first + column], source_.rows[row], channel));
          if (IsOpen(first + column, row, channel)) open.Add(column * kLanes + row);
        }
        if (made[block][channel][k % kLanes] != expected) {
          return "row " + std::to_string(row) + ", column " + std::to_string(first) + " + " +
                 std::to_string(column) + ", channel " + std::to_string(channel) + " of " +
                 std::to_string(count);
        }
      }
    }
    return open.Fault();
  }

  Counted open;  // of the last call

 private:
  static constexpr std::uint8_t kKept = 0x5A;  // in what is not written

  FloatColumn* Columns() const { return reinterpret_cast<FloatColumn*>(columns_.Data()); }

  bool IsOpen(int index, int row, int channel) {
    const FloatList list(fixed_.floats, lists_[index], index, Axis::kAlongRows);
    channels_.clear();
    for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
      const std::uint32_t word = source_.rows[row][list.Head().first + tap];
      const Rgb colour = Decode(PixelLayout::kRedFirst, word);
      channels_.push_back(static_cast<std::uint8_t>(ChannelOf(colour, channel)));
    }
    return list.IsOpen(list.Sum(channels_));
  }

  const FloatKernels& kernels_;
  const ContributionLists& lists_;
  FloatLists fixed_;
  EightRows source_;
  host::PixelMemory columns_;
  std::vector<std::uint8_t> channels_;
};

// Rows filtered down by one list.
class DownCall {
 public:
  DownCall(const FloatKernels& kernels, const ContributionList& list, int height)
      : kernels_(kernels),
        list_(list),
        height_(height),
        fixed_(&list, 1, height, Axis::kDownColumns) {}

  // Filters a piece of rows of `picture`. Empty, or what is wrong.
  std::string Fault(int first, int count, PixelLayout layout, Picture picture,
                    support::Random& random) {
    const int blocks = (first + count + kLanes - 1) / kLanes;
    std::vector<host::PixelMemory> memory;
    std::vector<const HalfBlock*> rows;
    for (int y = 0; y < height_; ++y) {
      memory.emplace_back(sizeof(HalfBlock) * static_cast<std::size_t>(blocks), random.AnyGuard());
      auto* const row = reinterpret_cast<HalfBlock*>(memory.back().Data());
      for (int x = 0; x < first + count; ++x) {
        const Rgb colour = Decode(PixelLayout::kRedFirst, PixelOf(picture, x, y, random));
        for (int channel = 0; channel < kChannels; ++channel) {
          row[x / kLanes][channel][x % kLanes] =
              static_cast<std::uint16_t>(ChannelOf(colour, channel));
        }
      }
      rows.push_back(row);
    }
    const FloatList list(fixed_.floats, list_, 0, Axis::kDownColumns);
    const host::PixelMemory result(Bytes(count), random.AnyGuard());
    open = {};
    kernels_.down(fixed_.floats, rows.data() + list.Head().first,
                  {first, count, RoundingOf(fixed_.floats, 0, 1), kFloatBits}, layout,
                  Words(result), open.counts);
    std::vector<std::uint8_t> channels(static_cast<std::size_t>(list.Taps()));
    for (int i = 0; i < count; ++i) {
      const int x = first + i;
      std::uint32_t made[kChannels];
      for (int channel = 0; channel < kChannels; ++channel) {
        const auto at = [&](std::int32_t y) {
          const HalfBlock& block = rows[static_cast<std::size_t>(y)][x / kLanes];
          return static_cast<std::uint8_t>(block[channel][x % kLanes]);
        };
        double sum = 0.0;
        for (std::int32_t k = 0; k < list_.count; ++k) {
          const Contribution& tap = list_.entries[k];
          sum += static_cast<float>(at(tap.pixel)) * tap.weight;
        }
        made[channel] = RoundedQuotient(sum, list_.total);
        for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
          channels[static_cast<std::size_t>(tap)] = at(list.Head().first + tap);
        }
        if (list.IsOpen(list.Sum(channels))) open.Add(i);
      }
      if (Words(result)[i] != EncodeOpaque(layout, {made[0], made[1], made[2]})) {
        return "column " + std::to_string(first) + " + " + std::to_string(i) + " of " +
               std::to_string(count);
      }
    }
    return open.Fault();
  }

  Counted open;  // of the last call

 private:
  const FloatKernels& kernels_;
  const ContributionList& list_;
  int height_;
  FloatLists fixed_;
};

}  // namespace resample_tests
