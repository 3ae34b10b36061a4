// A plain picture for the oracles: pixel words as stored, row after row, without padding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace oracle {

// Where the channels lie in a 32-bit pixel word, bit 0 lowest:
//   1, 3, 5  red 0-7, green 8-15, blue 16-23, alpha or unused 24-31
//   2, 4, 6  alpha or unused 0-7, red 8-15, green 16-23, blue 24-31
//   8        blue 0-7, green 8-15, red 16-23, top byte 24-31
//   others   no pixel at all: read as black, never written
enum Format : int {
  kNone = 0,
  kPremultipliedLast = 1,
  kPremultipliedFirst = 2,
  kLast = 3,
  kFirst = 4,
  kSkipLast = 5,
  kSkipFirst = 6,
  kAlphaOnly = 7,
  kHostBuffer = 8,
};

struct Image {
  int width = 0;
  int height = 0;
  int format = kNone;
  std::vector<std::uint32_t> words;  // width * height

  // x in [0, width), y in [0, height); std::out_of_range otherwise.
  std::uint32_t& At(int x, int y);
  std::uint32_t At(int x, int y) const;

  bool operator==(const Image& other) const = default;
};

// A picture of width * height words that all hold `word`. Sizes must be at least 0.
Image NewImage(int width, int height, int format, std::uint32_t word = 0);

// True for the formats whose pixels can be stored: 1..6 and 8.
bool IsStorable(int format);

// The channel of a word, 0..255; 0 in a format that holds no pixel.
int Red(std::uint32_t word, int format);
int Green(std::uint32_t word, int format);
int Blue(std::uint32_t word, int format);

// The byte that is no colour (alpha, unused or top byte), 0..255; 0 in a format that holds no
// pixel.
int Fourth(std::uint32_t word, int format);

// The word of a pixel; channels are 0..255. Formats that hold no pixel give 0.
std::uint32_t Pack(int format, int red, int green, int blue, int fourth);

// The word of an opaque pixel: fourth byte 255 in formats 1..6, `hostTop` in format 8.
std::uint32_t PackOpaque(int format, int red, int green, int blue, int hostTop = 0);

// Byte `index` (0..3) of a word in storage order, which is little-endian: byte 0 is bits 0-7.
int StoredByte(std::uint32_t word, int index);

// A name of letters only for a format 0..8, "Unknown" for any other.
std::string FormatName(int format);

}  // namespace oracle
