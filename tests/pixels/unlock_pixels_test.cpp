// The search for the function that unlocks pixel maps.
#include "pixels/unlock_pixels.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/linux/bundles.h"
#include "tests/pixels/linked_host.h"
#include "tests/support/linked_plugin.h"

namespace {

using pixels_test::Lines;

std::vector<PixMap**> gUnlocked;
void Record(PixMap** pixMap) { gUnlocked.push_back(pixMap); }

// Starts the search anew on a platform of that script.
class Search {
 public:
  explicit Search(const std::function<void(platform::BundleScript&)>& change = {}) {
    support::ResetLinkedPlugin();
    gUnlocked.clear();
    liveBefore_ = platform::LiveBundleObjects();
    script_.function = reinterpret_cast<void*>(&Record);
    if (change) change(script_);
    platform::SetBundleScript(script_);
  }
  ~Search() {
    if (gApplicationServices != nullptr) CFRelease(gApplicationServices);
    support::ResetLinkedPlugin();
    platform::ClearBundleScript();
  }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  // Another platform from now on.
  void Become(const std::function<void(platform::BundleScript&)>& change) {
    change(script_);
    platform::SetBundleScript(script_);
  }

  int Alive() const { return platform::LiveBundleObjects() - liveBefore_; }

 private:
  platform::BundleScript script_;
  int liveBefore_ = 0;
};

// The calls of the search without the releases, whose places are free.
Lines CallsBesidesReleases() {
  Lines calls;
  for (const std::string& call : platform::BundleCalls()) {
    if (!call.starts_with("CFRelease")) calls.push_back(call);
  }
  return calls;
}

Lines Releases() {
  Lines calls;
  for (const std::string& call : platform::BundleCalls()) {
    if (call.starts_with("CFRelease")) calls.push_back(call);
  }
  return calls;
}

const Lines kWholeSearch = {
    "FSFindFolder(-32767, fram, 1)",
    "CFURLCreateFromFSRef()",
    "CFURLCreateCopyAppendingPathComponent(ApplicationServices.framework, 0)",
    "CFBundleCreate()",
    "CFBundleLoadExecutable()",
    "CFBundleGetFunctionPointerForName(UnlockPixels)"};
// Its first calls.
Lines SearchUpTo(std::size_t calls) {
  return Lines(kWholeSearch.begin(), kWholeSearch.begin() + static_cast<std::ptrdiff_t>(calls));
}

PixMap* gMap = nullptr;

TEST(UnlockPixels, FindsTheFunctionOnceAndCallsItEveryTime) {
  const Search search;
  UnlockPixels(&gMap);
  EXPECT_EQ(CallsBesidesReleases(), kWholeSearch);
  EXPECT_EQ(Releases(), (Lines{"CFRelease(URL)", "CFRelease(URL)"}));
  EXPECT_EQ(search.Alive(), 1);  // the bundle
  EXPECT_NE(gApplicationServices, nullptr);
  EXPECT_EQ(pUnlockPixels, &Record);
  UnlockPixels(nullptr);
  EXPECT_EQ(CallsBesidesReleases(), kWholeSearch);
  EXPECT_EQ(gUnlocked, (std::vector<PixMap**>{&gMap, nullptr}));
}

TEST(UnlockPixels, EveryFailedStepEndsTheSearchAndLeavesNothingBehind) {
  const struct {
    const char* what;
    void (*change)(platform::BundleScript&);
    std::size_t calls;
    Lines releases;
  } rows[] = {
      {"folder", [](platform::BundleScript& s) { s.folderFound = false; }, 1, {}},
      {"folder's URL", [](platform::BundleScript& s) { s.urlMade = false; }, 2, {}},
      {"bundle's URL",
       [](platform::BundleScript& s) { s.componentAppended = false; },
       3,
       {"CFRelease(URL)"}},
      {"bundle",
       [](platform::BundleScript& s) { s.bundleMade = false; },
       4,
       {"CFRelease(URL)", "CFRelease(URL)"}},
  };
  for (const auto& row : rows) {
    const Search search(row.change);
    UnlockPixels(&gMap);
    EXPECT_EQ(CallsBesidesReleases(), SearchUpTo(row.calls)) << row.what;
    EXPECT_EQ(Releases(), row.releases) << row.what;
    EXPECT_EQ(search.Alive(), 0) << row.what;
    EXPECT_EQ(gApplicationServices, nullptr) << row.what;
    EXPECT_EQ(pUnlockPixels, nullptr) << row.what;
    EXPECT_TRUE(gUnlocked.empty()) << row.what;
  }
}

TEST(UnlockPixels, ABundleThatDoesNotLoadIsReleasedAndCountsAsAbsent) {
  const Search search([](platform::BundleScript& script) { script.bundleLoads = false; });
  UnlockPixels(&gMap);
  EXPECT_EQ(CallsBesidesReleases(), SearchUpTo(5));
  EXPECT_EQ(platform::BundleCalls().back(), "CFRelease(Bundle)");
  EXPECT_EQ(Releases().size(), 3u);
  EXPECT_EQ(search.Alive(), 0);
  EXPECT_EQ(gApplicationServices, nullptr);
  EXPECT_TRUE(gUnlocked.empty());
}

TEST(UnlockPixels, AFailedSearchIsRepeatedAtTheNextCall) {
  Search search([](platform::BundleScript& script) { script.bundleLoads = false; });
  UnlockPixels(&gMap);
  UnlockPixels(&gMap);
  EXPECT_EQ(CallsBesidesReleases().size(), 10u);
  search.Become([](platform::BundleScript& script) { script.bundleLoads = true; });
  UnlockPixels(&gMap);
  EXPECT_EQ(CallsBesidesReleases(), kWholeSearch);
  EXPECT_EQ(gUnlocked, std::vector<PixMap**>{&gMap});
}

TEST(UnlockPixels, ABundleWithoutTheFunctionIsKeptAndNothingIsCalled) {
  Search search([](platform::BundleScript& script) { script.functionName = "LockPixels"; });
  UnlockPixels(&gMap);
  EXPECT_EQ(CallsBesidesReleases(), kWholeSearch);
  EXPECT_EQ(search.Alive(), 1);
  EXPECT_TRUE(gUnlocked.empty());
  search.Become([](platform::BundleScript& script) { script.functionName = "UnlockPixels"; });
  UnlockPixels(&gMap);
  EXPECT_EQ(platform::BundleCalls(), Lines{"CFBundleGetFunctionPointerForName(UnlockPixels)"});
  EXPECT_EQ(gUnlocked, std::vector<PixMap**>{&gMap});
  EXPECT_EQ(search.Alive(), 1);
}

TEST(UnlockPixels, ACachedFunctionNeedsNoBundle) {
  const Search search;
  pUnlockPixels = &Record;
  UnlockPixels(&gMap);
  EXPECT_EQ(platform::BundleCalls(), Lines{});
  EXPECT_EQ(gUnlocked, std::vector<PixMap**>{&gMap});
}

}  // namespace
