// How two pictures of the same size differ.
#pragma once

#include <cstdint>
#include <vector>

#include "tool/bitmap.h"

namespace tool {

// The differences of samples 0..255, in one channel or in all.
struct SampleDifference {
  double mean = 0;  // of the absolute differences
  double rms = 0;   // root of the mean of their squares
  int largest = 0;
  int x = 0, y = 0;         // the first pixel, in reading order, with the largest
  int channel = 0;          // of it; the first of several
  std::int64_t pixels = 0;  // that differ

  // 10 * log10(255^2 / mean of squares) in decibels; infinite without a difference.
  double Psnr() const;
};

struct PictureDifference {
  // Red, green, blue; and alpha where either picture has it (that of the other is 255).
  std::vector<SampleDifference> channels;
  SampleDifference all;
};

// Both pictures have the same size and at least one pixel. Samples are compared as they are, also
// the colours of invisible pixels.
PictureDifference Difference(const Bitmap& a, const Bitmap& b);

// An opaque picture of the absolute differences times `gain`, at most 255. A difference of alpha
// shows as grey: no channel is darker than it.
Bitmap DifferencePicture(const Bitmap& a, const Bitmap& b, int gain);

}  // namespace tool
