// Sub-pixel picture drawing, stated literally; the expected pixels of every drawing.
#pragma once

#include "tests/oracles/image.h"

namespace oracle {

// Draws `source` into `destination` with source column 0 at x and source row 0 at y (any doubles),
// weighted by `alpha` (any double; not kept in 0..1). Every destination pixel is rewritten, opaque,
// top byte 0 in format 8; a destination in a format that holds no pixel is left as it is.
//
// x, y   their floors, as 32-bit integers, give the shift; the rest gives the four sample weights.
//        NaN and floors beyond 32 bits give a shift of -2^31, under which no sample lies.
// mask   null: none. Red 0 keeps a sample's weight, 255 removes it. Addressed with the source's
//        coordinates whatever its size: rows at or beyond its height are its row 0, columns at or
//        beyond its width its last column. Formats that hold no pixel count as red 0.
//
// The pictures may be the same object in any combination: reads then see what was written before,
// row by row from the top, each row from the left.
//
// Gives whether the drawing was made: false, with nothing changed, only for a mask without pixels.
bool DrawPicture(Image& destination, const Image& source, const Image* mask, double x, double y,
                 double alpha);

// A picture drawn into itself.
bool DrawPictureIntoItself(Image& picture, const Image* mask, double x, double y, double alpha);

}  // namespace oracle
