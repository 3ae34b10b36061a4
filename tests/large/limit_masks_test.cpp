// Sides of 32767 and 32768 pixels of masks: ScaleImageAndMaskZVQ, DrawPictureFZVQ.
#include "tests/large/limit_stage.h"
#include "tests/oracles/draw_picture.h"
#include "tests/oracles/image_and_mask.h"

namespace large {

namespace {

struct Masking {
  Size source, mask, request;
};

std::vector<Masking> MaskingsTo(int side) {
  return {{{side, 2}, {side, 2}, {7, 5}},     {{2, side}, {2, side}, {5, 7}},
          {{3, 2}, {side, 1}, {5, 4}},        {{3, 2}, {1, side}, {5, 4}},
          {{3, 2}, {4, 4}, {side, 3}},        {{3, 2}, {4, 4}, {4, side}},
          {{16384, 1}, {side, 1}, {side, 2}}, {{1, 16384}, {1, side}, {2, side}},
          {{side, 2}, {2, side}, {2, 1}},     {{1, 1}, {side, 3}, {2, 2}}};
}

// The colours of the result's mask; its unused bytes are the host's.
void ExpectMask(const host::Picture& result, const std::optional<oracle::Image>& expected) {
  ASSERT_EQ(result.Mask() != nullptr, expected.has_value());
  if (!expected) return;
  const host::Picture& mask = *result.Mask();
  ASSERT_EQ(mask.Width(), expected->width);
  ASSERT_EQ(mask.Height(), expected->height);
  for (int y = 0; y < mask.Height(); ++y) {
    for (int x = 0; x < mask.Width(); ++x) {
      ASSERT_EQ(mask.Get(x, y), host::ColourOfWord(expected->At(x, y), expected->format, false))
          << x << ", " << y;
    }
  }
}

void ExpectBoth(LimitStage& stage, const host::CallReport& report,
                const std::optional<oracle::ImageAndMask>& expected) {
  stage.Expect(report, expected ? std::optional(expected->image) : std::nullopt);
  if (expected && report.ResultPicture() != nullptr) {
    ExpectMask(*report.ResultPicture(), expected->mask);
  }
}

template <typename Judge>
void ForEachMasking(const Judge& judge) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const int side : kSidesAtTheLimit) {
      for (const Masking& masking : MaskingsTo(side)) {
        for (const bool antiAlias : {false, true}) {
          SCOPED_TRACE(Text(masking.source) + " with " + Text(masking.mask) + " to " +
                       Text(masking.request) + (antiAlias ? ", smooth" : ""));
          LimitStage stage(kind);
          judge(stage, masking, antiAlias);
        }
      }
    }
  }
}

oracle::ImageAndMaskRequest RequestOf(const LimitStage& stage, Size to, bool antiAlias) {
  oracle::ImageAndMaskRequest request;
  request.width = to.width;
  request.height = to.height;
  request.antiAlias = antiAlias;
  request.picture.format = request.mask.format = stage.ResultFormat();
  return request;
}

TEST(SidesAtTheLimit, OfScaleImageAndMaskZVQ) {
  ForEachMasking([](LimitStage& stage, const Masking& masking, bool antiAlias) {
    host::Picture* source = stage.Make(masking.source, 53);
    host::Picture* mask = stage.Make(masking.mask, 54);
    stage.Host().SetMask(source, mask);
    const Size to = masking.request;
    const oracle::Image maskImage = support::ImageOf(*mask);
    ExpectBoth(
        stage,
        stage.Library().Call("ScaleImageAndMaskZVQ", source, {to.width, to.height, antiAlias}),
        oracle::ScaleImageAndMask(support::ImageOf(*source), &maskImage,
                                  RequestOf(stage, to, antiAlias)));
  });
}

// The picture's top left, as the host draws it, and the alpha channel as its mask.
TEST(SidesAtTheLimit, OfScaleImageAndMaskZVQWithAnAlphaChannel) {
  ForEachMasking([](LimitStage& stage, const Masking& masking, bool antiAlias) {
    host::Runtime& runtime = stage.Host();
    const Size to = masking.request;
    host::Picture* source = stage.Make(masking.mask, 55, true);
    host::Picture* drawn = runtime.NewPicture(runtime.NewPictureSpec(to.width, to.height));
    runtime.Draw(drawn, source, 0, 0, to.width, to.height, 0, 0, to.width, to.height);
    oracle::Image mask = oracle::NewImage(source->Width(), source->Height(), stage.ResultFormat());
    for (int y = 0; y < mask.height; ++y) {
      for (int x = 0; x < mask.width; ++x) {
        const int level = 255 - source->Get(x, y).a;
        mask.At(x, y) = oracle::PackOpaque(mask.format, level, level, level);
      }
    }
    ExpectBoth(
        stage,
        stage.Library().Call("ScaleImageAndMaskZVQ", source, {to.width, to.height, antiAlias}),
        oracle::ScaleConverted(support::ImageOf(*drawn), &mask, source->Width(), source->Height(),
                               RequestOf(stage, to, antiAlias)));
  });
}

TEST(SidesAtTheLimit, OfDrawPictureFZVQ) {
  for (const host::ApplicationKind kind : kBothKinds) {
    for (const int side : kSidesAtTheLimit) {
      const Size wide = {side, 2};
      const Size high = {2, side};
      const Size small = {3, 3};
      const struct {
        Size receiver, picture, mask;
        double x, y;
      } rows[] = {{wide, small, small, 1.5, 0.25},     {high, small, small, 0.25, 1.5},
                  {small, wide, wide, 0.5, -0.5},      {small, high, high, -0.5, 0.5},
                  {wide, wide, wide, -0.75, 0.5},      {high, high, high, 0.5, -0.75},
                  {small, small, wide, 0.5, 0.5},      {small, small, high, 0.5, 0.5},
                  {wide, wide, small, 0.25, 0},        {high, high, small, 0, 0.25},
                  {wide, small, small, side - 2.5, 0}, {high, small, small, 0, side - 2.5},
                  {small, wide, wide, 1.5 - side, 0},  {small, high, high, 0, 1.5 - side},
                  {wide, high, wide, 0.5, 0.5},        {high, wide, high, 0.5, 0.5}};
      for (const auto& row : rows) {
        SCOPED_TRACE(Text(row.picture) + " with " + Text(row.mask) + " into " + Text(row.receiver));
        LimitStage stage(kind);
        host::Picture* receiver = stage.Make(row.receiver, 56);
        host::Picture* picture = stage.Make(row.picture, 57);
        host::Picture* mask = stage.Make(row.mask, 58);
        stage.Host().SetMask(picture, mask);
        oracle::Image expected = support::ImageOf(*receiver);
        const oracle::Image maskImage = support::ImageOf(*mask);
        ASSERT_TRUE(oracle::DrawPicture(expected, support::ImageOf(*picture), &maskImage, row.x,
                                        row.y, 0.75));
        const host::CallReport report =
            stage.Library().Call("DrawPictureFZVQ", receiver, {picture, row.x, row.y, 0.75});
        EXPECT_EQ(support::Complaints(report), "");
        EXPECT_EQ(report.result, host::Value(true));
        EXPECT_EQ(support::Difference(expected, support::ImageOf(*receiver)), "");
        EXPECT_EQ(Pattern(57).Changed(*picture), "");
        EXPECT_EQ(Pattern(58).Changed(*mask), "");
      }
    }
  }
}

}  // namespace

}  // namespace large
