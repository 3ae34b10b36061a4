// Small drawing tools of the test pictures: colours as doubles, noise, shapes with soft edges.
#pragma once

#include <algorithm>
#include <cstdint>

#include "tool/bitmap.h"

namespace tool {

// Red, green and blue, 0..1 each.
struct Colour {
  double r = 0, g = 0, b = 0;
};

inline Colour operator*(Colour c, double f) { return {c.r * f, c.g * f, c.b * f}; }

// a at t = 0, b at t = 1; t is clamped.
inline double Mix(double a, double b, double t) { return a + (b - a) * std::clamp(t, 0.0, 1.0); }
inline Colour Mix(Colour a, Colour b, double t) {
  return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t)};
}

// 0 below `from`, 1 above `to`, smooth between them.
inline double Smooth(double from, double to, double x) {
  const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

inline std::uint8_t Byte(double level) {
  return std::uint8_t(std::clamp(level, 0.0, 1.0) * 255 + 0.5);
}
inline host::Rgba Pixel(Colour c, double alpha = 1) {
  return {Byte(c.r), Byte(c.g), Byte(c.b), Byte(alpha)};
}

// A fixed pseudo-random number for a place.
inline std::uint32_t Hash(int x, int y) {
  std::uint32_t h = std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA77u;
  h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
  h = (h ^ (h >> 12)) * 0x297A2D39u;
  return h ^ (h >> 15);
}
inline double Random(int x, int y) { return (Hash(x, y) >> 8) / 16777216.0; }

// Smooth noise, 0..1, of one feature per unit.
inline double Noise(double x, double y) {
  const int x0 = int(x + 4096) - 4096, y0 = int(y + 4096) - 4096;
  const double tx = Smooth(0, 1, x - x0), ty = Smooth(0, 1, y - y0);
  return Mix(Mix(Random(x0, y0), Random(x0 + 1, y0), tx),
             Mix(Random(x0, y0 + 1), Random(x0 + 1, y0 + 1), tx), ty);
}

// Noise with finer and finer detail, 0..1.
inline double Cloud(double x, double y, int octaves) {
  double sum = 0, weight = 0.5, total = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * Noise(x, y);
    total += weight;
    weight /= 2;
    x = x * 2 + 17;
    y = y * 2 + 31;
  }
  return sum / total;
}

}  // namespace tool
