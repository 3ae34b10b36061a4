// Pixel words of the oracles' pictures, taken apart and put together.
#include "tests/oracles/image.h"

#include <stdexcept>

namespace oracle {
namespace {

std::size_t IndexOf(const Image& image, int x, int y) {
  if (x < 0 || x >= image.width || y < 0 || y >= image.height) {
    throw std::out_of_range("pixel outside the picture");
  }
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
         static_cast<std::size_t>(x);
}

// The number of the byte, from the low end, that holds a channel in a storable format.
struct Positions {
  int red, green, blue, fourth;
};

Positions PositionsOf(int format) {
  if (format == 8) return {2, 1, 0, 3};
  if (format == 2 || format == 4 || format == 6) return {1, 2, 3, 0};
  return {0, 1, 2, 3};
}

}  // namespace

std::uint32_t& Image::At(int x, int y) { return words.at(IndexOf(*this, x, y)); }
std::uint32_t Image::At(int x, int y) const { return words.at(IndexOf(*this, x, y)); }

Image NewImage(int width, int height, int format, std::uint32_t word) {
  if (width < 0 || height < 0) throw std::invalid_argument("negative picture size");
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return {width, height, format, std::vector<std::uint32_t>(count, word)};
}

bool IsStorable(int format) { return (format >= 1 && format <= 6) || format == 8; }

int Red(std::uint32_t word, int format) {
  return IsStorable(format) ? StoredByte(word, PositionsOf(format).red) : 0;
}

int Green(std::uint32_t word, int format) {
  return IsStorable(format) ? StoredByte(word, PositionsOf(format).green) : 0;
}

int Blue(std::uint32_t word, int format) {
  return IsStorable(format) ? StoredByte(word, PositionsOf(format).blue) : 0;
}

int Fourth(std::uint32_t word, int format) {
  return IsStorable(format) ? StoredByte(word, PositionsOf(format).fourth) : 0;
}

std::uint32_t Pack(int format, int red, int green, int blue, int fourth) {
  if (!IsStorable(format)) return 0;
  const Positions at = PositionsOf(format);
  return static_cast<std::uint32_t>(red & 255) << (8 * at.red) |
         static_cast<std::uint32_t>(green & 255) << (8 * at.green) |
         static_cast<std::uint32_t>(blue & 255) << (8 * at.blue) |
         static_cast<std::uint32_t>(fourth & 255) << (8 * at.fourth);
}

std::uint32_t PackOpaque(int format, int red, int green, int blue, int hostTop) {
  return Pack(format, red, green, blue, format == 8 ? hostTop : 255);
}

int StoredByte(std::uint32_t word, int index) {
  return static_cast<int>(word >> (8 * index) & 255u);
}

std::string FormatName(int format) {
  switch (format) {
    case kNone:
      return "None";
    case kPremultipliedLast:
      return "PremultipliedLast";
    case kPremultipliedFirst:
      return "PremultipliedFirst";
    case kLast:
      return "Last";
    case kFirst:
      return "First";
    case kSkipLast:
      return "SkipLast";
    case kSkipFirst:
      return "SkipFirst";
    case kAlphaOnly:
      return "AlphaOnly";
    case kHostBuffer:
      return "HostBuffer";
    default:
      return "Unknown";
  }
}

}  // namespace oracle
