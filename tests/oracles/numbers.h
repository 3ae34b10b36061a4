// Arithmetic as 32-bit hardware gives it, for the oracles.
#pragma once

#include <cfloat>
#include <cstdint>
#include <limits>

namespace oracle {

static_assert(FLT_EVAL_METHOD == 0, "every operation must be rounded to its own type");

// Truncation toward zero; what does not fit, and NaN, gives the smallest integer.
inline std::int32_t Truncate(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return static_cast<std::int32_t>(value);
}

inline std::int32_t Add(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

inline std::int32_t Subtract(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

inline std::int32_t Product(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

}  // namespace oracle
