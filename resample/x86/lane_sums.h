// Sums of weighted channels in eight lanes, and how channels come from them. Included by the files
// that say, by including lanes_sse2.h or lanes_avx2.h first, what Lanes are.
//
// A source of taps has
//   At(pair, channel)                     eight lanes of a pair of taps, halves of 0..255
//   Weighted(weight, tap, channel, lane)  one of them, weighted as the definition does it
#pragma once

#include <cstdint>

#include "resample/fixed_weights.h"
#include "resample/lane_kernels.h"
#include "resample/passes.h"
#include "resample/x86/lane_words.h"

namespace {

// What the channels of one list come from: its part of the FixedWeights.
struct ListWeights {
  const FixedHead* head;
  const std::uint32_t* coarse;
  const std::uint32_t* fine;
  const float* weights;
};

inline ListWeights ListAt(const FixedWeights& lists, std::int32_t index) {
  const auto at = static_cast<std::size_t>(index) * static_cast<std::size_t>(lists.pairs);
  return {lists.heads + index, lists.coarse + at, lists.fine + at, lists.weights + 2 * at};
}

// Constants of the lists of a piece.
struct LaneScale {
  __m128i bits;
  Lanes fraction;  // the bits behind the channel
};

LANES_INLINE LaneScale ScaleOf(std::int32_t bits) {
  return {_mm_cvtsi32_si128(bits), Broadcast((1U << bits) - 1)};
}

template <typename Source>
LANES_INLINE void AddPair(const Source& source, std::int32_t pair, std::uint32_t weights,
                          LaneChannels& sums) {
  const Lanes weight = Broadcast(weights);
  sums.red = Add(sums.red, MultiplyPairs(source.At(pair, 0), weight));
  sums.green = Add(sums.green, MultiplyPairs(source.At(pair, 1), weight));
  sums.blue = Add(sums.blue, MultiplyPairs(source.At(pair, 2), weight));
}

// Sums of all pairs of a list. fixedPairs: their number, up to 4, or 0 for any.
template <int fixedPairs, typename Source>
LANES_INLINE LaneChannels CoarseSums(const Source& source, const std::uint32_t* weights,
                                     std::int32_t anyPairs) {
  const Lanes first = Broadcast(weights[0]);
  LaneChannels sums = {MultiplyPairs(source.At(0, 0), first), MultiplyPairs(source.At(0, 1), first),
                       MultiplyPairs(source.At(0, 2), first)};
  const std::int32_t pairs = fixedPairs > 0 ? fixedPairs : anyPairs;
  for (std::int32_t k = 1; k < pairs; ++k) AddPair(source, k, weights[k], sums);
  return sums;
}

// A channel of eight pixels that coarse sums left open somewhere.
struct OpenChannel {
  std::int32_t place;  // of the pixels in their piece
  int channel;
  unsigned lanes;  // a bit for each lane where it may be one less
  Lanes upper;     // the coarse sums as upper bounds
};

// The open channels of a piece, and those that are not: counting them at once would be the one
// thing that all pixels wait for.
class OpenList {
 public:
  LANES_INLINE void Put(std::int32_t place, int channel, Lanes upper, unsigned lanes) {
    Store(uppers_[channel][place], upper);
    lanes_[channel][place] = static_cast<std::uint8_t>(lanes);
  }

  // Finds out which channels of the first `places` are open.
  LANES_FUNCTION void Collect(std::int32_t places) {
    count_ = 0;
    for (int channel = 0; channel < kChannels; ++channel) {
      for (std::int32_t first = 0; first < places; first += kWord) {
        std::uint32_t open = NotZero(lanes_[channel] + first);
        if (places - first < kWord) open &= (1U << (places - first)) - 1;
        for (; open != 0; open &= open - 1) {
          const std::int32_t place = first + __builtin_ctz(open);
          open_[count_++] = static_cast<std::uint8_t>(channel * kMostPlaces + place);
        }
      }
    }
  }
  std::int32_t Count() const { return count_; }
  LANES_INLINE OpenChannel operator[](std::int32_t i) const {
    const std::int32_t place = open_[i] % kMostPlaces;
    const int channel = open_[i] / kMostPlaces;
    return {place, channel, lanes_[channel][place], Load(uppers_[channel][place])};
  }

 private:
  static constexpr std::int32_t kWord = 32;
  static_assert(kMostPlaces % kWord == 0 && kMostPlaces * kChannels <= 256, "counted by bytes");

  std::int32_t count_ = 0;
  std::uint8_t open_[kMostPlaces * kChannels];
  alignas(32) std::uint8_t lanes_[kChannels][kMostPlaces];
  alignas(32) std::uint32_t uppers_[kChannels][kMostPlaces][kLanes];
};

// The channel that a coarse sum gives. Where it may be one less, it is open.
template <Rounding rounding>
LANES_INLINE Lanes ChannelOf(Lanes sum, const FixedHead& head, const LaneScale& scale,
                             std::int32_t place, int channel, OpenList& open) {
  if (rounding == Rounding::kMean) {
    return Scaled(sum, head.total * 0.5F + 0.25F, head.reciprocal);
  }
  const Lanes upper = Add(sum, Broadcast(static_cast<std::uint32_t>(head.upper)));
  if (rounding == Rounding::kChecked) {
    const Lanes window = Broadcast(static_cast<std::uint32_t>(head.window));
    open.Put(place, channel, upper, Below(And(upper, scale.fraction), window));
  }
  return ShiftRight(upper, scale.bits);
}

template <Rounding rounding>
LANES_INLINE LaneChannels ChannelsOf(const LaneChannels& sums, const FixedHead& head,
                                     const LaneScale& scale, std::int32_t place, OpenList& open) {
  return {ChannelOf<rounding>(sums.red, head, scale, place, 0, open),
          ChannelOf<rounding>(sums.green, head, scale, place, 1, open),
          ChannelOf<rounding>(sums.blue, head, scale, place, 2, open)};
}

// The channel that fine sums give, for coarse ones that are upper bounds, and a bit for each lane
// where it may be one less.
template <typename Source>
LANES_INLINE Lanes FineChannel(const Source& source, const FixedWeights& lists,
                               const ListWeights& list, int channel, Lanes coarse, unsigned& open) {
  Lanes fine = Zero();
  for (std::int32_t k = 0; k < lists.pairs; ++k) {
    fine = Add(fine, MultiplyPairs(source.At(k, channel), Broadcast(list.fine[k])));
  }
  const FixedHead& head = *list.head;
  const __m128i bits = _mm_cvtsi32_si128(head.bits);
  const __m128i fineBits = _mm_cvtsi32_si128(lists.fineBits);
  // What made the coarse sums upper bounds is taken back.
  const Lanes half =
      Add(coarse, Broadcast((1U << (head.bits - 1)) - static_cast<std::uint32_t>(head.upper)));
  const Lanes upper = Add(fine, Broadcast(static_cast<std::uint32_t>(head.fineUpper)));
  const Lanes lower = Subtract(upper, Broadcast(static_cast<std::uint32_t>(head.fineWindow)));
  const Lanes most = ShiftRight(Add(half, ShiftRight(upper, fineBits)), bits);
  const Lanes least = ShiftRight(Add(half, ShiftRight(lower, fineBits)), bits);
  open = Below(least, most);
  return most;
}

inline constexpr std::int8_t kBits[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};

// How many of eight bits are set.
inline std::int32_t BitsIn(unsigned lanes) { return kBits[lanes & 15U] + kBits[lanes >> 4 & 15U]; }

// One channel by the definition.
template <typename Source>
LANES_FUNCTION std::int32_t DefinedChannel(const Source& source, const FixedWeights& lists,
                                           const ListWeights& list, int channel, int lane) {
  double sum = 0.0;
  for (std::int32_t tap = 0; tap < 2 * lists.pairs; ++tap) {
    sum += source.Weighted(list.weights[tap], tap, channel, lane);
  }
  return static_cast<std::int32_t>(RoundedQuotient(sum, list.head->total));
}

// Decides an open channel of eight pixels: the channel, in lanes, not clamped.
template <typename Source>
LANES_INLINE Lanes Decided(const Source& source, const FixedWeights& lists, const ListWeights& list,
                           const OpenChannel& open, OpenChannels& counts) {
  unsigned lanes = 0;
  const Lanes values = FineChannel(source, lists, list, open.channel, open.upper, lanes);
  counts.coarse += BitsIn(open.lanes);
  if (lanes == 0) return values;
  counts.fine += BitsIn(lanes);
  std::int32_t all[kLanes];
  Store(all, values);
  for (int lane = 0; lane < kLanes; ++lane) {
    if ((lanes >> lane & 1U) == 0) continue;
    all[lane] = DefinedChannel(source, lists, list, open.channel, lane);
  }
  return Load(all);
}

}  // namespace
