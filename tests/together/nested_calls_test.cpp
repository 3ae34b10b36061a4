// While a method yields, the host may call any method again: the outer call must come out as if
// nothing had happened, but for the yield record that the two scaling methods share.
#include <gtest/gtest.h>

#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/random.h"

namespace {

enum class Record { kShared, kOwn };

struct Method {
  const char* name;
  Record record;
};

constexpr Method kMethods[] = {{"ScaleZVQ", Record::kShared},
                               {"ScaleImageAndMaskZVQ", Record::kShared},
                               {"ScalingZVQ", Record::kOwn},
                               {"DrawPictureFZVQ", Record::kOwn},
                               {"BlurZVQ", Record::kOwn}};

std::vector<host::Value> ArgumentsOf(const std::string& method, host::Picture* second, int period) {
  if (method == "ScalingZVQ") return {3, 7, 9, period};
  if (method == "DrawPictureFZVQ") return {second, 1.5, -0.25, 0.75, period};
  if (method == "BlurZVQ") return {2.0, period};
  return {7, 9, true, period};
}

// A host with a receiver, a second picture and a mask, always the same.
class Stage {
 public:
  Stage() {
    support::Random random(2009);
    receiver = support::PictureOf(plugin.Host(), random.Noise(5, 6, 5));
    second = support::PictureOf(plugin.Host(), random.Noise(4, 3, 6));
    plugin.Host().SetMask(receiver, support::PictureOf(plugin.Host(), random.Noise(5, 6, 6)));
    plugin.Host().SetMask(second, support::PictureOf(plugin.Host(), random.Noise(4, 3, 6)));
  }

  host::CallReport Call(const Method& method, int period) {
    return plugin.Library().Call(method.name, receiver, ArgumentsOf(method.name, second, period));
  }

  // What a call left to see: its result, or the receiver where it is drawn into.
  oracle::Image Outcome(const host::CallReport& report) const {
    const host::Picture* result = report.ResultPicture();
    return support::ImageOf(result != nullptr ? *result : *receiver);
  }

  support::LoadedPlugin plugin;
  support::RushingClock clock;
  host::Picture* receiver;
  host::Picture* second;
};

// An undisturbed call: its picture and its number of yields.
struct Undisturbed {
  oracle::Image image;
  int yields;
};

Undisturbed RunAlone(const Method& method) {
  Stage stage;
  const host::CallReport report = stage.Call(method, 1);
  EXPECT_EQ(support::Complaints(report), "");
  return {stage.Outcome(report), stage.plugin.Host().Yields()};
}

// Calls `inner` once, at yield number `at` of `outer`; on other pictures than the outer call's.
void ExpectUndisturbed(const Method& outer, const Method& inner, int at, int innerPeriod) {
  const Undisturbed alone = RunAlone(outer);
  Stage stage;
  host::Runtime& runtime = stage.plugin.Host();
  host::Picture* other = runtime.NewPicture({.width = 3, .height = 4});
  int yields = 0;
  bool inside = false;
  runtime.onYield = [&] {
    if (inside || ++yields != at) return;
    inside = true;
    const host::CallReport report = stage.plugin.Library().Call(
        inner.name, other, ArgumentsOf(inner.name, stage.second, innerPeriod));
    EXPECT_EQ(support::Complaints(report), "");
    if (host::Picture* result = report.ResultPicture()) runtime.Release(result);
    inside = false;
  };
  const host::CallReport report = stage.Call(outer, 1);
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(support::Difference(alone.image, stage.Outcome(report)), "");
  const bool shared = outer.record == Record::kShared && inner.record == Record::kShared;
  const int expected = shared && innerPeriod == 0 ? at : alone.yields;
  EXPECT_EQ(yields, expected) << "a shared record without a period ends the outer call's yields";
}

TEST(NestedCalls, LeaveTheOuterCallAsItIs) {
  for (const Method& outer : kMethods) {
    for (const Method& inner : kMethods) {
      for (const int at : {1, 2, 5}) {
        for (const int innerPeriod : {0, 2}) {
          SCOPED_TRACE(std::string(outer.name) + " calls " + inner.name + " at yield " +
                       std::to_string(at) + " with period " + std::to_string(innerPeriod));
          ExpectUndisturbed(outer, inner, at, innerPeriod);
        }
      }
    }
  }
}

}  // namespace
