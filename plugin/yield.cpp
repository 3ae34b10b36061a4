#include "plugin/yield.h"

#include "platform/clocks.h"
#include "plugin/arithmetic.h"
#include "plugin/wrappers.h"

YieldData yield;

namespace {

std::int32_t Ticks() { return static_cast<std::int32_t>(TickCount()); }

// Deliberate: from 2^31 ms (24.8 days) on the conversion gives -2^31, whose difference to 0 is no
// time at all, so that no yield happens.
std::int32_t Milliseconds() {
  const std::uint64_t nanoseconds = AudioConvertHostTimeToNanos(AudioGetCurrentHostTime());
  return TruncateToInt32(static_cast<double>(nanoseconds) / 1000000.0);
}

}  // namespace

void YieldData::DoYield() {
  const bool inTicks = period >= 1;
  const std::int32_t now = inTicks ? Ticks() : Milliseconds();
  const std::int32_t due = inTicks ? period : WrapSubtract(0, period);
  if (WrapAbs(WrapSubtract(now, last)) < due) return;
  REALYieldToRB();
  last = inTicks ? Ticks() : Milliseconds();
}
