// Draws one picture into another at a position with fractions of pixels.
#pragma once

#include "plugin/host_interface.h"

// Draws pic into dest, in place, with its upper left corner at (x, y) pixels, its mask and an
// overall opacity. True when it was drawn; false after a host exception for a null argument, or
// silently when a picture cannot be locked.
//
// Every pixel of dest is rewritten, opaque: a bilinear blend of the four pixels of pic that the
// position brings under it, each weighted by its area, by alpha and by the mask (black keeps, white
// removes), and filled up with dest's own colour where the weights fall short of 1. Each product is
// truncated before it is added. Deliberate: alpha is not limited to 0..1, and pic's own alpha
// channel is ignored. The mask is taken to have the size of pic: its rows from its height on are
// its row 0, columns beyond it its last.
//
// Yields at the start, after every row, and once more at the end. Allocates nothing.
bool DrawPictureF(REALpictureStruct* dest, REALpictureStruct* pic, double x, double y, double alpha,
                  int yieldPeriod);
