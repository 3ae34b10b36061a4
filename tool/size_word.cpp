#include "tool/size_word.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "tool/exit_status.h"

namespace tool {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

bool StartsAsNumber(const std::string& text) {
  return !text.empty() && ((text[0] >= '0' && text[0] <= '9') || text[0] == '.');
}

template <typename Number>
std::optional<Number> ParsePositive(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (!StartsAsNumber(text) || error != std::errc() || stop != end || !(number > 0)) return {};
  return number;
}

// side · other / ofSide, to the nearest, halves up; all are positive.
double InProportion(std::int32_t side, std::int32_t other, std::int32_t ofSide) {
  const std::uint64_t twice = 2 * std::uint64_t(side) * std::uint64_t(other);
  const auto divisor = std::uint64_t(ofSide);
  const std::uint64_t rounded = (twice + divisor) / (2 * divisor);
  return double(rounded);
}

double OfHundred(double percent, std::int32_t side) {
  return std::floor(percent * side / 100 + 0.5);
}

}  // namespace

std::optional<SizeWord> SizeWord::Parse(const std::string& text) {
  SizeWord size;
  size.text_ = text;
  if (text.ends_with('%')) {
    const std::string number = text.substr(0, text.size() - 1);
    // No exponents: a percentage is digits and a point.
    if (number.find_first_not_of("0123456789.") != std::string::npos) return {};
    const auto percent = ParsePositive<double>(number);
    if (!percent) return {};
    size.percent_ = *percent;
    return size;
  }
  const std::size_t cross = text.find_first_of("xX");
  if (cross == std::string::npos || text.size() == 1) return {};
  const std::string width = text.substr(0, cross);
  const std::string height = text.substr(cross + 1);
  size.width_ = ParsePositive<std::int32_t>(width);
  size.height_ = ParsePositive<std::int32_t>(height);
  const bool understood = (size.width_ || width.empty()) && (size.height_ || height.empty());
  return understood ? std::optional<SizeWord>(size) : std::nullopt;
}

Extent SizeWord::For(const Extent& picture) const {
  double width = 0, height = 0;
  if (width_ || height_) {
    width = width_ ? *width_ : InProportion(*height_, picture.width, picture.height);
    height = height_ ? *height_ : InProportion(*width_, picture.height, picture.width);
  } else {
    width = OfHundred(percent_, picture.width);
    height = OfHundred(percent_, picture.height);
  }
  if (width > kMost || height > kMost) {
    throw UsageError("'" + text_ + "' of a picture of " + std::to_string(picture.width) + "x" +
                     std::to_string(picture.height) + " is more than " + std::to_string(kMost) +
                     " pixels wide or high");
  }
  return {width < 1 ? 1 : std::int32_t(width), height < 1 ? 1 : std::int32_t(height)};
}

}  // namespace tool
