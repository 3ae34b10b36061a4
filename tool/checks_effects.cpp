// What BlurZVQ makes and DrawPictureFZVQ draws.
#include <limits>

#include "tool/check_bench.h"

namespace tool {
namespace {

void SmallRadiusReturnsThePicture(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  for (const double radius :
       {0.0, 0.9, -0.5, -7.0, 1e10, -1e10, std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity()}) {
    Require(bench.Made("BlurZVQ", picture, {radius, 0}, 9, 7) == picture,
            CallText("BlurZVQ", {radius, 0}) + " did not return the picture itself.");
  }
  Require(bench.Made("BlurZVQ", picture, {1.0, 0}, 9, 7) != picture,
          "BlurZVQ(1, 0) returned the picture itself.");
}

void BlurKeepsOneColour(const CheckContext& context) {
  Bench bench(context);
  for (const Rgba colour :
       {Rgba{0, 0, 0, 255}, Rgba{255, 255, 255, 255}, Rgba{17, 129, 254, 255}}) {
    Picture* picture = bench.Plain(9, 7, colour);
    for (const double radius : {1.0, 2.0, 5.0, 40.0}) {
      RequireColours(*bench.Made("BlurZVQ", picture, {radius, 0}, 9, 7), "One colour blurred",
                     [&](int, int) { return colour; });
    }
  }
}

void BlurAveragesABox(const CheckContext& context) {
  Bench bench(context);
  const Rgba dark = {0, 9, 30, 255}, light = {255, 18, 0, 255};
  const Rgba one = {85, 12, 20, 255}, other = {170, 15, 10, 255};
  for (const bool upright : {false, true}) {
    Picture* picture = upright ? bench.Plain(1, 2, dark) : bench.Plain(2, 1, dark);
    picture->Set(upright ? 0 : 1, upright ? 1 : 0, light);
    // The whole part of the radius counts.
    for (const double radius : {1.0, 1.7}) {
      const Picture* result =
          bench.Made("BlurZVQ", picture, {radius, 0}, picture->Width(), picture->Height());
      RequireColours(*result, "Two pixels blurred by radius 1",
                     [&](int x, int y) { return x + y == 0 ? one : other; });
    }
  }
}

void BlurIsOpaque(const CheckContext& context) {
  Bench bench(context);
  const Picture* result = bench.Made("BlurZVQ", bench.Receiver(true), {2.0, 0}, 9, 7);
  Require(!result->HasAlphaChannel(), "A blurred picture has an alpha channel.");
}

void HugeRadiusIsSurvived(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  for (const double radius : {1048575.0, 2097151.0, 2097152.0, 536870912.0, 2147483647.0}) {
    bench.Made("BlurZVQ", picture, {radius, 0}, 9, 7);
  }
}

void Draw(Bench& bench, Picture* target, Picture* picture, double x, double y, double alpha) {
  const auto report = bench.Call("DrawPictureFZVQ", target, {picture, x, y, alpha, 0});
  const bool* done = std::get_if<bool>(&report.result);
  Require(done != nullptr && *done,
          CallText("DrawPictureFZVQ", {picture, x, y, alpha, 0}) + " was refused.");
}

void DrawAtWholePixelsCopies(const CheckContext& context) {
  Bench bench(context);
  for (const auto& [left, top] : {std::pair{2, 3}, {0, 0}, {-2, -1}, {7, 5}, {20, 20}}) {
    Picture* target = bench.Pattern(10, 8, false, 1);
    Picture* picture = bench.Pattern(5, 4, false, 2);
    Draw(bench, target, picture, left, top, 1.0);
    const int x0 = left, y0 = top;
    RequireColours(*target, "A picture drawn at whole pixels", [&](int x, int y) {
      const bool inside = x >= x0 && x < x0 + 5 && y >= y0 && y < y0 + 4;
      return inside ? PatternColour(x - x0, y - y0, false, 2) : PatternColour(x, y, false, 1);
    });
  }
}

void DrawBetweenPixelsBlends(const CheckContext& context) {
  Bench bench(context);
  const Rgba black = {0, 0, 0, 255}, white = {255, 255, 255, 255};
  Picture* target = bench.Plain(6, 6, black);
  Draw(bench, target, bench.Plain(3, 3, white), 1.5, 1.5, 1.0);
  // A quarter of white is cut to 63 for each of the samples that lie in the picture.
  const auto samples = [](int place) { return place == 1 || place == 4 ? 1 : 2; };
  RequireColours(*target, "White drawn between the pixels of black", [&](int x, int y) {
    const bool inside = x >= 1 && x <= 4 && y >= 1 && y <= 4;
    const auto level = std::uint8_t(inside ? 63 * samples(x) * samples(y) : 0);
    return Rgba{level, level, level, 255};
  });
  // Half of a whole pixel to the left of -2 is -2.5.
  Picture* beside = bench.Plain(2, 1, black);
  Draw(bench, beside, bench.Plain(4, 1, white), -2.5, 0, 1.0);
  Require(beside->Get(0, 0).r == 254 && beside->Get(1, 0).r == 127,
          "A picture drawn at a negative half pixel is not where it belongs.");
}

void DrawHonoursTheOpacity(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Plain(4, 4, {200, 100, 50, 255});
  struct Case {
    double alpha;
    Rgba expected;
  };
  const Case cases[] = {{0.0, {40, 80, 120, 255}},
                        {0.5, {120, 90, 85, 255}},
                        {1.0, {200, 100, 50, 255}},
                        {2.0, {255, 200, 100, 255}},
                        {-1.0, {0, 60, 190, 255}}};
  for (const Case& each : cases) {
    Picture* target = bench.Plain(4, 4, {40, 80, 120, 255});
    Draw(bench, target, picture, 0, 0, each.alpha);
    RequireColours(*target, CallText("Drawing with opacity ", {each.alpha}),
                   [&](int, int) { return each.expected; });
  }
}

void DrawHonoursTheMask(const CheckContext& context) {
  Bench bench(context);
  Picture* target = bench.Pattern(5, 4, false, 1);
  Picture* picture = bench.Pattern(5, 4, false, 2);
  bench.GiveMask(picture, [](int x, int y) { return (x + y) % 2 == 0 ? 0 : 255; });
  Draw(bench, target, picture, 0, 0, 1.0);
  RequireColours(*target, "A picture with a mask of black and white, drawn", [&](int x, int y) {
    return PatternColour(x, y, false, (x + y) % 2 == 0 ? 2 : 1);
  });
}

void DrawForgetsTheAlphaChannel(const CheckContext& context) {
  Bench bench(context);
  host::PictureSpec spec = bench.Host().NewAlphaPictureSpec(3, 3);
  spec.fill = {0, 0, 0, 0};
  Picture* target = bench.Plain(3, 3, {255, 255, 255, 255});
  Draw(bench, target, bench.Host().NewPicture(spec, "picturehost"), 0, 0, 1.0);
  RequireColours(*target, "A transparent picture without a mask, drawn", [](int, int) {
    return Rgba{0, 0, 0, 255};
  });
}

void DrawRaisesOnNil(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  const std::vector<std::uint32_t> before = Words(*picture);
  struct Case {
    Picture *receiver, *argument;
    const char* message;
  };
  const Case cases[] = {{picture, nullptr, "picture is nil"},
                        {nullptr, picture, "source is nil"},
                        {nullptr, nullptr, "source is nil"}};
  for (const Case& each : cases) {
    const std::size_t raised = bench.Host().Raised().size();
    const auto report =
        bench.Try("DrawPictureFZVQ", each.receiver, {each.argument, 0.0, 0.0, 1.0, 0});
    Require(bench.Host().Raised().size() == raised + 1,
            "Drawing with a nil picture did not raise one exception.");
    const host::RaisedException& exception = bench.Host().Raised().back();
    Require(exception.className == "NilObjectException" && exception.message == each.message,
            "Drawing with a nil picture raised " + exception.className + " \"" + exception.message +
                "\", not NilObjectException \"" + each.message + "\".");
    Require(report.Clean(), "Drawing with a nil picture left something over.");
    const bool* done = std::get_if<bool>(&report.result);
    Require(done != nullptr && !*done, "Drawing with a nil picture returned true.");
  }
  Require(Words(*picture) == before, "Drawing with a nil picture changed the other one.");
}

constexpr Check kChecks[] = {
    {"small-radius-returns-the-picture",
     "A blur radius without a whole part, or out of range, returns the picture itself.",
     SmallRadiusReturnsThePicture},
    {"blur-keeps-one-colour", "A picture of one colour comes back from the blur with that colour.",
     BlurKeepsOneColour},
    {"blur-averages-a-box", "The blur averages a box around each pixel and repeats the edges.",
     BlurAveragesABox},
    {"blur-is-opaque", "A blurred picture has no alpha channel, whatever its source has.",
     BlurIsOpaque},
    {"huge-radius-is-survived", "Blur radii of millions give a picture of the right size.",
     HugeRadiusIsSurvived},
    {"draw-at-whole-pixels-copies",
     "Drawing at whole pixels copies the picture and leaves the rest as it was.",
     DrawAtWholePixelsCopies},
    {"draw-between-pixels-blends", "Drawing between pixels blends the four nearest, each cut off.",
     DrawBetweenPixelsBlends},
    {"draw-honours-the-opacity", "The opacity blends the picture with what was there, unclamped.",
     DrawHonoursTheOpacity},
    {"draw-honours-the-mask", "Black of the mask draws the picture, white leaves what was there.",
     DrawHonoursTheMask},
    {"draw-forgets-the-alpha-channel",
     "A picture with an alpha channel but no mask is drawn with its stored colours.",
     DrawForgetsTheAlphaChannel},
    {"draw-raises-on-nil", "Drawing raises a NilObjectException with its message for nil pictures.",
     DrawRaisesOnNil},
};

}  // namespace

std::span<const Check> EffectChecks() { return kChecks; }

}  // namespace tool
