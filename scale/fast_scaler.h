// Scales by averaging, for every new pixel, the source pixels under it.
#pragma once

#include "plugin/host_interface.h"

// A new picture of width × height pixels with one reference for the caller, opaque, with an alpha
// channel exactly when src has one; null when src cannot be locked or the picture cannot be made.
//
// Destination pixel (i, j) is the mean of the ceil(sw/width) pixels from column trunc(i·sw/width)
// on of source row trunc(j·sh/height), each channel trunc((0.5 + sum) / count). Deliberate: of the
// rows that a destination row covers only the first is read, counted as often as there are rows.
// Deliberate: the half is added once, not once per sample.
//
// Yields after every destination row and once more at the end, also after a failure. Allocates
// nothing but the picture.
REALpictureStruct* ScalePictureFast(REALpictureStruct* src, int width, int height);
