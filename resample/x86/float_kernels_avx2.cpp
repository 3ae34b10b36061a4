// The resampler's loops in single precision, with AVX2 and FMA.
#include "resample/float_kernels.h"

#include <cstring>

#include "resample/passes.h"
#include "resample/x86/lanes_avx2.h"
// What Lanes are comes first.
#include "resample/x86/float_spread_avx2.h"
#include "resample/x86/lane_words.h"

namespace {

// The sums of three channels.
struct Sums {
  Floats red, green, blue;
};

// Pixels that sums left open, in eights.
class OpenPixels {
 public:
  // A bit for each open one of eight.
  FLOAT_INLINE void Put(std::int32_t place, unsigned lanes) {
    lanes_[place] = static_cast<std::uint8_t>(lanes);
  }

  // Finds out which of the first `places` have any.
  FLOAT_FUNCTION void Collect(std::int32_t places) {
    for (std::int32_t first = 0; first < places; first += kWord) {
      std::uint32_t open = NotZero(lanes_ + first);
      if (places - first < kWord) open &= (1U << (places - first)) - 1;
      for (; open != 0; open &= open - 1) {
        open_[count_++] = static_cast<std::uint8_t>(first + __builtin_ctz(open));
      }
    }
  }
  std::int32_t Count() const { return count_; }
  std::int32_t Place(std::int32_t i) const { return open_[i]; }
  unsigned Lanes(std::int32_t place) const { return lanes_[place]; }

 private:
  static constexpr std::int32_t kWord = 32;
  std::int32_t count_ = 0;
  std::uint8_t open_[kMostPlaces];
  alignas(32) std::uint8_t lanes_[kMostPlaces];
};

// The three channels that sums give, not limited to 0..255. Where one may be one less, the pixel is
// open.
template <Rounding rounding>
FLOAT_INLINE LaneChannels ChannelsOf(const Sums& sums, const FloatHead& head, std::int32_t place,
                                     OpenPixels& open) {
  const Lanes red = _mm256_cvtps_epi32(sums.red);
  const Lanes green = _mm256_cvtps_epi32(sums.green);
  const Lanes blue = _mm256_cvtps_epi32(sums.blue);
  if (rounding == Rounding::kChecked) {
    const Lanes fraction = Broadcast((1U << kFloatBits) - 1);
    const Lanes least = _mm256_min_epi32(_mm256_min_epi32(And(red, fraction), And(green, fraction)),
                                         And(blue, fraction));
    open.Put(place, Below(least, Broadcast(static_cast<std::uint32_t>(head.window))));
  }
  return {_mm256_srai_epi32(red, kFloatBits), _mm256_srai_epi32(green, kFloatBits),
          _mm256_srai_epi32(blue, kFloatBits)};
}

// A tap of a column, or of a block.
template <typename Number>
FLOAT_INLINE void AddTap(const Number (&tap)[kChannels][kLanes], Floats weight, Sums& sums) {
  sums.red = _mm256_fmadd_ps(LoadFloats(tap[0]), weight, sums.red);
  sums.green = _mm256_fmadd_ps(LoadFloats(tap[1]), weight, sums.green);
  sums.blue = _mm256_fmadd_ps(LoadFloats(tap[2]), weight, sums.blue);
}

// Of one column the rows' channels: those of rows 0..3, then of rows 4..7, as Bytes has them.
using ColumnBytes = std::uint8_t[4 * kLanes];

// A channel of eight columns of four rows, a lane for each column, into each row.
FLOAT_INLINE void StoreFourRows(Lanes channel, std::uint16_t* row, std::size_t stride) {
  constexpr int kNone = -1;
  const Lanes firstTwo = _mm256_broadcastsi128_si256(_mm_setr_epi8(
      0, kNone, 4, kNone, 8, kNone, 12, kNone, 1, kNone, 5, kNone, 9, kNone, 13, kNone));
  const Lanes lastTwo = _mm256_broadcastsi128_si256(_mm_setr_epi8(
      2, kNone, 6, kNone, 10, kNone, 14, kNone, 3, kNone, 7, kNone, 11, kNone, 15, kNone));
  constexpr int kWhole = 0b11'01'10'00;  // a row's two quarters together
  StoreHalves(row, row + stride,
              _mm256_permute4x64_epi64(_mm256_shuffle_epi8(channel, firstTwo), kWhole));
  StoreHalves(row + 2 * stride, row + 3 * stride,
              _mm256_permute4x64_epi64(_mm256_shuffle_epi8(channel, lastTwo), kWhole));
}

// Eight columns of four rows into their blocks; `stride` is in numbers.
FLOAT_INLINE void StoreFourRowsOfBlocks(const std::uint8_t* columns, HalfBlock& result,
                                        std::size_t stride) {
  constexpr std::size_t kNext = sizeof(ColumnBytes), kFifth = 4 * kNext;
  const Lanes a = LoadHalves(columns, columns + kFifth);
  const Lanes b = LoadHalves(columns + kNext, columns + kNext + kFifth);
  const Lanes c = LoadHalves(columns + 2 * kNext, columns + 2 * kNext + kFifth);
  const Lanes d = LoadHalves(columns + 3 * kNext, columns + 3 * kNext + kFifth);
  const Lanes ab = WeaveLow32(a, b), cd = WeaveLow32(c, d);
  StoreFourRows(WeaveLow64(ab, cd), result[0], stride);
  StoreFourRows(WeaveHigh64(ab, cd), result[1], stride);
  StoreFourRows(WeaveLow64(WeaveHigh32(a, b), WeaveHigh32(c, d)), result[2], stride);
}

// Eight columns into their blocks of eight rows.
FLOAT_FUNCTION void StoreBlocks(const ColumnBytes* columns, HalfBlock* result, std::size_t stride) {
  const std::size_t numbers = stride * sizeof(HalfBlock) / sizeof(std::uint16_t);
  StoreFourRowsOfBlocks(columns[0], result[0], numbers);
  StoreFourRowsOfBlocks(columns[0] + sizeof(ColumnBytes) / 2, result[4 * stride], numbers);
}

// Eight rows of a piece. fixedTaps: of every list, or 0 for any.
template <Rounding rounding, int fixedTaps>
FLOAT_FUNCTION void FilterPiece(const FloatWeights& lists, const FloatColumn* columns, Piece piece,
                                ColumnBytes* result, OpenPixels& open) {
  const std::int32_t taps = fixedTaps > 0 ? fixedTaps : lists.taps;
  const FloatHead* head = lists.heads + piece.first;
  const float* weights = lists.scaled + piece.first * taps;
  for (std::int32_t i = 0; i < piece.count; ++i, ++head) {
    const FloatColumn* column = columns + head->first;
    const Floats start = BroadcastFloat(head->start);
    Sums sums = {start, start, start};
#pragma GCC unroll 6
    for (std::int32_t k = 0; k < taps; ++k) {
      AddTap(*column++, BroadcastFloat(*weights++), sums);
    }
    const LaneChannels channels = ChannelsOf<rounding>(sums, *head, i, open);
    Store(result[i], Bytes(channels.red, channels.green, channels.blue, channels.blue));
  }
}

template <Rounding rounding>
FLOAT_FUNCTION void FilterPieceBy(const FloatWeights& lists, const FloatColumn* columns,
                                  Piece piece, ColumnBytes* result, OpenPixels& open) {
  switch (lists.taps) {
    case 2:
      return FilterPiece<rounding, 2>(lists, columns, piece, result, open);
    case 4:
      return FilterPiece<rounding, 4>(lists, columns, piece, result, open);
    case 6:
      return FilterPiece<rounding, 6>(lists, columns, piece, result, open);
    default:
      return FilterPiece<rounding, 0>(lists, columns, piece, result, open);
  }
}

// Decides the open pixels of a piece.
FLOAT_FUNCTION void DecideColumns(const FloatWeights& lists, const FloatColumn* columns,
                                  Piece piece, OpenPixels& open, ColumnBytes* result,
                                  OpenChannels& counts) {
  open.Collect(piece.count);
  for (std::int32_t k = 0; k < open.Count(); ++k) {
    const std::int32_t place = open.Place(k);
    const FloatHead& head = lists.heads[piece.first + place];
    const float* const weights = lists.weights + (piece.first + place) * lists.taps;
    for (unsigned left = open.Lanes(place); left != 0; left &= left - 1) {
      const int lane = __builtin_ctz(left);
      double sums[kChannels] = {};
      for (std::int32_t tap = 0; tap < lists.taps; ++tap) {
        const FloatColumn& column = columns[head.first + tap];
        const double weight = weights[tap];
        for (int channel = 0; channel < kChannels; ++channel) {
          sums[channel] += static_cast<double>(column[channel][lane]) * weight;
        }
      }
      std::uint8_t* const bytes = result[place] + lane / 4 * 16 + lane % 4;
      for (int channel = 0; channel < kChannels; ++channel) {
        bytes[4 * channel] = static_cast<std::uint8_t>(RoundedQuotient(sums[channel], head.total));
      }
      counts.coarse += kChannels;
      counts.fine += kChannels;
    }
  }
}

VARNELL_AVX2_FMA void Along(const FloatWeights& lists, const FloatColumn* columns, Piece piece,
                            HalfBlock* result, std::size_t stride, OpenChannels& counts) {
  alignas(32) ColumnBytes bytes[kLongestAlong];
  OpenPixels open;
  if (piece.rounding == Rounding::kExact) {
    FilterPieceBy<Rounding::kExact>(lists, columns, piece, bytes, open);
  } else {
    FilterPieceBy<Rounding::kChecked>(lists, columns, piece, bytes, open);
    DecideColumns(lists, columns, piece, open, bytes, counts);
  }
  std::int32_t i = piece.count;
  for (; i % kLanes != 0; ++i) Store(bytes[i], Zero());
  for (i = 0; i < piece.count; i += kLanes) StoreBlocks(bytes + i, result + i / kLanes, stride);
}

// Rows of blocks, from the same block of each on.
struct BlockRows {
  const HalfBlock* const* rows;
  std::size_t offset;  // of the block, in bytes

  FLOAT_INLINE const HalfBlock& operator[](std::int32_t row) const {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(rows[row]);
    return *reinterpret_cast<const HalfBlock*>(bytes + offset);
  }
};

FLOAT_INLINE BlockRows RowsFrom(const HalfBlock* const* rows, const Piece& piece,
                                std::int32_t place) {
  return {rows, static_cast<std::size_t>(piece.first / kLanes + place) * sizeof(HalfBlock)};
}

template <Rounding rounding, int fixedTaps, PixelLayout layout>
FLOAT_FUNCTION void FilterDownPiece(const FloatWeights& list, const HalfBlock* const* rows,
                                    Piece piece, std::uint32_t* result, OpenPixels& open) {
  const std::int32_t taps = fixedTaps > 0 ? fixedTaps : list.taps;
  const FloatHead& head = *list.heads;
  const Floats start = BroadcastFloat(head.start);
  BlockRows source = RowsFrom(rows, piece, 0);
  std::int32_t left = piece.count;
  for (std::int32_t place = 0; left > 0; ++place) {
    Sums sums = {start, start, start};
#pragma GCC unroll 6
    for (std::int32_t k = 0; k < taps; ++k) {
      AddTap(source[k], BroadcastFloat(list.scaled[k]), sums);
    }
    StoreWords(Words<layout>(ChannelsOf<rounding>(sums, head, place, open)), left, result);
    source.offset += sizeof(HalfBlock);
    result += kLanes;
    left -= kLanes;
  }
}

template <Rounding rounding, PixelLayout layout>
FLOAT_FUNCTION void FilterDownBy(const FloatWeights& list, const HalfBlock* const* rows,
                                 Piece piece, std::uint32_t* result, OpenPixels& open) {
  switch (list.taps) {
    case 2:
      return FilterDownPiece<rounding, 2, layout>(list, rows, piece, result, open);
    case 4:
      return FilterDownPiece<rounding, 4, layout>(list, rows, piece, result, open);
    case 6:
      return FilterDownPiece<rounding, 6, layout>(list, rows, piece, result, open);
    default:
      return FilterDownPiece<rounding, 0, layout>(list, rows, piece, result, open);
  }
}

// Decides the open pixels of a piece, but for those beyond its end.
template <PixelLayout layout>
FLOAT_FUNCTION void DecideWords(const FloatWeights& list, const HalfBlock* const* rows, Piece piece,
                                OpenPixels& open, std::uint32_t* result, OpenChannels& counts) {
  const std::int32_t places = (piece.count + kLanes - 1) / kLanes;
  open.Collect(places);
  for (std::int32_t k = 0; k < open.Count(); ++k) {
    const std::int32_t place = open.Place(k);
    const BlockRows source = RowsFrom(rows, piece, place);
    for (unsigned left = open.Lanes(place); left != 0; left &= left - 1) {
      const int lane = __builtin_ctz(left);
      const std::int32_t x = place * kLanes + lane;
      if (x >= piece.count) break;
      double sums[kChannels] = {};
      for (std::int32_t tap = 0; tap < list.taps; ++tap) {
        const HalfBlock& block = source[tap];
        for (int channel = 0; channel < kChannels; ++channel) {
          const float product = static_cast<float>(block[channel][lane]) * list.weights[tap];
          sums[channel] += static_cast<double>(product);
        }
      }
      const float total = list.heads->total;
      result[x] =
          EncodeOpaque(layout, {RoundedQuotient(sums[0], total), RoundedQuotient(sums[1], total),
                                RoundedQuotient(sums[2], total)});
      counts.coarse += kChannels;
      counts.fine += kChannels;
    }
  }
}

template <PixelLayout layout>
FLOAT_FUNCTION void DownAs(const FloatWeights& list, const HalfBlock* const* rows, Piece piece,
                           std::uint32_t* result, OpenChannels& counts) {
  OpenPixels open;
  if (piece.rounding == Rounding::kExact) {
    FilterDownBy<Rounding::kExact, layout>(list, rows, piece, result, open);
    return;
  }
  FilterDownBy<Rounding::kChecked, layout>(list, rows, piece, result, open);
  return DecideWords<layout>(list, rows, piece, open, result, counts);
}

VARNELL_AVX2_FMA void Down(const FloatWeights& list, const HalfBlock* const* rows, Piece piece,
                           PixelLayout layout, std::uint32_t* result, OpenChannels& counts) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return DownAs<PixelLayout::kRedFirst>(list, rows, piece, result, counts);
    case PixelLayout::kAlphaFirst:
      return DownAs<PixelLayout::kAlphaFirst>(list, rows, piece, result, counts);
    default:
      return DownAs<PixelLayout::kBlueFirst>(list, rows, piece, result, counts);
  }
}

}  // namespace

const FloatKernels kFloatKernelsAvx2 = {VectorLevel::kAvx2, Spread, Along, Down};
