// Rows of 2^26 pixels and more, which only pictures with an alpha channel have.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/large/limit_stage.h"
#include "tests/oracles/smooth_enlarge.h"

namespace large {

namespace {

// For this width, and a source one pixel wider, the last block starts a pixel too far to the right
// in double precision: it would end beyond the row, which is followed by memory without access.
TEST(VeryWideRows, TheLastBlockDoesNotLeaveTheRow) {
  constexpr int kNewWidth = 67114657;
  constexpr int kSourceWidth = kNewWidth + 1;
  const double step = static_cast<double>(kSourceWidth) / kNewWidth;
  const int blockWidth = static_cast<int>(std::ceil(step));
  const int lastStart = static_cast<int>(step * (kNewWidth - 1));
  ASSERT_EQ(blockWidth, 2);
  ASSERT_GT(lastStart + blockWidth, kSourceWidth);
  for (const host::ApplicationKind kind : kBothKinds) {
    LimitStage stage(kind);
    host::Picture* source = stage.Make({kSourceWidth, 1}, 61, true);
    const host::CallReport report =
        Measure(stage, {"ScaleZVQ", source, {kNewWidth, 1}, "67114658x1 to 67114657x1, alpha"}, {});
    const host::Picture* result = report.ResultPicture();
    ASSERT_NE(result, nullptr);
    const auto* from = reinterpret_cast<const std::uint32_t*>(source->Row(0));
    const auto* to = reinterpret_cast<const std::uint32_t*>(result->Row(0));
    const int format = source->PixelFormat();
    const int newFormat = result->PixelFormat();
    for (int x = 0; x < kNewWidth - 1; ++x) {
      const int start = static_cast<int>(step * x);
      const int green = oracle::Green(from[start], format) + oracle::Green(from[start + 1], format);
      ASSERT_EQ(oracle::Green(to[x], newFormat), green / 2) << x;
    }
  }
}

// Products of index and size beyond 32 bits.
TEST(VeryWideRows, AreEnlargedSmoothly) {
  constexpr Size kSource = {70000, 1};
  constexpr Size kNew = {140000, 2};
  for (const host::ApplicationKind kind : kBothKinds) {
    LimitStage stage(kind);
    host::Picture* source = stage.Make(kSource, 62, true);
    const host::CallReport report = Measure(
        stage, {"ScaleZVQ", source, {kNew.width, kNew.height, true}, "70000x1 to 140000x2, alpha"},
        SmoothBlocks(kSource.width, kNew.width, kNew.height));
    stage.Expect(report, oracle::SmoothEnlarge(support::ImageOf(*source), kNew.width, kNew.height,
                                               stage.ResultFormat(true)));
  }
}

}  // namespace

}  // namespace large
