// Tap lists for the tests of what reads them: those of all kernels, and lists made by hand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "resample/contributions.h"
#include "resample/fixed_weights.h"
#include "resample/kernels.h"

namespace resample_tests {

// A kernel of kernels.h, at run time.
struct Kernel {
  const char* name;
  void (*build)(ContributionLists& lists, std::int32_t sourceSize, Axis axis);
  TapSearch (*search)(std::int32_t sourceSize, std::int32_t resultSize, Axis axis);
};

template <typename Filter>
constexpr Kernel KernelOf(const char* name) {
  return {name,
          [](ContributionLists& lists, std::int32_t sourceSize, Axis axis) {
            lists.Build<Filter>(sourceSize, axis);
          },
          &TapSearch::For<Filter>};
}

inline constexpr Kernel kKernels[] = {
    KernelOf<TriangleFilter>("triangle"),      KernelOf<BoxFilter>("box"),
    KernelOf<Lanczos3Filter>("Lanczos 3"),     KernelOf<Lanczos8Filter>("Lanczos 8"),
    KernelOf<MitchellFilter>("Mitchell"),      KernelOf<BicubicFilter>("bicubic"),
    KernelOf<Cubic6Filter>("six-point cubic"),
};
inline constexpr const Kernel& kTriangle = kKernels[0];
inline constexpr const Kernel& kBox = kKernels[1];
inline constexpr const Kernel& kLanczos3 = kKernels[2];
inline constexpr const Kernel& kLanczos8 = kKernels[3];
inline constexpr const Kernel& kMitchell = kKernels[4];
inline constexpr const Kernel& kBicubic = kKernels[5];

// The lists of a kernel.
class BuiltLists : public ContributionLists {
 public:
  BuiltLists(const Kernel& kernel, std::int32_t source, std::int32_t result, Axis axis) {
    if (Resize(result)) kernel.build(*this, source, axis);
  }
};

// A list by hand: the weights from its first pixel on, of which 0 is no tap.
struct Taps {
  std::int32_t firstPixel;
  std::vector<float> weights;
  float total;

  // With the total that the weights have.
  Taps(std::int32_t first, std::vector<float> all) : firstPixel(first), weights(std::move(all)) {
    double sum = 0.0;
    for (const float weight : weights) sum += static_cast<double>(weight);
    total = static_cast<float>(sum);
  }
  Taps(std::int32_t first, std::vector<float> all, float ownTotal)
      : firstPixel(first), weights(std::move(all)), total(ownTotal) {}

  std::vector<Contribution> Entries() const {
    std::vector<Contribution> entries;
    for (std::size_t k = 0; k < weights.size(); ++k) {
      if (weights[k] == 0.0F) continue;
      entries.push_back({weights[k], firstPixel + static_cast<std::int32_t>(k)});
    }
    return entries;
  }
};

// A kernel that weighs nothing, with room for taps.
struct RoomyFilter {
  static constexpr double kSearch = 0.5;
  static constexpr int kEnlargedTaps = 160;
  static constexpr int kEnlargedTapsDown = 160;
  static constexpr bool kCostly = false;
  static double Value(double) { return 0.0; }
};

// Lists of at most 160 taps each.
class HandMadeLists : public ContributionLists {
 public:
  explicit HandMadeLists(const std::vector<Taps>& all) {
    if (!Resize(static_cast<std::int32_t>(all.size()))) return;
    Build<RoomyFilter>(1, Axis::kAlongRows);
    for (std::int32_t i = 0; i < Count(); ++i) {
      const std::vector<Contribution> entries = all[static_cast<std::size_t>(i)].Entries();
      auto& list = const_cast<ContributionList&>((*this)[i]);
      std::copy(entries.begin(), entries.end(), list.entries);
      list.count = static_cast<std::int32_t>(entries.size());
      list.total = all[static_cast<std::size_t>(i)].total;
    }
  }
};

// FixedWeights of lists, in memory that held something else before.
class FixedLists {
 public:
  FixedLists(const ContributionList* lists, std::int32_t count, std::int32_t sourceSize) {
    fixed.pairs = WidestList(lists, count);
    const auto words = static_cast<std::size_t>(count) * static_cast<std::size_t>(fixed.pairs);
    FixedHead other = {};
    other.firstPair = other.bits = other.upper = other.window = 0x5A5A5A;
    other.fineUpper = other.fineWindow = -0x5A5A5A;
    other.total = other.reciprocal = 7.0F;
    heads_.assign(static_cast<std::size_t>(count), other);
    coarse_.assign(words, 0xA5A5A5A5);
    fine_.assign(words, 0x5A5A5A5A);
    weights_.assign(2 * words, 7.0F);
    fixed.heads = heads_.data();
    fixed.coarse = coarse_.data();
    fixed.fine = fine_.data();
    fixed.weights = weights_.data();
    FixWeights(lists, count, sourceSize, fixed);
  }
  explicit FixedLists(const ContributionLists& lists, std::int32_t sourceSize)
      : FixedLists(&lists[0], lists.Count(), sourceSize) {}

  FixedWeights fixed = {};

 private:
  std::vector<FixedHead> heads_;
  std::vector<std::uint32_t> coarse_, fine_;
  std::vector<float> weights_;
};

}  // namespace resample_tests
