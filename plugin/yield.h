// Lets the host run its own work from time to time during a long method.
#pragma once

#include <cstdint>

struct YieldData {
  // 0 never yields; positive: ticks of 1/60 s between yields; negative: that many milliseconds.
  std::int32_t period = 0;
  // Time of the last yield in the period's unit; 0 at the start, so that the first yield point
  // yields.
  std::int32_t last = 0;

  void Start(std::int32_t newPeriod) {
    period = newPeriod;
    last = 0;
  }

  // A yield point, between rows of pixels: yields if a period was given and has passed.
  void YieldPoint() {
    if (period != 0) DoYield();
  }

  // Yields if a full period has passed since the last yield. A period of 0 counts as a negative one
  // that is always due. A clock that wrapped or went back counts as time passed. Takes the time
  // even when the host has no routine to yield to. What the host throws while it runs passes
  // through.
  void DoYield();
};

// Shared by the proportional scalers.
// Deliberate: a scaling method called while another one yields resets it, and the outer one goes on
// with the inner one's period and time.
extern YieldData yield;
