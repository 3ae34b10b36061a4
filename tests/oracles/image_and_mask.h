// The method "ScaleImageAndMaskZVQ": which scaler serves picture and mask, and what both become.
#pragma once

#include <cstdint>
#include <optional>

#include "tests/oracles/image.h"
#include "tests/oracles/scale_method.h"

namespace oracle {

// How the host locks a new picture that a scaler fills.
struct NewPicture {
  int format = kNone;
  bool hasAlpha = false;      // its source has an alpha channel: no upper limit on the size
  std::uint32_t initial = 0;  // what its words hold
  // Rows that it really has; the requested height if not given.
  std::optional<int> height = std::nullopt;
};

struct ImageAndMaskRequest {
  int width = 0;
  int height = 0;
  bool antiAlias = false;
  NewPicture picture;
  NewPicture mask;
};

struct ImageAndMask {
  Branch branch = Branch::kFast;
  Image image;
  // kSame: the receiver's own mask. Else the scaled mask, which is drawn 1:1 into the mask of the
  // result; none: the result keeps no mask.
  std::optional<Image> mask;
};

// The method on a picture without an alpha channel, on a host where every lock and allocation
// succeeds; none where it is nil. The mask is scaled as a picture of its own size, by the scaler
// that made the picture; one that this scaler cannot make is left out, without another attempt.
// Picture and mask must have pixels where the smooth enlarger is chosen (std::invalid_argument).
std::optional<ImageAndMask> ScaleImageAndMask(const Image& source, const Image* mask,
                                              const ImageAndMaskRequest& request);

// The method on a picture with an alpha channel of originalWidth * originalHeight.
//
// drawn  the temporary opaque picture of the requested size after the host has drawn the receiver's
//        top-left region of that size into it, unscaled
// mask   the mask that the temporary picture then has; null: none
//
// Deliberate: the original's size chooses the scaler, which then works at scale 1 on the picture.
// A request of the original's size is the receiver itself: std::invalid_argument here.
std::optional<ImageAndMask> ScaleConverted(const Image& drawn, const Image* mask, int originalWidth,
                                           int originalHeight, const ImageAndMaskRequest& request);

// Draws `source`, whose pixels are all fully opaque, unscaled at the top left of `temporary`: what
// lies outside either picture is left out. Each written pixel is opaque, top byte 0 in format 8.
void DrawTopLeft(Image& temporary, const Image& source);

// The row copy between pictures in host buffers, for hosts without graphics. Copies whole words and
// gives true when both are in format 8 and of the same size; else changes nothing and gives false.
bool CopyHostBuffer(Image& destination, const Image& source);

}  // namespace oracle
