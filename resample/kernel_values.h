// A kernel's values, of which costly ones are remembered: simple scales need few different ones.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

// Of a kernel of kernels.h. Remembers up to 512 values of one that has kCostly, each until others
// take its place.
template <typename Filter>
class KernelValues {
 public:
  double Value(double x) {
    if constexpr (!Filter::kCostly) return Filter::Value(x);
    const double t = std::fabs(x);  // kernels are symmetric
    std::uint64_t bits = 0;
    std::memcpy(&bits, &t, sizeof bits);
    // Distances at simple scales differ in their upper halves.
    const auto mixed = static_cast<std::uint32_t>(bits >> 32) ^ static_cast<std::uint32_t>(bits);
    Entry* const pair = entries_ + (mixed * 2654435761U >> 24) * 2;
    if (pair[0].bits == bits + 1) return pair[0].value;
    if (pair[1].bits == bits + 1) return pair[1].value;
    pair[1] = pair[0];
    pair[0] = {bits + 1, Filter::Value(t)};
    return pair[0].value;
  }

 private:
  struct Entry {
    std::uint64_t bits;  // of the distance, plus 1; 0 for none
    double value;
  };
  Entry entries_[Filter::kCostly ? 512 : 1] = {};
};
