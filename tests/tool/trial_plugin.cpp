// A plug-in for the tests of picturehost: methods that do well, refuse, leak, raise and take their
// time. It extends "Picture" as any plug-in does.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>

#include "platform/bitmap_context.h"
#include "plugin/host_interface.h"

namespace {

REALresolver gHost;

template <typename Entry>
Entry* Get(const char* name) {
  return reinterpret_cast<Entry*>(gHost(name));
}

void Take(REALobject object) { Get<REALLockObjectEntry>("REALLockObject")(object); }
void Give(REALobject object) { Get<REALUnlockObjectEntry>("REALUnlockObject")(object); }

REALpicture Itself(REALpicture self) {
  Take(self);
  return self;
}

// Writes a text where the trace shows it.
void Say(const char* text) {
  const REALstring string =
      Get<REALBuildStringEntry>("REALBuildString")(text, std::int32_t(std::strlen(text)));
  Get<REALUnlockStringEntry>("REALUnlockString")(string);
}

REALpicture Echo(REALpicture self, std::int32_t number, double fraction, bool flag,
                 std::int32_t last) {
  char text[100];
  std::snprintf(text, sizeof text, "%d %g %s %d", int(number), fraction, flag ? "true" : "false",
                int(last));
  Say(text);
  return Itself(self);
}

REALpicture Leak(REALpicture self) {
  Take(self);
  return Itself(self);
}

REALpicture Misuse(REALpicture self) {
  Get<UnlockPictureDescriptionEntry>("unlockPictureDescription")(self);
  return Itself(self);
}

// Raises, and returns a picture all the same.
REALpicture Raise(REALpicture self) {
  const REALobject exception =
      Get<PluginNewInstanceEntry>("PluginNewInstance")("OutOfBoundsException");
  const REALstring text = Get<REALBuildStringEntry>("REALBuildString")("too far out", 11);
  Get<REALSetPropValueStringEntry>("REALSetPropValueString")(exception, "Message", text);
  Get<REALUnlockStringEntry>("REALUnlockString")(text);
  Get<RuntimeRaiseExceptionEntry>("RuntimeRaiseException")(exception);
  Give(exception);
  return Itself(self);
}

REALpicture Refuse(REALpicture) { return nullptr; }
bool Decline(REALpicture) { return false; }
std::int32_t IsNil(REALpicture, REALpicture picture) { return picture == nullptr ? 1 : 0; }

// The alpha info of the picture's bitmap context, or 8 for a host buffer.
std::int32_t Format(REALpicture self) {
  REALpictureDescription description = {};
  const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  std::int32_t format = 8;
  if (lock(self, &description, kDescriptionBitmapContext) != 0) {
    format = std::int32_t(
        CGBitmapContextGetAlphaInfo(static_cast<CGContextRef>(description.handle)) & 7);
  } else if (lock(self, &description, kDescriptionHostBuffer) == 0) {
    return -1;
  }
  Get<UnlockPictureDescriptionEntry>("unlockPictureDescription")(self);
  return format;
}

// Draws another picture over the receiver's top left corner.
bool Overlay(REALpicture self, REALpicture picture) {
  const REALgraphics graphics =
      Get<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(self);
  const auto draw = reinterpret_cast<DrawPictureMethod*>(
      Get<REALLoadObjectMethodEntry>("REALLoadObjectMethod")(graphics, kDrawPictureDeclaration));
  draw(graphics, picture, 0, 0, 2, 2, 0, 0, 2, 2);
  Give(graphics);
  return true;
}

REALpicture MaskOf(REALpicture self) {
  return Get<REALGetPictureMaskEntry>("REALGetPictureMask")(self, 0);
}

REALpicture Opaque(REALpicture, std::int32_t width, std::int32_t height) {
  return Get<NewPictureEntry>("newPicture")(width, height, 32);
}

REALpicture Clear(REALpicture, std::int32_t width, std::int32_t height) {
  const auto picture =
      static_cast<REALpicture>(Get<PluginNewInstanceEntry>("PluginNewInstance")("Picture"));
  const auto construct = reinterpret_cast<ConstructorMethod*>(
      Get<REALLoadObjectMethodEntry>("REALLoadObjectMethod")(picture, kConstructorDeclaration));
  construct(picture, width, height);
  return picture;
}

std::int32_t FormatOfOpaque(REALpicture self) {
  const REALpicture picture = Opaque(self, 1, 1);
  const std::int32_t format = Format(picture);
  Give(picture);
  return format;
}

std::int32_t FormatOfClear(REALpicture self) {
  const REALpicture picture = Clear(self, 1, 1);
  const std::int32_t format = Format(picture);
  Give(picture);
  return format;
}

// Works for about a second; with a yield argument it yields fifty times on the way.
REALpicture Dawdle(REALpicture self, std::int32_t yield) {
  char text[40];
  std::snprintf(text, sizeof text, "period %d", int(yield));
  Say(text);
  for (int i = 0; i < 50; ++i) {
    const timespec pause = {0, 20000000};
    nanosleep(&pause, nullptr);
    if (yield != 0) Get<REALYieldToRBEntry>("REALYieldToRB")();
  }
  return Itself(self);
}

void Yield() { Get<REALYieldToRBEntry>("REALYieldToRB")(); }

double SecondsNow() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Yields once and then works on for so many seconds, whatever signals come.
REALpicture Stall(REALpicture self, std::int32_t seconds) {
  Yield();
  Say("stalls");
  const double end = SecondsNow() + seconds;
  while (SecondsNow() < end) {
  }
  return Itself(self);
}

// Yields for about ten seconds, or until an exception comes out of a yield, which it keeps to
// itself.
REALpicture Swallow(REALpicture self) {
  try {
    for (int i = 0; i < 500; ++i) {
      const timespec pause = {0, 20000000};
      nanosleep(&pause, nullptr);
      Yield();
    }
  } catch (...) {
    Say("swallowed");
  }
  return Itself(self);
}

void YieldWithoutExceptions() noexcept { Yield(); }

// Yields for about ten seconds, and lets no exception pass.
REALpicture Bar(REALpicture self) {
  for (int i = 0; i < 500; ++i) {
    const timespec pause = {0, 20000000};
    nanosleep(&pause, nullptr);
    YieldWithoutExceptions();
  }
  return Itself(self);
}

// Ends its process when it is asked for more than a width of 2: by a signal, or in an orderly way.
REALpicture Perish(REALpicture self, std::int32_t width, std::int32_t, bool orderly) {
  if (width > 2 && orderly) std::exit(0);
  if (width > 2) std::raise(SIGKILL);
  return Itself(self);
}

// Writes two lines in pieces, on standard output and standard error.
REALpicture Chatter(REALpicture self) {
  for (const char* piece : {"one ", "line\n", "another ", "line"}) {
    for (std::FILE* file : {stdout, stderr}) {
      std::fputs(piece, file);
      std::fflush(file);
    }
    const timespec pause = {0, 20000000};
    nanosleep(&pause, nullptr);
  }
  return Itself(self);
}

REALpicture Spell(REALpicture self, REALstring) { return Itself(self); }

constexpr std::uintptr_t kFlags = 4;
template <typename Function>
REALmethodDefinition Method(Function* function, const char* declaration) {
  return {reinterpret_cast<REALroutine>(function), nullptr, declaration, kFlags, {0, 0}};
}

REALmethodDefinition gMethods[] = {
    Method(Echo,
           "Echo(number as integer, fraction as double = -0.5, flag as boolean = true, last as "
           "integer = 7) as picture"),
    Method(Leak, "Leak as picture"),
    Method(Misuse, "Misuse() as picture"),
    Method(Raise, "Raise as picture"),
    Method(Refuse, "Refuse as picture"),
    Method(Decline, "Decline as boolean"),
    Method(IsNil, "IsNil(pic as picture) as integer"),
    Method(Format, "Format as integer"),
    Method(Overlay, "Overlay(pic as picture) as boolean"),
    Method(MaskOf, "MaskOf as picture"),
    Method(Opaque, "Opaque(width as integer, height as integer) as picture"),
    Method(Clear, "Clear(width as integer, height as integer) as picture"),
    Method(FormatOfOpaque, "FormatOfOpaque as integer"),
    Method(FormatOfClear, "FormatOfClear as integer"),
    Method(Dawdle, "Dawdle(YieldTicks as integer = 0) as picture"),
    Method(Stall, "Stall(seconds as integer) as picture"),
    Method(Swallow, "Swallow as picture"),
    Method(Bar, "Bar as picture"),
    Method(Perish,
           "Perish(width as integer, height as integer, orderly as boolean = false) as picture"),
    Method(Chatter, "Chatter as picture"),
    Method(Spell, "Spell(text as string) as picture"),
};

REALclassDefinition gPicture = {};

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver host) {
  gHost = host;
  Get<RegisterPluginVersionEntry>("RegisterPluginVersion")(13);
  gPicture.version = 13;
  gPicture.className = "Picture";
  gPicture.methods = gMethods;
  gPicture.methodCount = sizeof gMethods / sizeof gMethods[0];
  gPicture.flags = kFlags;
  Get<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension")(&gPicture);
}
