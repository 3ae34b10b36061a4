// What the differential tests of the methods share: random cases in every cell of a table, each
// compared with an oracle, and the pixel formats that the table runs through.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/coverage.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/random.h"

namespace support {

// One cell of the table. Both functions draw from the cell's own random numbers.
struct DifferentialCell {
  std::string row, column;
  int cases;
  // The host that all of the cell's cases run in.
  std::function<host::RuntimeOptions(Random& random)> options;
  // Runs one case. Empty when the plug-in gave what the oracle gives, else what differs.
  std::function<std::string(LoadedPlugin& plugin, Random& random)> run;
};

// Runs all cells' cases and counts them in `covered`; the n-th cell's random numbers come from
// `seed` + n, n from 1. Stops at the first difference and tells where it is; empty when there is
// none.
std::string RunCells(const std::vector<DifferentialCell>& cells, std::uint32_t seed,
                     Coverage& covered);

// The formats of that kind's pictures; of its pictures with an alpha channel when `alpha`.
std::vector<int> FormatsOf(host::ApplicationKind kind, bool alpha);

// Where pixels come from and where they go.
struct FormatPair {
  host::ApplicationKind kind;
  bool alpha;  // whether the source has an alpha channel
  int source;
  int result;

  std::string Name() const;  // "desktop alpha 1 -> 2"
};

// All of them. Results have the formats of their sources when `resultKeepsAlpha`, else those of
// pictures without an alpha channel.
std::vector<FormatPair> AllFormatPairs(bool resultKeepsAlpha);

// Padded rows and guarded memory for a picture.
host::PictureSpec AnyMemory(Random& random, bool hasAlphaChannel);

}  // namespace support
