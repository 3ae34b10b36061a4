// Parts of pictures, smaller copies for looking at, and a short name for the pixels.
#pragma once

#include <cstdint>

#include "tool/bitmap.h"
#include "tool/contact_sheet.h"
#include "tool/size_word.h"

namespace tool {

// A copy of the part; what lies outside the picture is left out. At least one pixel must remain.
Bitmap Crop(const Bitmap& picture, const Part& part);

// A part of at most width x height pixels from the middle of the picture.
Part Middle(const Bitmap& picture, int width, int height);

// The part of at most width x height pixels in which neighbours differ most in brightness, found to
// within an eighth of the part's size.
Part MostDetail(const Bitmap& picture, int width, int height);

// For looking at: each pixel is the mean of the area that it covers, colours weighted by their
// alpha. The size is from 1 to that of the picture.
Bitmap Reduced(const Bitmap& picture, int width, int height);

// The largest size of the picture's proportions, at least a pixel each, that fits into a square of
// `most` pixels and is not larger than the picture divided by `divisor`.
Extent Fitting(const Bitmap& picture, int most, int divisor = 1);

// FNV-1a of 64 bits over width and height (32 bits each, low byte first) and the pixels as rows of
// R, G, B, A.
std::uint64_t PixelHash(const Bitmap& picture);

}  // namespace tool
