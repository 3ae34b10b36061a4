#include "tool/gallery_tiles.h"

#include <algorithm>
#include <cmath>

#include "tool/html.h"

namespace tool {
namespace {

// At most so many pixels of a detail are magnified.
constexpr Extent kMagnified = {60, 45};

Part Around(const Bitmap& picture, Centre centre, Extent most) {
  Part part{0, 0, std::min(most.width, picture.width), std::min(most.height, picture.height)};
  const auto start = [](double middle, int length, int all) {
    return std::clamp(int(std::floor(middle * all)) - length / 2, 0, all - length);
  };
  part.x = start(centre.x, part.width, picture.width);
  part.y = start(centre.y, part.height, picture.height);
  return part;
}

}  // namespace

std::string SizeText(int width, int height) {
  return std::to_string(width) + " × " + std::to_string(height);
}

Show ShowWhole(const std::string& alternative, int most) {
  return [=](const TileResult& made) -> Shown {
    const Extent size = Fitting(made.seen, most);
    if (size.width == made.seen.width) return {ImageElement(made.seen, alternative), ""};
    return {ImageElement(Reduced(made.seen, size.width, size.height), alternative),
            "Shown reduced to " + SizeText(size.width, size.height) + "."};
  };
}

Show ShowMagnified(const std::string& alternative, int zoom) {
  return [=](const TileResult& made) -> Shown {
    return {ImageElement(made.seen, alternative, zoom), ""};
  };
}

Show ShowDetail(const std::string& alternative, Centre centre) {
  return [=](const TileResult& made) -> Shown {
    const Bitmap detail = Crop(made.seen, Around(made.seen, centre, kDetail));
    const Bitmap near = Crop(made.seen, Around(made.seen, centre, kMagnified));
    const int zoom =
        std::max(1, std::min(kDetail.width / near.width, kDetail.height / near.height));
    const std::string times = ", magnified " + std::to_string(zoom) + " times";
    return {ImageElement(detail, alternative) + ImageElement(near, alternative + times, zoom), ""};
  };
}

Show ShowMasked(const std::string& alternative) {
  return [=](const TileResult& made) -> Shown {
    std::string html = "<div class=\"row\">\n";
    if (!made.mask.pixels.empty()) {
      html += ImageElement(made.colours, alternative + ": the picture without its mask");
      html += ImageElement(made.mask, alternative + ": the mask");
    }
    return {html + ImageElement(made.seen, alternative + ": both together") + "</div>\n",
            made.mask.pixels.empty() ? "The result has no mask." : ""};
  };
}

}  // namespace tool
