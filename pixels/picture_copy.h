// Copies one host picture into another where pixels cannot be reached directly.
#pragma once

#include "plugin/host_interface.h"

// Draws the sw×sh region at the origin of src scaled to w×h at the origin of dst, through the
// host's graphics object of dst; without one that can draw, copies with OwnCopy. Positions are
// always 0.
void GraphicsDrawPicture(REALpictureStruct* dst, REALpictureStruct* src, int x, int y, int w, int h,
                         int sx, int sy, int sw, int sh);

// The same through a graphics object that the caller holds. A graphics object that cannot draw
// makes it OwnCopy.
void DrawWithGraphics(REALgraphics graphics, REALpicture dst, REALpicture src, int w, int h, int sw,
                      int sh);

// Copies all pixels of src into dst, both host buffers of the same size. False, with nothing
// copied, for anything else, for null pictures, and when sw×sh is not w×h. Once src could be
// locked, the host is told that dst changed, whatever the result. Positions are always 0.
bool OwnCopy(REALpictureStruct* dst, REALpictureStruct* src, int x, int y, int w, int h, int sx,
             int sy, int sw, int sh);
