// The variants of the drawing's rows for x86 processors, and what they share.
#pragma once

#include "effects/draw_rows.h"

// SSE4.1 adds nothing that they could use.
extern const DrawRows kDrawRowsSse2;
extern const DrawRows kDrawRowsAvx2;

// Their parts in floating point.
void BlendWeightedSse2(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                       const Neighbours& mask, std::size_t count);
void BlendWeightedAvx2(std::uint32_t* dest, const WeightedBlend& blend, const Neighbours& source,
                       const Neighbours& mask, std::size_t count);

// Which bits of a pixel word hold its colour, and what its other bits are when it is opaque.
struct OpaqueBits {
  std::uint32_t colour, opaque;
  explicit OpaqueBits(PixelLayout layout)
      : colour(EncodeOpaque(layout, {255, 255, 255}) ^ EncodeOpaque(layout, {0, 0, 0})),
        opaque(EncodeOpaque(layout, {0, 0, 0})) {}
};

// How the channels of one layout come to their places in another, in three steps: one place down,
// the first and third exchanged, one place up. The alpha channel ends anywhere.
struct ChannelMoves {
  bool down, exchange, up;
  bool any;
  ChannelMoves(PixelLayout from, PixelLayout to)
      : down(from == PixelLayout::kAlphaFirst && to != from),
        exchange((from == PixelLayout::kBlueFirst) != (to == PixelLayout::kBlueFirst)),
        up(to == PixelLayout::kAlphaFirst && to != from),
        any(from != to) {}
};

// The byte of a pixel word that red lies in.
inline int RedByte(PixelLayout layout) {
  if (layout == PixelLayout::kBlueFirst) return 2;
  return layout == PixelLayout::kAlphaFirst ? 1 : 0;
}
