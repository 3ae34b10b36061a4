// What ScalingZVQ makes.
#include "tool/check_bench.h"

namespace tool {
namespace {

constexpr int kTriangle = 1, kBox = 2, kModes = 7;

std::uint8_t Mean(int a, int b) { return std::uint8_t((a + b + 1) / 2); }

Rgba Mean(Rgba a, Rgba b) { return {Mean(a.r, b.r), Mean(a.g, b.g), Mean(a.b, b.b), 255}; }

void UnknownModesAreRefused(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  for (const std::int32_t mode : {0, 8, 9, -1, 256 + 2, 2147483647, -2147483647 - 1}) {
    bench.Refused("ScalingZVQ", picture, {mode, 5, 4, 0});
  }
  for (int mode = 1; mode <= kModes; ++mode) {
    bench.Made("ScalingZVQ", picture, {mode, 5, 4, 0}, 5, 4);
  }
}

void BoxHalvingAverages(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Pattern(12, 8);
  const Picture* result = bench.Made("ScalingZVQ", picture, {kBox, 6, 4, 0}, 6, 4);
  RequireColours(*result, "A picture of 12x8 halved by the box", [&](int x, int y) {
    const auto pair = [&](int row) {
      return Mean(picture->Get(2 * x, row), picture->Get(2 * x + 1, row));
    };
    return Mean(pair(2 * y), pair(2 * y + 1));
  });
}

void BoxToOneColumnAveragesAll(const CheckContext& context) {
  Bench bench(context);
  static constexpr int kWidth = 13;
  Picture* picture = bench.Pattern(kWidth, 5);
  const Picture* result = bench.Made("ScalingZVQ", picture, {kBox, 1, 5, 0}, 1, 5);
  RequireColours(*result, "A picture of 13x5 shrunk to one column", [&](int, int y) {
    int r = 0, g = 0, b = 0;
    for (int x = 0; x < kWidth; ++x) {
      const Rgba colour = picture->Get(x, y);
      r += colour.r;
      g += colour.g;
      b += colour.b;
    }
    const auto mean = [](int sum) { return std::uint8_t(double(sum) / kWidth + 0.5); };
    return Rgba{mean(r), mean(g), mean(b), 255};
  });
}

void SameSizeCopies(const CheckContext& context) {
  Bench bench(context);
  for (const bool alpha : {false, true}) {
    // An alpha picture's stored colours are those multiplied by its alpha.
    Picture* picture = bench.Receiver(alpha);
    for (const int mode : {kTriangle, kBox}) {
      const Picture* result = bench.Made("ScalingZVQ", picture, {mode, 9, 7, 0}, 9, 7);
      Require(result != picture, "ScalingZVQ to the own size returned the picture itself.");
      for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 9; ++x) {
          const Rgba stored = host::ColourOfWord(picture->Word(x, y), 6, false);
          const Rgba got = host::ColourOfWord(result->Word(x, y), 6, false);
          Require(got == stored,
                  "Mode " + std::to_string(mode) + " does not copy the colours at the own size.");
        }
      }
    }
  }
}

void UniformStaysUniform(const CheckContext& context) {
  Bench bench(context);
  constexpr int kSizes[][2] = {{4, 3}, {40, 31}, {9, 7}, {3, 30}, {1, 1}};
  for (const Rgba colour :
       {Rgba{0, 0, 0, 255}, Rgba{255, 255, 255, 255}, Rgba{17, 129, 254, 255}}) {
    Picture* picture = bench.Plain(9, 7, colour);
    for (int mode = 1; mode <= kModes; ++mode) {
      for (const auto& [width, height] : kSizes) {
        const Picture* result =
            bench.Made("ScalingZVQ", picture, {mode, width, height, 0}, width, height);
        RequireColours(*result, "One colour resampled by mode " + std::to_string(mode),
                       [&](int, int) { return colour; });
      }
    }
  }
}

void OnePixelFillsAnySize(const CheckContext& context) {
  Bench bench(context);
  const Rgba colour = {200, 100, 50, 255};
  Picture* picture = bench.Plain(1, 1, colour);
  const auto judge = [&](const std::string& method, const std::vector<Value>& arguments) {
    const Picture* result = bench.Made(method, picture, arguments, 17, 5);
    RequireColours(*result, "One pixel in " + CallText(method, arguments),
                   [&](int, int) { return colour; });
  };
  for (int mode = 1; mode <= kModes; ++mode) judge("ScalingZVQ", {mode, 17, 5, 0});
  for (const bool smooth : {false, true}) {
    judge("ScaleZVQ", {17, 5, smooth, 0});
    judge("ScaleImageAndMaskZVQ", {17, 5, smooth, 0});
  }
}

// Values of a step from dark to light, resampled along one axis, beyond what a mode without
// negative weights can make.
bool Overshoots(Bench& bench, int mode) {
  Picture* picture = bench.Plain(12, 1, {100, 100, 100, 255});
  for (int x = 6; x < 12; ++x) picture->Set(x, 0, {150, 150, 150, 255});
  const Picture* result = bench.Made("ScalingZVQ", picture, {mode, 48, 1, 0}, 48, 1);
  for (int x = 0; x < 48; ++x) {
    const int level = result->Get(x, 0).r;
    if (level < 100 || level > 150) return true;
  }
  return false;
}

void SharpModesOvershoot(const CheckContext& context) {
  Bench bench(context);
  for (int mode = 1; mode <= kModes; ++mode) {
    const bool expected = mode >= 3;
    Require(Overshoots(bench, mode) == expected, "Mode " + std::to_string(mode) +
                                                     " enlarges a step " +
                                                     (expected ? "without" : "with") + " ringing.");
  }
}

constexpr Check kChecks[] = {
    {"unknown-modes-are-refused", "Modes other than 1 to 7 are refused.", UnknownModesAreRefused},
    {"box-halving-averages", "Halving by the box filter averages blocks of four pixels.",
     BoxHalvingAverages},
    {"box-to-one-column-averages-all",
     "Shrinking to one column by the box filter averages all columns.", BoxToOneColumnAveragesAll},
    {"same-size-copies-colours",
     "Modes 1 and 2 copy all colours when the size stays, into another picture.", SameSizeCopies},
    {"uniform-stays-uniform", "A picture of one colour keeps it in every mode, up to its border.",
     UniformStaysUniform},
    {"one-pixel-fills-any-size", "A picture of one pixel scaled to any size has its colour.",
     OnePixelFillsAnySize},
    {"sharp-modes-overshoot", "Modes 3 to 7 sharpen a step, modes 1 and 2 do not.",
     SharpModesOvershoot},
};

}  // namespace

std::span<const Check> ResamplingChecks() { return kChecks; }

}  // namespace tool
