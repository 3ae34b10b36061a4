// Framework bundles by script. Objects stay in a list for the life of the process, so that a
// released one is recognised when it is used again.
#include "platform/linux/bundles.h"

#include <cstring>
#include <memory>
#include <optional>

#include "platform/bundles.h"

struct CFAllocator {
  int unused = 0;
};

namespace {

struct BundleObject {
  bool isBundle = false;
  bool live = true;
};

// What a found folder's reference is filled with.
constexpr std::uint8_t kFolderMark = 0x46;

std::optional<platform::BundleScript> gScript;
std::vector<std::string> gCalls;
std::vector<std::unique_ptr<BundleObject>> gObjects;
CFAllocator gDefaultAllocator;

const BundleObject* Known(const void* address) {
  for (const auto& object : gObjects) {
    if (object.get() == address) return object.get();
  }
  return nullptr;
}

bool IsLive(const void* address, bool isBundle) {
  const BundleObject* object = Known(address);
  return object != nullptr && object->live && object->isBundle == isBundle;
}

void* Make(bool isBundle) {
  gObjects.push_back(std::make_unique<BundleObject>());
  gObjects.back()->isBundle = isBundle;
  return gObjects.back().get();
}

// Strings reach the bundle functions only as compiled-in constants.
std::string TextOf(CFStringRef text) {
  if (text == nullptr) return "nil";
  const auto* constant = reinterpret_cast<const CFConstantString*>(text);
  if (constant->classReference != __CFConstantStringClassReference ||
      constant->flags != kCFConstantStringFlags) {
    return "not a string";
  }
  return std::string(constant->text, static_cast<std::size_t>(constant->length));
}

std::string FourCharacters(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 0xFF);
  return text;
}

}  // namespace

namespace platform {

void SetBundleScript(const BundleScript& script) {
  gScript = script;
  gCalls.clear();
}

void ClearBundleScript() {
  gScript.reset();
  gCalls.clear();
}

const std::vector<std::string>& BundleCalls() { return gCalls; }

int LiveBundleObjects() {
  int live = 0;
  for (const auto& object : gObjects) live += object->live ? 1 : 0;
  return live;
}

}  // namespace platform

const CFAllocatorRef kCFAllocatorSystemDefault = &gDefaultAllocator;
int __CFConstantStringClassReference[24] = {};

std::int16_t FSFindFolder(std::int16_t domain, std::uint32_t folderType, std::uint8_t create,
                          FSRef* found) {
  constexpr std::int16_t kFolderNotFound = -43;
  gCalls.push_back("FSFindFolder(" + std::to_string(domain) + ", " + FourCharacters(folderType) +
                   ", " + std::to_string(create) + ")");
  if (!gScript || !gScript->folderFound || found == nullptr) return kFolderNotFound;
  if (domain != kFolderDomain || folderType != kFrameworksFolderType) return kFolderNotFound;
  std::memset(found->hidden, kFolderMark, sizeof found->hidden);
  return 0;
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* file) {
  gCalls.push_back("CFURLCreateFromFSRef()");
  if (!gScript || !gScript->urlMade || allocator != kCFAllocatorSystemDefault) return nullptr;
  if (file == nullptr || file->hidden[0] != kFolderMark) return nullptr;
  return static_cast<CFURLRef>(Make(false));
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, std::uint8_t isDirectory) {
  gCalls.push_back("CFURLCreateCopyAppendingPathComponent(" + TextOf(component) + ", " +
                   std::to_string(isDirectory) + ")");
  if (!gScript || !gScript->componentAppended || allocator != kCFAllocatorSystemDefault) {
    return nullptr;
  }
  return IsLive(url, false) ? static_cast<CFURLRef>(Make(false)) : nullptr;
}

CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url) {
  gCalls.push_back("CFBundleCreate()");
  if (!gScript || !gScript->bundleMade || allocator != kCFAllocatorSystemDefault) return nullptr;
  return IsLive(url, false) ? static_cast<CFBundleRef>(Make(true)) : nullptr;
}

std::uint8_t CFBundleLoadExecutable(CFBundleRef bundle) {
  gCalls.push_back("CFBundleLoadExecutable()");
  return gScript && gScript->bundleLoads && IsLive(bundle, true) ? 1 : 0;
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
  gCalls.push_back("CFBundleGetFunctionPointerForName(" + TextOf(name) + ")");
  if (!gScript || !IsLive(bundle, true) || TextOf(name) != gScript->functionName) return nullptr;
  return gScript->function;
}

void CFRelease(CFTypeRef object) {
  for (const auto& known : gObjects) {
    if (known.get() != object) continue;
    gCalls.push_back(!known->live      ? "CFRelease(dead)"
                     : known->isBundle ? "CFRelease(Bundle)"
                                       : "CFRelease(URL)");
    known->live = false;
    return;
  }
  gCalls.push_back("CFRelease(unknown)");
}
