// What a bitmap context is on Linux: a description of pixel memory that somebody else owns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/bitmap_context.h"

struct CGContext {
  void* data = nullptr;
  std::size_t width = 0;   // pixels
  std::size_t height = 0;  // pixels
  std::size_t bytesPerRow = 0;
  std::size_t bitsPerPixel = 32;
  std::uint32_t alphaInfo = kCGImageAlphaNoneSkipFirst;  // kCGImageAlpha…, higher bits are noise
};
