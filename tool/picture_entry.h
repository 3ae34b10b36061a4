// How a picture file's pixels become a picture of the host.
#pragma once

#include "host/runtime.h"
#include "tool/bitmap.h"
#include "tool/host_options.h"

namespace tool {

// Makes a host picture of the kind that the running host has: a bitmap context of
// `pixelFormat` (1..6) on desktop hosts and hosts without a kind, a host buffer on console and web
// hosts. A bitmap with transparency becomes what `alpha` says; with kChannel a bitmap context has
// format AlphaPixelFormat(pixelFormat). The picture carries one reference held by "picturehost".
host::Picture* EnterHost(host::Runtime& runtime, const Bitmap& bitmap, AlphaEntry alpha,
                         int pixelFormat);

// Gives an opaque picture a mask of its own, of any size: black shows the picture, white hides it.
// Transparency of the bitmap is dropped.
void GiveMask(host::Runtime& runtime, host::Picture* picture, const Bitmap& mask, int pixelFormat);

}  // namespace tool
