// Which source pixels make a new pixel along one axis, and how much each weighs.
#pragma once

#include <cstdint>

#include "plugin/arithmetic.h"
#include "plugin/zeroed_block.h"
#include "resample/kernel_values.h"

// One tap.
struct Contribution {
  float weight;        // the kernel's value, never 0
  std::int32_t pixel;  // source column or row, within the source
};

// The taps of one new pixel, in ascending order of source pixels.
struct ContributionList {
  Contribution* entries;  // owned by the array of lists; null for an empty list
  std::int32_t count;
  float total;  // of the weights, added up as doubles and rounded once
};

// Rows are resampled first, then columns. Deliberate: the two bound their search for taps
// differently.
enum class Axis { kAlongRows, kDownColumns };

// The lists of all new pixels along one axis. Owns their entries.
class ContributionLists {
 public:
  ContributionLists() = default;
  ~ContributionLists() { Clear(); }
  ContributionLists(const ContributionLists&) = delete;
  ContributionLists& operator=(const ContributionLists&) = delete;

  // Makes room for `count` lists, all empty: by reusing the array when it is large enough, else by
  // a new one. False when memory is short.
  bool Resize(std::int32_t count);

  // Gives up all entries; the lists are empty then.
  void Clear();

  std::int32_t Count() const { return count_; }
  const ContributionList& operator[](std::int32_t index) const { return heads_[index]; }

  // Builds the lists for `sourceSize` pixels resampled to Count() pixels, both at least 1. A list
  // whose entries cannot be allocated stays empty, which makes its pixels black. Call once after
  // Resize.
  template <typename Filter>
  void Build(std::int32_t sourceSize, Axis axis);

 private:
  // An empty list with room for `capacity` entries, as far as memory allows.
  static ContributionList NewList(std::int64_t capacity) {
    const bool possible = capacity >= 1;
    const std::uint64_t bytes =
        possible ? static_cast<std::uint64_t>(capacity) * sizeof(Contribution) : 0;
    return {static_cast<Contribution*>(AllocateZeroed(bytes)), 0, 0.0F};
  }

  ZeroedBlock<ContributionList> heads_;
  std::int32_t capacity_ = 0;  // lists that heads_ has room for
  std::int32_t count_ = 0;
};

// How the taps of one axis are searched.
struct TapSearch {
  double scale;        // result pixels per source pixel
  double stretch;      // kernel units per source pixel: 1 when enlarging
  double halfWidth;    // source pixels looked at on either side
  bool towardOutside;  // the borders of the search are rounded away from the centre instead of
                       // toward 0
  std::int64_t capacity;

  template <typename Filter>
  static TapSearch For(std::int32_t sourceSize, std::int32_t resultSize, Axis axis) {
    const double scale = static_cast<double>(resultSize) / sourceSize;
    const bool alongRows = axis == Axis::kAlongRows;
    if (scale >= 1.0) {
      return {scale, 1.0, Filter::kSearch, alongRows,
              alongRows ? Filter::kEnlargedTaps : Filter::kEnlargedTapsDown};
    }
    const double halfWidth = Filter::kSearch / scale;
    const std::int64_t capacity = alongRows ? std::int64_t{TruncateToInt32(halfWidth)} * 2 + 2
                                            : std::int64_t{TruncateToInt32(2.0 * halfWidth + 2.0)};
    return {scale, scale, halfWidth, false, capacity};
  }

  // No list reaches over more source pixels.
  std::int32_t Span(std::int32_t sourceSize) const {
    const double span = 2.0 * halfWidth + 3.0;
    return span < sourceSize ? static_cast<std::int32_t>(span) : sourceSize;
  }

  std::int32_t First(double centre) const {
    const double border = centre - halfWidth;
    const std::int32_t first = towardOutside ? FloorToInt32(border) : TruncateToInt32(border);
    return first > 0 ? first : 0;
  }
  std::int32_t Last(double centre, std::int32_t sourceSize) const {
    const double border = centre + halfWidth;
    const std::int32_t last = towardOutside ? -FloorToInt32(-border) : TruncateToInt32(border);
    return last < sourceSize - 1 ? last : sourceSize - 1;
  }
};

template <typename Filter>
void ContributionLists::Build(std::int32_t sourceSize, Axis axis) {
  const TapSearch search = TapSearch::For<Filter>(sourceSize, count_, axis);
  KernelValues<Filter> kernel;
  for (std::int32_t i = 0; i < count_; ++i) {
    ContributionList list = NewList(search.capacity);
    if (list.entries != nullptr) {
      const double centre = (i + 0.5) / search.scale;
      const std::int32_t last = search.Last(centre, sourceSize);
      double total = 0.0;
      for (std::int32_t j = search.First(centre); j <= last; ++j) {
        const double weight = kernel.Value((centre - j - 0.5) * search.stretch);
        if (weight == 0.0 || list.count >= search.capacity) continue;
        list.entries[list.count++] = {static_cast<float>(weight), j};
        total += weight;
      }
      list.total = static_cast<float>(total);
    }
    heads_[i] = list;
  }
}
