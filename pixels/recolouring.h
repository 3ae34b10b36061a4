// How pixel words change on their way from one layout into another.
#pragma once

#include <cstdint>

#include "pixels/pixel_format.h"

// As EncodeOpaque and Decode have it.
struct Recolouring {
  std::int32_t from[3];       // lowest bit of red, green and blue in the source's words
  std::int32_t to[3];         // and in the result's
  std::uint32_t opaque;       // set in every word
  std::uint8_t byteOrder[4];  // for each byte of the result the source's byte, or 0x80 for none
};

// Neither layout may be kNone.
Recolouring RecolouringOf(PixelLayout from, PixelLayout to);

std::uint32_t Recoloured(const Recolouring& change, std::uint32_t word);
