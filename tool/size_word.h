// Sizes as people write them: 800x600, 800x, x600, 50%.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// Width and height in pixels, each at least 1.
struct Extent {
  std::int32_t width = 1;
  std::int32_t height = 1;
  friend bool operator==(const Extent&, const Extent&) = default;
};

class SizeWord {
 public:
  // "800x600", "800x", "x600" (x or X) with whole numbers of 1 to 2147483647, or a percentage above
  // 0 with or without a fraction, "12.5%". Nothing for any other text, a sign or a blank among it.
  static std::optional<SizeWord> Parse(const std::string& text);

  // The size for a picture of that extent. A side that is not given follows the picture's
  // proportions; it and both sides of a percentage are rounded to the nearest whole number, halves
  // up, and at least 1. Throws UsageError with one line when a side exceeds 2147483647.
  Extent For(const Extent& picture) const;

 private:
  std::string text_;
  std::optional<std::int32_t> width_;
  std::optional<std::int32_t> height_;
  double percent_ = 0;  // where neither is given
};

}  // namespace tool
