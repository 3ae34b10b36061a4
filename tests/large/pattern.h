// Large pictures whose every word follows from its place, so that any part can be stated anew.
#pragma once

#include <cstdint>

#include "host/picture.h"
#include "tests/oracles/image.h"

namespace large {

// Columns x .. x + width - 1 of rows y .. y + height - 1.
struct Area {
  int x = 0, y = 0, width = 0, height = 0;
};

// Byte 0 of a word changes every 64 pixels, so that it survives strong filters; byte 1 is noise;
// byte 2 is a slope with noise on it; byte 3 changes every 16 pixels.
class Pattern {
 public:
  explicit Pattern(std::uint32_t seed) : seed_(seed) {}

  std::uint32_t Word(int x, int y) const;
  void Fill(host::Picture& picture) const;
  // That part of the pattern as a picture of its own.
  oracle::Image CutOut(const Area& area, int format) const;
  // "" when every word of the picture is the pattern's; else the first that is not.
  std::string Changed(const host::Picture& picture) const;

 private:
  void FillRow(std::uint32_t* words, int x, int y, int width) const;

  std::uint32_t seed_;
};

}  // namespace large
