// Whether FloatWeights keep what they promise, list by list.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <span>
#include <string>

#include "tests/resample/float_list.h"

namespace resample_tests {

inline Axis AnyAxis(support::Random& random) {
  return random.Coin() ? Axis::kAlongRows : Axis::kDownColumns;
}

// How often each answer was given.
struct FloatTally {
  long lists = 0, exact = 0, moved = 0, twins = 0;
  long known = 0, open = 0;        // channels of lists that are not exact
  long alwaysOpen = 0;             // lists of which every channel is
  std::int32_t largestWindow = 0;  // but for those
};

// Fixes lists and compares what comes out with sums of the weights themselves, in more digits.
class FloatChecks {
 public:
  FloatChecks(const ContributionLists& lists, std::int32_t sourceSize, Axis axis,
              support::Random& random, FloatTally& tally)
      : lists_(lists),
        sourceSize_(sourceSize),
        axis_(axis),
        random_(random),
        tally_(tally),
        fixed_(lists, sourceSize, axis) {}

  const FloatWeights& Floats() const { return fixed_.floats; }

  // Empty, or what is wrong with the first bad list when its pixels hold these.
  std::string Fault(std::span<const Colours> all) {
    for (std::int32_t i = 0; i < lists_.Count(); ++i) {
      const FloatList list(fixed_.floats, lists_[i], i, axis_);
      std::string fault = TapsFault(list, lists_[i]);
      if (fault.empty()) fault = HeadFault(list, lists_[i], i);
      for (const Colours colours : all) {
        if (!fault.empty()) break;
        list.Fill(colours, random_, channels_);
        fault = ChannelFault(list, lists_[i]);
        if (!fault.empty()) fault += ", colours " + std::to_string(static_cast<int>(colours));
      }
      if (!fault.empty()) return fault + " in list " + std::to_string(i);
      ++tally_.lists;
      const std::int32_t window = list.Head().window;
      if (window == 0) ++tally_.exact;
      if (window >= kUnit) ++tally_.alwaysOpen;
      if (window < kUnit) tally_.largestWindow = std::max(tally_.largestWindow, window);
    }
    return MovingFault();
  }

 private:
  static constexpr std::int32_t kUnit = 1 << kFloatBits;

  static std::uint32_t BitsOf(float value) { return std::bit_cast<std::uint32_t>(value); }

  std::string TapsFault(const FloatList& list, const ContributionList& taps) const {
    const FloatHead& head = list.Head();
    if (head.first < 0 || head.first > sourceSize_ - list.Taps()) return "outside of the source";
    std::int32_t next = 0;  // tap of the list
    for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
      const bool isTap = next < taps.count && taps.entries[next].pixel == head.first + tap;
      const float weight = isTap ? taps.entries[next++].weight : 0.0F;
      if (BitsOf(list.Weight(tap)) != BitsOf(weight)) return "another weight";
      if (!isTap && list.Scaled(tap) != 0.0F) return "no tap, but a weight";
    }
    return next == taps.count ? "" : "taps left over";
  }

  std::string HeadFault(const FloatList& list, const ContributionList& taps, std::int32_t i) {
    const FloatHead& head = list.Head();
    if (BitsOf(head.total) != BitsOf(taps.total)) return "another total";
    if (head.window < 0) return "a window below 0";
    const Rounding rounding = head.window == 0 ? Rounding::kExact : Rounding::kChecked;
    if (RoundingOf(fixed_.floats, i, 1) != rounding) return "another rounding";
    if (taps.count > 0 && taps.entries[0].pixel != head.first) ++tally_.moved;
    return TwinFault(list, i);
  }

  std::string TwinFault(const FloatList& list, std::int32_t i) {
    const FloatHead& head = list.Head();
    if (head.twin == 0) return "";
    if (head.twin < 0 || head.twin > i) return "a twin that is not there";
    ++tally_.twins;
    const FloatList twin(fixed_.floats, lists_[i - head.twin], i - head.twin, axis_);
    for (std::int32_t tap = 0; tap < list.Taps(); ++tap) {
      if (BitsOf(list.Weight(tap)) != BitsOf(twin.Weight(tap))) return "a twin with other weights";
      if (BitsOf(list.Scaled(tap)) != BitsOf(twin.Scaled(tap))) return "a twin with other sums";
    }
    if (head.window != twin.Head().window) return "a twin with another window";
    if (BitsOf(head.start) != BitsOf(twin.Head().start)) return "a twin with another start";
    if (head.total != twin.Head().total) return "a twin with another total";
    return "";
  }

  // Where the lists do, those without taps left aside.
  std::string MovingFault() const {
    std::int32_t last = 0;
    for (std::int32_t i = 0; i < lists_.Count(); ++i) {
      if (lists_[i].count == 0) continue;
      if (lists_[i].entries[0].pixel < last) return "";
      last = lists_[i].entries[0].pixel;
    }
    for (std::int32_t i = 1; i < lists_.Count(); ++i) {
      if (fixed_.floats.heads[i].first < fixed_.floats.heads[i - 1].first) {
        return "moved back by list " + std::to_string(i);
      }
    }
    return "";
  }

  std::string ChannelFault(const FloatList& list, const ContributionList& taps) {
    const std::int32_t sum = list.Sum(channels_);
    const std::int32_t window = list.Head().window;
    const FloatList::Values values = list.ValuesOf(channels_);
    const double defined = axis_ == Axis::kAlongRows ? values.along : values.down;
    if (taps.count > 0 && window < kUnit) {
      for (const long double value : {values.exact, static_cast<long double>(defined)}) {
        const long double scaled = value * kUnit;
        if (!(scaled <= sum)) return "no upper bound";
        if (!(sum - window <= scaled)) return "too high";
      }
    }
    if (list.IsOpen(sum)) {
      ++tally_.open;
      return "";
    }
    if (window > 0) ++tally_.known;
    const std::uint32_t channel = FloatList::ChannelOf(sum);
    return channel == ClampToByte(TruncateToInt32(defined)) ? "" : "not the channel as defined";
  }

  const ContributionLists& lists_;
  std::int32_t sourceSize_;
  Axis axis_;
  support::Random& random_;
  FloatTally& tally_;
  FloatLists fixed_;
  std::vector<std::uint8_t> channels_;
};

}  // namespace resample_tests
