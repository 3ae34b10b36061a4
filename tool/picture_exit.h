// What a person would see of a picture of the host.
#pragma once

#include "host/picture.h"
#include "tool/bitmap.h"

namespace tool {

// Straight colours. Opaque pictures are opaque whatever their unused byte holds; an alpha channel
// is kept; a mask becomes alpha 255 - level (times the alpha channel, should there be one). Beyond
// a mask that is smaller than its picture nothing is masked.
Bitmap LeaveHost(const host::Picture& picture);

}  // namespace tool
