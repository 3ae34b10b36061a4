// Host exceptions thrown out of every single call that ScaleImageAndMaskZVQ makes: they pass out
// and nothing stays held, except that one out of a release ends the process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using Lines = std::vector<std::string>;

struct HostError {
  std::string entry;
};

struct Scenario {
  const char* name;
  host::RuntimeOptions options;
  bool alpha;
  bool antiAlias;
  bool graphics;
  int period;
  int fatal;  // how many of the calls are releases
};

const auto kConsole = host::ApplicationKind::kConsole;

// Releases, for each scaler: new picture, its description, cache and reference, the source's
// description and reference. Then graphics, target, scaled mask, mask; with an alpha channel also
// the graphics, the copied mask and the temporary picture. The row copy has two descriptions.
const Scenario kScenarios[] = {
    {"fast", {}, false, false, true, 0, 2 * 6 + 4},
    {"smooth", {}, false, true, true, 0, 2 * 6 + 4},
    {"console", {.kind = kConsole}, false, false, true, 0, 2 * 6 + 4},
    {"console without graphics", {.kind = kConsole}, false, true, false, 0, 2 * 6 + 2 + 3},
    {"alpha", {}, true, false, true, 0, 2 * 6 + 4 + 3},
    {"alpha on a console", {.kind = kConsole}, true, true, true, 0, 2 * 6 + 4 + 3},
    {"old", {.version = 2011.9}, false, false, true, 0, 2 * 6 + 4},
    {"fast with yields", {}, false, false, true, 1, 2 * 6 + 4},
    {"smooth with yields", {}, false, true, true, 1, 2 * 6 + 4},
};

class Stage {
 public:
  explicit Stage(const Scenario& scenario) : scenario_(scenario), plugin_(scenario.options) {
    host::Runtime& host = plugin_.Host();
    if (!scenario.graphics) host.Withhold("pluginPictureGraphicsGetter");
    source_ = host.NewPicture(scenario.alpha ? host.NewAlphaPictureSpec(2, 2)
                                             : host.NewPictureSpec(2, 2));
    if (!scenario.alpha) host.SetMask(source_, host.NewPicture(host.NewMaskSpec(3, 1)));
    host.Calls().Clear();
    before_ = host.Book().Take();
  }

  host::Runtime& Host() { return plugin_.Host(); }
  host::CallReport Run() {
    return plugin_.Library().Call("ScaleImageAndMaskZVQ", source_,
                                  {3, 3, scenario_.antiAlias, scenario_.period});
  }
  void ThrowAt(int number) {
    Host().intercept = [number, seen = 0](const host::EntryCall& call) mutable {
      if (++seen == number) throw HostError{call.entry};
      return host::Verdict::kProceed;
    };
  }
  Lines LeftOver() {
    Lines sentences = Host().Book().Differences(before_, nullptr);
    for (const std::string& violation : Host().Book().Violations()) sentences.push_back(violation);
    return sentences;
  }

 private:
  const Scenario& scenario_;
  const support::RushingClock clock_;
  support::LoadedPlugin plugin_;
  host::Picture* source_;
  host::Ledger::Snapshot before_;
};

// All calls of an undisturbed run, in order.
Lines CallsOf(const Scenario& scenario) {
  Stage stage(scenario);
  const host::CallReport report = stage.Run();
  EXPECT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
  return stage.Host().Calls().Calls();
}

// Numbers (from 1) of the calls that give something up. A cache is cleared within a release after
// the description was unlocked, and otherwise not.
std::set<int> Releases(const Lines& calls) {
  std::set<int> numbers;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const bool afterUnlock = i > 0 && calls[i - 1].starts_with("unlockPictureDescription(") &&
                             (i < 2 || !calls[i - 2].starts_with("unlockPictureDescription("));
    if (calls[i].starts_with("REALUnlockObject(") ||
        calls[i].starts_with("unlockPictureDescription(") ||
        (calls[i].starts_with("REALPictureClearCache(") && afterUnlock)) {
      numbers.insert(static_cast<int>(i) + 1);
    }
  }
  return numbers;
}

TEST(MaskException, ThePlanNamesEveryRelease) {
  for (const Scenario& scenario : kScenarios) {
    EXPECT_EQ(Releases(CallsOf(scenario)).size(), static_cast<std::size_t>(scenario.fatal))
        << scenario.name;
  }
}

TEST(MaskException, PassesOutOfEveryCallButReleasesAndLeavesNothingHeld) {
  for (const Scenario& scenario : kScenarios) {
    const Lines calls = CallsOf(scenario);
    const std::set<int> releases = Releases(calls);
    for (int number = 1; number <= static_cast<int>(calls.size()); ++number) {
      if (releases.contains(number)) continue;
      SCOPED_TRACE(std::string(scenario.name) + ": " + calls[static_cast<std::size_t>(number - 1)]);
      Stage stage(scenario);
      stage.ThrowAt(number);
      EXPECT_THROW(stage.Run(), HostError);
      EXPECT_EQ(stage.LeftOver(), Lines{});
      // The next call is not disturbed by what happened.
      stage.Host().intercept = nullptr;
      const host::CallReport next = stage.Run();
      EXPECT_NE(next.ResultPicture(), nullptr);
      EXPECT_EQ(support::Complaints(next), "");
    }
  }
}

TEST(MaskExceptionDeathTest, InAReleaseEndsTheProcess) {
  for (const Scenario& scenario : kScenarios) {
    const Lines calls = CallsOf(scenario);
    for (const int number : Releases(calls)) {
      SCOPED_TRACE(std::string(scenario.name) + ": " + calls[static_cast<std::size_t>(number - 1)]);
      Stage stage(scenario);
      stage.ThrowAt(number);
      EXPECT_EXIT(
          {
            try {
              stage.Run();
            } catch (...) {
            }
            std::_Exit(0);
          },
          testing::KilledBySignal(SIGABRT), "");
    }
  }
}

TEST(MaskException, OutOfAYieldLeavesNothingHeldWheneverItComes) {
  for (const bool antiAlias : {false, true}) {
    const Scenario scenario = {"yields", {}, false, antiAlias, true, 1, 0};
    const int yields = antiAlias ? 2 * (3 + 4 * 3) : 2 * (3 + 1);
    for (int spared = 0; spared < yields; ++spared) {
      Stage stage(scenario);
      stage.Host().onYield = [left = spared]() mutable {
        if (left-- == 0) throw HostError{"closed"};
      };
      EXPECT_THROW(stage.Run(), HostError) << spared;
      EXPECT_EQ(stage.LeftOver(), Lines{}) << spared;
    }
  }
}

}  // namespace
