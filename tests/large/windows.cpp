#include "tests/large/windows.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/random.h"

namespace large {

namespace {

constexpr int kRandomWindows = 16;

std::vector<Area> PlacesOf(const host::Picture& picture, const Windows& windows) {
  const int width = std::min(windows.width, picture.Width());
  const int height = std::min(windows.height, picture.Height());
  const int lastX = picture.Width() - width;
  const int lastY = picture.Height() - height;
  std::vector<Area> places;
  if (windows.everywhere) {
    for (int y = 0; y < picture.Height(); y += height) {
      for (int x = 0; x < picture.Width(); x += width) {
        places.push_back({std::min(x, lastX), std::min(y, lastY), width, height});
      }
    }
    return places;
  }
  for (const int y : {0, lastY / 2, lastY}) {
    for (const int x : {0, lastX / 2, lastX}) places.push_back({x, y, width, height});
  }
  support::Random random(14000);
  for (int i = 0; i < kRandomWindows; ++i) {
    const int x = random.Between(0, lastX);
    places.push_back({x, random.Between(0, lastY), width, height});
  }
  return places;
}

// [first, first + size) with the margin, whole multiples of `step`, within [0, limit).
struct Range {
  int first, size;
};
Range Widened(int first, int size, int margin, int step, int limit) {
  const int begin = std::max(0, first - margin) / step * step;
  const int end = std::min(limit, (first + size + margin + step - 1) / step * step);
  return {begin, end - begin};
}

}  // namespace

void ExpectArea(const host::Picture& result, const Area& area, const oracle::Image& expected,
                int expectedX, int expectedY) {
  ASSERT_EQ(result.PixelFormat(), expected.format);
  for (int y = 0; y < area.height; ++y) {
    for (int x = 0; x < area.width; ++x) {
      const std::uint32_t word = result.Word(area.x + x, area.y + y);
      ASSERT_EQ(word, expected.At(expectedX + x, expectedY + y))
          << "in (" << area.x + x << ", " << area.y + y << ")";
    }
  }
}

void ExpectWindows(const host::Picture& result, const Windows& windows, const Expected& expected) {
  const Ratio ratio = windows.ratio;
  ASSERT_EQ(result.Width() % ratio.result, 0);
  ASSERT_EQ(result.Height() % ratio.result, 0);
  for (const Area& place : PlacesOf(result, windows)) {
    const Range columns =
        Widened(place.x, place.width, windows.margin, ratio.result, result.Width());
    const Range rows =
        Widened(place.y, place.height, windows.margin, ratio.result, result.Height());
    const Area whole = {columns.first, rows.first, columns.size, rows.size};
    const auto toSource = [&](int side) { return side / ratio.result * ratio.source; };
    const Area source = {toSource(whole.x), toSource(whole.y), toSource(whole.width),
                         toSource(whole.height)};
    const oracle::Image made = expected(source, whole);
    ASSERT_EQ(made.width, whole.width);
    ASSERT_EQ(made.height, whole.height);
    ExpectArea(result, place, made, place.x - whole.x, place.y - whole.y);
    if (testing::Test::HasFatalFailure()) return;
  }
}

}  // namespace large
