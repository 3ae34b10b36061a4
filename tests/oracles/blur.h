// The box blur, stated literally; the expected outcome and pixels of every blurring.
#pragma once

#include <cstdint>
#include <optional>

#include "tests/oracles/image.h"

namespace oracle {

enum class BlurOutcome {
  kReceiver,   // the radius is below 1: the source itself, not a copy
  kNil,        // no picture
  kBlurred,    // a new, blurred picture
  kUnblurred,  // the new picture as the host made it: a working block was missing
};

struct BlurResult {
  BlurOutcome outcome = BlurOutcome::kNil;
  Image image;  // the source for kReceiver, no pixels for kNil, else the new picture
};

// The whole part of a radius; what does not fit 32 bits, and NaN, gives -2^31.
std::int32_t WholeRadius(double radius);

// Whether the division table of a whole radius (at least 1) keeps the limit of 2^31 - 1 bytes.
bool BlurTableFits(std::int32_t radius);

// Blurs `source` with a box of 2 * WholeRadius(radius) + 1, first down the columns into the new
// picture, then along its rows, edge pixels repeated; each channel's mean is truncated twice.
//
// source        1..32767 in both directions, else nil; its fourth byte is never read
// resultFormat  written opaque, top byte 0 in format 8; a format that holds no pixel is not
// written.
//               Deliberate: the rows of the first pass are decoded by the source's format, so
//               formats of different layouts exchange channels.
// initial       the word that the new picture holds wherever nothing is written
// resultWidth   columns that the new picture really has; the source's if not given. Narrower than
//               the source: nil. Further columns keep `initial`.
// resultHeight  rows that it really has, at least 1; the source's if not given. Rows at or beyond
// it
//               land on row 0, in both passes; rows beyond the source's height keep `initial`.
//
// The time is that of the definition: every window is summed afresh for every pixel.
BlurResult Blur(const Image& source, double radius, int resultFormat, std::uint32_t initial = 0,
                std::optional<int> resultWidth = std::nullopt,
                std::optional<int> resultHeight = std::nullopt);

}  // namespace oracle
