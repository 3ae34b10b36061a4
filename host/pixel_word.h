// A pixel's 32-bit word in each of the storage formats, and the colour that a person sees in it.
#pragma once

#include <cstdint>

namespace host {

struct Rgba {
  std::uint8_t r = 0, g = 0, b = 0, a = 255;
  friend bool operator==(const Rgba&, const Rgba&) = default;
};

// The format of a host buffer; formats 0..7 are the alpha infos of bitmap contexts.
inline constexpr int kHostBufferFormat = 8;

// Straight colour of a stored word. Formats 1 and 2 hold colours multiplied by their alpha and are
// divided, rounded to nearest and at most 255; alpha 0 reads as black. Formats 0, 5, 6 and 7 have
// no alpha, and a picture without an alpha channel reads as opaque whatever its words say.
// Formats 0 and 7 are laid out like 5.
Rgba ColourOfWord(std::uint32_t word, int format, bool hasAlphaChannel);

// The word that stores a colour; the reverse of ColourOfWord, multiplication rounded to nearest.
// Bytes without a meaning become 255, in format 8 they become 0.
std::uint32_t WordOfColour(Rgba colour, int format, bool hasAlphaChannel);

}  // namespace host
