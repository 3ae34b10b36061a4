// Faults in the pixels of results, and in colours that are lost on the way.
#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"
#include "tests/tool/faulty/locked_pixels.h"

namespace faulty {
namespace {

// Changes one pixel, if the picture has that format or any will do.
constexpr int kAnyFormat = -1;
void Spoil(REALpicture picture, int format = kAnyFormat) {
  const LockedPixels pixels(picture);
  if (pixels.width < 1 || (format != kAnyFormat && format != pixels.format)) return;
  FlipBits(pixels.Row(0), 0x00808000);
}

void SpoilWritten(MethodCall& call) {
  call.Proceed();
  Spoil(call.Written());
}

void SpoilEverySecondTime(MethodCall& call) {
  static int written = 0;
  call.Proceed();
  if (call.Written() != nullptr && ++written % 2 == 1) Spoil(call.Written());
}

void SpoilImageAndMask(MethodCall& call) {
  call.Proceed();
  if (call.method == Method::kScaleImageAndMask) Spoil(call.Written());
}

void SpoilFormat5(MethodCall& call) {
  call.Proceed();
  Spoil(call.Written(), 5);
}

void SpoilHostBuffers(MethodCall& call) {
  call.Proceed();
  Spoil(call.Written(), 8);
}

void SpoilUnusedByte(MethodCall& call) {
  call.Proceed();
  const LockedPixels pixels(call.Written());
  if (pixels.width < 1) return;
  const bool top = pixels.format == 8 || pixels.format % 2 == 1;
  FlipBits(pixels.Row(0), top ? 0xFF000000 : 0x000000FF);
}

void SpoilSource(MethodCall& call) {
  call.Proceed();
  Spoil(call.Source());
}

std::uint8_t NoBool(REALobject, const char*, std::uint8_t*) { return 0; }
REALpicture NoMask(REALpicture, std::int32_t) { return nullptr; }
REALgraphics NoGraphics(REALpicture) { return nullptr; }

const Fault kFaults[] = {
    {"wrong-pixel", SpoilWritten},
    {"wrong-every-second-time", SpoilEverySecondTime},
    {"wrong-image-and-mask", SpoilImageAndMask},
    {"wrong-format-5", SpoilFormat5},
    {"wrong-in-host-buffers", SpoilHostBuffers},
    {"unused-byte", SpoilUnusedByte},
    {"changed-source", SpoilSource},
    {"alpha-dropped", {{"REALGetPropValueBool", NoBool}}},
    {"mask-forgotten", {{"REALGetPictureMask", NoMask}}},
    {"undrawn-copy", {{"pluginPictureGraphicsGetter", NoGraphics}}},
};

}  // namespace

std::span<const Fault> PixelFaults() { return kFaults; }

}  // namespace faulty
