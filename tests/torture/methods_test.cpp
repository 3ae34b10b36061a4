// Every method with everything failing that can fail, one thing after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <set>

#include "tests/plugin/leftovers.h"
#include "tests/torture/child.h"
#include "tests/torture/expected_counts.h"
#include "tests/torture/judge.h"

namespace torture {

namespace {

constexpr int kMostComplaints = 20;

const char* const kHostMethods[] = {kDrawPictureDeclaration, kConstructorDeclaration,
                                    kCopyMaskDeclaration, kAssignMaskDeclaration};

// Entries that only the plug-in's start uses: a host that lacks one must lack it from the start.
const char* const kStartEntries[] = {"PluginRegisterModule", "PluginRegisterClassExtension",
                                     "RegisterPluginVersion", "REALGetRBVersion"};

bool IsStartEntry(const std::string& name) {
  return std::find(std::begin(kStartEntries), std::end(kStartEntries), name) !=
         std::end(kStartEntries);
}

// Two names for one routine: without the first, the second serves.
bool HasSecondName(const std::string& name) {
  return name == "REALGetPropValueInteger" || name == "REALSetPropValueInteger";
}

class Torturer {
 public:
  void Torture(const Scenario& scenario) {
    scenario_ = &scenario;
    std::optional<Stage> stage(std::in_place, scenario);
    const Judge judge(*stage);
    ++Total().calls;
    Complain({}, judge.OnUndisturbed());
    FailHostCalls(*stage, judge);
    FailAllocations(*stage, judge);
    Withhold(*stage, judge);
    Throw(*stage, judge);
    stage.reset();  // there is one host at a time
    WithholdFromStart(judge);
  }

 private:
  void Complain(const Fault& fault, const std::string& wrong) {
    if (wrong.empty()) return;
    if (++complaints_ > kMostComplaints) return;
    ADD_FAILURE() << scenario_->Text() << ", " << fault.Text() << ":\n" << wrong;
  }

  Outcome Run(Stage& stage, const Fault& fault) {
    ++Total().calls;
    return stage.Run(fault);
  }

  void Fail(Stage& stage, const Judge& judge, const Fault& fault) {
    Complain(fault, judge.OnFailure(fault, Run(stage, fault)));
  }

  void FailHostCalls(Stage& stage, const Judge& judge) {
    for (int call = 1; call <= judge.Undisturbed().hostCalls; ++call) {
      ++Total().points;
      const HostCall& made = judge.Undisturbed().calls[static_cast<std::size_t>(call) - 1];
      const bool uncounted = made.entry == "REALLockObject";
      Fail(stage, judge, {.entry = call, .uncounted = uncounted});
      Fail(stage, judge, {.entry = call, .entriesAfter = true});
      if (judge.Undisturbed().allocations == 0) continue;
      // The host and memory fail together, from here on.
      Fail(stage, judge,
           {.entry = call,
            .entriesAfter = true,
            .allocation = made.allocationsBefore + 1,
            .allocationsAfter = true});
    }
  }

  void FailAllocations(Stage& stage, const Judge& judge) {
    for (int allocation = 1; allocation <= judge.Undisturbed().allocations; ++allocation) {
      ++Total().points;
      Fail(stage, judge, {.allocation = allocation});
      Fail(stage, judge, {.allocation = allocation, .allocationsAfter = true});
    }
  }

  void Withhold(Stage& stage, const Judge& judge) {
    for (const std::string& name : host::Runtime::EntryNames()) {
      if (IsStartEntry(name)) continue;
      const Fault fault{.withheld = name};
      if (HasSecondName(name)) {
        // The same call by the other name.
        Fail(stage, judge, fault);
        continue;
      }
      const Outcome without = Run(stage, fault);
      if (!judge.Undisturbed().entryCalls.contains(name)) {
        Complain(fault, judge.OnWithheld(name, without, judge.Undisturbed()));
        continue;
      }
      const Fault failing{.failingEntry = name};
      const Outcome failed = Run(stage, failing);
      Complain(failing, judge.OnFailure(failing, failed));
      Complain(fault, name == "REALLockObject" ? judge.OnUncountable(without)
                                               : judge.OnWithheld(name, without, failed));
    }
    for (const char* declaration : kHostMethods) {
      const Fault fault{.withheld = declaration};
      Outcome outcome = Run(stage, fault);
      outcome.failed.insert("REALLoadObjectMethod");
      Complain(fault, judge.OnFailure(fault, outcome));
    }
  }

  // The four that the start uses, also while they merely fail.
  void WithholdFromStart(const Judge& judge) {
    // What a start makes and cannot hand over stays behind.
    const plugin_test::DeliberateLeftovers leftovers;
    for (const char* name : kStartEntries) {
      const Fault fault{.withheld = name};
      const std::string entry = name;
      Outcome without, failing;
      {
        Stage stage(*scenario_, [&](host::Runtime& runtime) { runtime.Withhold(entry); });
        without = Run(stage, {});
      }
      {
        Stage stage(*scenario_, [&](host::Runtime& runtime) {
          runtime.intercept = [entry](const host::EntryCall& call) {
            return entry == call.entry ? host::Verdict::kFail : host::Verdict::kProceed;
          };
        });
        failing = Run(stage, {});
      }
      Complain(fault, judge.OnWithheld(entry, without, failing));
      Complain(fault, OnOtherStart(entry, judge, without));
    }
  }

  // Without its version a host is taken for one of version 0; without the entry that registers, the
  // methods are not there; without the announcement all is as ever.
  std::string OnOtherStart(const std::string& entry, const Judge& judge, const Outcome& outcome) {
    const bool module = scenario_->version >= 2013.0 && scenario_->version < 3000.0;
    if (entry == (module ? "PluginRegisterModule" : "PluginRegisterClassExtension")) {
      return outcome.answer == Answer::kNothing ? "" : "is registered all the same\n";
    }
    if (entry == "REALGetRBVersion") {
      Scenario unknown = *scenario_;
      unknown.version = 0;
      Stage stage(unknown);
      return judge.OnWithheld(entry, outcome, Run(stage, {})) + Judge(stage).OnUndisturbed();
    }
    return judge.OnWithheld(entry, outcome, judge.Undisturbed());
  }

  void Throw(Stage& stage, const Judge& judge) {
    const bool isNew = sequences_.insert(Sequence(judge)).second;
    for (int call = 1; call <= judge.Undisturbed().hostCalls; ++call) {
      const Fault fault{.thrower = call};
      if (!judge.InRelease(call)) {
        Complain(fault, judge.OnThrow(fault, Run(stage, fault)));
      } else if (isNew) {
        ++Total().calls;
        ++Total().children;
        Complain(fault, WhyNotAborted([&] { stage.Run(fault); }));
      }
    }
    for (int yield = 1; yield <= judge.Undisturbed().yields; ++yield) {
      const Fault fault{.yieldThrower = yield};
      Complain(fault, judge.OnThrow(fault, Run(stage, fault)));
    }
  }

  // The host calls of a scenario: where they are the same, so is what a throwing release leads to.
  std::string Sequence(const Judge& judge) const {
    std::string sequence = scenario_->variant.name;
    for (const HostCall& call : judge.Undisturbed().calls) sequence += "\n" + call.line;
    return sequence;
  }

  const Scenario* scenario_ = nullptr;
  std::set<std::string> sequences_;
  int complaints_ = 0;
};

void TortureMethod(const char* name, const Tally& expected, Method method,
                   const std::function<bool(const Variant&)>& chosen) {
  const Tally before = Total();
  Torturer torturer;
  for (const Scenario& scenario : ScenariosOf(method)) {
    if (chosen(scenario.variant)) torturer.Torture(scenario);
  }
  Report(name, Since(before), expected);
}

bool All(const Variant&) { return true; }
bool Smooth(const Variant& variant) { return variant.smooth; }
bool NotSmooth(const Variant& variant) { return !variant.smooth; }

TEST(Torture, OfScaleZVQ) { TortureMethod("ScaleZVQ", kExpectedScale, Method::kScale, All); }
TEST(Torture, OfScaleImageAndMaskZVQ) {
  TortureMethod("ScaleImageAndMaskZVQ", kExpectedBoth, Method::kScaleBoth, NotSmooth);
}
TEST(Torture, OfScaleImageAndMaskZVQWhenItEnlargesSmoothly) {
  TortureMethod("ScaleImageAndMaskZVQ, smooth", kExpectedBothSmooth, Method::kScaleBoth, Smooth);
}
TEST(Torture, OfScalingZVQ) {
  TortureMethod("ScalingZVQ", kExpectedResample, Method::kResample, All);
}
TEST(Torture, OfDrawPictureFZVQ) {
  TortureMethod("DrawPictureFZVQ", kExpectedDraw, Method::kDraw, All);
}
TEST(Torture, OfBlurZVQ) { TortureMethod("BlurZVQ", kExpectedBlur, Method::kBlur, All); }

TEST(Torture, HasAVersionBelowAtAndAboveEachThreshold) {
  const std::vector<double> thresholds = Thresholds();
  ASSERT_TRUE(std::is_sorted(kVersions.begin(), kVersions.end()));
  for (std::size_t i = 0; i < thresholds.size(); ++i) {
    const auto at = std::find(kVersions.begin(), kVersions.end(), thresholds[i]);
    ASSERT_NE(at, kVersions.end()) << thresholds[i];
    ASSERT_NE(at, kVersions.begin());
    ASSERT_NE(at + 1, kVersions.end());
    EXPECT_GT(*(at - 1), i == 0 ? 0.0 : thresholds[i - 1]);
    EXPECT_LT(*(at + 1), i + 1 == thresholds.size() ? 1e9 : thresholds[i + 1]);
  }
}

}  // namespace

}  // namespace torture
