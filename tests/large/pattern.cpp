#include "tests/large/pattern.h"

#include <cstring>

namespace large {

namespace {

std::uint32_t Mix(int a, int b, std::uint32_t seed) {
  std::uint32_t hash = static_cast<std::uint32_t>(a) * 0x9E3779B1u ^
                       static_cast<std::uint32_t>(b) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
  hash ^= hash >> 15;
  hash *= 0x2C1B3C6Du;
  hash ^= hash >> 12;
  hash *= 0x297A2D39u;
  return hash ^ hash >> 15;
}

}  // namespace

std::uint32_t Pattern::Word(int x, int y) const {
  std::uint32_t word = 0;
  FillRow(&word, x, y, 1);
  return word;
}

void Pattern::FillRow(std::uint32_t* words, int x, int y, int width) const {
  std::uint32_t slow = 0;
  for (int i = 0; i < width; ++i) {
    const int column = x + i;
    if (i == 0 || column % 16 == 0) {
      slow = (Mix(column >> 6, y >> 6, seed_) & 0xFF) | (Mix(column >> 4, y >> 4, seed_ + 1) & 0xFF)
                                                            << 24;
    }
    const std::uint32_t noise = Mix(column, y, seed_ + 2);
    const std::uint32_t slope = static_cast<std::uint32_t>(column * 3 + y * 5) >> 6;
    words[i] = slow | (noise & 0xFF) << 8 | ((slope + (noise >> 28)) & 0xFF) << 16;
  }
}

void Pattern::Fill(host::Picture& picture) const {
  std::vector<std::uint32_t> row(static_cast<std::size_t>(picture.Width()));
  for (int y = 0; y < picture.Height(); ++y) {
    FillRow(row.data(), 0, y, picture.Width());
    std::memcpy(picture.Row(y), row.data(), row.size() * 4);
  }
}

oracle::Image Pattern::CutOut(const Area& area, int format) const {
  oracle::Image image = oracle::NewImage(area.width, area.height, format);
  for (int y = 0; y < area.height; ++y) {
    FillRow(&image.At(0, y), area.x, area.y + y, area.width);
  }
  return image;
}

std::string Pattern::Changed(const host::Picture& picture) const {
  std::vector<std::uint32_t> row(static_cast<std::size_t>(picture.Width()));
  for (int y = 0; y < picture.Height(); ++y) {
    FillRow(row.data(), 0, y, picture.Width());
    if (std::memcmp(picture.Row(y), row.data(), row.size() * 4) == 0) continue;
    for (int x = 0; x < picture.Width(); ++x) {
      if (picture.Word(x, y) != row[static_cast<std::size_t>(x)]) {
        return picture.Name() + " is changed at (" + std::to_string(x) + ", " + std::to_string(y) +
               ")";
      }
    }
  }
  return "";
}

}  // namespace large
