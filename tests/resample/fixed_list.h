// One list of FixedWeights beside the tap list it was made of, and the sums of both.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "resample/fixed_weights.h"
#include "resample/passes.h"
#include "tests/support/random.h"

namespace resample_tests {

// What the pixels of a list hold in one channel.
enum class Contents {
  kBlack,
  kWhite,
  kStripes,
  kNoise,
  kBlackOrWhite,
  kCoarseAbove,  // white where coarse weights are too small, which makes their sum lack most
  kCoarseBelow,
  kFineAbove,  // the same for fine weights
  kFineBelow,
};
inline constexpr Contents kAllContents[] = {
    Contents::kBlack,       Contents::kWhite,        Contents::kStripes,
    Contents::kNoise,       Contents::kBlackOrWhite, Contents::kCoarseAbove,
    Contents::kCoarseBelow, Contents::kFineAbove,    Contents::kFineBelow,
};

// Sums of channels.
struct ChannelSums {
  std::int64_t coarse = 0, fine = 0;
  long double weighted = 0.0L;     // by the weights
  double along = 0.0, down = 0.0;  // the same as the two passes add them up
};

class FixedList {
 public:
  FixedList(const FixedWeights& fixed, const ContributionList& list, std::int32_t index)
      : fixed_(fixed),
        list_(list),
        index_(index),
        scale_(std::ldexp(1.0L, fixed.heads[index].bits)),
        fineScale_(std::ldexp(1.0L, fixed.fineBits)) {}

  const FixedHead& Head() const { return fixed_.heads[index_]; }
  std::int32_t Taps() const { return 2 * fixed_.pairs; }
  std::int32_t FirstPixel() const { return 2 * Head().firstPair; }
  std::int32_t Coarse(std::int32_t tap) const { return Half(fixed_.coarse, tap); }
  std::int32_t Fine(std::int32_t tap) const { return Half(fixed_.fine, tap); }
  float Weight(std::int32_t tap) const {
    return fixed_.weights[static_cast<std::int64_t>(index_) * Taps() + tap];
  }

  // In units of the coarse weights, and of the fine ones.
  long double CoarseRest(std::int32_t tap) const { return Scaled(tap) - Coarse(tap); }
  long double FineRest(std::int32_t tap) const { return CoarseRest(tap) * fineScale_ - Fine(tap); }

  std::vector<std::uint8_t> Channels(Contents contents, support::Random& random) const {
    std::vector<std::uint8_t> channels(static_cast<std::size_t>(Taps()));
    for (std::int32_t tap = 0; tap < Taps(); ++tap) {
      channels[static_cast<std::size_t>(tap)] = Channel(contents, tap, random);
    }
    return channels;
  }

  ChannelSums Sums(const std::vector<std::uint8_t>& channels) const {
    ChannelSums sums;
    for (std::int32_t tap = 0; tap < Taps(); ++tap) {
      const std::uint8_t channel = channels[static_cast<std::size_t>(tap)];
      sums.coarse += std::int64_t{Coarse(tap)} * channel;
      sums.fine += std::int64_t{Fine(tap)} * channel;
    }
    for (std::int32_t k = 0; k < list_.count; ++k) {
      const Contribution& tap = list_.entries[k];
      const std::uint8_t channel = channels[static_cast<std::size_t>(tap.pixel - FirstPixel())];
      sums.weighted += static_cast<long double>(tap.weight) * channel;
      sums.along += channel * static_cast<double>(tap.weight);
      sums.down += static_cast<double>(static_cast<float>(channel) * tap.weight);
    }
    return sums;
  }

  // Whether 1/2 plus that quotient lies between the bounds that coarse sums give, and fine ones.
  bool IsBetweenCoarse(long double quotient, const ChannelSums& sums) const {
    const long double value = (quotient + 0.5L) * scale_;
    const auto upper = static_cast<long double>(sums.coarse + Head().upper);
    return value <= upper && upper - Head().window <= value;
  }
  bool IsBetweenFine(long double quotient, const ChannelSums& sums) const {
    const long double value = (quotient + 0.5L) * scale_;
    const long double half = static_cast<long double>(sums.coarse) + 0.5L * scale_;
    const auto upper = static_cast<long double>(sums.fine + Head().fineUpper);
    return value <= half + upper / fineScale_ &&
           half + (upper - Head().fineWindow) / fineScale_ <= value;
  }

  // The channel, not limited to 0..255, or kOpen when the coarse sum leaves it open, or the fine.
  static constexpr std::int32_t kOpen = INT32_MIN;
  std::int32_t CoarseChannel(const ChannelSums& sums) const {
    const auto upper = static_cast<std::int32_t>(sums.coarse + Head().upper);
    return (upper & ((1 << Head().bits) - 1)) < Head().window ? kOpen : upper >> Head().bits;
  }
  std::int32_t FineChannel(const ChannelSums& sums) const {
    const auto half = static_cast<std::int32_t>(sums.coarse + (1 << Head().bits) / 2);
    const auto upper = static_cast<std::int32_t>(sums.fine + Head().fineUpper);
    const std::int32_t most = (half + (upper >> fixed_.fineBits)) >> Head().bits;
    const std::int32_t lower = upper - Head().fineWindow;
    return (half + (lower >> fixed_.fineBits)) >> Head().bits < most ? kOpen : most;
  }
  std::int32_t MeanChannel(const ChannelSums& sums) const {
    const float sum = static_cast<float>(sums.coarse) + (Head().total * 0.5F + 0.25F);
    return TruncateToInt32(static_cast<double>(sum * Head().reciprocal));
  }

 private:
  std::int32_t Half(const std::uint32_t* pairs, std::int32_t tap) const {
    const std::uint32_t pair = pairs[static_cast<std::int64_t>(index_) * fixed_.pairs + tap / 2];
    const std::uint32_t half = pair >> (tap % 2 * 16) & 0xFFFF;
    return static_cast<std::int32_t>(half) - (half >= 0x8000 ? 0x10000 : 0);
  }
  long double Scaled(std::int32_t tap) const {
    return static_cast<long double>(Weight(tap)) / static_cast<long double>(list_.total) * scale_;
  }
  std::uint8_t Channel(Contents contents, std::int32_t tap, support::Random& random) const {
    const auto whiteIf = [](bool white) { return static_cast<std::uint8_t>(white ? 255 : 0); };
    switch (contents) {
      case Contents::kBlack:
      case Contents::kWhite:
        return whiteIf(contents == Contents::kWhite);
      case Contents::kStripes:
        return whiteIf(tap % 2 != 0);
      case Contents::kNoise:
        return static_cast<std::uint8_t>(random.Word() & 0xFF);
      case Contents::kBlackOrWhite:
        return whiteIf(random.Coin());
      case Contents::kCoarseAbove:
      case Contents::kCoarseBelow:
        return whiteIf((CoarseRest(tap) > 0) == (contents == Contents::kCoarseAbove));
      case Contents::kFineAbove:
      case Contents::kFineBelow:
        return whiteIf((FineRest(tap) > 0) == (contents == Contents::kFineAbove));
    }
    return 0;
  }

  const FixedWeights& fixed_;
  const ContributionList& list_;
  std::int32_t index_;
  long double scale_, fineScale_;
};

}  // namespace resample_tests
