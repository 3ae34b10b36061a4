#include "platform/clocks.h"

#include <gtest/gtest.h>
#include <time.h>

#include "platform/linux/clocks.h"

namespace {

void Sleep(long milliseconds) {
  timespec wait{milliseconds / 1000, milliseconds % 1000 * 1000000};
  while (nanosleep(&wait, &wait) != 0) {
  }
}

class Clocks : public testing::Test {
 protected:
  ~Clocks() override { platform::ClearClockScript(); }
};

TEST_F(Clocks, RealTicksAreSixtyPerSecondOfTheHostClock) {
  // The tick of a moment lies between those of the nanosecond readings around it.
  for (int i = 0; i < 20; ++i) {
    const auto before = AudioConvertHostTimeToNanos(AudioGetCurrentHostTime());
    const std::uint32_t tick = TickCount();
    const auto after = AudioConvertHostTimeToNanos(AudioGetCurrentHostTime());
    const auto ticksOf = [](std::uint64_t ns) {
      return static_cast<std::uint32_t>(static_cast<long double>(ns) * 60 / 1e9L);
    };
    EXPECT_GE(static_cast<std::int32_t>(tick - ticksOf(before)), -1);
    EXPECT_LE(static_cast<std::int32_t>(tick - ticksOf(after)), 1);
    Sleep(3);
  }
}

TEST_F(Clocks, RealClocksMoveOnByTheTimeThatPasses) {
  const std::uint32_t tick = TickCount();
  const std::uint64_t start = AudioGetCurrentHostTime();
  Sleep(60);
  const std::uint64_t passed = AudioConvertHostTimeToNanos(AudioGetCurrentHostTime() - start);
  EXPECT_GE(passed, 60000000u);
  EXPECT_LT(passed, 20000000000u);
  EXPECT_GE(TickCount() - tick, 3u);
}

TEST_F(Clocks, AScriptReplacesEachClockItNames) {
  platform::SetClockScript({[] { return 0xFFFFFFFFu; }, nullptr});
  EXPECT_EQ(TickCount(), 0xFFFFFFFFu);
  EXPECT_GT(AudioGetCurrentHostTime(), 0u) << "the real clock stays";
  platform::SetClockScript({nullptr, [] { return std::uint64_t{77}; }});
  EXPECT_EQ(AudioGetCurrentHostTime(), 77u);
  EXPECT_EQ(AudioConvertHostTimeToNanos(77), 77u);
  platform::ClearClockScript();
  EXPECT_NE(AudioGetCurrentHostTime(), 77u);
}

TEST_F(Clocks, ScriptsAreAskedOncePerReading) {
  std::uint32_t ticks = 5;
  platform::SetClockScript({[&] { return ticks++; }, nullptr});
  EXPECT_EQ(TickCount(), 5u);
  EXPECT_EQ(TickCount(), 6u);
  EXPECT_EQ(ticks, 7u);
}

TEST_F(Clocks, ReadingsOfBothClocksAreCountedButNotConversions) {
  const std::uint64_t before = platform::ClockReadings();
  TickCount();
  AudioGetCurrentHostTime();
  AudioConvertHostTimeToNanos(1);
  EXPECT_EQ(platform::ClockReadings(), before + 2);
}

}  // namespace
