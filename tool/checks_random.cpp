// Random pictures, sizes and arguments, of which only what must always hold is required.
#include <algorithm>

#include "tool/check_bench.h"
#include "tool/check_random.h"

namespace tool {
namespace {

constexpr int kRounds = 40;

struct Range {
  int low = 255, high = 0;
  void Add(int level) {
    low = std::min(low, level);
    high = std::max(high, level);
  }
  bool Has(int level, int slack) const { return level >= low - slack && level <= high; }
};

struct ColourRange {
  Range r, g, b;
  explicit ColourRange(const Picture& picture) {
    for (int y = 0; y < picture.Height(); ++y) {
      for (int x = 0; x < picture.Width(); ++x) {
        const Rgba colour = picture.Get(x, y);
        r.Add(colour.r);
        g.Add(colour.g);
        b.Add(colour.b);
      }
    }
  }
};

void RequireInside(const Picture& result, const ColourRange& range, int slack,
                   const std::string& what) {
  for (int y = 0; y < result.Height(); ++y) {
    for (int x = 0; x < result.Width(); ++x) {
      const Rgba c = result.Get(x, y);
      const bool inside =
          range.r.Has(c.r, slack) && range.g.Has(c.g, slack) && range.b.Has(c.b, slack);
      Require(inside, what + " has colours beyond those of its source.");
      Require(c.a == 255, what + " is not opaque.");
    }
  }
}

// A random picture of few or many colours.
Picture* AnyPicture(Bench& bench, CheckRandom& random) {
  Picture* picture = bench.Pattern(random.Between(1, 30), random.Between(1, 30));
  const int low = random.Between(0, 200), span = random.Between(0, 55);
  const bool narrow = random.Coin();
  for (int y = 0; narrow && y < picture->Height(); ++y) {
    for (int x = 0; x < picture->Width(); ++x) {
      const auto level = [&] { return std::uint8_t(random.Between(low, low + span)); };
      const std::uint8_t r = level(), g = level(), b = level();
      picture->Set(x, y, {r, g, b, 255});
    }
  }
  return picture;
}

// The result, which a second call must make again, word for word.
Picture* MadeTwice(Bench& bench, const std::string& method, Picture* picture,
                   const std::vector<Value>& arguments, int width, int height) {
  Picture* one = bench.Made(method, picture, arguments, width, height);
  const Picture* other = bench.Made(method, picture, arguments, width, height);
  Require(Words(*one) == Words(*other),
          CallText(method, arguments) + " makes another picture the second time.");
  return one;
}

std::string On(const std::string& method, const std::vector<Value>& arguments,
               const Picture& picture) {
  return CallText(method, arguments) + " on " + std::to_string(picture.Width()) + "x" +
         std::to_string(picture.Height());
}

void RandomScaling(const CheckContext& context) {
  CheckRandom random(context.seed);
  for (int round = 0; round < kRounds; ++round) {
    Bench bench(context, random.Host());
    Picture* picture = AnyPicture(bench, random);
    const int width = random.Between(1, 50), height = random.Between(1, 50);
    const std::vector<Value> arguments = {width, height, false, 0};
    const ColourRange range(*picture);
    for (const char* method : {"ScaleZVQ", "ScaleImageAndMaskZVQ"}) {
      const Picture* result = MadeTwice(bench, method, picture, arguments, width, height);
      RequireInside(*result, range, 0, On(method, arguments, *picture));
    }
    const std::vector<Value> smooth = {width, height, true, 0};
    MadeTwice(bench, "ScaleZVQ", picture, smooth, width, height);
  }
}

void RandomResampling(const CheckContext& context) {
  CheckRandom random(context.seed);
  for (int round = 0; round < kRounds; ++round) {
    Bench bench(context, random.Host());
    Picture* picture = AnyPicture(bench, random);
    const int width = random.Between(1, 50), height = random.Between(1, 50);
    const ColourRange range(*picture);
    for (int mode = 1; mode <= 7; ++mode) {
      const std::vector<Value> arguments = {mode, width, height, 0};
      const Picture* result = MadeTwice(bench, "ScalingZVQ", picture, arguments, width, height);
      const ColourRange any = mode <= 2 ? range : ColourRange(*result);
      RequireInside(*result, any, 0, On("ScalingZVQ", arguments, *picture));
    }
  }
}

void RandomBlurring(const CheckContext& context) {
  CheckRandom random(context.seed);
  for (int round = 0; round < kRounds; ++round) {
    Bench bench(context, random.Host());
    Picture* picture = AnyPicture(bench, random);
    const std::vector<Value> arguments = {random.Fraction(1, 40), 0};
    const Picture* result =
        MadeTwice(bench, "BlurZVQ", picture, arguments, picture->Width(), picture->Height());
    RequireInside(*result, ColourRange(*picture), 0, On("BlurZVQ", arguments, *picture));
  }
}

void RandomDrawing(const CheckContext& context) {
  CheckRandom random(context.seed);
  for (int round = 0; round < kRounds; ++round) {
    Bench bench(context, random.Host());
    Picture* picture = AnyPicture(bench, random);
    const std::vector<Value> arguments = {picture, random.Fraction(-30, 30),
                                          random.Fraction(-30, 30), random.Fraction(0, 1), 0};
    const int width = random.Between(1, 30), height = random.Between(1, 30);
    Picture* target = bench.Pattern(width, height, false, 1);
    Picture* again = bench.Pattern(width, height, false, 1);
    bench.Call("DrawPictureFZVQ", target, arguments);
    bench.Call("DrawPictureFZVQ", again, arguments);
    const std::string what = On("DrawPictureFZVQ", arguments, *target);
    Require(Words(*target) == Words(*again), what + " draws differently the second time.");
    const ColourRange from(*picture);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const Rgba c = target->Get(x, y), was = PatternColour(x, y, false, 1);
        // Each of five shares is cut off.
        const auto inside = [](const Range& range, int before, int level) {
          Range both = range;
          both.Add(before);
          return both.Has(level, 5);
        };
        Require(
            inside(from.r, was.r, c.r) && inside(from.g, was.g, c.g) && inside(from.b, was.b, c.b),
            what + " gives colours beyond those of both pictures.");
      }
    }
  }
}

constexpr Check kChecks[] = {
    {"random-scaling", "Random pictures, scaled, are opaque and keep to the colours they had.",
     RandomScaling, true},
    {"random-resampling",
     "Random pictures, resampled, are opaque; modes 1 and 2 keep to the colours they had.",
     RandomResampling, true},
    {"random-blurring", "Random pictures, blurred, are opaque and keep to the colours they had.",
     RandomBlurring, true},
    {"random-drawing", "Random pictures, drawn, give colours between the old and the new ones.",
     RandomDrawing, true},
};

}  // namespace

std::span<const Check> RandomChecks() { return kChecks; }

}  // namespace tool
