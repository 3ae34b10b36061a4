// Reproducible randomness for differential tests.
#pragma once

#include <cstdint>
#include <random>

#include "host/pixel_memory.h"
#include "tests/oracles/image.h"

namespace support {

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  // A number in [low, high].
  int Between(int low, int high) {
    return low + static_cast<int>(engine_() % static_cast<std::uint32_t>(high - low + 1));
  }
  bool Coin() { return (engine_() & 1) != 0; }
  std::uint32_t Word() { return engine_(); }

  // A picture whose words are all random.
  oracle::Image Noise(int width, int height, int format) {
    oracle::Image image = oracle::NewImage(width, height, format);
    for (auto& word : image.words) word = Word();
    return image;
  }

  host::Guard AnyGuard() { return Coin() ? host::Guard::kAfter : host::Guard::kBefore; }

 private:
  std::mt19937 engine_;
};

}  // namespace support
