// What one pixel of a drawing is made of: the definition that every way of drawing obeys.
#pragma once

#include <cstdint>

#include "pixels/pixel_format.h"
#include "plugin/arithmetic.h"

// The pixel that is being made: channel sums that wrap, and what is left for its old colour.
class Blend {
 public:
  void Add(Rgb colour, double weight) {
    r_ = WrapAdd(r_, TruncateToInt32(colour.r * weight));
    g_ = WrapAdd(g_, TruncateToInt32(colour.g * weight));
    b_ = WrapAdd(b_, TruncateToInt32(colour.b * weight));
  }
  void AddSample(Rgb colour, double weight) {
    Add(colour, weight);
    rest_ -= weight;
  }
  // The old colour fills up what the samples left, if anything.
  void AddRest(Rgb colour) {
    if (rest_ > 0.0) Add(colour, rest_);
  }
  Rgb Clamped() const { return {ClampToByte(r_), ClampToByte(g_), ClampToByte(b_)}; }

 private:
  std::int32_t r_ = 0, g_ = 0, b_ = 0;
  double rest_ = 1.0;
};

// A sample's weight under a mask whose red is 0..255: black keeps it, white removes it.
inline double MaskedWeight(std::uint32_t red, double weight) {
  return ((255.0 - red) * weight) / 255.0;
}
