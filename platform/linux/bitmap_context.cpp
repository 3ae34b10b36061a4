// The bitmap-context queries. A null context answers 0 to all of them.
#include "platform/linux/bitmap_context.h"

void* CGBitmapContextGetData(CGContextRef context) {
  return context == nullptr ? nullptr : context->data;
}

std::size_t CGBitmapContextGetWidth(CGContextRef context) {
  return context == nullptr ? 0 : context->width;
}

std::size_t CGBitmapContextGetHeight(CGContextRef context) {
  return context == nullptr ? 0 : context->height;
}

std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return context == nullptr ? 0 : context->bytesPerRow;
}

std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
  return context == nullptr ? 0 : context->bitsPerPixel;
}

std::uint32_t CGBitmapContextGetAlphaInfo(CGContextRef context) {
  return context == nullptr ? 0 : context->alphaInfo;
}
