// What kernels filter along: eight rows at once.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/resample/lane_stage.h"

namespace resample_tests {

// Eight rows of a picture, each next to inaccessible memory.
struct EightRows {
  std::vector<host::PixelMemory> memory;
  const std::uint32_t* rows[kLanes] = {};

  EightRows(int width, support::Random& random, Picture picture = Picture::kNoise) {
    for (int y = 0; y < kLanes; ++y) {
      memory.emplace_back(Bytes(width), random.AnyGuard());
      rows[y] = Words(memory.back());
      for (int x = 0; x < width; ++x) Words(memory.back())[x] = PixelOf(picture, x, y, random);
    }
  }
};

inline std::uint32_t ChannelOf(Rgb colour, int channel) {
  return channel == 0 ? colour.r : channel == 1 ? colour.g : colour.b;
}

// A list's channel of red-first pixels, as FilterAlongRow adds it up.
inline std::uint32_t AlongChannel(const ContributionList& list, const std::uint32_t* row,
                                  int channel) {
  double sum = 0.0;
  for (std::int32_t k = 0; k < list.count; ++k) {
    const Rgb colour = Decode(PixelLayout::kRedFirst, row[list.entries[k].pixel]);
    sum += ChannelOf(colour, channel) * static_cast<double>(list.entries[k].weight);
  }
  return RoundedQuotient(sum, list.total);
}

}  // namespace resample_tests
