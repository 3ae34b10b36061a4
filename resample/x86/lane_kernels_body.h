// The kernels, for the Lanes that the including file chose.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "resample/lane_kernels.h"
#include "resample/x86/lane_sums.h"
#include "resample/x86/lane_words.h"

namespace {

template <PixelLayout layout>
LANES_INLINE void StorePair(Lanes even, Lanes odd, SpreadPair& pair) {
  const Lanes low = LowHalves(even, odd);
  const Lanes high = HighHalves(even, odd);
  if (layout == PixelLayout::kAlphaFirst) {
    Store(pair[0], HighBytes(low));
    Store(pair[1], LowBytes(high));
    Store(pair[2], HighBytes(high));
  } else {
    const bool redFirst = layout == PixelLayout::kRedFirst;
    Store(pair[redFirst ? 0 : 2], LowBytes(low));
    Store(pair[1], HighBytes(low));
    Store(pair[redFirst ? 2 : 0], LowBytes(high));
  }
}

// Four columns, from the first half of eight rows and from the second.
template <PixelLayout layout>
LANES_INLINE void StoreFour(Lanes a, Lanes b, Lanes c, Lanes d, SpreadPair* pairs) {
  const Lanes ab = WeaveLow32(a, b), cd = WeaveLow32(c, d);
  StorePair<layout>(WeaveLow64(ab, cd), WeaveHigh64(ab, cd), pairs[0]);
  const Lanes upperAb = WeaveHigh32(a, b), upperCd = WeaveHigh32(c, d);
  StorePair<layout>(WeaveLow64(upperAb, upperCd), WeaveHigh64(upperAb, upperCd), pairs[1]);
}

// Has pixels of eight rows fetched, once for each cache line, before they are needed.
LANES_INLINE void FetchAhead(const std::uint32_t* const rows[kLanes], std::int32_t x) {
  constexpr std::int32_t kLineOfPixels = 16;
  constexpr std::int32_t kAhead = 16 * kLineOfPixels;  // what seemed best, of some that were tried
  if (x % kLineOfPixels != 0) return;
  for (std::int32_t row = 0; row < kLanes; ++row) {
    _mm_prefetch(reinterpret_cast<const char*>(rows[row] + x + kAhead), _MM_HINT_T0);
  }
}

template <PixelLayout layout>
LANES_FUNCTION void SpreadAs(const std::uint32_t* const rows[kLanes], std::int32_t width,
                             std::int32_t first, std::int32_t last, SpreadPair* pairs) {
  std::int32_t x = 2 * first;
  for (; x + 4 <= 2 * last && x + 4 <= width; x += 4) {
    FetchAhead(rows, x);
    StoreFour<layout>(LoadHalves(rows[0] + x, rows[4] + x), LoadHalves(rows[1] + x, rows[5] + x),
                      LoadHalves(rows[2] + x, rows[6] + x), LoadHalves(rows[3] + x, rows[7] + x),
                      pairs + x / 2);
  }
  for (; x < 2 * last; x += 2) {
    std::uint32_t even[kLanes], odd[kLanes];
    for (std::int32_t row = 0; row < kLanes; ++row) {
      even[row] = rows[row][x];
      odd[row] = x + 1 < width ? rows[row][x + 1] : 0;
    }
    StorePair<layout>(Load(even), Load(odd), pairs[x / 2]);
  }
}

LANES_FUNCTION void Spread(const std::uint32_t* const rows[kLanes], PixelLayout layout,
                           std::int32_t width, std::int32_t first, std::int32_t last,
                           SpreadPair* pairs) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return SpreadAs<PixelLayout::kRedFirst>(rows, width, first, last, pairs);
    case PixelLayout::kAlphaFirst:
      return SpreadAs<PixelLayout::kAlphaFirst>(rows, width, first, last, pairs);
    default:
      return SpreadAs<PixelLayout::kBlueFirst>(rows, width, first, last, pairs);
  }
}

// Rows as eight lanes, columns as pairs of taps.
struct AlongSource {
  const SpreadPair* pairs;

  LANES_INLINE Lanes At(std::int32_t pair, int channel) const { return Load(pairs[pair][channel]); }
  LANES_INLINE double Weighted(float weight, std::int32_t tap, int channel, int lane) const {
    const std::uint32_t value = pairs[tap / 2][channel][lane] >> (tap % 2 * 16) & 0xFFFFU;
    return value * static_cast<double>(weight);
  }
};

// Columns as eight lanes, pairs of rows as pairs of taps.
struct DownSource {
  const RingBlock* const* pairs;
  std::size_t offset;  // of the block, in bytes

  LANES_INLINE const RingBlock& BlockOf(std::int32_t pair) const {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(pairs[pair]);
    return *reinterpret_cast<const RingBlock*>(bytes + offset);
  }
  LANES_INLINE Lanes At(std::int32_t pair, int channel) const {
    return Widened(BlockOf(pair)[channel]);
  }
  LANES_INLINE double Weighted(float weight, std::int32_t tap, int channel, int lane) const {
    const RingBlock& block = BlockOf(tap / 2);
    return static_cast<float>(block[channel][2 * lane + tap % 2]) * weight;
  }
};

LANES_INLINE DownSource DownFrom(const RingBlock* const* pairs, const Piece& piece,
                                 std::int32_t place) {
  return {pairs, static_cast<std::size_t>(piece.first / kLanes + place) * sizeof(RingBlock)};
}

// Of one column the rows' channels: those of rows 0..3, then of rows 4..7, as Bytes has them.
using ColumnBytes = std::uint8_t[4 * kLanes];

// Eight columns into their block of four pairs of rows.
LANES_FUNCTION void StoreBlock(const ColumnBytes* columns, RingBlock* result, std::size_t stride) {
  RingBlock& first = *result;
  RingBlock& second = *(result + stride);
  RingBlock& third = *(result + 2 * stride);
  RingBlock& fourth = *(result + 3 * stride);
  const Lanes a = Load(columns[0]), b = Load(columns[1]);
  const Lanes c = Load(columns[2]), d = Load(columns[3]);
  const Lanes ab = WeaveLow16(a, b), cd = WeaveLow16(c, d);
  const Lanes blueLeft = WeaveLow32(WeaveHigh16(a, b), WeaveHigh16(c, d));
  const Lanes redLeft = WeaveLow32(ab, cd), greenLeft = WeaveHigh32(ab, cd);
  const Lanes e = Load(columns[4]), f = Load(columns[5]);
  const Lanes g = Load(columns[6]), h = Load(columns[7]);
  const Lanes ef = WeaveLow16(e, f), gh = WeaveLow16(g, h);
  const Lanes blueRight = WeaveLow32(WeaveHigh16(e, f), WeaveHigh16(g, h));
  StoreHalves(first[2], third[2], WeaveLow64(blueLeft, blueRight));
  StoreHalves(second[2], fourth[2], WeaveHigh64(blueLeft, blueRight));
  const Lanes redRight = WeaveLow32(ef, gh), greenRight = WeaveHigh32(ef, gh);
  StoreHalves(first[0], third[0], WeaveLow64(redLeft, redRight));
  StoreHalves(second[0], fourth[0], WeaveHigh64(redLeft, redRight));
  StoreHalves(first[1], third[1], WeaveLow64(greenLeft, greenRight));
  StoreHalves(second[1], fourth[1], WeaveHigh64(greenLeft, greenRight));
}

// Eight rows of a piece.
template <Rounding rounding, int fixedPairs>
LANES_FUNCTION void FilterPiece(const FixedWeights& lists, const SpreadPair* pairs, Piece piece,
                                ColumnBytes* columns, OpenList& open) {
  const LaneScale scale = ScaleOf(piece.bits);
  for (std::int32_t i = 0; i < piece.count; ++i) {
    const ListWeights list = ListAt(lists, piece.first + i);
    const AlongSource source = {pairs + list.head->firstPair};
    const LaneChannels sums = CoarseSums<fixedPairs>(source, list.coarse, lists.pairs);
    const LaneChannels channels = ChannelsOf<rounding>(sums, *list.head, scale, i, open);
    Store(columns[i], Bytes(channels.red, channels.green, channels.blue, channels.blue));
  }
}

template <Rounding rounding>
LANES_FUNCTION void FilterPieceBy(const FixedWeights& lists, const SpreadPair* pairs, Piece piece,
                                  ColumnBytes* columns, OpenList& open) {
  switch (lists.pairs) {
    case 1:
      return FilterPiece<rounding, 1>(lists, pairs, piece, columns, open);
    case 2:
      return FilterPiece<rounding, 2>(lists, pairs, piece, columns, open);
    case 3:
      return FilterPiece<rounding, 3>(lists, pairs, piece, columns, open);
    case 4:
      return FilterPiece<rounding, 4>(lists, pairs, piece, columns, open);
    default:
      return FilterPiece<rounding, 0>(lists, pairs, piece, columns, open);
  }
}

// Decides the open channels of a piece.
LANES_FUNCTION void DecideColumns(const FixedWeights& lists, const SpreadPair* pairs, Piece piece,
                                  OpenList& open, ColumnBytes* columns, OpenChannels& counts) {
  open.Collect(piece.count);
  for (std::int32_t k = 0; k < open.Count(); ++k) {
    const OpenChannel next = open[k];
    const ListWeights list = ListAt(lists, piece.first + next.place);
    const AlongSource source = {pairs + list.head->firstPair};
    const Lanes channel = Decided(source, lists, list, next, counts);
    StoreQuarters(columns[next.place] + 4 * next.channel,
                  Bytes(channel, channel, channel, channel));
  }
}

LANES_FUNCTION void Along(const FixedWeights& lists, const SpreadPair* pairs, Piece piece,
                          RingBlock* result, std::size_t stride, OpenChannels& counts) {
  alignas(32) ColumnBytes columns[kLongestAlong];
  OpenList open;
  switch (piece.rounding) {
    case Rounding::kExact:
      FilterPieceBy<Rounding::kExact>(lists, pairs, piece, columns, open);
      break;
    case Rounding::kChecked:
      FilterPieceBy<Rounding::kChecked>(lists, pairs, piece, columns, open);
      DecideColumns(lists, pairs, piece, open, columns, counts);
      break;
    case Rounding::kMean:
      FilterPieceBy<Rounding::kMean>(lists, pairs, piece, columns, open);
      break;
  }
  std::int32_t i = piece.count;
  for (; i % kLanes != 0; ++i) Store(columns[i], Zero());
  for (i = 0; i < piece.count; i += kLanes) StoreBlock(columns + i, result + i / kLanes, stride);
}

// Replaces what the mask tells.
LANES_INLINE void ReplaceWords(Lanes words, Lanes mask, std::int32_t count, std::uint32_t* result) {
  if (count >= kLanes) return Store(result, Or(AndNot(mask, Load(result)), words));
  std::uint32_t all[kLanes] = {};
  std::memcpy(all, result, static_cast<std::size_t>(count) * sizeof *all);
  Store(all, Or(AndNot(mask, Load(all)), words));
  std::memcpy(result, all, static_cast<std::size_t>(count) * sizeof *all);
}

template <Rounding rounding, int fixedPairs, PixelLayout layout>
LANES_FUNCTION void FilterDownPiece(const FixedWeights& list, const RingBlock* const* pairs,
                                    Piece piece, std::uint32_t* result, OpenList& open) {
  const LaneScale scale = ScaleOf(piece.bits);
  DownSource source = DownFrom(pairs, piece, 0);
  std::int32_t left = piece.count;
  for (std::int32_t place = 0; left > 0; ++place) {
    const LaneChannels sums = CoarseSums<fixedPairs>(source, list.coarse, list.pairs);
    const LaneChannels channels = ChannelsOf<rounding>(sums, *list.heads, scale, place, open);
    StoreWords(Words<layout>(channels), left, result);
    source.offset += sizeof(RingBlock);
    result += kLanes;
    left -= kLanes;
  }
}

template <Rounding rounding, PixelLayout layout>
LANES_FUNCTION void FilterDownBy(const FixedWeights& list, const RingBlock* const* pairs,
                                 Piece piece, std::uint32_t* result, OpenList& open) {
  switch (list.pairs) {
    case 1:
      return FilterDownPiece<rounding, 1, layout>(list, pairs, piece, result, open);
    case 2:
      return FilterDownPiece<rounding, 2, layout>(list, pairs, piece, result, open);
    case 3:
      return FilterDownPiece<rounding, 3, layout>(list, pairs, piece, result, open);
    default:
      return FilterDownPiece<rounding, 0, layout>(list, pairs, piece, result, open);
  }
}

// The bits of a channel in opaque words.
template <PixelLayout layout>
inline constexpr std::uint32_t kChannelBits[kChannels] = {
    EncodeOpaque(layout, {255, 0, 0}) ^ EncodeOpaque(layout, {0, 0, 0}),
    EncodeOpaque(layout, {0, 255, 0}) ^ EncodeOpaque(layout, {0, 0, 0}),
    EncodeOpaque(layout, {0, 0, 255}) ^ EncodeOpaque(layout, {0, 0, 0})};

// Decides the open channels of a piece, and writes them.
template <PixelLayout layout>
LANES_FUNCTION void DecideWords(const FixedWeights& list, const RingBlock* const* pairs,
                                Piece piece, OpenList& open, std::uint32_t* result,
                                OpenChannels& counts) {
  open.Collect((piece.count + kLanes - 1) / kLanes);
  for (std::int32_t k = 0; k < open.Count(); ++k) {
    const OpenChannel next = open[k];
    const DownSource source = DownFrom(pairs, piece, next.place);
    const Lanes values = Decided(source, list, ListAt(list, 0), next, counts);
    const Lanes mask = Broadcast(kChannelBits<layout>[next.channel]);
    const Lanes words = And(Woven(Bytes(values, values, values, values)), mask);
    const std::int32_t x = next.place * kLanes;
    ReplaceWords(words, mask, piece.count - x, result + x);
  }
}

template <PixelLayout layout>
LANES_FUNCTION void DownAs(const FixedWeights& list, const RingBlock* const* pairs, Piece piece,
                           std::uint32_t* result, OpenChannels& counts) {
  OpenList open;
  switch (piece.rounding) {
    case Rounding::kExact:
      FilterDownBy<Rounding::kExact, layout>(list, pairs, piece, result, open);
      return;
    case Rounding::kChecked:
      FilterDownBy<Rounding::kChecked, layout>(list, pairs, piece, result, open);
      return DecideWords<layout>(list, pairs, piece, open, result, counts);
    default:
      FilterDownBy<Rounding::kMean, layout>(list, pairs, piece, result, open);
      return;
  }
}

LANES_FUNCTION void Down(const FixedWeights& list, const RingBlock* const* pairs, Piece piece,
                         PixelLayout layout, std::uint32_t* result, OpenChannels& counts) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return DownAs<PixelLayout::kRedFirst>(list, pairs, piece, result, counts);
    case PixelLayout::kAlphaFirst:
      return DownAs<PixelLayout::kAlphaFirst>(list, pairs, piece, result, counts);
    default:
      return DownAs<PixelLayout::kBlueFirst>(list, pairs, piece, result, counts);
  }
}

LANES_FUNCTION void Pick(const std::uint32_t* source, const PickedEight* eights, std::int32_t count,
                         const Recolouring& change, std::uint32_t* result) {
  const Recolourer recolour(change);
  for (std::int32_t i = 0; i < count; ++i) {
    const PickedEight& eight = eights[i];
    Store(result + eight.first, recolour(Picked(source + eight.start, eight.places)));
  }
}

}  // namespace
