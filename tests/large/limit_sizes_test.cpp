// Sides of 32767 and 32768 pixels of receivers and requests: ScaleZVQ, ScalingZVQ, BlurZVQ.
#include "tests/large/limit_stage.h"
#include "tests/oracles/blur.h"
#include "tests/oracles/resample.h"
#include "tests/oracles/scale_method.h"

namespace large {

namespace {

struct Scaling {
  Size source, request;
};

// Each side of source and request once at the limit, and those that a smooth enlargement reaches.
std::vector<Scaling> ScalingsTo(int side) {
  return {{{side, 2}, {7, 5}},     {{2, side}, {5, 7}},       {{3, 2}, {side, 3}},
          {{2, 3}, {3, side}},     {{side, 2}, {side, 1}},    {{2, side}, {1, side}},
          {{side, 2}, {99, 3}},    {{16384, 1}, {side, 2}},   {{1, 16384}, {2, side}},
          {{32766, 1}, {side, 3}}, {{side, 1}, {side + 1, 2}}};
}

template <typename Judge>
void ForEachScaling(const Judge& judge) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const int side : kSidesAtTheLimit) {
      for (const Scaling& scaling : ScalingsTo(side)) {
        for (const bool hasAlpha : {false, true}) {
          SCOPED_TRACE(Text(scaling.source) + " to " + Text(scaling.request) +
                       (hasAlpha ? ", alpha" : "") +
                       (kind == host::ApplicationKind::kConsole ? ", console" : ", desktop"));
          LimitStage stage(kind);
          host::Picture* source = stage.Make(scaling.source, 51, hasAlpha);
          judge(stage, source, scaling.request, hasAlpha);
          EXPECT_EQ(Pattern(51).Changed(*source), "");
        }
      }
    }
  }
}

TEST(SidesAtTheLimit, OfScaleZVQ) {
  int pictures = 0;
  int nils = 0;
  ForEachScaling([&](LimitStage& stage, host::Picture* source, Size to, bool hasAlpha) {
    for (const bool antiAlias : {false, true}) {
      const auto expected = oracle::ScaleMethod(support::ImageOf(*source),
                                                {.width = to.width,
                                                 .height = to.height,
                                                 .antiAlias = antiAlias,
                                                 .resultFormat = stage.ResultFormat(hasAlpha),
                                                 .hasAlpha = hasAlpha});
      const host::CallReport report =
          stage.Library().Call("ScaleZVQ", source, {to.width, to.height, antiAlias});
      ++(expected ? pictures : nils);
      stage.Expect(report, expected ? std::optional(expected->image) : std::nullopt);
    }
  });
  EXPECT_GT(pictures, 100);
  EXPECT_GT(nils, 20);
}

TEST(SidesAtTheLimit, OfScalingZVQ) {
  int mode = 0;
  int pictures = 0;
  int nils = 0;
  ForEachScaling([&](LimitStage& stage, host::Picture* source, Size to, bool hasAlpha) {
    for (int k = 0; k < 3; ++k) {
      mode = mode % 7 + 1;
      const oracle::Image image = support::ImageOf(*source);
      const auto expected =
          oracle::ScalingMethod(&image, {.mode = mode,
                                         .width = to.width,
                                         .height = to.height,
                                         .hasAlpha = hasAlpha,
                                         .resultFormat = stage.ResultFormat(hasAlpha)});
      ++(expected ? pictures : nils);
      stage.Expect(stage.Library().Call("ScalingZVQ", source, {mode, to.width, to.height}),
                   expected);
    }
  });
  EXPECT_GT(pictures, 150);
  EXPECT_GT(nils, 30);
}

TEST(SidesAtTheLimit, OfBlurZVQ) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const int side : kSidesAtTheLimit) {
      for (const Size size : {Size{side, 1}, Size{1, side}, Size{side, 3}, Size{3, side}}) {
        for (const bool hasAlpha : {false, true}) {
          for (const int radius : {1, 40}) {
            SCOPED_TRACE(Text(size) + ", radius " + std::to_string(radius));
            LimitStage stage(kind);
            host::Picture* source = stage.Make(size, 52, hasAlpha);
            const oracle::BlurResult expected =
                oracle::Blur(support::ImageOf(*source), radius, stage.ResultFormat());
            const bool isNil = expected.outcome == oracle::BlurOutcome::kNil;
            EXPECT_EQ(isNil, side > 32767);
            stage.Expect(stage.Library().Call("BlurZVQ", source, {double(radius)}),
                         isNil ? std::nullopt : std::optional(expected.image));
            EXPECT_EQ(Pattern(52).Changed(*source), "");
          }
        }
      }
    }
  }
}

}  // namespace

}  // namespace large
