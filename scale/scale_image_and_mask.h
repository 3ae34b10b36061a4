// Scales a picture together with its mask.
#pragma once

#include "plugin/host_interface.h"

// pic scaled to width × height, with one reference for the caller, its mask scaled by the same
// scaler and drawn into the result's mask; null when the picture cannot be scaled. sourceWidth ×
// sourceHeight only choose the scaler: the smooth one when antiAlias is set and both sides grow. A
// mask that cannot be read, scaled or drawn is left out silently.
REALpictureStruct* ScaleImageAndMaskInternal(REALpictureStruct* pic, int width, int height,
                                             signed char antiAlias, int sourceWidth,
                                             int sourceHeight);
