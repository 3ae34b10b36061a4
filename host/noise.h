// Bytes and words that mean nothing, for everything a plug-in must not rely on: always the same, so
// that a failure can be repeated, and never zero.
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

inline constexpr std::uint8_t kNoiseByte = 0xC7;

inline std::uintptr_t NoiseWord(std::size_t index) {
  std::uint64_t word = (static_cast<std::uint64_t>(index) + 1) * 0x9E3779B97F4A7C15u;
  word ^= word >> 29;
  word *= 0xBF58476D1CE4E5B9u;
  word ^= word >> 32;
  return static_cast<std::uintptr_t>(word) | 1;
}

// Noise in all bits but the low `bits` (fewer than a word has), which hold those of `value`.
inline std::uintptr_t WithNoiseAbove(std::uintptr_t value, int bits) {
  const std::uintptr_t mask = (std::uintptr_t{1} << bits) - 1;
  constexpr auto kNoise = static_cast<std::uintptr_t>(0xA5A5A5A5A5A5A5A5u);
  return (value & mask) | (kNoise & ~mask);
}

}  // namespace host
