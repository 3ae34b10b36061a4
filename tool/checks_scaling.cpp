// What ScaleZVQ and ScaleImageAndMaskZVQ make.
#include <algorithm>

#include "tool/check_bench.h"

namespace tool {
namespace {

constexpr const char* kScalers[] = {"ScaleZVQ", "ScaleImageAndMaskZVQ"};

void OwnSizeReturnsThePicture(const CheckContext& context) {
  Bench bench(context);
  for (const bool alpha : {false, true}) {
    Picture* picture = bench.Receiver(alpha);
    for (const char* method : kScalers) {
      for (const bool smooth : {false, true}) {
        const Picture* result = bench.Made(method, picture, {9, 7, smooth, 0}, 9, 7);
        Require(result == picture, std::string(method) + " to the own size made another picture.");
      }
    }
  }
}

void ResultHasTheAskedSize(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  constexpr int kSizes[][2] = {{1, 1}, {3, 11}, {20, 2}, {31, 29}, {9, 1}, {300, 1}};
  for (const auto& [width, height] : kSizes) {
    for (const char* method : kScalers) {
      bench.Made(method, picture, {width, height, false, 0}, width, height);
      bench.Made(method, picture, {width, height, true, 0}, width, height);
    }
    for (int mode = 1; mode <= 7; ++mode) {
      bench.Made("ScalingZVQ", picture, {mode, width, height, 0}, width, height);
    }
  }
  bench.Made("BlurZVQ", picture, {3.0, 0}, 9, 7);
}

void SizeLimitsAreKept(const CheckContext& context) {
  constexpr std::int32_t kLeast = -2147483647 - 1;
  constexpr std::int32_t kRefused[][2] = {{0, 5}, {5, 0},      {-1, 5},    {5, -1},
                                          {0, 0}, {kLeast, 5}, {5, kLeast}};
  Bench bench(context);
  Picture* opaque = bench.Pattern(3, 2);
  Picture* clear = bench.Pattern(3, 2, true);
  for (const auto& [width, height] : kRefused) {
    for (Picture* picture : {opaque, clear}) {
      for (const char* method : kScalers) {
        bench.Refused(method, picture, {width, height, false, 0});
        bench.Refused(method, picture, {width, height, true, 0});
      }
      bench.Refused("ScalingZVQ", picture, {2, width, height, 0});
    }
  }
  for (const bool smooth : {false, true}) {
    bench.Made("ScaleZVQ", opaque, {32767, 1, smooth, 0}, 32767, 1);
    bench.Made("ScaleZVQ", opaque, {1, 32767, smooth, 0}, 1, 32767);
    bench.Refused("ScaleZVQ", opaque, {32768, 1, smooth, 0});
    bench.Refused("ScaleZVQ", opaque, {1, 32768, smooth, 0});
    bench.Made("ScaleZVQ", clear, {32768, 1, smooth, 0}, 32768, 1);
  }
  bench.Made("ScalingZVQ", opaque, {2, 32767, 1, 0}, 32767, 1);
  bench.Refused("ScalingZVQ", opaque, {2, 32768, 1, 0});
  bench.Made("ScalingZVQ", clear, {2, 32768, 1, 0}, 32768, 1);
  bench.Refused("BlurZVQ", bench.Plain(32768, 1, {1, 2, 3, 255}), {2.0, 0});
}

void HalvingIgnoresOddRows(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Pattern(12, 8);
  const Picture* result = bench.Made("ScaleZVQ", picture, {6, 4, false, 0}, 6, 4);
  const auto mean = [](int a, int b) { return std::uint8_t((2 * (a + b) + 0.5) / 4); };
  RequireColours(*result, "A picture of 12x8 halved", [&](int x, int y) {
    const Rgba a = picture->Get(2 * x, 2 * y), b = picture->Get(2 * x + 1, 2 * y);
    return Rgba{mean(a.r, b.r), mean(a.g, b.g), mean(a.b, b.b), 255};
  });
}

void EnlargingRepeatsPixels(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Pattern(5, 4);
  const Picture* result = bench.Made("ScaleZVQ", picture, {15, 8, false, 0}, 15, 8);
  RequireColours(*result, "A picture of 5x4 enlarged to 15x8",
                 [&](int x, int y) { return picture->Get(x / 3, y / 2); });
}

void SmoothDoublingInterpolates(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Pattern(6, 1);
  const Picture* result = bench.Made("ScaleZVQ", picture, {12, 2, true, 0}, 12, 2);
  RequireColours(*result, "A picture of 6x1 doubled smoothly", [&](int x, int) {
    const Rgba a = picture->Get(x / 2, 0);
    const Rgba b = picture->Get(std::min(x / 2 + x % 2, 5), 0);
    const auto mean = [](int l, int r) { return std::uint8_t((l + r + 1) / 2); };
    return Rgba{mean(a.r, b.r), mean(a.g, b.g), mean(a.b, b.b), 255};
  });
}

void ScalingKeepsTheAlphaChannel(const CheckContext& context) {
  Bench bench(context);
  for (const bool alpha : {false, true}) {
    Picture* picture = bench.Receiver(alpha);
    for (const bool smooth : {false, true}) {
      const Picture* result = bench.Made("ScaleZVQ", picture, {14, 13, smooth, 0}, 14, 13);
      Require(result->HasAlphaChannel() == alpha,
              "ScaleZVQ gave an alpha channel to an opaque picture, or took it from another.");
    }
    for (int mode = 1; mode <= 7; ++mode) {
      const Picture* result = bench.Made("ScalingZVQ", picture, {mode, 5, 4, 0}, 5, 4);
      Require(result->HasAlphaChannel() == alpha,
              "ScalingZVQ gave an alpha channel to an opaque picture, or took it from another.");
    }
  }
}

void SmoothEnlargingKeepsOneAlpha(const CheckContext& context) {
  Bench bench(context);
  host::PictureSpec spec = bench.Host().NewAlphaPictureSpec(3, 3);
  spec.fill = {40, 80, 120, 100};
  Picture* picture = bench.Host().NewPicture(spec, "picturehost");
  const std::uint32_t word = picture->Word(0, 0);
  const Picture* result = bench.Made("ScaleZVQ", picture, {7, 8, true, 0}, 7, 8);
  for (const std::uint32_t got : Words(*result)) {
    Require(got == word, "A picture of one transparent colour, enlarged smoothly, is not uniform.");
  }
}

void AlphaNeedsANewerHost(const CheckContext& context) {
  for (const double version : {2011.03, 2011.04}) {
    Bench bench(context, HostOf(host::ApplicationKind::kDesktop, version));
    Picture* picture = bench.Receiver(true);
    if (version < 2011.04) {
      bench.Refused("ScaleZVQ", picture, {4, 3, false, 0});
      bench.Refused("ScalingZVQ", picture, {2, 4, 3, 0});
    } else {
      bench.Made("ScaleZVQ", picture, {4, 3, false, 0}, 4, 3);
      bench.Made("ScalingZVQ", picture, {2, 4, 3, 0}, 4, 3);
    }
    bench.Made("BlurZVQ", picture, {1.0, 0}, 9, 7);
  }
}

void WithoutAMaskScalesAlike(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver();
  for (const bool smooth : {false, true}) {
    const Picture* one = bench.Made("ScaleZVQ", picture, {14, 13, smooth, 0}, 14, 13);
    const Picture* other = bench.Made("ScaleImageAndMaskZVQ", picture, {14, 13, smooth, 0}, 14, 13);
    Require(Words(*one) == Words(*other), "The two scalers differ for a picture without a mask.");
    Require(other->Mask() == nullptr, "A picture without a mask got one.");
  }
}

void MaskIsScaledAlongside(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Pattern(5, 4);
  Picture* mask = bench.GiveMask(picture, [](int x, int y) { return 40 * x + 10 * y; });
  const Picture* result = bench.Made("ScaleImageAndMaskZVQ", picture, {10, 8, false, 0}, 10, 8);
  Require(result->Mask() != nullptr, "The result of a picture with a mask has none.");
  Require(result->Mask() != mask, "The result has the mask of the picture itself.");
  RequireColours(*result->Mask(), "A mask of 5x4 doubled",
                 [&](int x, int y) { return mask->Get(x / 2, y / 2); });
  RequireColours(*result, "A masked picture of 5x4 doubled",
                 [&](int x, int y) { return picture->Get(x / 2, y / 2); });
}

void AlphaBecomesAMask(const CheckContext& context) {
  Bench bench(context);
  Picture* picture = bench.Receiver(true);
  const Picture* result = bench.Made("ScaleImageAndMaskZVQ", picture, {4, 3, false, 0}, 4, 3);
  Require(!result->HasAlphaChannel(), "The result has an alpha channel.");
  Require(result->Mask() != nullptr, "The result of a picture with an alpha channel has no mask.");
}

constexpr Check kChecks[] = {
    {"own-size-returns-the-picture",
     "Scaling to the picture's own size returns the picture itself.", OwnSizeReturnsThePicture},
    {"result-has-the-asked-size", "A result has exactly the size that was asked for.",
     ResultHasTheAskedSize},
    {"size-limits-are-kept",
     "Sizes below 1 are refused, and those above 32767 unless there is an alpha channel.",
     SizeLimitsAreKept},
    {"halving-ignores-odd-rows",
     "Halving averages pairs of pixels of every second row and leaves out the others.",
     HalvingIgnoresOddRows},
    {"enlarging-repeats-pixels", "Enlarging without smoothing repeats the nearest pixel.",
     EnlargingRepeatsPixels},
    {"smooth-doubling-interpolates",
     "Smooth doubling keeps the pixels and puts the mean of neighbours between them.",
     SmoothDoublingInterpolates},
    {"scaling-keeps-the-alpha-channel",
     "A scaled picture has an alpha channel exactly when the source has one.",
     ScalingKeepsTheAlphaChannel},
    {"smooth-enlarging-keeps-one-alpha",
     "A picture of one transparent colour stays as it is when it is enlarged smoothly.",
     SmoothEnlargingKeepsOneAlpha},
    {"alpha-needs-a-newer-host",
     "Below 2011.04 pictures with an alpha channel cannot be scaled, from it on they can.",
     AlphaNeedsANewerHost},
    {"without-a-mask-both-scale-alike",
     "ScaleImageAndMaskZVQ makes what ScaleZVQ makes of a picture without a mask.",
     WithoutAMaskScalesAlike},
    {"mask-is-scaled-alongside", "The mask is scaled as the picture is, and becomes the result's.",
     MaskIsScaledAlongside},
    {"alpha-becomes-a-mask",
     "ScaleImageAndMaskZVQ turns an alpha channel into a mask of an opaque picture.",
     AlphaBecomesAMask},
};

}  // namespace

std::span<const Check> ScalingChecks() { return kChecks; }

}  // namespace tool
