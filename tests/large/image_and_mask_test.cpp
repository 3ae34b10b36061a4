// ScaleImageAndMaskZVQ on pictures and masks of 14,000 × 10,000 pixels.
#include <gtest/gtest.h>

#include "tests/large/measured_call.h"
#include "tests/large/windows.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/smooth_enlarge.h"

namespace large {

namespace {

using host::ApplicationKind;

const Windows kTenth = {.ratio = {1, 10}, .width = 140, .height = 100, .everywhere = true};

Expected FastPart(const Pattern& pattern, int format, int resultFormat) {
  return [=](const Area& from, const Area& to) {
    return oracle::FastScale(pattern.CutOut(from, format), to.width, to.height, resultFormat);
  };
}

void ShrinkBoth(ApplicationKind kind) {
  Stage stage(kind);
  const Pattern pattern(11);
  const Pattern maskPattern(12);
  const int format = stage.IsDesktop() ? 5 : 8;
  const int maskFormat = stage.IsDesktop() ? 6 : 8;
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, format);
  host::Picture* mask = stage.NewPicture(kWidth, kHeight, maskPattern, maskFormat);
  stage.Host().SetMask(source, mask);
  // The host's own drawing of the scaled mask holds a list of its pixels.
  const host::CallReport report = Measure(stage,
                                          {"ScaleImageAndMaskZVQ",
                                           source,
                                           {kWidth / 10, kHeight / 10},
                                           "14000x10000 to 1400x1000, fast"},
                                          {}, 64'000'000);
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ASSERT_NE(result->Mask(), nullptr);
  ExpectWindows(*result, kTenth, FastPart(pattern, format, stage.ResultFormat()));
  ExpectWindows(*result->Mask(), kTenth, FastPart(maskPattern, maskFormat, stage.ResultFormat()));
  EXPECT_EQ(pattern.Changed(*source), "");
  EXPECT_EQ(maskPattern.Changed(*mask), "");
}

TEST(LargeScaleImageAndMaskZVQ, ShrinksBothOnADesktop) { ShrinkBoth(ApplicationKind::kDesktop); }
TEST(LargeScaleImageAndMaskZVQ, ShrinksBothOnAConsole) { ShrinkBoth(ApplicationKind::kConsole); }

// Five pictures at a time, three of them of 560 MB. Without graphics the mask is copied row by row.
TEST(LargeScaleImageAndMaskZVQ, EnlargesBothSmoothlyOnAConsoleWithoutGraphics) {
  Stage stage(ApplicationKind::kConsole,
              [](host::Runtime& runtime) { runtime.Withhold("pluginPictureGraphicsGetter"); });
  const Pattern pattern(13);
  const Pattern maskPattern(14);
  host::Picture* source = stage.NewPicture(kWidth / 4, kHeight / 4, pattern);
  stage.Host().SetMask(source, stage.NewPicture(kWidth / 4, kHeight / 4, maskPattern));
  const Blocks once = SmoothBlocks(kWidth / 4, kWidth, kHeight);
  const host::CallReport report = Measure(
      stage,
      {"ScaleImageAndMaskZVQ", source, {kWidth, kHeight, true}, "3500x2500 to 14000x10000, smooth"},
      Then(once, once));
  const host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ASSERT_NE(result->Mask(), nullptr);
  const auto part = [&](const Pattern& from) {
    return [&from](const Area& area, const Area& to) {
      return oracle::SmoothEnlarge(from.CutOut(area, 8), to.width, to.height, 8);
    };
  };
  ExpectWindows(*result, {.ratio = {4, 1}, .margin = 12}, part(pattern));
  ExpectWindows(*result->Mask(), {.ratio = {4, 1}, .margin = 12}, part(maskPattern));
}

// The top left of the picture, unscaled, with the whole alpha channel scaled as its mask.
TEST(LargeScaleImageAndMaskZVQ, TurnsTheAlphaChannelOfALargePictureIntoAMask) {
  constexpr int kNewWidth = kWidth / 10;
  constexpr int kNewHeight = kHeight / 10;
  Stage stage(ApplicationKind::kConsole);
  const Pattern pattern(15);
  host::Picture* source = stage.NewPicture(kWidth, kHeight, pattern, 8, true);
  const host::CallReport report = Measure(
      stage,
      {"ScaleImageAndMaskZVQ", source, {kNewWidth, kNewHeight}, "14000x10000 to 1400x1000, alpha"},
      {}, 128'000'000);
  host::Picture* result = report.ResultPicture();
  ASSERT_NE(result, nullptr);
  ASSERT_NE(result->Mask(), nullptr);
  // What the host draws of a picture that is no larger than the result.
  host::Picture* corner = stage.NewPicture(kNewWidth, kNewHeight, pattern, 8, true);
  host::Picture* drawn =
      stage.Host().NewPicture(stage.Host().NewPictureSpec(kNewWidth, kNewHeight));
  stage.Host().Draw(drawn, corner, 0, 0, kNewWidth, kNewHeight, 0, 0, kNewWidth, kNewHeight);
  for (int y = 0; y < kNewHeight; ++y) {
    for (int x = 0; x < kNewWidth; ++x) {
      ASSERT_EQ(result->Word(x, y), drawn->Word(x, y) & 0xFFFFFF) << x << ", " << y;
    }
  }
  ExpectWindows(*result->Mask(), kTenth, [&](const Area& from, const Area& to) {
    oracle::Image mask = pattern.CutOut(from, 8);
    for (std::uint32_t& word : mask.words) {
      const int level = 255 - oracle::Fourth(word, 8);
      word = oracle::PackOpaque(8, level, level, level);
    }
    return oracle::FastScale(mask, to.width, to.height, 8);
  });
}

}  // namespace

}  // namespace large
