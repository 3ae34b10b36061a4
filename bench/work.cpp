#include "bench/work.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <istream>
#include <sstream>
#include <string_view>

namespace bench {

namespace {

struct Name {
  std::string_view text;
  Kind kind;
  bool hasNumber;
};

constexpr std::array kNames = {
    Name{"fast", Kind::kFast, false},
    Name{"smooth", Kind::kSmooth, false},
    Name{"both", Kind::kBoth, false},
    Name{"resample", Kind::kResample, true},
    Name{"blur", Kind::kBlur, true},
    Name{"draw", Kind::kDraw, false},
    Name{"drawmasked", Kind::kDrawMasked, false},
};

// "4000x3000".
bool ReadSize(std::istream& text, int& width, int& height) {
  char x = 0;
  return text >> width >> x >> height && x == 'x' && width > 0 && height > 0;
}

}  // namespace

std::optional<Work> ParseWork(const std::string& words) {
  std::istringstream text(words);
  std::string kind;
  Work work{.words = words};
  while (std::islower(text.peek()) != 0) kind.push_back(static_cast<char>(text.get()));
  const bool hasNumber = std::isdigit(text.peek()) != 0 && text >> work.number;
  const auto* found = std::find_if(kNames.begin(), kNames.end(), [&](const Name& name) {
    return name.text == kind && name.hasNumber == hasNumber;
  });
  if (found == kNames.end()) return std::nullopt;
  work.kind = found->kind;
  const bool isWhole = ReadSize(text, work.sourceWidth, work.sourceHeight) &&
                       ReadSize(text, work.width, work.height) && (text >> std::ws).eof();
  return isWhole ? std::optional(work) : std::nullopt;
}

Words Pixels(int width, int height) {
  Words pixels;
  pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) pixels.push_back(PixelAt(x, y));
  }
  return pixels;
}

}  // namespace bench
