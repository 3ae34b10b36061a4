// The geometry of the fast scaler, and its rows as they are defined.
#pragma once

#include <cmath>
#include <cstdint>

#include "pixels/pixel_format.h"
#include "plugin/arithmetic.h"

// The source block under each destination pixel.
struct Blocks {
  double xStep;  // source pixels per destination pixel
  double yStep;
  std::int32_t width;   // source pixels
  std::int32_t height;  // source rows
  double count;         // width × height, wrapped to 32 bits

  Blocks(std::int32_t sourceWidth, std::int32_t sourceHeight, int resultWidth, int resultHeight)
      : xStep(static_cast<double>(sourceWidth) / resultWidth),
        yStep(static_cast<double>(sourceHeight) / resultHeight),
        width(TruncateToInt32(std::ceil(xStep))),
        height(TruncateToInt32(std::ceil(yStep))),
        count(WrapMultiply(width, height)) {}
};

// What all rows of a call have in common.
struct RowTask {
  Blocks blocks;
  std::int32_t sourceWidth;  // pixels
  std::int32_t resultWidth;  // pixels
  PixelLayout sourceLayout;
  PixelLayout resultLayout;
};

// Averages one source row into a row of the result, pixel by pixel. This is the meaning of all
// other ways.
void ScaleRowAsDefined(const RowTask& task, const std::uint32_t* source, std::uint32_t* result);
