// ScaleZVQ on pictures of 14,000 × 10,000 pixels.
#include <gtest/gtest.h>

#include "tests/large/measured_call.h"
#include "tests/large/windows.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/smooth_enlarge.h"

namespace large {

namespace {

using host::ApplicationKind;

// To a tenth of each side: every pixel of the result.
void ShrinkFast(ApplicationKind kind, bool hasAlpha) {
  Stage stage(kind);
  const Pattern pattern(1);
  const int format = stage.IsDesktop() ? (hasAlpha ? 1 : 5) : 8;
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, format, hasAlpha);
  const host::CallReport report =
      Measure(stage,
              {"ScaleZVQ",
               source,
               {kWidth / 10, kHeight / 10},
               std::string("14000x10000 to 1400x1000, fast") + (hasAlpha ? ", alpha" : "")},
              {});
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ASSERT_EQ(result->Width(), kWidth / 10);
  ASSERT_EQ(result->Height(), kHeight / 10);
  EXPECT_EQ(result->HasAlphaChannel(), hasAlpha);
  const int resultFormat = stage.ResultFormat(hasAlpha);
  ExpectWindows(*result, {.ratio = {1, 10}, .width = 140, .height = 100, .everywhere = true},
                [&](const Area& from, const Area& to) {
                  return oracle::FastScale(pattern.CutOut(from, format), to.width, to.height,
                                           resultFormat);
                });
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST(LargeScaleZVQ, ShrinksFastOnADesktop) { ShrinkFast(ApplicationKind::kDesktop, false); }
TEST(LargeScaleZVQ, ShrinksFastOnAConsole) { ShrinkFast(ApplicationKind::kConsole, false); }
TEST(LargeScaleZVQ, ShrinksAnAlphaPictureFast) { ShrinkFast(ApplicationKind::kDesktop, true); }

// To a size near its own, of which whole rows are judged: a block is 2 pixels wide and high, and
// row j starts at source row trunc(j · 10000 / 9999).
void ScaleFastToNearlyItsSize(ApplicationKind kind) {
  constexpr int kNearWidth = kWidth - 1;
  constexpr int kNearHeight = kHeight - 1;
  Stage stage(kind);
  const Pattern pattern(2);
  const int format = stage.IsDesktop() ? 5 : 8;
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, format);
  const host::CallReport report = Measure(
      stage, {"ScaleZVQ", source, {kNearWidth, kNearHeight}, "14000x10000 to 13999x9999, fast"},
      {});
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  for (int k = 0; k <= 40; ++k) {
    const int row = (kNearHeight - 1) * k / 40;
    const int sourceRow = static_cast<int>(row * (static_cast<double>(kHeight) / kNearHeight));
    const oracle::Image expected = oracle::FastScale(
        pattern.CutOut({0, sourceRow, kWidth, 2}, format), kNearWidth, 1, stage.ResultFormat());
    ExpectArea(*result, {0, row, kNearWidth, 1}, expected, 0, 0);
    if (testing::Test::HasFatalFailure()) return;
  }
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST(LargeScaleZVQ, ScalesFastToNearlyItsSizeOnADesktop) {
  ScaleFastToNearlyItsSize(ApplicationKind::kDesktop);
}
TEST(LargeScaleZVQ, ScalesFastToNearlyItsSizeOnAConsole) {
  ScaleFastToNearlyItsSize(ApplicationKind::kConsole);
}

// Four times as wide and high.
void EnlargeSmoothly(ApplicationKind kind) {
  constexpr int kSourceWidth = kWidth / 4;
  constexpr int kSourceHeight = kHeight / 4;
  Stage stage(kind);
  const Pattern pattern(3);
  const int format = stage.IsDesktop() ? 5 : 8;
  host::Picture* source = stage.NewPicture(kSourceWidth, kSourceHeight, pattern, format);
  const host::CallReport report = Measure(
      stage, {"ScaleZVQ", source, {kWidth, kHeight, true}, "3500x2500 to 14000x10000, smooth"},
      SmoothBlocks(kSourceWidth, kWidth, kHeight));
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ExpectWindows(*result, {.ratio = {4, 1}, .margin = 12}, [&](const Area& from, const Area& to) {
    return oracle::SmoothEnlarge(pattern.CutOut(from, format), to.width, to.height,
                                 stage.ResultFormat());
  });
  EXPECT_EQ(pattern.Changed(*source), "");
}

TEST(LargeScaleZVQ, EnlargesSmoothlyOnADesktop) { EnlargeSmoothly(ApplicationKind::kDesktop); }
TEST(LargeScaleZVQ, EnlargesSmoothlyOnAConsole) { EnlargeSmoothly(ApplicationKind::kConsole); }

}  // namespace

}  // namespace large
