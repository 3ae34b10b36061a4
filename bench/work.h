// A piece of work to be timed, described by three words, and the pixels it is done on. Shared by
// all workers, so that all do the same.
//
//   KIND[NUMBER] SOURCE RESULT      such as "resample3 4096x3072 1024x768" or "blur20 4000x3000
//   4000x3000"
//
// KIND is fast, smooth, both, resample (NUMBER: the mode), blur (the radius), draw or drawmasked,
// where RESULT is the picture that is drawn into.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace bench {

enum class Kind { kFast, kSmooth, kBoth, kResample, kBlur, kDraw, kDrawMasked };

struct Work {
  std::string words;  // as they were given
  Kind kind = Kind::kFast;
  int number = 0;
  int sourceWidth = 0, sourceHeight = 0;
  int width = 0, height = 0;

  bool Shrinks() const { return width < sourceWidth; }
  bool Resamples(int mode) const { return kind == Kind::kResample && number == mode; }
  bool Draws() const { return kind == Kind::kDraw || kind == Kind::kDrawMasked; }
};

// Nothing when the words describe no work.
std::optional<Work> ParseWork(const std::string& words);

// Where the source's top left corner is drawn, and how opaque.
inline constexpr double kDrawX = 10.5;
inline constexpr double kDrawY = 20.25;
inline constexpr double kOpacity = 0.7;

// A smooth picture with noise on it, opaque, in any channel order; the same for everyone.
inline std::uint32_t PixelAt(int x, int y) {
  std::uint32_t noise =
      static_cast<std::uint32_t>(x) * 2654435761U ^ static_cast<std::uint32_t>(y) * 2246822519U;
  noise ^= noise >> 15;
  const auto level = [&](int value, int shift) {
    return (static_cast<std::uint32_t>(value & 255) * 3 / 4 + (noise >> shift & 63)) & 255U;
  };
  return level(x / 8, 0) | level(y / 8, 6) << 8 | level((x + y) / 16, 12) << 16 | 0xFF000000U;
}

using Words = std::vector<std::uint32_t>;

Words Pixels(int width, int height);  // row by row, without gaps; throws std::bad_alloc

}  // namespace bench
