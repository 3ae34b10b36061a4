// Which kind of application hosts the plug-in.
#pragma once

#include <cstdint>

// Set at most once and never cleared: by the probe, or by the first pixel lock that tells.
extern std::uint8_t IsDesktop;
extern std::uint8_t IsConsole;

// While neither is set, asks the host for its application classes: all three, each time.
void ProbeApplicationKind();
