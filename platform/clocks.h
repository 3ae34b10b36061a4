// The platform's two clocks, supplied by the process that loads the plug-in.
#pragma once

#include <cstdint>

extern "C" {
std::uint32_t TickCount();                // ticks of 1/60 s since start-up; wraps
std::uint64_t AudioGetCurrentHostTime();  // host-clock units
std::uint64_t AudioConvertHostTimeToNanos(std::uint64_t hostTime);
}
