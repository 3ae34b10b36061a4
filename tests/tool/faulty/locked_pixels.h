// A picture's pixels in the host's memory, for faults that read or write them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/host_interface.h"

namespace faulty {

// Locked while it lives; `width` is 0 when the pixels cannot be had.
struct LockedPixels {
  REALpicture picture;
  std::int32_t width = 0, height = 0;
  int format = 0;  // the bitmap context's alpha info, or 8 for a host buffer
  unsigned char* base = nullptr;
  unsigned char** rows = nullptr;
  std::size_t rowBytes = 0;  // 0 for a host buffer

  explicit LockedPixels(REALpicture p);
  ~LockedPixels();
  LockedPixels(const LockedPixels&) = delete;
  LockedPixels& operator=(const LockedPixels&) = delete;

  unsigned char* Row(std::int32_t y) const {
    return rows != nullptr ? rows[y] : base + static_cast<std::size_t>(y) * rowBytes;
  }
  // The first byte behind the last row's pixels.
  unsigned char* End() const { return Row(height - 1) + static_cast<std::size_t>(width) * 4; }
};

void FlipBits(unsigned char* word, std::uint32_t bits);

// Writes a word as it is; beyond accessible memory that ends the process.
void Touch(unsigned char* word);

}  // namespace faulty
