// Judges large results by their parts: each is made anew from the part of the source it depends on.
#pragma once

#include <functional>

#include "tests/large/pattern.h"

namespace large {

// So many result pixels stand for so many source pixels, in both directions.
struct Ratio {
  int result = 1;
  int source = 1;
};

struct Windows {
  Ratio ratio = {};
  int margin = 0;  // result pixels around a window that its pixels may depend on
  int width = 40;  // of a window, result pixels
  int height = 30;
  bool everywhere = false;  // windows that cover the whole result, else 9 at its borders and in its
                            // middle and 16 in between
};

// What the method makes of that area of the source, alone: at a picture's border the area ends with
// it, elsewhere the margin's pixels do not count. `result` is where it lies in the result.
using Expected = std::function<oracle::Image(const Area& source, const Area& result)>;

// Fails the test at the first word that differs.
void ExpectWindows(const host::Picture& result, const Windows& windows, const Expected& expected);

// The same for one area.
void ExpectArea(const host::Picture& result, const Area& area, const oracle::Image& expected,
                int expectedX, int expectedY);

}  // namespace large
