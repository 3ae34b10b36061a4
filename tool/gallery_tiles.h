// How tiles of a gallery show the picture that a call gave.
#pragma once

#include "tool/gallery_plan.h"
#include "tool/picture_parts.h"

namespace tool {

using Show = std::function<Shown(const TileResult&)>;

// The whole picture; one with a side of more than `most` pixels is reduced, and the tile says so.
Show ShowWhole(const std::string& alternative, int most);

// The whole picture, each pixel as zoom x zoom.
Show ShowMagnified(const std::string& alternative, int zoom);

// A part of at most kDetail around `centre` (0..1 of width and height) at 1:1, and below it what
// is next to the centre, magnified without smoothing to about the same size.
inline constexpr Extent kDetail = {240, 180};
struct Centre {
  double x = 0.5, y = 0.5;
};
Show ShowDetail(const std::string& alternative, Centre centre = {});

// The picture without its mask, the mask, and both together.
Show ShowMasked(const std::string& alternative);

std::string SizeText(int width, int height);  // "640 × 480"

}  // namespace tool
