// The plug-in's start with everything failing that can fail, on every path of registration, and a
// second start afterwards.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/plugin/leftovers.h"
#include "tests/support/allocation_faults.h"
#include "tests/torture/expected_counts.h"
#include "tests/torture/stage.h"

namespace torture {

namespace {

using Path = host::Registration::Path;

// How a host of that version is served, and what that requests.
struct Way {
  Path path;
  int recordVersion;
  int allocations;
  int keptBlocks;  // that stay with the host
};

Way WayFor(double version) {
  if (version >= 2013.0 && version < 3000.0) {
    return {Path::kModule, host::NewestRecordVersion(version), 8, 8};
  }
  if (version >= 2012.0) {
    return {Path::kClassExtension, host::NewestRecordVersion(version), 0, 0};
  }
  return {Path::kClassExtension, 9, 2, 1};
}

struct Started {
  std::string thrown;
  host::Registration registration;
  int allocations = 0;
  int blocks = 0;
  std::vector<std::string> calls;
};

Started Start(host::Runtime& runtime, const Fault& fault) {
  const plugin_test::DeliberateLeftovers leftovers;
  Started started;
  int number = 0;
  if (!fault.withheld.empty()) runtime.Withhold(fault.withheld);
  runtime.intercept = [&](const host::EntryCall& call) {
    ++number;
    started.calls.push_back(call.entry);
    if (number == fault.thrower) throw HostError(std::string(call.entry) + " that threw");
    const bool fails =
        fault.entry != 0 && (number == fault.entry || (fault.entriesAfter && number > fault.entry));
    return fails ? host::Verdict::kFail : host::Verdict::kProceed;
  };
  std::optional<support::AllocationWatch> watch;
  watch.emplace(fault.allocation, fault.allocationsAfter);
  try {
    const host::PluginLibrary library(runtime, support::PluginPath());
  } catch (const HostError& error) {
    started.thrown = error.what();
  }
  started.allocations = watch->Calls();
  started.blocks = watch->LiveBlocks();
  watch.reset();
  started.registration = runtime.Registered();
  runtime.intercept = nullptr;
  if (!fault.withheld.empty()) runtime.Offer(fault.withheld);
  ++Total().calls;
  return started;
}

void ExpectRegistered(const host::Registration& registration, const Way& way, double version) {
  EXPECT_EQ(registration.path, way.path);
  EXPECT_EQ(registration.recordVersion, way.recordVersion);
  EXPECT_EQ(registration.calls, 1);
  // A host that was told no record version finds fault with any record.
  EXPECT_EQ(registration.problems.size(), registration.announcedVersion == 0 ? 1u : 0u);
  EXPECT_EQ(registration.methods.size(), 5u);
  const std::uintptr_t visible = version >= 2010.029 ? 4 : 0;
  for (const host::RegisteredMethod& method : registration.methods) {
    EXPECT_EQ(method.flags, way.path == Path::kModule ? visible | 16 : visible);
  }
}

void ExpectNothing(const host::Registration& registration) {
  EXPECT_EQ(registration.path, Path::kNone);
  EXPECT_TRUE(registration.methods.empty());
}

// What a disturbed start should have come to.
struct Expected {
  double version;  // as the plug-in knew it
  bool registered;
  int blocks;  // left behind
  std::string thrown = {};
  bool converted = false;  // its record is now one for hosts below 2012.0
};

int BlocksWithout(const Way& way, int allocation) {
  if (way.path == Path::kModule && allocation >= 3) return allocation - 1;
  return 0;  // a record whose list cannot be made is given back
}

class StartTorture {
 public:
  explicit StartTorture(double version) : version_(version), way_(WayFor(version)) {}

  void Run() {
    const int calls = 3;  // read the version, announce the record's, register
    Check({}, {version_, true, way_.keptBlocks});
    for (int call = 1; call <= calls; ++call) {
      ++Total().points;
      Check({.entry = call}, AfterFailure(call, false));
      Check({.entry = call, .entriesAfter = true}, AfterFailure(call, true));
      Check({.entry = call,
             .entriesAfter = true,
             .allocation = call < calls ? 1 : way_.allocations + 1,
             .allocationsAfter = true},
            AfterBoth(call));
      Check({.thrower = call}, AfterThrow(call));
    }
    for (int allocation = 1; allocation <= way_.allocations; ++allocation) {
      ++Total().points;
      const Expected expected{version_, false, BlocksWithout(way_, allocation)};
      Check({.allocation = allocation}, expected);
      Check({.allocation = allocation, .allocationsAfter = true}, expected);
    }
    for (const std::string& name : host::Runtime::EntryNames()) {
      Check({.withheld = name}, AfterWithholding(name));
    }
  }

 private:
  std::string Registering() const {
    return way_.path == Path::kModule ? "PluginRegisterModule" : "PluginRegisterClassExtension";
  }

  Expected AfterFailure(int call, bool andLater) const {
    if (call == 1) {
      const Way unknown = WayFor(0);
      return {0, !andLater, unknown.keptBlocks, "", true};
    }
    return {version_, call == 2 && !andLater, way_.keptBlocks};
  }

  Expected AfterBoth(int call) const {
    if (call == 1) return {0, false, 0};
    if (call == 2) return {version_, false, 0};
    return {version_, false, way_.keptBlocks};
  }

  Expected AfterThrow(int call) const {
    if (call == 1) return {version_, false, 0, "REALGetRBVersion that threw"};
    if (call == 2) return {version_, false, 0, "RegisterPluginVersion that threw"};
    return {version_, false, way_.keptBlocks, Registering() + " that threw"};
  }

  Expected AfterWithholding(const std::string& name) const {
    if (name == "REALGetRBVersion") return AfterFailure(1, false);
    return {version_, name != Registering(), way_.keptBlocks};
  }

  void Check(const Fault& fault, const Expected& expected) {
    std::ostringstream place;
    place.precision(9);
    place << "start on " << version_ << ", " << fault.Text();
    SCOPED_TRACE(place.str());
    host::RuntimeOptions options;
    options.version = version_;
    host::Runtime runtime(options);
    // Kept in memory, so that a second start finds what the first one left.
    const auto pin = host::LoadFile(support::PluginPath());
    const Started first = Start(runtime, fault);
    EXPECT_EQ(first.thrown, expected.thrown);
    if (expected.registered) {
      ExpectRegistered(first.registration, WayFor(expected.version), expected.version);
    } else {
      ExpectNothing(first.registration);
    }
    const bool announced = fault.withheld != "RegisterPluginVersion" && fault.thrower == 0 &&
                           fault.entry != 2 && !(fault.entry == 1 && fault.entriesAfter);
    if (announced) {
      EXPECT_EQ(first.registration.announcedVersion, host::NewestRecordVersion(expected.version));
    }
    EXPECT_EQ(first.blocks, expected.blocks) << "blocks left behind";
    EXPECT_TRUE(runtime.Book().Violations().empty());
    ExpectNextStart(runtime, expected);
  }

  // A record that was once converted cannot serve a host that reads longer entries.
  void ExpectNextStart(host::Runtime& runtime, const Expected& expected) {
    const Started second = Start(runtime, {});
    EXPECT_EQ(second.thrown, "");
    if (expected.converted && version_ >= 2012.0) {
      ExpectNothing(second.registration);
      return;
    }
    ASSERT_EQ(second.registration.methods.size(), 5u) << "of the next start";
    // The flags are those of the first start.
    ExpectRegistered(second.registration, way_, expected.version == 0 ? 0 : version_);
    const plugin_test::DeliberateLeftovers leftovers;
    host::PluginLibrary library(runtime, support::PluginPath());
    host::Picture* picture = runtime.NewPicture(runtime.NewPictureSpec(3, 2));
    const host::CallReport report = library.Call("ScaleZVQ", picture, {2, 3});
    EXPECT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(support::Complaints(report), "");
    ++Total().calls;
  }

  double version_;
  Way way_;
};

TEST(Torture, OfTheStart) {
  const Tally before = Total();
  for (const double version : kVersions) StartTorture(version).Run();
  StartTorture(0.0).Run();
  Report("REALPluginMain", Since(before), kExpectedStart);
}

TEST(Torture, StartIsCountedAsItIs) {
  for (const double version : kVersions) {
    host::RuntimeOptions options;
    options.version = version;
    host::Runtime runtime(options);
    // Kept in memory, so that a second start finds what the first one left.
    const auto pin = host::LoadFile(support::PluginPath());
    const Started started = Start(runtime, {});
    EXPECT_EQ(started.allocations, WayFor(version).allocations) << version;
    EXPECT_EQ(started.calls.size(), 3u) << version;
  }
}

}  // namespace

}  // namespace torture
