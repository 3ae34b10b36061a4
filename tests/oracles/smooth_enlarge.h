// The smooth enlarger, stated literally; the expected pixels of every antialiased enlargement.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "tests/oracles/image.h"

namespace oracle {

// The four tap weights for a fraction t in [0, 1), in single precision. Entry 3 belongs to the
// neighbour before, 2 to the pixel itself, 1 to the neighbour after, 0 to the one after that.
// Deliberate: the tangent factor is 0, so entries 0 and 3 are always 0.
std::array<float, 4> SmoothWeights(float t);

// Whether the working tables for a request (both at least 1) keep the limit of 2^31 - 1 bytes each.
// Where they do not, the enlarger gives no picture.
bool SmoothTablesFit(int sourceWidth, int width, int height);

// Enlarges `source` to width * height: each of the four bytes of a pixel, whatever it means, first
// down the columns, then along the row, in single precision, rounded to nearest, kept in 0..255.
//
// source        at least 1 * 1; may be larger than the request, as a mask can be
// resultFormat  only noted in the result: bytes keep their place in the word, none is set to 255
// initial       the word that the result holds wherever nothing is written
// resultHeight  rows that the result really has, at least 1; `height` if not given. Rows at or
// beyond
//               it land on row 0, in writing order; rows beyond `height` keep `initial`.
//
// Throws std::invalid_argument on sizes below 1.
Image SmoothEnlarge(const Image& source, int width, int height, int resultFormat,
                    std::uint32_t initial = 0, std::optional<int> resultHeight = std::nullopt);

}  // namespace oracle
