// One list of FloatWeights beside the tap list it was made of, and the sums of both.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "resample/float_weights.h"
#include "resample/passes.h"
#include "tests/support/random.h"

namespace resample_tests {

// FloatWeights of lists, in memory that held something else before.
class FloatLists {
 public:
  FloatLists(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize,
             Axis axis) {
    floats.taps = WidestListInPixels(lists, count);
    const auto words = static_cast<std::size_t>(count) * static_cast<std::size_t>(floats.taps);
    heads_.assign(static_cast<std::size_t>(count), {0x5A5A5A, 0x5A5A5A, -0x5A5A5A, 7.0F, 7.0F});
    scaled_.assign(words, 7.0F);
    weights_.assign(words, -7.0F);
    floats.heads = heads_.data();
    floats.scaled = scaled_.data();
    floats.weights = weights_.data();
    FixFloats(lists, count, sourceSize, axis, floats);
  }
  FloatLists(const ContributionLists& lists, std::int32_t sourceSize, Axis axis)
      : FloatLists(&lists[0], lists.Count(), sourceSize, axis) {}

  FloatWeights floats = {};

 private:
  std::vector<FloatHead> heads_;
  std::vector<float> scaled_, weights_;
};

// What the pixels of a list hold in one channel.
enum class Colours {
  kBlack,
  kWhite,
  kStripes,
  kNoise,
  kBlackOrWhite,
  kMost,  // white where weights are above 0, which makes the sum large
  kLeast,
  kLacking,  // white where scaled weights are too small, which makes the sum lack most
  kExceeding,
};
inline constexpr Colours kAllColours[] = {
    Colours::kBlack, Colours::kWhite, Colours::kStripes, Colours::kNoise,    Colours::kBlackOrWhite,
    Colours::kMost,  Colours::kLeast, Colours::kLacking, Colours::kExceeding};

class FloatList {
 public:
  FloatList(const FloatWeights& floats, const ContributionList& list, std::int32_t index, Axis axis)
      : unit_(axis == Axis::kAlongRows ? 1.0F : std::ldexp(1.0F, -kHalfBits)),
        floats_(floats),
        list_(list),
        head_(floats.heads[index]),
        scaled_(floats.scaled + std::int64_t{index} * floats.taps),
        weights_(floats.weights + std::int64_t{index} * floats.taps) {}

  const FloatHead& Head() const { return head_; }
  std::int32_t Taps() const { return floats_.taps; }
  float Scaled(std::int32_t tap) const { return scaled_[tap]; }
  float Weight(std::int32_t tap) const { return weights_[tap]; }

  // One for each tap.
  void Fill(Colours colours, support::Random& random, std::vector<std::uint8_t>& channels) const {
    channels.resize(static_cast<std::size_t>(Taps()));
    for (std::int32_t tap = 0; tap < Taps(); ++tap) {
      channels[static_cast<std::size_t>(tap)] = Channel(colours, tap, random);
    }
  }

  // The sum, rounded to an integer, as fused operations make it. What fits no integer is INT32_MIN,
  // as the processor has it.
  std::int32_t Sum(const std::vector<std::uint8_t>& channels) const {
    float sum = head_.start;
    for (std::int32_t tap = 0; tap < Taps(); ++tap) {
      const auto channel = static_cast<float>(channels[static_cast<std::size_t>(tap)]);
      sum = std::fma(scaled_[tap], channel * unit_, sum);
    }
    constexpr float kTooLarge = 2147483648.0F;
    const bool fits = sum >= -kTooLarge && sum < kTooLarge;
    return fits ? static_cast<std::int32_t>(std::lrint(sum)) : INT32_MIN;
  }

  // 1/2 plus the sum of n·c: in more digits, and as the passes have it before they truncate.
  struct Values {
    long double exact = 0.0L;
    double along = 0.0, down = 0.0;
  };
  Values ValuesOf(const std::vector<std::uint8_t>& channels) const {
    Values values;
    for (std::int32_t k = 0; k < list_.count; ++k) {
      const Contribution& tap = list_.entries[k];
      const std::uint8_t channel = channels[static_cast<std::size_t>(tap.pixel - head_.first)];
      values.exact += static_cast<long double>(tap.weight) * channel;
      values.along += channel * static_cast<double>(tap.weight);
      values.down += static_cast<double>(static_cast<float>(channel) * tap.weight);
    }
    values.exact = values.exact / static_cast<long double>(list_.total) + 0.5L;
    values.along = values.along / static_cast<double>(list_.total) + 0.5;
    values.down = values.down / static_cast<double>(list_.total) + 0.5;
    return values;
  }

  bool IsOpen(std::int32_t sum) const { return (sum & ((1 << kFloatBits) - 1)) < head_.window; }

  // Of a sum that is not open.
  static std::uint32_t ChannelOf(std::int32_t sum) { return ClampToByte(sum >> kFloatBits); }

 private:
  std::uint8_t Channel(Colours colours, std::int32_t tap, support::Random& random) const {
    const auto whiteIf = [](bool white) { return static_cast<std::uint8_t>(white ? 255 : 0); };
    switch (colours) {
      case Colours::kBlack:
      case Colours::kWhite:
        return whiteIf(colours == Colours::kWhite);
      case Colours::kStripes:
        return whiteIf(tap % 2 != 0);
      case Colours::kNoise:
        return static_cast<std::uint8_t>(random.Word() & 0xFF);
      case Colours::kBlackOrWhite:
        return whiteIf(random.Coin());
      case Colours::kMost:
      case Colours::kLeast:
        return whiteIf((Scaled(tap) > 0) == (colours == Colours::kMost));
      case Colours::kLacking:
      case Colours::kExceeding:
        return whiteIf((Rest(tap) > 0) == (colours == Colours::kLacking));
    }
    return 0;
  }
  // What rounding took from the scaled weight.
  long double Rest(std::int32_t tap) const {
    const long double n = static_cast<long double>(Weight(tap)) / list_.total;
    return n * (1 << kFloatBits) - static_cast<long double>(Scaled(tap)) * unit_;
  }

  float unit_;  // that kernels take for 1
  const FloatWeights& floats_;
  const ContributionList& list_;
  const FloatHead& head_;
  const float* scaled_;
  const float* weights_;
};

}  // namespace resample_tests
