// Lays pictures side by side on one sheet.
#pragma once

#include <vector>

#include "tool/bitmap.h"

namespace tool {

// The part of each picture that is shown, in its own pixels; what lies outside the picture is left
// out. A width of 0 shows all.
struct Part {
  int x = 0, y = 0, width = 0, height = 0;
};

struct SheetLayout {
  int columns = 0;  // pictures in a row; 0 puts all in one
  int zoom = 1;     // sheet pixels a side for one picture pixel
  Part part;
};

// An opaque white sheet with the pictures in reading order, upper left in cells of equal size, 8
// pixels apart; transparency is laid on white. Needs at least one picture. Throws Failure when a
// part lies outside its picture or the sheet would have more than 2^28 pixels.
Bitmap ContactSheet(const std::vector<Bitmap>& pictures, const SheetLayout& layout);

}  // namespace tool
