// When the host is let run, on a clock that follows a script.
#include "plugin/yield.h"

#include <gtest/gtest.h>

#include <deque>

#include "platform/linux/clocks.h"
#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::FakeHost;
using Lines = std::vector<std::string>;

constexpr std::int32_t kLeast = -2147483647 - 1;

void NoteYield() { FakeHost::Current().Note("yield"); }

// Every reading takes the next value of its script; what is not scripted is a failure.
class YieldTest : public testing::Test {
 protected:
  YieldTest() {
    host_.Offer("REALYieldToRB", NoteYield);
    platform::ClockScript script;
    script.ticks = [this] { return static_cast<std::uint32_t>(Next(ticks_, "ticks")); };
    script.nanoseconds = [this] { return Next(nanoseconds_, "clock"); };
    platform::SetClockScript(script);
  }
  ~YieldTest() override {
    platform::ClearClockScript();
    EXPECT_TRUE(ticks_.empty()) << "readings not taken";
    EXPECT_TRUE(nanoseconds_.empty()) << "readings not taken";
  }

  std::uint64_t Next(std::deque<std::uint64_t>& script, const std::string& name) {
    host_.Note(name);
    if (script.empty()) {
      ADD_FAILURE() << "unexpected reading: " << name;
      return 0;
    }
    const std::uint64_t value = script.front();
    script.pop_front();
    return value;
  }

  static YieldData Started(std::int32_t period) {
    YieldData data;
    data.Start(period);
    return data;
  }

  FakeHost host_;
  std::deque<std::uint64_t> ticks_;
  std::deque<std::uint64_t> nanoseconds_;
};

constexpr std::uint64_t Milliseconds(std::uint64_t count) { return count * 1000000; }

TEST_F(YieldTest, StartsWithoutAPeriod) {
  EXPECT_EQ(yield.period, 0);
  EXPECT_EQ(yield.last, 0);
  YieldData data;
  EXPECT_EQ(data.period, 0);
  EXPECT_EQ(data.last, 0);
  data.last = 99;
  data.Start(-20);
  EXPECT_EQ(data.period, -20);
  EXPECT_EQ(data.last, 0);
}

TEST_F(YieldTest, APeriodOf0ReadsNoClockAndNeverCallsTheHost) {
  const std::uint64_t before = platform::ClockReadings();
  YieldData data = Started(0);
  for (int i = 0; i < 100; ++i) data.YieldPoint();
  EXPECT_EQ(platform::ClockReadings(), before);
  EXPECT_EQ(host_.Lines(), Lines{});
}

TEST_F(YieldTest, TheFirstYieldPointYieldsAndTakesAFreshReadingAfterwards) {
  ticks_ = {5000, 5007};
  YieldData data = Started(60);
  data.YieldPoint();
  EXPECT_EQ(host_.Lines(), (Lines{"ticks", "resolve(REALYieldToRB)", "yield", "ticks"}));
  EXPECT_EQ(data.last, 5007);
}

TEST_F(YieldTest, ANotYetDueYieldCostsOneReadingAndChangesNothing) {
  ticks_ = {5066};
  YieldData data = {60, 5007};
  data.YieldPoint();
  EXPECT_EQ(host_.Lines(), Lines{"ticks"});
  EXPECT_EQ(data.last, 5007);
}

TEST_F(YieldTest, AFullPeriodIsEnough) {
  ticks_ = {5067, 5068};
  YieldData data = {60, 5007};
  data.YieldPoint();
  EXPECT_EQ(host_.Calls(), (Lines{"ticks", "yield", "ticks"}));
  EXPECT_EQ(data.last, 5068);
}

TEST_F(YieldTest, APeriodOf1YieldsAtMostOncePerTick) {
  // Yield points at ticks 10, 10, 11, 11, 11, 13, 13; each yield is followed by one more reading.
  ticks_ = {10, 10, 10, 11, 11, 11, 11, 13, 13, 13};
  YieldData data = Started(1);
  std::vector<int> yielded;
  for (int i = 0; i < 7; ++i) {
    host_.ClearLines();
    data.YieldPoint();
    yielded.push_back(host_.Calls().size() == 3);
  }
  EXPECT_EQ(yielded, (std::vector{1, 0, 1, 0, 0, 1, 0}));
}

TEST_F(YieldTest, APeriodOf20MillisecondsYieldsEvery20Milliseconds) {
  // A row takes 7 ms, a yield none: due at the first row, then after 21 ms each.
  YieldData data = Started(-20);
  std::vector<int> yielded;
  for (int row = 0; row < 10; ++row) {
    const std::uint64_t now = Milliseconds(1000 + 7 * static_cast<std::uint64_t>(row));
    nanoseconds_ = {now, now};
    host_.ClearLines();
    data.YieldPoint();
    yielded.push_back(host_.Calls() == Lines{"clock", "yield", "clock"});
    nanoseconds_.clear();
  }
  EXPECT_EQ(yielded, (std::vector{1, 0, 0, 1, 0, 0, 1, 0, 0, 1}));
}

struct ElapsedCase {
  const char* name;
  std::int32_t period;
  std::int32_t last;
  std::uint64_t now;  // ticks or nanoseconds
  bool yields;
};

TEST_F(YieldTest, ElapsedTimeIsTheWrappedAbsoluteDifference) {
  constexpr std::uint64_t kMs = 1000000;
  const ElapsedCase cases[] = {
      {"ticks: one short", 60, 100, 159, false},
      {"ticks: a period", 60, 100, 160, true},
      {"ticks: the longest period, not reached", 2147483647, 1, 2147483647, false},
      {"ticks: the longest period, reached", 2147483647, 0, 2147483647, true},
      {"ticks: wrap to 0 within a period", 60, -20, 39, false},
      {"ticks: wrap to 0 after a period", 60, -20, 40, true},
      {"ticks: wrap into negative within a period", 60, 2147483647, 0x80000000 + 58, false},
      {"ticks: wrap into negative after a period", 60, 2147483647, 0x80000000 + 59, true},
      {"ticks: the clock went back a little", 60, 100, 41, false},
      {"ticks: the clock went back a period", 60, 100, 40, true},
      {"ticks: half the range apart is no time", 1, 0, 0x80000000, false},
      {"ms: one short", -20, 1000, 1019 * kMs, false},
      {"ms: fractions are dropped", -20, 1000, 1020 * kMs - 1, false},
      {"ms: a period", -20, 1000, 1020 * kMs, true},
      {"ms: the clock went back a little", -20, 1000, 981 * kMs, false},
      {"ms: the clock went back a period", -20, 1000, 980 * kMs, true},
      {"ms: fractions are dropped going back", -20, 1000, 981 * kMs - 1, true},
      {"ms: period 1", -1, 1000, 1001 * kMs, true},
      {"ms: period 1, the same millisecond", -1, 1000, 1001 * kMs - 1, false},
      {"ms: the last one that fits", -20, 0, 2147483647 * kMs + 999999, true},
      {"ms: the first one that does not fit", -20, 0, 2147483648 * kMs, false},
      {"ms: far beyond", -20, 0, 0xFFFFFFFFFFFFFFFF, false},
      {"ms: beyond, last positive", -20, 1, 2147483648 * kMs, true},
      {"ms: the longest period, not reached", kLeast + 1, 1, 2147483647 * kMs, false},
      {"ms: the longest period, reached", kLeast + 1, 0, 2147483647 * kMs, true},
      // -(-2^31) is -2^31, and nothing is less than that.
      {"ms: a period of -2^31 is always due", kLeast, 1000, 1000 * kMs, true},
      {"ms: a period of -2^31 is due beyond the range", kLeast, 0, 2147483648 * kMs, true},
      {"ms: a period of 0 is always due", 0, 1000, 1000 * kMs, true},
      {"ms: a period of 0 is not due beyond the range", 0, 0, 2147483648 * kMs, false},
  };
  for (const ElapsedCase& row : cases) {
    std::deque<std::uint64_t>& script = row.period >= 1 ? ticks_ : nanoseconds_;
    script = {row.now};
    if (row.yields) script.push_back(row.period >= 1 ? 777 : 777 * kMs);
    host_.ClearLines();
    YieldData data = {row.period, row.last};
    data.DoYield();
    const std::size_t yields = row.yields ? 1 : 0;
    EXPECT_EQ(host_.Calls().size(), 1 + 2 * yields) << row.name;
    EXPECT_EQ(data.last, row.yields ? 777 : row.last) << row.name;
    EXPECT_EQ(data.period, row.period) << row.name;
    EXPECT_TRUE(script.empty()) << row.name;
    script.clear();
  }
}

TEST_F(YieldTest, AReadingAfterTheYieldBeyondTheRangeCountsAsTheLeastMillisecond) {
  nanoseconds_ = {Milliseconds(2147483647), Milliseconds(2147483648)};
  YieldData data = Started(-20);
  data.YieldPoint();
  EXPECT_EQ(data.last, kLeast);
}

TEST_F(YieldTest, AHostWithoutTheRoutineStillUpdatesTheLastTime) {
  host_.Withdraw("REALYieldToRB");
  ticks_ = {5000, 5007, 5008};
  YieldData data = Started(60);
  data.YieldPoint();
  EXPECT_EQ(host_.Lines(), (Lines{"ticks", "resolve(REALYieldToRB)", "ticks"}));
  EXPECT_EQ(data.last, 5007);
  data.YieldPoint();
  EXPECT_EQ(host_.LookUps("REALYieldToRB"), 1);

  nanoseconds_ = {Milliseconds(40), Milliseconds(41)};
  YieldData inMilliseconds = Started(-20);
  inMilliseconds.YieldPoint();
  EXPECT_EQ(inMilliseconds.last, 41);
}

// The inner call's routine of the host starts the shared record anew, as a nested method does.
void StartSharedAnew() {
  FakeHost::Current().Note("yield");
  yield.Start(-30);
  yield.last = 4;
}

TEST_F(YieldTest, ANestedCallChangesThePeriodButTheOuterUnitGoesOnForThisOnce) {
  host_.Offer("REALYieldToRB", StartSharedAnew);
  ticks_ = {5000, 5007};
  yield.Start(60);
  yield.YieldPoint();
  EXPECT_EQ(yield.period, -30);
  EXPECT_EQ(host_.Calls(), (Lines{"ticks", "yield", "ticks"}));
  EXPECT_EQ(yield.last, 5007);
}

void ThrowFromYield() { throw 7; }

TEST_F(YieldTest, WhatTheHostThrowsPassesThroughAndLeavesTheLastTime) {
  host_.Offer("REALYieldToRB", ThrowFromYield);
  ticks_ = {5000};
  YieldData data = Started(60);
  EXPECT_THROW(data.YieldPoint(), int);
  EXPECT_EQ(data.last, 0);
}

}  // namespace
