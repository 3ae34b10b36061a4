// Plug-ins for the host's own tests: methods that do what a plug-in should, and what it should not.
// What is registered, and how, is chosen when it is compiled.
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "platform/bitmap_context.h"
#include "platform/bundles.h"
#include "platform/clocks.h"
#include "plugin/host_interface.h"

#if defined(TRIAL_UNRESOLVED)
extern "C" int NobodyDefinesThis();
#endif

namespace {

REALresolver gHost;
int gCalls;  // of CountCalls, since the library was loaded

template <typename Entry>
Entry* Get(const char* name) {
  return reinterpret_cast<Entry*>(gHost(name));
}

void Take(REALobject object) { Get<REALLockObjectEntry>("REALLockObject")(object); }
void Give(REALobject object) { Get<REALUnlockObjectEntry>("REALUnlockObject")(object); }

double Sum(REALpicture self, std::int32_t a, double b, std::uint32_t c, REALpicture d,
           std::int32_t e, double f) {
  return (self != nullptr ? 1000 : 0) + a + b + ((c & 0xFF) != 0 ? 100 : 0) +
         (d != nullptr ? 10000 : 0) + e + f;
}

// A Boolean argument as its whole slot.
std::int32_t Slot(REALpicture, std::int32_t slot) { return slot; }

REALpicture Itself(REALpicture self) {
  if (self != nullptr) Take(self);
  return self;
}

REALpicture New(REALpicture, std::int32_t width, std::int32_t height) {
  return Get<NewPictureEntry>("newPicture")(width, height, 32);
}

REALpicture WithoutReference(REALpicture self) { return self; }

REALpicture Dead(REALpicture self) {
  const REALpicture made = New(self, 1, 1);
  Give(made);
  return made;
}

REALpicture Stranger(REALpicture) { return reinterpret_cast<REALpicture>(&gCalls); }

REALpicture NoPicture(REALpicture self) {
  return reinterpret_cast<REALpicture>(
      Get<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(self));
}

bool Leak(REALpicture self) {
  Take(self);
  New(self, 2, 2);
  REALpictureDescription description;
  return Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(
             self, &description, kDescriptionBitmapContext) != 0;
}

void GiveTooMuch(REALpicture self) { Give(self); }

std::int32_t CountCalls(REALpicture) {
  Get<REALYieldToRBEntry>("REALYieldToRB")();
  return ++gCalls;
}

// Uses each kind of platform symbol, so that all must be there when the library is loaded.
std::int32_t ContextWidth(REALpicture self) {
  REALpictureDescription description;
  if (Get<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(
          self, &description, kDescriptionBitmapContext) == 0) {
    return -1;
  }
  const std::size_t width = CGBitmapContextGetWidth(static_cast<CGContextRef>(description.handle));
  Get<UnlockPictureDescriptionEntry>("unlockPictureDescription")(self);
  const void* const volatile constantClass = __CFConstantStringClassReference;
  const bool symbols =
      kCFAllocatorSystemDefault != nullptr && constantClass != nullptr && TickCount() > 0;
  if (!symbols) return -2;
#if defined(TRIAL_UNRESOLVED)
  return NobodyDefinesThis();
#endif
  return static_cast<std::int32_t>(width);
}

struct Row {
  REALroutine routine;
  const char* name;
  const char* parameters;  // without the receiver
  const char* result;
};

const Row kRows[] = {
    {reinterpret_cast<REALroutine>(Sum), "Sum",
     "a as integer, b as double, c as boolean = true, d as picture = nil, e as integer = 5, "
     "f as double = 0.25",
     " as double"},
    {reinterpret_cast<REALroutine>(Slot), "Slot", "flag as boolean", " as integer"},
    {reinterpret_cast<REALroutine>(Itself), "Itself", "", " as picture"},
    {reinterpret_cast<REALroutine>(New), "New", "width as integer, height as integer",
     " as picture"},
    {reinterpret_cast<REALroutine>(WithoutReference), "WithoutReference", "", " as picture"},
    {reinterpret_cast<REALroutine>(Dead), "Dead", "", " as picture"},
    {reinterpret_cast<REALroutine>(Stranger), "Stranger", "", " as picture"},
    {reinterpret_cast<REALroutine>(NoPicture), "NoPicture", "", " as picture"},
    {reinterpret_cast<REALroutine>(Leak), "Leak", "", " as boolean"},
    {reinterpret_cast<REALroutine>(GiveTooMuch), "GiveTooMuch", "", ""},
    {reinterpret_cast<REALroutine>(CountCalls), "CountCalls", "", " as integer"},
    {reinterpret_cast<REALroutine>(ContextWidth), "ContextWidth", "", " as integer"},
    {reinterpret_cast<REALroutine>(Stranger), "Unknown", "", " as color"},
};
constexpr std::size_t kCount = sizeof kRows / sizeof kRows[0];

// "Name(receiver, parameters) as result", in memory that is never freed here.
char* NewDeclaration(const Row& row, const char* receiver) {
  auto* text = static_cast<char*>(std::calloc(300, 1));
  for (const char* part : {row.name, "(", receiver, row.parameters, ")", row.result}) {
    std::strcat(text, part);
  }
  return text;
}

[[maybe_unused]] void RegisterAsModule(std::int32_t version) {
  auto* module = static_cast<REALmoduleDefinition*>(std::calloc(1, sizeof(REALmoduleDefinition)));
  auto* methods =
      static_cast<REALmethodDefinition*>(std::calloc(kCount, sizeof(REALmethodDefinition)));
  for (std::size_t i = 0; i < kCount; ++i) {
    methods[i].implementation = kRows[i].routine;
    methods[i].declaration = NewDeclaration(kRows[i], "extends ref as Picture, ");
    methods[i].flags = 20;
  }
  module->version = static_cast<std::uintptr_t>(version);
  module->name = strdup("TrialExtensions");
  module->methods = methods;
  module->methodCount = kCount;
  Get<PluginRegisterModuleEntry>("PluginRegisterModule")(module);
}

// Static, as the record of a plug-in is, with allocated lists behind it.
REALclassDefinition gDefinition;

[[maybe_unused]] void RegisterAsClass(std::int32_t version) {
  const std::size_t words = version == 9 ? 4 : 6;
  auto* methods = static_cast<std::uintptr_t*>(std::calloc(kCount, words * sizeof(void*)));
  for (std::size_t i = 0; i < kCount; ++i) {
    methods[i * words] = reinterpret_cast<std::uintptr_t>(kRows[i].routine);
    methods[i * words + 2] = reinterpret_cast<std::uintptr_t>(NewDeclaration(kRows[i], ""));
    methods[i * words + 3] = 4;
  }
  gDefinition.version = static_cast<std::uintptr_t>(version);
  gDefinition.className = "Picture";
  gDefinition.methods = methods;
  gDefinition.methodCount = kCount;
  Get<PluginRegisterClassExtensionEntry>("PluginRegisterClassExtension")(&gDefinition);
}

[[maybe_unused]] void Register(REALresolver resolver) {
  gHost = resolver;
  Get<REALGetRBVersionEntry>("REALGetRBVersion")();
#if defined(TRIAL_CLASS_VERSION)
  Get<RegisterPluginVersionEntry>("RegisterPluginVersion")(TRIAL_CLASS_VERSION);
  RegisterAsClass(TRIAL_CLASS_VERSION);
#else
  Get<RegisterPluginVersionEntry>("RegisterPluginVersion")(13);
  RegisterAsModule(13);
#endif
}

}  // namespace

#if !defined(TRIAL_WITHOUT_EXPORT)
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver);
extern "C" void REALPluginMain(REALresolver resolver) { Register(resolver); }
#endif
