#include "tool/picture_exit.h"

#include <cstdint>

namespace tool {

Bitmap LeaveHost(const host::Picture& picture) {
  const host::Picture* mask = picture.Mask();
  Bitmap bitmap(picture.Width(), picture.Height(), picture.HasAlphaChannel() || mask != nullptr);
  for (int y = 0; y < bitmap.height; ++y) {
    for (int x = 0; x < bitmap.width; ++x) {
      host::Rgba pixel = picture.Get(x, y);
      if (mask != nullptr && x < mask->Width() && y < mask->Height()) {
        pixel.a = std::uint8_t((pixel.a * (255 - mask->Get(x, y).r) + 127) / 255);
      }
      bitmap.At(x, y) = pixel;
    }
  }
  return bitmap;
}

}  // namespace tool
