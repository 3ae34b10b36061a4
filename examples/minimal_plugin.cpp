// A plug-in of one method, to start your own from. It gives class "Picture"
//   MinimalCountGreys(darkest as integer = 0) as integer
// how many different greys of at least `darkest` (0..255) a picture has; -1: no pixels to be had.
#include "platform/bitmap_context.h"
#include "plugin/host_interface.h"

namespace {

REALresolver gHost;  // set once, before any method is called

// The host's routines are found by name. Null for one that this host lacks: ask before you call.
template <typename Entry>
Entry* Get(const char* name) {
  return reinterpret_cast<Entry*>(gHost(name));
}

// The first colour of a locked picture's row. Each pixel has 4 bytes; three of them are colours.
const unsigned char* FirstColour(const REALpictureDescription& locked, std::int32_t y) {
  if (locked.type == kDescriptionHostBuffer) {  // in console and web applications
    return static_cast<REALhostBuffer*>(locked.handle)->rowTable[y];
  }
  const auto context = static_cast<CGContextRef>(locked.handle);
  const auto* start = static_cast<unsigned char*>(CGBitmapContextGetData(context));
  const std::size_t first = CGBitmapContextGetAlphaInfo(context) % 2 == 0 ? 1 : 0;
  return start + static_cast<std::size_t>(y) * CGBitmapContextGetBytesPerRow(context) + first;
}

std::int32_t CountGreys(const REALpictureDescription& locked, std::int32_t darkest) {
  bool seen[256] = {};
  std::int32_t count = 0;
  for (std::int32_t y = 0; y < locked.height; ++y) {
    const unsigned char* colour = FirstColour(locked, y);
    for (std::int32_t x = 0; x < locked.width; ++x, colour += 4) {
      const std::int32_t grey = (colour[0] + colour[1] + colour[2]) / 3;
      if (grey >= darkest && !seen[grey]) ++count;
      seen[grey] = true;
    }
  }
  return count;
}

// A method is given the picture that it is called on, then what it declares. What it takes from the
// host (references, locks) it gives back on every way out; the trace shows both.
std::int32_t MinimalCountGreys(REALpicture self, std::int32_t darkest) {
  const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  const auto unlock = Get<UnlockPictureDescriptionEntry>("unlockPictureDescription");
  if (self == nullptr || lock == nullptr || unlock == nullptr) return -1;
  REALpictureDescription locked = {};
  const bool isLocked = lock(self, &locked, kDescriptionBitmapContext) != 0 ||
                        lock(self, &locked, kDescriptionHostBuffer) != 0;
  if (!isLocked) return -1;
  const std::int32_t count = CountGreys(locked, darkest);
  unlock(self);
  return count;
}

// The host keeps the records, and all that they point to, for as long as it runs.
constexpr char kDeclaration[] = "MinimalCountGreys(darkest as integer = 0) as integer";
const auto kRoutine = reinterpret_cast<REALroutine>(MinimalCountGreys);
REALmethodDefinition gMethods[] = {{kRoutine, nullptr, kDeclaration, 4, {}}};  // 4: public
REALclassDefinition gPicture = {};

}  // namespace

// The one export. The host calls it when it loads the plug-in.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver host) {
  gHost = host;
  const auto version = Get<REALGetRBVersionEntry>("REALGetRBVersion");
  const auto announce = Get<RegisterPluginVersionEntry>("RegisterPluginVersion");
  const auto add = Get<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension");
  if (version == nullptr || announce == nullptr || add == nullptr || version() < 2012.0) return;
  gPicture.version = 10;  // the form of the records; older hosts read another, newer ones this too
  gPicture.className = "Picture";
  gPicture.methods = gMethods;
  gPicture.methodCount = sizeof gMethods / sizeof gMethods[0];
  gPicture.flags = 4;
  announce(10);
  add(&gPicture);
}
