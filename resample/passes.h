// The two passes over the pixels: first along the rows into an intermediate image, then down its
// columns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/pixel_format.h"
#include "plugin/arithmetic.h"
#include "resample/contributions.h"

// trunc(sum / total + 0.5) in doubles, clamped to 0..255. Deliberate: a quotient that is not finite
// or does not fit 32 bits gives 0, not 255, so an empty list gives black.
inline std::uint32_t RoundedQuotient(double sum, float total) {
  return ClampToByte(TruncateToInt32(sum / static_cast<double>(total) + 0.5));
}

// Where a row of the intermediate image starts, in words.
inline std::size_t IndexOf(std::int32_t row, std::int32_t width) {
  return static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
}

// Filters one source row into one row of the intermediate image.
//
// source  pixel words in `layout`; alpha is never read, and kNone reads as black
// lists   one for each new column, with columns of this row
// result  one word for each list, 0x00RRGGBB; must not overlap source
//
// A channel is the rounded quotient of sum(channel·weight) and the list's total; products and sums
// are doubles, added in tap order.
void FilterAlongRow(const std::uint32_t* source, PixelLayout layout, const ContributionLists& lists,
                    std::uint32_t* result);

// Filters the columns of the intermediate image into one row of the result.
//
// image   rows of `width` words, 0x00RRGGBB
// list    rows of the image, for this new row
// result  `width` opaque words in `layout`
//
// Channels as above, except that each product is rounded to single precision before it is added.
void FilterDownColumns(const std::uint32_t* image, std::int32_t width, const ContributionList& list,
                       PixelLayout layout, std::uint32_t* result);
