// DrawPictureFZVQ with pictures of 14,000 × 10,000 pixels.
#include <gtest/gtest.h>

#include "tests/large/measured_call.h"
#include "tests/large/windows.h"
#include "tests/oracles/draw_picture.h"

namespace large {

namespace {

using host::ApplicationKind;

struct Position {
  double x, y, alpha;
};

// A part of receiver, picture and mask, each at the same place, is drawn like the whole but for the
// margin.
void Draw(ApplicationKind kind, bool masked, const Position& at, const std::string& what) {
  Stage stage(kind);
  const Pattern pattern(41);
  const Pattern receiverPattern(42);
  const Pattern maskPattern(43);
  const int format = stage.IsDesktop() ? 5 : 8;
  const int otherFormat = stage.ResultFormat();
  host::Picture* picture = stage.NewPicture(kWidth, kHeight, pattern, format);
  host::Picture* receiver = stage.NewPicture(kWidth, kHeight, receiverPattern, otherFormat);
  host::Picture* mask = nullptr;
  if (masked) {
    mask = stage.NewPicture(kWidth, kHeight, maskPattern, otherFormat);
    stage.Host().SetMask(picture, mask);
  }
  const host::CallReport report =
      Measure(stage, {"DrawPictureFZVQ", receiver, {picture, at.x, at.y, at.alpha}, what}, {});
  ASSERT_EQ(report.result, host::Value(true));
  ExpectWindows(*receiver, {.margin = 12}, [&](const Area& from, const Area&) {
    oracle::Image drawn = receiverPattern.CutOut(from, otherFormat);
    const oracle::Image maskPart = maskPattern.CutOut(from, otherFormat);
    oracle::DrawPicture(drawn, pattern.CutOut(from, format), masked ? &maskPart : nullptr, at.x,
                        at.y, at.alpha);
    return drawn;
  });
  EXPECT_EQ(pattern.Changed(*picture), "");
  EXPECT_EQ(masked ? maskPattern.Changed(*mask) : "", "");
}

TEST(LargeDrawPictureFZVQ, OnADesktop) {
  Draw(ApplicationKind::kDesktop, false, {0.5, 0.25, 0.75}, "14000x10000 into 14000x10000");
}
TEST(LargeDrawPictureFZVQ, OnAConsole) {
  Draw(ApplicationKind::kConsole, false, {-7.25, 9.5, 1.0}, "14000x10000 into 14000x10000");
}
TEST(LargeDrawPictureFZVQ, WithAMaskOnADesktop) {
  Draw(ApplicationKind::kDesktop, true, {8.75, -3.5, 1.0}, "14000x10000 into 14000x10000, masked");
}
TEST(LargeDrawPictureFZVQ, WithAMaskOnAConsole) {
  Draw(ApplicationKind::kConsole, true, {0.5, 0.25, 0.75}, "14000x10000 into 14000x10000, masked");
}

}  // namespace

}  // namespace large
