// Faults in the bounds of memory: beside the pixels, and where a size was trusted.
#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"
#include "tests/tool/faulty/locked_pixels.h"

namespace faulty {
namespace {

void WritePadding(MethodCall& call) {
  call.Proceed();
  const LockedPixels pixels(call.Written());
  const bool padded = pixels.rowBytes > static_cast<std::size_t>(pixels.width) * 4;
  if (pixels.width > 0 && padded) *pixels.End() ^= 0x55;
}

void TouchWordTooFar(MethodCall& call) {
  call.Proceed();
  const LockedPixels pixels(call.Written());
  if (pixels.width > 0) Touch(pixels.End());
}

void TouchWordTooEarly(MethodCall& call) {
  call.Proceed();
  const LockedPixels pixels(call.Written());
  if (pixels.width > 0) Touch(pixels.Row(0) - 4);
}

// Looks for a pixel at that size's lower right corner.
void TouchCorner(const LockedPixels& pixels, std::int32_t width, std::int32_t height) {
  Touch(pixels.Row(height - 1) + static_cast<std::size_t>(width - 1) * 4);
}

// As if the mask had its picture's size.
void TrustMaskSize(MethodCall& call) {
  const bool masked = call.Draws() || call.method == Method::kScaleImageAndMask;
  const REALpicture picture = call.Draws() ? call.drawn : call.self;
  if (masked && picture != nullptr) {
    const REALpicture mask = Get<REALGetPictureMaskEntry>("REALGetPictureMask")(picture, 0);
    if (mask != nullptr) {
      const LockedPixels pixels(mask);
      TouchCorner(pixels, Size(picture, "Width"), Size(picture, "Height"));
    }
    Give(mask);
  }
  call.Proceed();
}

// As if the result had the asked size.
void TrustResultSize(MethodCall& call) {
  call.Proceed();
  if (!call.Scales() || call.Refused()) return;
  TouchCorner(LockedPixels(call.result), call.width, call.height);
}

const Fault kFaults[] = {
    {"writes-padding", WritePadding},        {"word-too-far", TouchWordTooFar},
    {"word-too-early", TouchWordTooEarly},   {"trusts-mask-size", TrustMaskSize},
    {"trusts-result-size", TrustResultSize},
};

}  // namespace

std::span<const Fault> MemoryFaults() { return kFaults; }

}  // namespace faulty
