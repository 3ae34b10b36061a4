// Enlarges smoothly: a smoothstep blend of the neighbouring pixels, first down the columns, then
// along the rows.
#pragma once

#include "plugin/host_interface.h"

// A new picture of width × height pixels with one reference for the caller, with an alpha channel
// exactly when src has one; null when src cannot be locked, the picture cannot be made or memory is
// short. Meant for sizes above the source's in both directions.
//
// All four bytes of a pixel are interpolated alike, in storage order, whatever they mean: an alpha
// byte too. Single precision throughout; the result is rounded to nearest and clamped to 0..255.
// Neighbours beyond the border are the border's pixels. Yields three times while it prepares and
// once per destination row for each of the four bytes.
REALpictureStruct* ScalePictureNiceBigger(REALpictureStruct* src, int width, int height);
