#include "tool/contact_sheet.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "tool/exit_status.h"

namespace tool {
namespace {

constexpr int kGap = 8;
constexpr std::int64_t kMostPixels = std::int64_t{1} << 28;

Part Shown(const Bitmap& picture, const Part& part) {
  if (part.width == 0) return {0, 0, picture.width, picture.height};
  Part shown = part;
  shown.width = std::min(part.width, picture.width - part.x);
  shown.height = std::min(part.height, picture.height - part.y);
  if (part.x < 0 || part.y < 0 || shown.width < 1 || shown.height < 1) {
    throw Failure("the part lies outside a picture of " + std::to_string(picture.width) + "x" +
                  std::to_string(picture.height));
  }
  return shown;
}

std::uint8_t OnWhite(std::uint8_t channel, std::uint8_t alpha) {
  return static_cast<std::uint8_t>((channel * alpha + 255 * (255 - alpha) + 127) / 255);
}

void Lay(const Bitmap& picture, const Part& part, int zoom, Bitmap& sheet, int left, int top) {
  for (int y = 0; y < part.height * zoom; ++y) {
    for (int x = 0; x < part.width * zoom; ++x) {
      const host::Rgba colour = picture.At(part.x + x / zoom, part.y + y / zoom);
      sheet.At(left + x, top + y) = {OnWhite(colour.r, colour.a), OnWhite(colour.g, colour.a),
                                     OnWhite(colour.b, colour.a), 255};
    }
  }
}

}  // namespace

Bitmap ContactSheet(const std::vector<Bitmap>& pictures, const SheetLayout& layout) {
  std::int64_t cellWidth = 0;
  std::int64_t cellHeight = 0;
  for (const Bitmap& picture : pictures) {
    const Part part = Shown(picture, layout.part);
    cellWidth = std::max(cellWidth, std::int64_t{part.width} * layout.zoom);
    cellHeight = std::max(cellHeight, std::int64_t{part.height} * layout.zoom);
  }
  const int count = static_cast<int>(pictures.size());
  const int columns = layout.columns == 0 ? count : std::min(layout.columns, count);
  const int rows = (count + columns - 1) / columns;
  const std::int64_t width = columns * (cellWidth + kGap) - kGap;
  const std::int64_t height = rows * (cellHeight + kGap) - kGap;
  if (width > kMostPixels || height > kMostPixels || width * height > kMostPixels) {
    throw Failure("the sheet would be too large");
  }
  Bitmap sheet(static_cast<int>(width), static_cast<int>(height), false);
  for (host::Rgba& pixel : sheet.pixels) pixel = {255, 255, 255, 255};
  for (int i = 0; i < count; ++i) {
    const Bitmap& picture = pictures[static_cast<std::size_t>(i)];
    Lay(picture, Shown(picture, layout.part), layout.zoom, sheet,
        static_cast<int>(i % columns * (cellWidth + kGap)),
        static_cast<int>(i / columns * (cellHeight + kGap)));
  }
  return sheet;
}

}  // namespace tool
