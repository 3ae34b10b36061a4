#include "pixels/recolouring.h"

namespace {

struct Positions {
  std::int32_t bits[3];
};

Positions PositionsOf(PixelLayout layout) {
  switch (layout) {
    case PixelLayout::kRedFirst:
      return {{0, 8, 16}};
    case PixelLayout::kAlphaFirst:
      return {{8, 16, 24}};
    default:
      return {{16, 8, 0}};
  }
}

}  // namespace

Recolouring RecolouringOf(PixelLayout from, PixelLayout to) {
  const Positions source = PositionsOf(from);
  const Positions result = PositionsOf(to);
  Recolouring change = {{}, {}, EncodeOpaque(to, {0, 0, 0}), {0x80, 0x80, 0x80, 0x80}};
  for (int channel = 0; channel < 3; ++channel) {
    change.from[channel] = source.bits[channel];
    change.to[channel] = result.bits[channel];
    change.byteOrder[result.bits[channel] / 8] =
        static_cast<std::uint8_t>(source.bits[channel] / 8);
  }
  return change;
}

std::uint32_t Recoloured(const Recolouring& change, std::uint32_t word) {
  std::uint32_t result = change.opaque;
  for (int channel = 0; channel < 3; ++channel) {
    result |= ByteOf(word, change.from[channel]) << change.to[channel];
  }
  return result;
}
