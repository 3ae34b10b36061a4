// The clocks that stand in for the platform's on Linux: real ones (monotonic) unless a script is
// set.
#pragma once

#include <cstdint>
#include <functional>

namespace platform {

// A source of time. Both functions are called once per reading.
struct ClockScript {
  std::function<std::uint32_t()> ticks;        // 1/60 s
  std::function<std::uint64_t()> nanoseconds;  // of the host clock
};

// Replaces the real clocks until ClearClockScript. A missing function keeps the real clock.
void SetClockScript(ClockScript script);
void ClearClockScript();

// Readings since the program started, of either clock.
std::uint64_t ClockReadings();

}  // namespace platform
