// The working memory that each method is defined to use, in bytes.
#pragma once

#include <cstddef>
#include <vector>

namespace large {

struct Blocks {
  std::vector<std::size_t> sizes;  // of the blocks, in the order in which they are requested
  std::size_t most = 0;            // in use at one time
  // Where one more block may come that only serves speed, and is kept to the end; 0: nowhere.
  std::size_t further = 0;
};

// Takes that block out of the sizes that were requested, if it is there: its size, or 0.
std::size_t TakeFurther(const Blocks& blocks, std::vector<std::size_t>& sizes);

// What one call requests after the other.
Blocks Then(Blocks first, const Blocks& second);

// The smooth enlarger: two tables of 4 and two of 16 bytes an entry, a row of 4, each with 20 bytes
// more; an entry for each pixel of the longer side.
Blocks SmoothBlocks(int sourceWidth, int width, int height);

// ScalingZVQ: an intermediate image of 4 · width · sourceHeight, the heads of the lists, then a
// list for each column and, when these are given up, for each row. 8 bytes a tap. With vector
// instructions a further block comes after the columns' lists. Sides both shrink or both grow.
Blocks ScalingBlocks(int mode, int sourceWidth, int sourceHeight, int width, int height);

// BlurZVQ: a table of 1024 · (2 · radius + 2), three arrays of 4 · width + 20, a row of
// resultRowBytes + 20.
Blocks BlurBlocks(int radius, int width, int resultRowBytes);

}  // namespace large
