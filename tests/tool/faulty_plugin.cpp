// A plug-in for the tests of picturehost validate. It loads the plug-in that VALIDATE_REAL_PLUGIN
// names, stands between it and the host, and adds the one fault that VALIDATE_FAULT names.
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/bitmap_context.h"
#include "platform/clocks.h"
#include "plugin/host_interface.h"

namespace {

REALresolver gHost;
void* gRealLibrary;
int gStarts;
int gDepth;        // of methods now running
int gCalls;        // of methods so far
bool gLockFailed;  // the latest lock of a description

bool Is(const char* fault) {
  const char* chosen = std::getenv("VALIDATE_FAULT");
  return chosen != nullptr && std::strcmp(chosen, fault) == 0;
}

template <typename Entry>
Entry* Get(const char* name) {
  return reinterpret_cast<Entry*>(gHost(name));
}

void Take(REALobject object) {
  const auto take = Get<REALLockObjectEntry>("REALLockObject");
  if (take != nullptr && object != nullptr) take(object);
}
void Give(REALobject object) {
  const auto give = Get<REALUnlockObjectEntry>("REALUnlockObject");
  if (give != nullptr && object != nullptr) give(object);
}

bool HasAlpha(REALpicture picture) {
  std::uint8_t has = 0;
  return Get<REALGetPropValueBoolEntry>("REALGetPropValueBool")(picture, "HasAlphaChannel", &has) !=
             0 &&
         has != 0;
}

std::int32_t Size(REALpicture picture, const char* property) {
  std::int32_t value = 0;
  if (picture == nullptr) return 0;
  const auto read = Get<REALGetPropValueIntegerEntry>("REALGetPropValueInteger");
  return read(picture, property, &value) != 0 ? value : 0;
}

// ---- Faults in pixels --------------------------------------------------------------------------

// A picture's pixels, locked while it lives; `width` is 0 when they cannot be had.
struct Pixels {
  REALpicture picture;
  std::int32_t width = 0, height = 0;
  int format = 0;
  unsigned char* base = nullptr;
  unsigned char** rows = nullptr;
  std::size_t rowBytes = 0;

  explicit Pixels(REALpicture p) : picture(p) {
    const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
    if (picture == nullptr || lock == nullptr) return;
    REALpictureDescription description = {};
    if (lock(picture, &description, kDescriptionBitmapContext) != 0) {
      const auto context = static_cast<CGContextRef>(description.handle);
      base = static_cast<unsigned char*>(CGBitmapContextGetData(context));
      rowBytes = CGBitmapContextGetBytesPerRow(context);
      format = static_cast<int>(CGBitmapContextGetAlphaInfo(context) & 7);
    } else if (EndHalfMadeLock(), lock(picture, &description, kDescriptionHostBuffer) != 0) {
      rows = static_cast<REALhostBuffer*>(description.handle)->rowTable;
      format = 8;
    } else {
      EndHalfMadeLock();
      return;
    }
    width = description.width;
    height = description.height;
  }
  ~Pixels() {
    if (width > 0) Unlock();
  }
  Pixels(const Pixels&) = delete;
  Pixels& operator=(const Pixels&) = delete;

  void Unlock() const {
    const auto unlock = Get<UnlockPictureDescriptionEntry>("unlockPictureDescription");
    if (unlock != nullptr) unlock(picture);
  }
  // A lock that failed on an old host wants to be unlocked.
  void EndHalfMadeLock() const {
    const auto version = Get<REALGetRBVersionEntry>("REALGetRBVersion");
    if (version == nullptr || version() < 2012.0) Unlock();
  }
  unsigned char* Row(std::int32_t y) const {
    return rows != nullptr ? rows[y] : base + static_cast<std::size_t>(y) * rowBytes;
  }
};

void FlipBits(unsigned char* at, std::uint32_t bits) {
  std::uint32_t word = 0;
  std::memcpy(&word, at, sizeof word);
  word ^= bits;
  std::memcpy(at, &word, sizeof word);
}

// Writes a word as it is; beyond accessible memory that ends the process.
void Touch(unsigned char* at) {
  volatile unsigned char* place = at;
  place[0] = place[0];
  place[3] = place[3];
}

void SpoilWritten(REALpicture picture, bool byImageAndMask) {
  const bool odd = ++gCalls % 2 == 1;
  const bool flips = Is("wrong-pixel") || (Is("wrong-every-second-time") && odd) ||
                     (Is("wrong-image-and-mask") && byImageAndMask);
  const bool looks = flips || Is("wrong-format-5") || Is("wrong-in-host-buffers") ||
                     Is("unused-byte") || Is("writes-padding") || Is("word-too-far") ||
                     Is("word-too-early");
  if (!looks) return;
  const Pixels pixels(picture);
  if (pixels.width < 1) return;
  if (flips || (Is("wrong-format-5") && pixels.format == 5) ||
      (Is("wrong-in-host-buffers") && pixels.format == 8)) {
    FlipBits(pixels.Row(0), 0x00808000);
  }
  if (Is("unused-byte")) {
    const bool top = pixels.format == 8 || pixels.format % 2 == 1;
    FlipBits(pixels.Row(0), top ? 0xFF000000 : 0x000000FF);
  }
  unsigned char* lastRow = pixels.Row(pixels.height - 1);
  unsigned char* end = lastRow + static_cast<std::size_t>(pixels.width) * 4;
  const bool padded = pixels.rowBytes > static_cast<std::size_t>(pixels.width) * 4;
  if (Is("writes-padding") && padded) *end ^= 0x55;
  if (Is("word-too-far")) Touch(end);
  if (Is("word-too-early")) Touch(pixels.Row(0) - 4);
}

void SpoilSource(REALpicture picture) {
  if (!Is("changed-source")) return;
  const Pixels pixels(picture);
  if (pixels.width > 0) FlipBits(pixels.Row(0), 0x00808000);
}

// Looks at the mask's pixel at the picture's lower right corner.
void TrustMaskSize(REALpicture picture) {
  if (!Is("trusts-mask-size") || picture == nullptr) return;
  const REALpicture mask = Get<REALGetPictureMaskEntry>("REALGetPictureMask")(picture, 0);
  if (mask == nullptr) return;
  {
    const Pixels pixels(mask);
    Touch(pixels.Row(Size(picture, "Height") - 1) +
          static_cast<std::size_t>(Size(picture, "Width") - 1) * 4);
  }
  Give(mask);
}

// Looks at the result's pixel where its lower right corner would be, had it the asked size.
void TrustResultSize(REALpicture result, std::int32_t width, std::int32_t height) {
  if (!Is("trusts-result-size") || result == nullptr) return;
  const Pixels pixels(result);
  Touch(pixels.Row(height - 1) + static_cast<std::size_t>(width - 1) * 4);
}

// ---- Faults around every method ----------------------------------------------------------------

template <typename Call, typename Result>
Result Around(REALpicture self, std::int32_t period, Result refusal, Call call) {
  if (Is("crash")) std::abort();
  if (Is("not-reentrant") && gDepth > 0) return refusal;
  if (Is("reads-clock")) TickCount();
  if (Is("yields-blindly") && period != 0) Get<REALYieldToRBEntry>("REALYieldToRB")();
  if (Is("extra-yield") && period != 0) {
    if (const auto yield = Get<REALYieldToRBEntry>("REALYieldToRB")) yield();
  }
  if (Is("calls-missing-entry") && self != nullptr) {
    Get<REALPictureClearCacheEntry>("REALPictureClearCache")(self);
  }
  if (Is("calls-missing-method") && self != nullptr) {
    const auto copy = reinterpret_cast<CopyMaskMethod*>(
        Get<REALLoadObjectMethodEntry>("REALLoadObjectMethod")(self, kCopyMaskDeclaration));
    Give(copy(self));
  }
  if (Is("leaked-reference")) Take(self);
  struct Depth {
    Depth() { ++gDepth; }
    ~Depth() { --gDepth; }
  } depth;
  Result result = refusal;
  try {
    result = call();
  } catch (...) {
    if (!Is("swallows-exceptions")) throw;
  }
  if (Is("leak-after-refusal") && result == refusal) Take(self);
  return result;
}

REALpicture Finish(REALpicture self, REALpicture result, bool byImageAndMask = false) {
  if (result != self) SpoilWritten(result, byImageAndMask);
  if (result != self) SpoilSource(self);
  if (Is("returned-twice")) Take(result);
  if (Is("nil-makes-a-picture") && self == nullptr) {
    return Get<NewPictureEntry>("newPicture")(1, 1, 32);
  }
  if (Is("never-refuses") && self != nullptr && result == nullptr) {
    return Get<NewPictureEntry>("newPicture")(9, 7, 32);
  }
  return result;
}

std::int32_t Period(std::int32_t period) {
  if (!Is("hasty-yields")) return period;
  return std::clamp<std::int32_t>(period, -1, 1);
}

// ---- The methods -------------------------------------------------------------------------------

// The flag is handed on as the word it came in.
using ScaleMethod = REALpicture(REALpicture, std::int32_t, std::int32_t, std::uintptr_t,
                                std::int32_t);
using ResampleMethod = REALpicture(REALpicture, std::int32_t, std::int32_t, std::int32_t,
                                   std::int32_t);
using BlurMethod = REALpicture(REALpicture, double, std::int32_t);
using DrawMethod = bool(REALpicture, REALpicture, double, double, double, std::int32_t);

ScaleMethod* gScale;
ScaleMethod* gScaleBoth;
ResampleMethod* gResample;
BlurMethod* gBlur;
DrawMethod* gDraw;

REALpicture ScaleWith(ScaleMethod* real, REALpicture self, std::int32_t width, std::int32_t height,
                      std::uintptr_t smooth, std::int32_t period) {
  const bool both = real == gScaleBoth;
  if (Is("own-size-copies") && Size(self, "Width") == width && Size(self, "Height") == height) {
    return gResample(self, 2, width, height, 0);
  }
  if (Is("wrong-size")) ++width;
  if (Is("clamps-size")) {
    width = std::clamp(width, 1, 32767);
    height = std::clamp(height, 1, 32767);
  }
  if (both) TrustMaskSize(self);
  const REALpicture result = Around(self, period, REALpicture(), [&] {
    return real(self, width, height, smooth, Period(period));
  });
  TrustResultSize(result, width, height);
  return Finish(self, result, both);
}

REALpicture Scale(REALpicture self, std::int32_t width, std::int32_t height, std::uintptr_t smooth,
                  std::int32_t period) {
  return ScaleWith(gScale, self, width, height, smooth, period);
}

REALpicture ScaleBoth(REALpicture self, std::int32_t width, std::int32_t height,
                      std::uintptr_t smooth, std::int32_t period) {
  return ScaleWith(gScaleBoth, self, width, height, smooth, period);
}

REALpicture Resample(REALpicture self, std::int32_t mode, std::int32_t width, std::int32_t height,
                     std::int32_t period) {
  if (Is("any-mode")) mode = (mode & 7) % 7 + 1;
  if (Is("no-sharp-modes") && mode >= 3 && mode <= 7) mode = 1;
  const REALpicture result = Around(self, period, REALpicture(), [&] {
    return gResample(self, mode, width, height, Period(period));
  });
  return Finish(self, result);
}

REALpicture Blur(REALpicture self, double radius, std::int32_t period) {
  if (Is("hang")) {
    for (volatile bool wait = true; wait;) {
    }
  }
  if (Is("crash-in-blur")) std::abort();
  if (Is("rounds-radius")) radius += 0.5;
  if (Is("crash-at-huge-radius") && radius > 1e6 && radius < 2e9) std::abort();
  if (Is("blur-keeps-alpha") && self != nullptr && HasAlpha(self)) {
    return gResample(self, 2, Size(self, "Width"), Size(self, "Height"), period);
  }
  const REALpicture result =
      Around(self, period, REALpicture(), [&] { return gBlur(self, radius, Period(period)); });
  return Finish(self, result);
}

bool Draw(REALpicture self, REALpicture picture, double x, double y, double alpha,
          std::int32_t period) {
  if (Is("draws-beside")) x += 1;
  if (Is("draws-at-whole-pixels")) x = std::floor(x);
  if (Is("clamps-opacity")) alpha = std::clamp(alpha, 0.0, 1.0);
  if (Is("respects-alpha-channel") && picture != nullptr && HasAlpha(picture)) alpha = 0;
  TrustMaskSize(picture);
  const bool done = Around(self, period, false,
                           [&] { return gDraw(self, picture, x, y, alpha, Period(period)); });
  if (done) SpoilWritten(self, false);
  if (done) SpoilSource(picture);
  return done || (Is("never-refuses") && self != nullptr && picture != nullptr);
}

// ---- Faults in what the plug-in finds at the host
// ------------------------------------------------

std::uint8_t ReadBool(REALobject object, const char* property, std::uint8_t* value) {
  if (Is("alpha-dropped")) return 0;
  return Get<REALGetPropValueBoolEntry>("REALGetPropValueBool")(object, property, value);
}
REALpicture NoMask(REALpicture, std::int32_t) { return nullptr; }
REALgraphics NoGraphics(REALpicture) { return nullptr; }
void RaiseNothing(REALobject) {}
void ClearNothing(REALpicture) {}
void UnlockNothing(REALpicture) {}
std::uint8_t NotedLock(REALpicture picture, REALpictureDescription* description,
                       std::int32_t type) {
  const auto lock = Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  const std::uint8_t locked = lock(picture, description, type);
  gLockFailed = locked == 0;
  return locked;
}
void UnlockUnlessFailed(REALpicture picture) {
  const bool owed = gLockFailed;
  gLockFailed = false;
  if (!owed) Get<UnlockPictureDescriptionEntry>("unlockPictureDescription")(picture);
}
double OldVersion() { return std::min(Get<REALGetRBVersionEntry>("REALGetRBVersion")(), 2012.5); }
double NewVersion() { return std::max(Get<REALGetRBVersionEntry>("REALGetRBVersion")(), 2013.04); }
void AnnounceLess(std::int32_t version) {
  Get<RegisterPluginVersionEntry>("RegisterPluginVersion")(version - 1);
}

// ---- Registration ------------------------------------------------------------------------------

// The method's name is the declaration's beginning.
bool Names(const char* declaration, const char* name) {
  const std::size_t length = std::strlen(name);
  return std::strncmp(declaration, name, length) == 0 && declaration[length] == '(';
}

template <typename Function>
void Replace(REALroutine& routine, Function*& real, Function* own) {
  real = reinterpret_cast<Function*>(routine);
  routine = reinterpret_cast<REALroutine>(own);
}

void Wrap(REALmethodDefinition& method) {
  if (Names(method.declaration, "ScaleZVQ")) Replace(method.implementation, gScale, Scale);
  if (Names(method.declaration, "ScaleImageAndMaskZVQ")) {
    Replace(method.implementation, gScaleBoth, ScaleBoth);
  }
  if (Names(method.declaration, "ScalingZVQ")) {
    Replace(method.implementation, gResample, Resample);
  }
  if (Names(method.declaration, "BlurZVQ")) Replace(method.implementation, gBlur, Blur);
  if (Names(method.declaration, "DrawPictureFZVQ")) Replace(method.implementation, gDraw, Draw);
  if (Is("wrong-flags")) method.flags ^= 8;
  if (Is("changed-default") && Names(method.declaration, "ScaleZVQ")) {
    method.declaration =
        "ScaleZVQ(width as integer, height as integer, AntiAlias as boolean=true, "
        "YieldTicks as integer=0) as picture";
  }
}

// A copy of the list, whose entries have `words` words, with the methods wrapped.
void* Wrapped(const void* list, std::uintptr_t count, std::size_t words) {
  const std::size_t stride = words * sizeof(std::uintptr_t);
  auto* copy = static_cast<unsigned char*>(std::calloc(count + 1, stride));
  std::memcpy(copy, list, count * stride);
  for (std::uintptr_t i = 0; i < count; ++i) {
    REALmethodDefinition method = {};
    std::memcpy(&method, copy + i * stride, stride);
    Wrap(method);
    std::memcpy(copy + i * stride, &method, stride);
  }
  return copy;
}

bool DropsOne() { return Is("dropped-method") || (Is("second-start-drops") && gStarts > 1); }

void RegisterModule(REALmoduleDefinition* module) {
  auto* copy = static_cast<REALmoduleDefinition*>(std::malloc(sizeof *module));
  *copy = *module;
  copy->methods =
      static_cast<REALmethodDefinition*>(Wrapped(module->methods, module->methodCount, 6));
  if (DropsOne()) --copy->methodCount;
  const auto enter = Get<PluginRegisterModuleEntry>("PluginRegisterModule");
  enter(copy);
  if (Is("registers-twice")) enter(copy);
}

void RegisterClassExtension(REALclassDefinition* definition) {
  auto* copy = static_cast<REALclassDefinition*>(std::malloc(sizeof *definition));
  *copy = *definition;
  copy->methods =
      Wrapped(definition->methods, definition->methodCount, definition->version <= 9 ? 4 : 6);
  if (DropsOne()) --copy->methodCount;
  const auto enter = Get<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension");
  enter(copy);
  if (Is("registers-twice")) enter(copy);
}

struct Substitute {
  const char* fault;  // null: always
  const char* entry;
  REALroutine routine;
};

template <typename Function>
REALroutine Routine(Function* function) {
  return reinterpret_cast<REALroutine>(function);
}

// The host's entries as the plug-in finds them. What the host lacks stays missing.
REALroutine Resolve(const char* name) {
  const Substitute substitutes[] = {
      {nullptr, "PluginRegisterModule", Routine(RegisterModule)},
      {nullptr, "PluginRegisterClassExtension", Routine(RegisterClassExtension)},
      {"alpha-dropped", "REALGetPropValueBool", Routine(ReadBool)},
      {"mask-forgotten", "REALGetPictureMask", Routine(NoMask)},
      {"undrawn-copy", "pluginPictureGraphicsGetter", Routine(NoGraphics)},
      {"silent-nil", "RuntimeRaiseException", Routine(RaiseNothing)},
      {"silent-changes", "REALPictureClearCache", Routine(ClearNothing)},
      {"missing-unlock", "unlockPictureDescription", Routine(UnlockNothing)},
      {"half-made-locks-stay", "REALLockPictureDescription", Routine(NotedLock)},
      {"half-made-locks-stay", "unlockPictureDescription", Routine(UnlockUnlessFailed)},
      {"old-path-everywhere", "REALGetRBVersion", Routine(OldVersion)},
      {"new-path-everywhere", "REALGetRBVersion", Routine(NewVersion)},
      {"wrong-announcement", "RegisterPluginVersion", Routine(AnnounceLess)},
  };
  const REALroutine found = gHost(name);
  for (const Substitute& substitute : substitutes) {
    const bool chosen = substitute.fault == nullptr || Is(substitute.fault);
    if (found != nullptr && chosen && std::strcmp(substitute.entry, name) == 0) {
      return substitute.routine;
    }
  }
  return found;
}

// Process-wide variables of the plug-in start anew when this one is unloaded.
__attribute__((destructor)) void UnloadReal() {
  if (gRealLibrary != nullptr) dlclose(gRealLibrary);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver host) {
  gHost = host;
  ++gStarts;
  if (Is("crash-at-start")) std::abort();
  if (Is("needs-every-entry")) Get<PluginObjectTypeEntry>("pluginObjectType")("Application");
  if (gRealLibrary == nullptr) {
    const char* path = std::getenv("VALIDATE_REAL_PLUGIN");
    gRealLibrary = dlopen(path == nullptr ? "" : path, RTLD_NOW | RTLD_LOCAL);
  }
  if (gRealLibrary == nullptr) return;
  const auto start =
      reinterpret_cast<void (*)(REALresolver)>(dlsym(gRealLibrary, "REALPluginMain"));
  start(Resolve);
}
