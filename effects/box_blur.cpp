#include "effects/box_blur.h"

#include <cstring>

namespace {

constexpr std::uint64_t kSpare = 20;  // bytes behind each array

std::int32_t ClampIndex(std::int64_t index, std::int32_t size) {
  if (index < 0) return 0;
  return index < size ? static_cast<std::int32_t>(index) : size - 1;
}

std::uint64_t ColumnBytes(const PictureEditor& editor) {
  return static_cast<std::uint64_t>(editor.width) * 4 + kSpare;
}

// Running sums of the three channels.
struct Window {
  std::int32_t r = 0, g = 0, b = 0;

  void Add(Rgb colour, std::int32_t times) {
    r += static_cast<std::int32_t>(colour.r) * times;
    g += static_cast<std::int32_t>(colour.g) * times;
    b += static_cast<std::int32_t>(colour.b) * times;
  }
};

// How often each index occurs among clamp(-r) .. clamp(r) of `size` indexes: the first r + 1 times,
// the last as often as is left. Calls add(index, times).
template <typename Add>
void ForStartOfWindow(std::int32_t radius, std::int32_t size, Add&& add) {
  add(0, radius + 1);
  const std::int32_t whole = radius < size - 1 ? radius : size - 1;
  for (std::int32_t i = 1; i <= whole; ++i) add(i, 1);
  if (radius > whole) add(size - 1, radius - whole);
}

}  // namespace

BoxBlur::BoxBlur(const PictureEditor& source, PictureEditor& result, std::int32_t radius)
    : source_(source),
      result_(result),
      radius_(radius),
      box_(std::int64_t{radius} * 2 + 1),
      quotients_(static_cast<std::uint64_t>(box_) * 1024 + 1024),
      red_(ColumnBytes(source)),
      green_(ColumnBytes(source)),
      blue_(ColumnBytes(source)),
      row_(static_cast<std::uint64_t>(result.rowBytes) + kSpare) {}

bool BoxBlur::Complete() const { return quotients_ && red_ && green_ && blue_ && row_; }

void BoxBlur::FillTable() {
  const std::int64_t sums = box_ * 256;
  for (std::int64_t sum = 0; sum < sums; ++sum) {
    quotients_[sum] = static_cast<std::int32_t>(sum / box_);
  }
}

void BoxBlur::AddRow(std::int32_t row, std::int32_t times) {
  const auto* pixels = reinterpret_cast<const std::uint32_t*>(source_.RowAddress(row));
  WithLayout(source_.Layout(), [&](auto layout) {
    for (std::int32_t x = 0; x < source_.width; ++x) {
      const Rgb colour = Decode(layout.value, pixels[x]);
      red_[x] += static_cast<std::int32_t>(colour.r) * times;
      green_[x] += static_cast<std::int32_t>(colour.g) * times;
      blue_[x] += static_cast<std::int32_t>(colour.b) * times;
    }
  });
}

std::uint32_t BoxBlur::Word(std::int32_t r, std::int32_t g, std::int32_t b) const {
  const auto quotient = [this](std::int32_t sum) {
    return static_cast<std::uint32_t>(quotients_[sum]);
  };
  return EncodeOpaque(result_.Layout(), {quotient(r), quotient(g), quotient(b)});
}

void BoxBlur::StartColumns() {
  ForStartOfWindow(radius_, source_.height,
                   [this](std::int32_t row, std::int32_t times) { AddRow(row, times); });
}

void BoxBlur::BlurColumnsInto(std::int32_t y) {
  result_.GoToRow(y);
  for (std::int32_t x = 0; x < source_.width; ++x) {
    *result_.cursor++ = Word(red_[x], green_[x], blue_[x]);
  }
  AddRow(ClampIndex(std::int64_t{y} - radius_, source_.height), -1);
  AddRow(ClampIndex(std::int64_t{y} + radius_ + 1, source_.height), 1);
}

void BoxBlur::BlurRow(std::int32_t y) {
  const std::int32_t width = source_.width;
  const PixelLayout layout = source_.Layout();
  std::memcpy(row_.Data(), result_.RowAddress(y), static_cast<std::size_t>(width) * 4);
  Window window;
  ForStartOfWindow(radius_, width, [&](std::int32_t x, std::int32_t times) {
    window.Add(Decode(layout, row_[x]), times);
  });
  result_.GoToRow(y);
  for (std::int32_t x = 0; x < width; ++x) {
    *result_.cursor++ = Word(window.r, window.g, window.b);
    window.Add(Decode(layout, row_[ClampIndex(std::int64_t{x} + radius_ + 1, width)]), 1);
    window.Add(Decode(layout, row_[ClampIndex(std::int64_t{x} - radius_, width)]), -1);
  }
}
