// The clocks: CLOCK_MONOTONIC, read as ticks or as nanoseconds, unless a script is set.
#include "platform/linux/clocks.h"

#include <time.h>

#include <utility>

#include "platform/clocks.h"

namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
constexpr std::uint64_t kTicksPerSecond = 60;

std::uint64_t gReadings = 0;

platform::ClockScript& Script() {
  static platform::ClockScript script;
  return script;
}

std::uint64_t MonotonicNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * kNanosecondsPerSecond +
         static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace

namespace platform {

void SetClockScript(ClockScript script) { Script() = std::move(script); }

void ClearClockScript() { Script() = ClockScript(); }

std::uint64_t ClockReadings() { return gReadings; }

}  // namespace platform

std::uint32_t TickCount() {
  ++gReadings;
  if (Script().ticks) return Script().ticks();
  const std::uint64_t now = MonotonicNanoseconds();
  // Whole seconds apart from the rest, so that the product cannot overflow.
  return static_cast<std::uint32_t>(now / kNanosecondsPerSecond * kTicksPerSecond +
                                    now % kNanosecondsPerSecond * kTicksPerSecond /
                                        kNanosecondsPerSecond);
}

std::uint64_t AudioGetCurrentHostTime() {
  ++gReadings;
  return Script().nanoseconds ? Script().nanoseconds() : MonotonicNanoseconds();
}

std::uint64_t AudioConvertHostTimeToNanos(std::uint64_t hostTime) { return hostTime; }
