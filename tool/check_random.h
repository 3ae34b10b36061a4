// The random choices of a check: the same for the same seed on every machine.
#pragma once

#include <cstdint>

#include "host/runtime.h"

namespace tool {

class CheckRandom {
 public:
  explicit CheckRandom(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }
  // A number in [low, high].
  int Between(int low, int high) {
    return low + static_cast<int>(Next() % static_cast<std::uint64_t>(high - low + 1));
  }
  bool Coin() { return Next() % 2 == 0; }
  // A number in [low, high), in steps of 1/64.
  double Fraction(int low, int high) { return Between(low * 64, high * 64 - 1) / 64.0; }

  // A host of any kind, with pixels of any format and padding.
  host::RuntimeOptions Host() {
    constexpr host::ApplicationKind kKinds[] = {
        host::ApplicationKind::kDesktop, host::ApplicationKind::kWeb,
        host::ApplicationKind::kConsole, host::ApplicationKind::kNone};
    constexpr double kVersions[] = {2011.04, 2012.0, 2013.0, 2013.04};
    host::RuntimeOptions options;
    options.kind = kKinds[Between(0, 3)];
    options.version = kVersions[Between(0, 3)];
    options.newPixelFormat = Between(5, 6);
    options.alphaPixelFormat = Between(1, 2);
    options.newRowPadding = 4 * Between(0, 3);
    return options;
  }

 private:
  std::uint64_t state_;
};

}  // namespace tool
