// ScalingZVQ on pictures of 14,000 × 10,000 pixels.
#include <gtest/gtest.h>

#include "tests/large/measured_call.h"
#include "tests/large/windows.h"
#include "tests/oracles/resample.h"

namespace large {

namespace {

using host::ApplicationKind;

std::string Sizes(const char* sizes, int mode) {
  return std::string(sizes) + ", mode " + std::to_string(mode);
}

// A scale of a power of two: positions are exact, so a part of the picture has the taps of the
// whole.
Expected Part(const Pattern& pattern, int format, int mode, int resultFormat) {
  return [=](const Area& from, const Area& to) {
    return oracle::Resample(pattern.CutOut(from, format), mode, to.width, to.height, resultFormat);
  };
}

class LargeScalingZVQInMode : public testing::TestWithParam<int> {};

// To an eighth of each side.
void Shrink(ApplicationKind kind, int mode) {
  constexpr int kNewWidth = kWidth / 8;
  constexpr int kNewHeight = kHeight / 8;
  Stage stage(kind);
  const Pattern pattern(21);
  const int format = stage.IsDesktop() ? 5 : 8;
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, format);
  const host::CallReport report =
      Measure(stage,
              {"ScalingZVQ",
               source,
               {mode, kNewWidth, kNewHeight},
               Sizes("14000x10000 to 1750x1250", mode)},
              ScalingBlocks(mode, kWidth, kHeight, kNewWidth, kNewHeight));
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ExpectWindows(*result, {.ratio = {1, 8}, .margin = 10},
                Part(pattern, format, mode, stage.ResultFormat()));
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST_P(LargeScalingZVQInMode, ShrinksOnADesktop) { Shrink(ApplicationKind::kDesktop, GetParam()); }
INSTANTIATE_TEST_SUITE_P(Each, LargeScalingZVQInMode, testing::Range(1, 8));

TEST(LargeScalingZVQ, ShrinksOnAConsole) { Shrink(ApplicationKind::kConsole, 4); }

// Four times as wide and high.
void Enlarge(ApplicationKind kind, int mode) {
  Stage stage(kind);
  const Pattern pattern(22);
  const int format = stage.IsDesktop() ? 5 : 8;
  host::Picture* source = stage.NewPicture(kWidth / 4, kHeight / 4, pattern, format);
  const host::CallReport report = Measure(
      stage,
      {"ScalingZVQ", source, {mode, kWidth, kHeight}, Sizes("3500x2500 to 14000x10000", mode)},
      ScalingBlocks(mode, kWidth / 4, kHeight / 4, kWidth, kHeight));
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ExpectWindows(*result, {.ratio = {4, 1}, .margin = 40},
                Part(pattern, format, mode, stage.ResultFormat()));
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST(LargeScalingZVQ, EnlargesOnADesktop) { Enlarge(ApplicationKind::kDesktop, 5); }
TEST(LargeScalingZVQ, EnlargesOnAConsole) { Enlarge(ApplicationKind::kConsole, 3); }

// Source, intermediate image and result of 560 MB each. The box filter copies every colour.
TEST(LargeScalingZVQ, CopiesAPictureOfItsOwnSize) {
  Stage stage(ApplicationKind::kConsole);
  const Pattern pattern(23);
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern);
  const host::CallReport report = Measure(
      stage, {"ScalingZVQ", source, {2, kWidth, kHeight}, Sizes("14000x10000 to 14000x10000", 2)},
      ScalingBlocks(2, kWidth, kHeight, kWidth, kHeight));
  host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  for (int y = 0; y < kHeight; ++y) {
    const auto* from = reinterpret_cast<const std::uint32_t*>(source->Row(y));
    const auto* to = reinterpret_cast<const std::uint32_t*>(result->Row(y));
    for (int x = 0; x < kWidth; ++x) ASSERT_EQ(to[x], from[x] & 0xFFFFFF) << x << ", " << y;
  }
  EXPECT_EQ(pattern.Changed(*source), "");
}

}  // namespace

}  // namespace large
