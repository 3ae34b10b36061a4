// What a run of the torture does at least, by test: points failed, calls made, those of them in
// child processes. A smaller number means that something is no longer tortured. The whole run:
// 53515 points, 278172 calls.
#pragma once

#include "tests/torture/tally.h"

namespace torture {

inline constexpr Tally kExpectedScale = {11828, 66397, 196};
inline constexpr Tally kExpectedBoth = {10985, 48651, 236};
inline constexpr Tally kExpectedBothSmooth = {10860, 48920, 140};
inline constexpr Tally kExpectedResample = {8129, 43458, 112};
inline constexpr Tally kExpectedDraw = {6680, 36782, 152};
inline constexpr Tally kExpectedBlur = {4925, 31570, 80};
inline constexpr Tally kExpectedStart = {108, 2394, 0};

constexpr Tally Sum(const Tally& a, const Tally& b) {
  return {a.points + b.points, a.calls + b.calls, a.children + b.children};
}
inline constexpr Tally kExpectedTotal =
    Sum(Sum(Sum(kExpectedScale, kExpectedResample), Sum(kExpectedBoth, kExpectedBothSmooth)),
        Sum(Sum(kExpectedDraw, kExpectedBlur), kExpectedStart));

static_assert(kExpectedTotal.points == 53515 && kExpectedTotal.calls == 278172);

}  // namespace torture
