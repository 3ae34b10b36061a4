// The one home of arithmetic that the results are fixed by and C++ leaves undefined: conversions of
// floating point to integers, and 32-bit integers that wrap.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

// Truncates toward zero. NaN and values that do not fit give -2^31, as the processor's own
// conversion does.
inline std::int32_t TruncateToInt32(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

// Rounds down; NaN and values outside -2^31 + 1 .. 2^31 - 1 as above.
inline std::int32_t FloorToInt32(double value) {
  const std::int32_t truncated = TruncateToInt32(value);
  const bool isAbove = truncated > value && truncated > std::numeric_limits<std::int32_t>::min();
  return isAbove ? truncated - 1 : truncated;
}

// Truncates toward zero into 0..255: 0 for values up to 0, 255 for values from 255 on. NaN gives 0.
inline std::uint8_t TruncateToByte(float value) {
  if (!(value > 0.0F)) return 0;
  return value >= 255.0F ? std::uint8_t{255} : static_cast<std::uint8_t>(value);
}

// 32-bit two's complement arithmetic that wraps.
inline std::int32_t WrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t WrapSubtract(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
inline std::int32_t WrapMultiply(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}
// |value|, where -2^31 stays -2^31.
inline std::int32_t WrapAbs(std::int32_t value) {
  return value < 0 ? WrapSubtract(0, value) : value;
}

// Limited to 0..255.
inline std::uint32_t ClampToByte(std::int32_t value) {
  if (value < 0) return 0;
  return value > 255 ? 255 : static_cast<std::uint32_t>(value);
}
