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

// Every call since the last Set or Clear, in order, as "Function(arguments)", for example
// "CFBundleGetFunctionPointerForName(UnlockPixels)".
const std::vector<std::string>& BundleCalls();

// URLs and bundles made and not yet released.
int LiveBundleObjects();

}  // namespace platform
