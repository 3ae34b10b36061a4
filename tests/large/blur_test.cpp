// BlurZVQ on pictures of 14,000 × 10,000 pixels.
#include <gtest/gtest.h>

#include "tests/large/measured_call.h"
#include "tests/large/windows.h"
#include "tests/oracles/blur.h"

namespace large {

namespace {

using host::ApplicationKind;

void Blur(ApplicationKind kind, int radius) {
  Stage stage(kind);
  const Pattern pattern(31);
  // On a desktop the layouts of source and result differ, so the second pass exchanges channels.
  const int format = stage.IsDesktop() ? 5 : 8;
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, format);
  const int rowBytes = kWidth * 4 + (stage.IsDesktop() ? 12 : 0);
  const host::CallReport report = Measure(
      stage, {"BlurZVQ", source, {double(radius)}, "14000x10000, radius " + std::to_string(radius)},
      BlurBlocks(radius, kWidth, rowBytes));
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ExpectWindows(
      *result, {.margin = radius, .width = 24, .height = 16}, [&](const Area& from, const Area&) {
        return oracle::Blur(pattern.CutOut(from, format), radius, stage.ResultFormat()).image;
      });
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST(LargeBlurZVQ, OfRadius1OnADesktop) { Blur(ApplicationKind::kDesktop, 1); }
TEST(LargeBlurZVQ, OfRadius1OnAConsole) { Blur(ApplicationKind::kConsole, 1); }
TEST(LargeBlurZVQ, OfRadius100OnADesktop) { Blur(ApplicationKind::kDesktop, 100); }
TEST(LargeBlurZVQ, OfRadius100OnAConsole) { Blur(ApplicationKind::kConsole, 100); }

// The largest table that the size rule allows, 2147481600 bytes, in a process that has the
// addresses for it: both windows span the picture many times over.
TEST(LargeBlurZVQ, OfTheLargestRadiusThatHasATable) {
  constexpr int kRadius = 1048574;
  Stage stage(ApplicationKind::kConsole);
  const Pattern pattern(32);
  host::Picture* source = stage.NewPicture(3, 2, pattern);
  const host::CallReport report =
      Measure(stage, {"BlurZVQ", source, {double(kRadius)}, "3x2, radius 1048574"},
              BlurBlocks(kRadius, 3, 12));
  ASSERT_NE(report.ResultPicture(), nullptr);
  const oracle::BlurResult expected = oracle::Blur(pattern.CutOut({0, 0, 3, 2}, 8), kRadius, 8);
  ASSERT_EQ(expected.outcome, oracle::BlurOutcome::kBlurred);
  ExpectArea(*report.ResultPicture(), {0, 0, 3, 2}, expected.image, 0, 0);
}

}  // namespace

}  // namespace large
