#include "resample/passes.h"

#include <cstddef>

namespace {

// The intermediate image's words are those of a host buffer with a top byte of 0.
constexpr PixelLayout kIntermediateLayout = PixelLayout::kBlueFirst;

struct Sums {
  double r = 0.0, g = 0.0, b = 0.0;
};

Rgb Quotients(const Sums& sums, float total) {
  return {RoundedQuotient(sums.r, total), RoundedQuotient(sums.g, total),
          RoundedQuotient(sums.b, total)};
}

template <PixelLayout layout>
void FilterAlongRowAs(const std::uint32_t* source, const ContributionLists& lists,
                      std::uint32_t* result) {
  for (std::int32_t x = 0; x < lists.Count(); ++x) {
    const ContributionList& list = lists[x];
    Sums sums;
    for (std::int32_t k = 0; k < list.count; ++k) {
      const Contribution& tap = list.entries[k];
      const double weight = tap.weight;
      const Rgb colour = Decode(layout, source[tap.pixel]);
      sums.r += colour.r * weight;
      sums.g += colour.g * weight;
      sums.b += colour.b * weight;
    }
    result[x] = EncodeOpaque(kIntermediateLayout, Quotients(sums, list.total));
  }
}

}  // namespace

void FilterAlongRow(const std::uint32_t* source, PixelLayout layout, const ContributionLists& lists,
                    std::uint32_t* result) {
  WithLayout(layout,
             [&](auto constant) { FilterAlongRowAs<constant.value>(source, lists, result); });
}

void FilterDownColumns(const std::uint32_t* image, std::int32_t width, const ContributionList& list,
                       PixelLayout layout, std::uint32_t* result) {
  for (std::int32_t x = 0; x < width; ++x) {
    Sums sums;
    for (std::int32_t k = 0; k < list.count; ++k) {
      const Contribution& tap = list.entries[k];
      const Rgb colour = Decode(kIntermediateLayout,
                                image[IndexOf(tap.pixel, width) + static_cast<std::size_t>(x)]);
      sums.r += static_cast<float>(colour.r) * tap.weight;
      sums.g += static_cast<float>(colour.g) * tap.weight;
      sums.b += static_cast<float>(colour.b) * tap.weight;
    }
    result[x] = EncodeOpaque(layout, Quotients(sums, list.total));
  }
}
