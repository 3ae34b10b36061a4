#include "pixels/unlock_pixels.h"

CFBundleRef gApplicationServices = nullptr;
void (*pUnlockPixels)(PixMap** pixMap) = nullptr;

namespace {

const CFConstantString kBundleName = {&__CFConstantStringClassReference, kCFConstantStringFlags,
                                      "ApplicationServices.framework", 29};
const CFConstantString kFunctionName = {&__CFConstantStringClassReference, kCFConstantStringFlags,
                                        "UnlockPixels", 12};

CFStringRef AsString(const CFConstantString& text) { return reinterpret_cast<CFStringRef>(&text); }

// One reference for the caller, or null.
CFURLRef NewBundleUrl() {
  FSRef folder = {};
  if (FSFindFolder(kFolderDomain, kFrameworksFolderType, 1, &folder) != 0) return nullptr;
  CFURLRef folderUrl = CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder);
  if (folderUrl == nullptr) return nullptr;
  CFURLRef bundleUrl = CFURLCreateCopyAppendingPathComponent(kCFAllocatorSystemDefault, folderUrl,
                                                             AsString(kBundleName), 0);
  CFRelease(folderUrl);
  return bundleUrl;
}

// The bundle with its code loaded, or null.
CFBundleRef LoadBundle() {
  CFURLRef url = NewBundleUrl();
  if (url == nullptr) return nullptr;
  CFBundleRef bundle = CFBundleCreate(kCFAllocatorSystemDefault, url);
  CFRelease(url);
  if (bundle != nullptr && CFBundleLoadExecutable(bundle) == 0) {
    CFRelease(bundle);
    return nullptr;
  }
  return bundle;
}

}  // namespace

void UnlockPixels(PixMap** pixMap) {
  if (pUnlockPixels == nullptr) {
    if (gApplicationServices == nullptr) gApplicationServices = LoadBundle();
    if (gApplicationServices == nullptr) return;
    pUnlockPixels = reinterpret_cast<void (*)(PixMap**)>(
        CFBundleGetFunctionPointerForName(gApplicationServices, AsString(kFunctionName)));
  }
  if (pUnlockPixels != nullptr) pUnlockPixels(pixMap);
}
