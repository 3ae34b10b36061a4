// Counts what the torture did, over all tests of one run.
#pragma once

namespace torture {

struct Tally {
  long points = 0;    // host calls and allocations that were made to fail
  long calls = 0;     // of methods and of the plug-in's start, those in child processes included
  long children = 0;  // processes that a throwing release was to end
};

Tally& Total();

// What was counted since an earlier total.
Tally Since(const Tally& earlier);

// Prints one line. Fails the running test when less was done than is expected.
void Report(const char* name, const Tally& done, const Tally& expected);

}  // namespace torture
