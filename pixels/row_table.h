// The table of row addresses that a host buffer comes with.
#pragma once

#include <cstdint>

// Whether the first `height` rows all have an address; none are asked for below 1.
inline bool HasRows(unsigned char* const* rowTable, std::int32_t height) {
  for (std::int32_t row = 0; row < height; ++row) {
    if (rowTable[row] == nullptr) return false;
  }
  return true;
}
