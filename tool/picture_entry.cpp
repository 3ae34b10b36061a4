#include "tool/picture_entry.h"

namespace tool {
namespace {

constexpr char kTaker[] = "picturehost";

host::Storage StorageOf(host::ApplicationKind kind) {
  const bool buffers =
      kind == host::ApplicationKind::kConsole || kind == host::ApplicationKind::kWeb;
  return buffers ? host::Storage::kHostBuffer : host::Storage::kBitmapContext;
}

}  // namespace

host::Picture* EnterHost(host::Runtime& runtime, const Bitmap& bitmap, AlphaEntry alpha,
                         int pixelFormat) {
  host::PictureSpec spec;
  spec.width = bitmap.width;
  spec.height = bitmap.height;
  spec.storage = StorageOf(runtime.Options().kind);
  spec.pixelFormat = pixelFormat;
  const host::PictureSpec maskSpec = spec;
  const bool channel = bitmap.hasAlpha && alpha == AlphaEntry::kChannel;
  if (channel) {
    spec.hasAlphaChannel = true;
    spec.pixelFormat = AlphaPixelFormat(pixelFormat);
  }

  host::Picture* picture = runtime.NewPicture(spec, kTaker);
  for (int y = 0; y < bitmap.height; ++y) {
    for (int x = 0; x < bitmap.width; ++x) {
      picture->Set(x, y, bitmap.At(x, y));  // opaque pictures take no alpha
    }
  }
  if (bitmap.hasAlpha && alpha == AlphaEntry::kMask) {
    host::Picture* mask = runtime.NewPicture(maskSpec, kTaker);
    for (int y = 0; y < bitmap.height; ++y) {
      for (int x = 0; x < bitmap.width; ++x) {
        const auto level = std::uint8_t(255 - bitmap.At(x, y).a);
        mask->Set(x, y, {level, level, level, 255});
      }
    }
    runtime.SetMask(picture, mask);
  }
  return picture;
}

void GiveMask(host::Runtime& runtime, host::Picture* picture, const Bitmap& mask, int pixelFormat) {
  runtime.SetMask(picture, EnterHost(runtime, mask, AlphaEntry::kDrop, pixelFormat));
}

}  // namespace tool
