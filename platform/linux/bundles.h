// The framework bundles that stand in for the platform's on Linux. By default no frameworks folder
// is found; a script lets one be found and tells what its bundle holds.
#pragma once

#include <string>
#include <vector>

namespace platform {

struct BundleScript {
  bool folderFound = true;
  bool urlMade = true;            // CFURLCreateFromFSRef
  bool componentAppended = true;  // CFURLCreateCopyAppendingPathComponent
  bool bundleMade = true;
  bool bundleLoads = true;
  void* function = nullptr;  // what the bundle answers for functionName
  std::string functionName = "UnlockPixels";
};

void SetBundleScript(const BundleScript& script);
void ClearBundleScript();

// Every call since the last Set or Clear, in order, as "Function(arguments)". Strings appear by
// their text; allocators, file references, URLs and bundles do not appear, except in CFRelease:
//   FSFindFolder(-32767, fram, 1)
//   CFURLCreateFromFSRef()
//   CFURLCreateCopyAppendingPathComponent(ApplicationServices.framework, 0)
//   CFBundleCreate()
//   CFBundleLoadExecutable()
//   CFBundleGetFunctionPointerForName(UnlockPixels)
//   CFRelease(URL) or CFRelease(Bundle); CFRelease(dead) and CFRelease(unknown) for misuse
// An argument that is not what the plug-in got from an earlier call makes the function fail.
const std::vector<std::string>& BundleCalls();

// URLs and bundles made and not yet released.
int LiveBundleObjects();

}  // namespace platform
