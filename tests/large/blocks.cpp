#include "tests/large/blocks.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

#include "tests/oracles/kernels.h"

namespace large {

namespace {

constexpr std::size_t kTapBytes = 8;

// A pointer and two words of 32 bits.
constexpr std::size_t kHeadBytes = sizeof(void*) + 8;

std::size_t ListBytes(int mode, int sourceSize, int size, bool firstPass) {
  if (size >= sourceSize) {
    return kTapBytes * static_cast<std::size_t>(oracle::EnlargingCapacity(mode, firstPass));
  }
  const double scale = static_cast<double>(size) / sourceSize;
  const double reach = oracle::SearchHalfWidth(mode) / scale;
  return kTapBytes * static_cast<std::size_t>(oracle::ShrinkingCapacity(reach, firstPass));
}

}  // namespace

Blocks Then(Blocks first, const Blocks& second) {
  first.sizes.insert(first.sizes.end(), second.sizes.begin(), second.sizes.end());
  first.most = std::max(first.most, second.most);
  return first;
}

std::size_t TakeFurther(const Blocks& blocks, std::vector<std::size_t>& sizes) {
  if (blocks.further == 0 || sizes.size() <= blocks.further) return 0;
  if (sizes.size() <= blocks.sizes.size()) return 0;
  const auto place = sizes.begin() + static_cast<std::ptrdiff_t>(blocks.further);
  const std::size_t size = *place;
  sizes.erase(place);
  return size;
}

Blocks SmoothBlocks(int sourceWidth, int width, int height) {
  const auto entries = static_cast<std::size_t>(std::max(width, height));
  const std::size_t rowEntries = std::max(entries, static_cast<std::size_t>(sourceWidth));
  Blocks blocks;
  blocks.sizes = {entries * 4 + 20, entries * 4 + 20, entries * 16 + 20, entries * 16 + 20,
                  rowEntries * 4 + 20};
  blocks.most = std::accumulate(blocks.sizes.begin(), blocks.sizes.end(), std::size_t{0});
  return blocks;
}

Blocks ScalingBlocks(int mode, int sourceWidth, int sourceHeight, int width, int height) {
  const auto columns = static_cast<std::size_t>(width);
  const auto rows = static_cast<std::size_t>(height);
  const std::size_t image = columns * static_cast<std::size_t>(sourceHeight) * 4;
  const std::size_t columnList = ListBytes(mode, sourceWidth, width, true);
  const std::size_t rowList = ListBytes(mode, sourceHeight, height, false);
  Blocks blocks;
  blocks.sizes = {image, columns * kHeadBytes};
  blocks.sizes.insert(blocks.sizes.end(), columns, columnList);
  blocks.further = blocks.sizes.size();
  if (rows > columns) blocks.sizes.push_back(rows * kHeadBytes);
  blocks.sizes.insert(blocks.sizes.end(), rows, rowList);
  const std::size_t first = columns * (kHeadBytes + columnList);
  const std::size_t second = std::max(rows, columns) * kHeadBytes + rows * rowList;
  blocks.most = image + std::max(first, second);
  return blocks;
}

Blocks BlurBlocks(int radius, int width, int resultRowBytes) {
  const std::size_t table = (2 * static_cast<std::size_t>(radius) + 2) * 1024;
  const std::size_t sums = static_cast<std::size_t>(width) * 4 + 20;
  const std::size_t row = static_cast<std::size_t>(resultRowBytes) + 20;
  return {{table, sums, sums, sums, row}, table + 3 * sums + row};
}

}  // namespace large
