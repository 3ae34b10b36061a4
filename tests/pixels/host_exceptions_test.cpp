// What happens when the host throws: outside a release the exception passes and nothing is left
// held; during a release the process ends.
#include <gtest/gtest.h>

#include <csignal>
#include <set>

#include "pixels/picture_copy.h"
#include "pixels/picture_editor.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

struct Scenario {
  const char* name;
  host::RuntimeOptions options;
  host::PictureSpec picture;
  bool lockable;
  int calls;            // of host entries in all
  std::set<int> fatal;  // those of a release, counted from 1
  void (*run)(LinkedHost&, host::Picture*);
};

void Read(LinkedHost&, host::Picture* picture) {
  PictureReader reader;
  reader.GetPictureEditor(HandleOf(picture), 1, 0);
}
void Write(LinkedHost&, host::Picture* picture) {
  PictureWriter writer;
  writer.GetPictureEditor(HandleOf(picture), 0, 1);
}
template <bool alpha>
void MakeAndRender(LinkedHost& host, host::Picture*) {
  PictureReader reader;
  reader.hasAlpha = alpha;
  PictureWriter writer;
  if (!writer.NewPictureWriter(reader, 3, 2)) return;
  if (REALpicture made = writer.RenderPictureWriter()) {
    host.runtime.Release(host.runtime.Book().Find(made));
  }
}
void DrawIntoItself(LinkedHost&, host::Picture* picture) {
  GraphicsDrawPicture(HandleOf(picture), HandleOf(picture), 0, 0, 3, 2, 0, 0, 3, 2);
}
void CopyIntoItself(LinkedHost&, host::Picture* picture) {
  OwnCopy(HandleOf(picture), HandleOf(picture), 0, 0, 3, 2, 0, 0, 3, 2);
}

host::PictureSpec WithDepth(host::PictureSpec spec, int bits) {
  spec.bitsPerPixel = bits;
  return spec;
}

// The kind is asked for first, in three calls.
const std::vector<Scenario>& Scenarios() {
  static const std::vector<Scenario> scenarios = {
      {"read context", Desktop(), Context(3, 2), true, 8, {7, 8}, Read},
      {"write context", Desktop(), Context(3, 2), true, 9, {7, 8, 9}, Write},
      {"write alpha context", Desktop(), AlphaContext(3, 2), true, 9, {7, 8, 9}, Write},
      {"refused context", Desktop(), WithDepth(Context(3, 2), 24), true, 6, {6}, Read},
      {"read buffer", Console(), Buffer(3, 2), true, 8, {7, 8}, Read},
      {"write buffer of unknown host", Unknown(), Buffer(3, 2), true, 10, {8, 9, 10}, Write},
      {"private copy", Desktop(), Context(3, 2), false, 18, {12, 16, 17, 18}, Read},
      {"opaque result", Desktop(), Context(1, 1), true, 13, {8, 11, 12, 13}, MakeAndRender<false>},
      {"alpha result", Desktop(), Context(1, 1), true, 15, {10, 13, 14, 15}, MakeAndRender<true>},
      {"draw", Desktop(), Context(3, 2), true, 4, {4}, DrawIntoItself},
      {"copy", Console(), Buffer(3, 2), true, 5, {3, 4}, CopyIntoItself},
  };
  return scenarios;
}

host::Picture* Prepare(LinkedHost& host, const Scenario& scenario) {
  host::Picture* picture = host.Make(scenario.picture);
  picture->refuseLocks = !scenario.lockable;
  return picture;
}

TEST(HostException, ScenariosMakeTheCallsThatTheyCount) {
  for (const Scenario& scenario : Scenarios()) {
    LinkedHost host(scenario.options);
    host::Picture* picture = Prepare(host, scenario);
    scenario.run(host, picture);
    EXPECT_EQ(host.LeftOver(), Lines{}) << scenario.name;
    const Lines calls = host.Calls();
    EXPECT_EQ(calls.size(), static_cast<std::size_t>(scenario.calls)) << scenario.name;
    for (const int number : scenario.fatal) {
      const std::string& call = calls.at(static_cast<std::size_t>(number - 1));
      EXPECT_TRUE(call.starts_with("REALUnlockObject") ||
                  call.starts_with("unlockPictureDescription") ||
                  call.starts_with("REALPictureClearCache"))
          << scenario.name << ": " << call;
    }
  }
}

TEST(HostException, PassesOutUnchangedFromEveryCallButReleasesAndLeavesNothingHeld) {
  for (const Scenario& scenario : Scenarios()) {
    for (int number = 1; number <= scenario.calls; ++number) {
      if (scenario.fatal.contains(number)) continue;
      SCOPED_TRACE(testing::Message() << scenario.name << ", call " << number);
      LinkedHost host(scenario.options);
      host::Picture* picture = Prepare(host, scenario);
      std::string thrown;
      host.runtime.intercept = [&, seen = 0](const host::EntryCall& call) mutable {
        if (++seen == number) throw HostError(thrown = call.entry);
        return host::Verdict::kProceed;
      };
      std::string caught = "nothing";
      try {
        scenario.run(host, picture);
      } catch (const HostError& error) {
        caught = error.what();
      }
      EXPECT_EQ(caught, thrown);
      EXPECT_EQ(host.LeftOver(), Lines{});
      EXPECT_EQ(picture->References(), 1);
    }
  }
}

TEST(HostExceptionDeathTest, InAReleaseEndsTheProcess) {
  for (const Scenario& scenario : Scenarios()) {
    for (const int number : scenario.fatal) {
      SCOPED_TRACE(testing::Message() << scenario.name << ", call " << number);
      LinkedHost host(scenario.options);
      host::Picture* picture = Prepare(host, scenario);
      host.ThrowAtCall(number);
      EXPECT_EXIT(
          {
            try {
              scenario.run(host, picture);
            } catch (...) {
            }
            std::_Exit(0);
          },
          testing::KilledBySignal(SIGABRT), "");
    }
  }
}

TEST(HostException, FromAnOldHostsExtraUnlockPassesOut) {
  LinkedHost host(Desktop(2011.9));
  host.KnowKind();
  host::Picture* picture = host.Make(Context(3, 2));
  picture->refuseLocks = true;
  host.ThrowFrom("unlockPictureDescription");
  EXPECT_THROW(Write(host, picture), HostError);
  // Only the half-made lock, which the host itself would not end.
  EXPECT_EQ(host.LeftOver().size(), 1u);
  EXPECT_EQ(picture->References(), 1);
}

TEST(HostException, FromTheExtraUnlockOfADestinationStillUnlocksTheSource) {
  LinkedHost host(Console(2011.9));
  host::Picture* src = host.runtime.NewPicture(Buffer(3, 2));
  host::Picture* dst = host.Make(Buffer(3, 2));
  dst->refuseLocks = true;
  host.ThrowAtCall(3);
  EXPECT_THROW(OwnCopy(HandleOf(dst), HandleOf(src), 0, 0, 3, 2, 0, 0, 3, 2), HostError);
  EXPECT_EQ(host.runtime.Book().DescriptionLocks(src), 0);
  EXPECT_EQ(host.LeftOver().size(), 1u);
}

TEST(HostException, DuringACopyOfACopyGivesUpAllCopies) {
  for (int number = 1; number <= 70; ++number) {
    LinkedHost host(Unknown());
    host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
      spec.storage = host::Storage::kHostBuffer;
    };
    host::Picture* picture = host.Make(Buffer(3, 2));
    bool threw = false;
    host.runtime.intercept = [&, seen = 0](const host::EntryCall& call) mutable {
      if (++seen == number && std::string(call.entry) != "REALUnlockObject" &&
          std::string(call.entry) != "unlockPictureDescription") {
        threw = true;
        throw HostError("thrown");
      }
      return host::Verdict::kProceed;
    };
    bool caught = false;
    try {
      Read(host, picture);
    } catch (const HostError&) {
      caught = true;
    }
    EXPECT_EQ(caught, threw) << number;
    EXPECT_EQ(host.LeftOver(), Lines{}) << number;
  }
}

}  // namespace
