// Pictures of one channel, for results worked out by hand.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/oracles/image.h"

namespace oracle {

using Words = std::vector<std::uint32_t>;

// A picture in format 1 of which only the low byte (red) is set.
inline Image Reds(int width, int height, const Words& reds) { return {width, height, 1, reds}; }

// The red of every pixel of a result in format 1; the rest must be opaque black.
inline Words OpaqueReds(const Image& image) {
  Words reds;
  for (const std::uint32_t word : image.words) {
    EXPECT_EQ(word & 0xFFFFFF00u, 0xFF000000u);
    reds.push_back(word & 255u);
  }
  return reds;
}

}  // namespace oracle
