// Pieces of a page that carries everything within itself.
#pragma once

#include <string>

#include "tool/bitmap.h"

namespace tool {

// Text for an element or a quoted attribute. Control characters and what is no UTF-8 (the name of a
// file may hold any bytes) become the replacement character.
std::string EscapeHtml(const std::string& text);

// "data:image/png;base64,…" with every pixel. Throws Failure as EncodePng does.
std::string DataUrl(const Bitmap& picture);

// An img element that shows each pixel as a square of `zoom` units, or smaller where the page is
// narrow. Magnified pixels keep their edges; behind transparency lies a checkerboard.
std::string ImageElement(const Bitmap& picture, const std::string& alternative, int zoom = 1);

}  // namespace tool
