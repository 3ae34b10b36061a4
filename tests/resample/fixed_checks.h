// Whether FixedWeights keep what they promise, list by list.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <span>
#include <string>

#include "tests/resample/fixed_list.h"
#include "tests/resample/tap_lists.h"

namespace resample_tests {

// How often each answer was given.
struct FixedTally {
  long lists = 0;
  long exact = 0, means = 0, coarse = 0, fine = 0, open = 0;  // channels
};

// Fixes lists and compares what comes out with sums of the weights themselves, in more digits.
class FixedChecks {
 public:
  // With `usual` lists the bounds hold besides; others are only to give no wrong channel.
  FixedChecks(const ContributionLists& lists, std::int32_t sourceSize, bool usual,
              support::Random& random, FixedTally& tally)
      : lists_(lists),
        sourcePairs_(sourceSize / 2 + sourceSize % 2),
        usual_(usual),
        random_(random),
        tally_(tally),
        fixed_(lists, sourceSize) {}

  // Empty, or what is wrong with the first bad list when its pixels hold these.
  std::string Fault(std::span<const Contents> contents) {
    for (std::int32_t i = 0; i < lists_.Count(); ++i) {
      const FixedList list(fixed_.fixed, lists_[i], i);
      std::string fault = TapsFault(list, lists_[i]) + SizeFault(list, lists_[i], i);
      for (const Contents content : contents) {
        if (fault.empty()) fault = ChannelFault(list, lists_[i], i, content);
      }
      if (!fault.empty()) return fault + " in list " + std::to_string(i);
      ++tally_.lists;
    }
    return "";
  }

 private:
  std::string TapsFault(const FixedList& list, const ContributionList& taps) const {
    const FixedHead& head = list.Head();
    if (head.firstPair < 0 || head.firstPair + fixed_.fixed.pairs > sourcePairs_) {
      return "pairs outside of the source";
    }
    std::int32_t next = 0;  // tap of the list
    for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
      const bool isTap = next < taps.count && taps.entries[next].pixel == list.FirstPixel() + tap;
      const float weight = isTap ? taps.entries[next++].weight : 0.0F;
      if (list.Weight(tap) != weight) return "another weight";
      if (!isTap && (list.Coarse(tap) != 0 || list.Fine(tap) != 0)) return "no tap, but a weight";
    }
    return next == taps.count ? "" : "taps left over";
  }

  std::string SizeFault(const FixedList& list, const ContributionList& taps, std::int32_t i) const {
    const FixedHead& head = list.Head();
    if (std::bit_cast<std::uint32_t>(head.total) != std::bit_cast<std::uint32_t>(taps.total)) {
      return "another total";
    }
    if (head.bits != fixed_.fixed.heads[i / kListGroup * kListGroup].bits) return "another scale";
    if (head.bits < 0 || head.bits > 20) return "scale";
    if (fixed_.fixed.fineBits < 0 || fixed_.fixed.fineBits > 15) return "fine scale";
    std::int64_t coarse = 0, fine = 0;
    for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
      coarse += std::abs(list.Coarse(tap)) * 255;
      fine += std::abs(list.Fine(tap)) * 255;
    }
    constexpr std::int64_t kMost = INT32_MAX;
    if (coarse + std::abs(head.upper) + head.window > kMost) return "coarse sums of 32 bits";
    if (fine + std::abs(head.fineUpper) + head.fineWindow > kMost) return "fine sums of 32 bits";
    return "";
  }

  std::string ChannelFault(const FixedList& list, const ContributionList& taps, std::int32_t i,
                           Contents contents) {
    const ChannelSums sums = list.Sums(list.Channels(contents, random_));
    const auto along = static_cast<std::int32_t>(RoundedQuotient(sums.along, taps.total));
    const auto down = static_cast<std::int32_t>(RoundedQuotient(sums.down, taps.total));
    const auto isBoth = [&](std::int32_t channel) {
      const auto limited = static_cast<std::int32_t>(ClampToByte(channel));
      return limited == along && limited == down;
    };
    const Rounding rounding = RoundingOf(fixed_.fixed, i, 1);
    if (rounding == Rounding::kMean) {
      ++tally_.means;
      if (!std::all_of(taps.entries, taps.entries + taps.count,
                       [](const Contribution& tap) { return tap.weight == 1.0F; })) {
        return "a mean of weights that are not 1";
      }
      return isBoth(list.MeanChannel(sums)) ? "" : "mean";
    }
    if (usual_ && taps.count > 0) {
      const std::string fault = BoundsFault(list, sums, taps.total, rounding);
      if (!fault.empty()) return fault;
    }
    if (rounding == Rounding::kExact) ++tally_.exact;
    std::int32_t channel = list.CoarseChannel(sums);
    if (channel != FixedList::kOpen) {
      ++tally_.coarse;
      return isBoth(channel) ? "" : "coarse channel " + std::to_string(channel);
    }
    channel = list.FineChannel(sums);
    ++(channel != FixedList::kOpen ? tally_.fine : tally_.open);
    if (rounding == Rounding::kExact) return "exact, but open";
    return channel == FixedList::kOpen || isBoth(channel)
               ? ""
               : "fine channel " + std::to_string(channel);
  }

  static std::string BoundsFault(const FixedList& list, const ChannelSums& sums, float total,
                                 Rounding rounding) {
    for (const long double sum : {sums.weighted, static_cast<long double>(sums.along),
                                  static_cast<long double>(sums.down)}) {
      const long double quotient = sum / static_cast<long double>(total);
      if (!list.IsBetweenCoarse(quotient, sums)) return "coarse bounds";
      if (rounding == Rounding::kChecked && list.Head().window != 0 &&
          !list.IsBetweenFine(quotient, sums)) {
        return "fine bounds";
      }
    }
    return "";
  }

  const ContributionLists& lists_;
  std::int32_t sourcePairs_;
  bool usual_;
  support::Random& random_;
  FixedTally& tally_;
  FixedLists fixed_;
};

}  // namespace resample_tests
