// The kinds of work that are timed, by name: sizes and arguments. Shared by the workers, so that
// all do the same.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace bench {

enum class Kind { kFast, kSmooth, kResample, kBlur, kDraw, kDrawMasked, kScaleBoth };

struct Work {
  const char* name;
  Kind kind;
  int sourceWidth, sourceHeight;
  int width, height;  // of the result, or of the picture that is drawn into
  int mode = 0;       // of the resampler; radius of the blur
};

inline constexpr Work kWorks[] = {
    {"W1 shrink 4:1", Kind::kFast, 4000, 3000, 1000, 750},
    {"W1 shrink 3.08:1", Kind::kFast, 4000, 3000, 1300, 975},
    {"W2 enlarge 1:4", Kind::kFast, 1000, 750, 4000, 3000},
    {"W3 smooth 1:4", Kind::kSmooth, 1000, 750, 4000, 3000},
    {"W3 smooth 1:3.7", Kind::kSmooth, 1000, 750, 3700, 2900},
    {"W4s mode 1", Kind::kResample, 4000, 3000, 1000, 750, 1},
    {"W4s mode 2", Kind::kResample, 4000, 3000, 1000, 750, 2},
    {"W4s mode 3", Kind::kResample, 4000, 3000, 1000, 750, 3},
    {"W4s mode 4", Kind::kResample, 4000, 3000, 1000, 750, 4},
    {"W4s mode 5", Kind::kResample, 4000, 3000, 1000, 750, 5},
    {"W4s mode 6", Kind::kResample, 4000, 3000, 1000, 750, 6},
    {"W4s mode 7", Kind::kResample, 4000, 3000, 1000, 750, 7},
    {"W4e mode 1", Kind::kResample, 1000, 750, 2000, 1500, 1},
    {"W4e mode 2", Kind::kResample, 1000, 750, 2000, 1500, 2},
    {"W4e mode 3", Kind::kResample, 1000, 750, 2000, 1500, 3},
    {"W4e mode 4", Kind::kResample, 1000, 750, 2000, 1500, 4},
    {"W4e mode 5", Kind::kResample, 1000, 750, 2000, 1500, 5},
    {"W4e mode 6", Kind::kResample, 1000, 750, 2000, 1500, 6},
    {"W4e mode 7", Kind::kResample, 1000, 750, 2000, 1500, 7},
    {"W5 radius 3", Kind::kBlur, 4000, 3000, 4000, 3000, 3},
    {"W5 radius 20", Kind::kBlur, 4000, 3000, 4000, 3000, 20},
    {"W5 radius 100", Kind::kBlur, 4000, 3000, 4000, 3000, 100},
    {"W6 draw", Kind::kDraw, 2000, 1500, 4000, 3000},
    {"W6 draw masked", Kind::kDrawMasked, 2000, 1500, 4000, 3000},
    {"W7 both down", Kind::kScaleBoth, 2000, 1500, 1000, 750},
};

inline constexpr double kDrawX = 10.5;
inline constexpr double kDrawY = 20.25;
inline constexpr double kOpacity = 0.7;

inline const Work* Find(const char* name) {
  for (const Work& work : kWorks) {
    if (std::strcmp(work.name, name) == 0) return &work;
  }
  return nullptr;
}

// A smooth picture with noise on it, in any channel order; the same for everyone.
inline std::uint32_t PixelAt(int x, int y) {
  std::uint32_t noise =
      static_cast<std::uint32_t>(x) * 2654435761U ^ static_cast<std::uint32_t>(y) * 2246822519U;
  noise ^= noise >> 15;
  const auto level = [&](int value, int shift) {
    return (static_cast<std::uint32_t>(value & 255) * 3 / 4 + (noise >> shift & 63)) & 255U;
  };
  return level(x / 8, 0) | level(y / 8, 6) << 8 | level((x + y) / 16, 12) << 16 | 0xFF000000U;
}

inline std::vector<std::uint32_t> Pixels(int width, int height) {
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) pixels.push_back(PixelAt(x, y));
  }
  return pixels;
}

}  // namespace bench
