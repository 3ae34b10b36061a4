// Pixel words: which channel lies where, for every pixel format. Nothing else takes words apart or
// puts them together.
#pragma once

#include <cstdint>

// The formats that only a bitmap context has are its alpha info, 1..6.
inline constexpr std::int32_t kFormatHostBuffer = 8;

// Positions of the channels in a 32-bit word, from bit 0 up.
enum class PixelLayout {
  kRedFirst,    // red, green, blue, alpha: formats 1, 3, 5
  kAlphaFirst,  // alpha, red, green, blue: formats 2, 4, 6
  kBlueFirst,   // blue, green, red, top byte: format 8
  kNone,        // no pixel at all: reads as black, is never written
};

constexpr PixelLayout LayoutOf(std::int32_t pixelFormat) {
  if (pixelFormat == kFormatHostBuffer) return PixelLayout::kBlueFirst;
  if (pixelFormat < 1 || pixelFormat > 6) return PixelLayout::kNone;
  return pixelFormat % 2 == 1 ? PixelLayout::kRedFirst : PixelLayout::kAlphaFirst;
}

// Colour channels, 0..255 each.
struct Rgb {
  std::uint32_t r, g, b;
};

constexpr std::uint32_t ByteOf(std::uint32_t word, int shift) { return (word >> shift) & 0xFF; }

// The colour of a pixel word; black for kNone.
constexpr Rgb Decode(PixelLayout layout, std::uint32_t word) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return {ByteOf(word, 0), ByteOf(word, 8), ByteOf(word, 16)};
    case PixelLayout::kAlphaFirst:
      return {ByteOf(word, 8), ByteOf(word, 16), ByteOf(word, 24)};
    case PixelLayout::kBlueFirst:
      return {ByteOf(word, 16), ByteOf(word, 8), ByteOf(word, 0)};
    case PixelLayout::kNone:
      break;
  }
  return {0, 0, 0};
}

// The word of an opaque pixel; channels must lie in 0..255. Not for kNone.
// Deliberate: blue-first words get a top byte of 0, not 255.
constexpr std::uint32_t EncodeOpaque(PixelLayout layout, Rgb colour) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return colour.r | colour.g << 8 | colour.b << 16 | 0xFF000000U;
    case PixelLayout::kAlphaFirst:
      return 0xFFU | colour.r << 8 | colour.g << 16 | colour.b << 24;
    default:
      return colour.b | colour.g << 8 | colour.r << 16;
  }
}

// Calls `function` with the layout as a compile-time constant (std::integral_constant-like).
template <PixelLayout layout>
struct LayoutConstant {
  static constexpr PixelLayout value = layout;
};
template <typename Function>
void WithLayout(PixelLayout layout, Function&& function) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return function(LayoutConstant<PixelLayout::kRedFirst>{});
    case PixelLayout::kAlphaFirst:
      return function(LayoutConstant<PixelLayout::kAlphaFirst>{});
    case PixelLayout::kBlueFirst:
      return function(LayoutConstant<PixelLayout::kBlueFirst>{});
    case PixelLayout::kNone:
      return function(LayoutConstant<PixelLayout::kNone>{});
  }
}
