// Storage formats of pixels.
#include "host/pixel_word.h"

#include <algorithm>

namespace host {

namespace {

// Bit positions of the four bytes of a word.
struct Layout {
  int red, green, blue, alpha;
};

Layout LayoutOf(int format) {
  if (format == kHostBufferFormat) return {16, 8, 0, 24};
  if (format == 2 || format == 4 || format == 6) return {8, 16, 24, 0};
  return {0, 8, 16, 24};
}

bool IsPremultiplied(int format) { return format == 1 || format == 2; }

bool StoresAlpha(int format) {
  return IsPremultiplied(format) || format == 3 || format == 4 || format == kHostBufferFormat;
}

unsigned ByteAt(std::uint32_t word, int position) { return word >> position & 0xFF; }

std::uint8_t Divided(unsigned value, unsigned alpha) {
  if (alpha == 0) return 0;
  return static_cast<std::uint8_t>(std::min(255u, (2 * 255 * value + alpha) / (2 * alpha)));
}

std::uint8_t Multiplied(unsigned value, unsigned alpha) {
  return static_cast<std::uint8_t>((2 * value * alpha + 255) / (2 * 255));
}

}  // namespace

Rgba ColourOfWord(std::uint32_t word, int format, bool hasAlphaChannel) {
  const Layout at = LayoutOf(format);
  const unsigned alpha = hasAlphaChannel && StoresAlpha(format) ? ByteAt(word, at.alpha) : 255;
  const auto channel = [&](int position) {
    const unsigned value = ByteAt(word, position);
    return IsPremultiplied(format) ? Divided(value, alpha) : static_cast<std::uint8_t>(value);
  };
  return {channel(at.red), channel(at.green), channel(at.blue), static_cast<std::uint8_t>(alpha)};
}

std::uint32_t WordOfColour(Rgba colour, int format, bool hasAlphaChannel) {
  const Layout at = LayoutOf(format);
  const bool storesAlpha = hasAlphaChannel && StoresAlpha(format);
  const unsigned unused = format == kHostBufferFormat ? 0 : 255;
  const unsigned alpha = storesAlpha ? colour.a : unused;
  const auto channel = [&](std::uint8_t value) -> std::uint32_t {
    return storesAlpha && IsPremultiplied(format) ? Multiplied(value, colour.a) : value;
  };
  return channel(colour.r) << at.red | channel(colour.g) << at.green |
         channel(colour.b) << at.blue | alpha << at.alpha;
}

}  // namespace host
