#include "platform/bundles.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "platform/linux/bundles.h"

namespace {

using platform::BundleScript;
using Calls = std::vector<std::string>;

CFConstantString Constant(const char* text) {
  return {__CFConstantStringClassReference, kCFConstantStringFlags, text,
          static_cast<std::intptr_t>(std::strlen(text))};
}

CFStringRef AsString(const CFConstantString& constant) {
  return reinterpret_cast<CFStringRef>(&constant);
}

const CFConstantString kComponent = Constant("ApplicationServices.framework");
const CFConstantString kFunctionName = Constant("UnlockPixels");

int gFunction;  // anything with an address

// Searches for a function as a program does that looks into the frameworks folder.
void* Search() {
  FSRef folder{};
  if (FSFindFolder(kFolderDomain, kFrameworksFolderType, 1, &folder) != 0) return nullptr;
  const CFURLRef root = CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder);
  if (root == nullptr) return nullptr;
  const CFURLRef url = CFURLCreateCopyAppendingPathComponent(kCFAllocatorSystemDefault, root,
                                                             AsString(kComponent), 0);
  CFRelease(root);
  if (url == nullptr) return nullptr;
  const CFBundleRef bundle = CFBundleCreate(kCFAllocatorSystemDefault, url);
  CFRelease(url);
  if (bundle == nullptr) return nullptr;
  void* function = CFBundleLoadExecutable(bundle) == 0
                       ? nullptr
                       : CFBundleGetFunctionPointerForName(bundle, AsString(kFunctionName));
  CFRelease(bundle);
  return function;
}

class Bundles : public testing::Test {
 protected:
  ~Bundles() override { platform::ClearBundleScript(); }
};

TEST_F(Bundles, WithoutAScriptNoFolderIsFound) {
  platform::ClearBundleScript();
  FSRef folder{};
  EXPECT_NE(FSFindFolder(kFolderDomain, kFrameworksFolderType, 1, &folder), 0);
  EXPECT_EQ(platform::BundleCalls(), Calls{"FSFindFolder(-32767, fram, 1)"});
}

TEST_F(Bundles, AScriptLetsTheFunctionBeFoundAndListsTheCalls) {
  BundleScript script;
  script.function = &gFunction;
  platform::SetBundleScript(script);
  const int live = platform::LiveBundleObjects();
  EXPECT_EQ(Search(), &gFunction);
  EXPECT_EQ(
      platform::BundleCalls(),
      (Calls{"FSFindFolder(-32767, fram, 1)", "CFURLCreateFromFSRef()",
             "CFURLCreateCopyAppendingPathComponent(ApplicationServices.framework, 0)",
             "CFRelease(URL)", "CFBundleCreate()", "CFRelease(URL)", "CFBundleLoadExecutable()",
             "CFBundleGetFunctionPointerForName(UnlockPixels)", "CFRelease(Bundle)"}));
  EXPECT_EQ(platform::LiveBundleObjects(), live);
}

TEST_F(Bundles, EachStepFailsWhenTheScriptSaysSo) {
  struct Row {
    const char* name;
    std::function<void(BundleScript&)> change;
    const char* lastStep;
  };
  const Row rows[] = {
      {"folder", [](BundleScript& s) { s.folderFound = false; }, "FSFindFolder(-32767, fram, 1)"},
      {"url", [](BundleScript& s) { s.urlMade = false; }, "CFURLCreateFromFSRef()"},
      {"component", [](BundleScript& s) { s.componentAppended = false; }, "CFRelease(URL)"},
      {"bundle", [](BundleScript& s) { s.bundleMade = false; }, "CFRelease(URL)"},
      {"loading", [](BundleScript& s) { s.bundleLoads = false; }, "CFRelease(Bundle)"},
      {"name", [](BundleScript& s) { s.functionName = "LockPixels"; }, "CFRelease(Bundle)"},
  };
  for (const Row& row : rows) {
    BundleScript script;
    script.function = &gFunction;
    row.change(script);
    platform::SetBundleScript(script);
    const int live = platform::LiveBundleObjects();
    EXPECT_EQ(Search(), nullptr) << row.name;
    EXPECT_EQ(platform::BundleCalls().back(), row.lastStep) << row.name;
    EXPECT_EQ(platform::LiveBundleObjects(), live) << row.name;
  }
}

TEST_F(Bundles, WrongArgumentsFail) {
  platform::SetBundleScript({});
  FSRef folder{};
  EXPECT_NE(FSFindFolder(0, kFrameworksFolderType, 1, &folder), 0);
  EXPECT_NE(FSFindFolder(kFolderDomain, 0x64657363, 1, &folder), 0);
  EXPECT_EQ(CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder), nullptr) << "never filled";
  EXPECT_EQ(FSFindFolder(kFolderDomain, kFrameworksFolderType, 1, &folder), 0);
  EXPECT_EQ(CFURLCreateFromFSRef(nullptr, &folder), nullptr) << "not the system's allocator";
  EXPECT_EQ(CFBundleCreate(kCFAllocatorSystemDefault, nullptr), nullptr);
  EXPECT_EQ(CFBundleLoadExecutable(nullptr), 0);
}

TEST_F(Bundles, ObjectsAreCountedUntilReleasedAndMisuseIsListed) {
  platform::SetBundleScript({});
  const int live = platform::LiveBundleObjects();
  FSRef folder{};
  ASSERT_EQ(FSFindFolder(kFolderDomain, kFrameworksFolderType, 1, &folder), 0);
  const CFURLRef url = CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder);
  EXPECT_EQ(platform::LiveBundleObjects(), live + 1);
  CFRelease(url);
  EXPECT_EQ(platform::LiveBundleObjects(), live);
  CFRelease(url);
  EXPECT_EQ(platform::BundleCalls().back(), "CFRelease(dead)");
  CFRelease(&gFunction);
  EXPECT_EQ(platform::BundleCalls().back(), "CFRelease(unknown)");
  EXPECT_EQ(CFBundleCreate(kCFAllocatorSystemDefault, url), nullptr) << "a dead URL";
}

}  // namespace
