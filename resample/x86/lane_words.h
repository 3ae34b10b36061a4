// How eight lanes of channels become pixel words. Included by the files that say, by
// including lanes_sse2.h or lanes_avx2.h first, what Lanes are.
#pragma once

#include <cstdint>
#include <cstring>

#include "pixels/pixel_format.h"
#include "resample/lane_piece.h"

namespace {

struct LaneChannels {
  Lanes red, green, blue;
};

template <PixelLayout layout>
LANES_INLINE Lanes Words(const LaneChannels& channels) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return Woven(Bytes(channels.red, channels.green, channels.blue, Broadcast(255)));
    case PixelLayout::kAlphaFirst:
      return Woven(Bytes(Broadcast(255), channels.red, channels.green, channels.blue));
    default:
      return Woven(Bytes(channels.blue, channels.green, channels.red, Zero()));
  }
}

// Eight words, or the first ones of eight.
LANES_INLINE void StoreWords(Lanes words, std::int32_t count, std::uint32_t* result) {
  if (count >= kLanes) return Store(result, words);
  std::uint32_t all[kLanes];
  Store(all, words);
  std::memcpy(result, all, static_cast<std::size_t>(count) * sizeof *all);
}

}  // namespace
