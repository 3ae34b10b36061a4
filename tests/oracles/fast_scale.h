// The fast proportional scaler, stated literally; the expected pixels of every fast scaling.
#pragma once

#include <cstdint>
#include <optional>

#include "tests/oracles/image.h"

namespace oracle {

// Scales `source` to width * height (both at least 1) by averaging, for every result pixel, the
// first row of the source block under it. Channel = trunc((0.5 + sum) / (block width * block
// height)).
//
// source        any size, also empty (an empty one gives black); its fourth byte is never read
// resultFormat  written opaque, top byte 0 in format 8; a format that holds no pixel is not written
// initial       the word that the result holds wherever nothing is written
// resultHeight  rows that the result really has, at least 1; `height` if not given. Rows at or
// beyond
//               it land on row 0, in writing order; rows beyond `height` keep `initial`.
//
// Throws std::invalid_argument on sizes below 1.
Image FastScale(const Image& source, int width, int height, int resultFormat,
                std::uint32_t initial = 0, std::optional<int> resultHeight = std::nullopt);

}  // namespace oracle
