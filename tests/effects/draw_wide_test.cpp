// DrawPictureFZVQ on pictures wide enough for whole vectors, against the oracle, bit for bit: every
// layout, opacities that have tables of products and some that have none, masks of every sort, and
// pictures drawn into themselves.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/effects/drawing.h"
#include "tests/oracles/draw_picture.h"
#include "tests/support/random.h"

namespace {

using host::ApplicationKind;
using oracle::Image;
using support::Random;

const std::vector<double> kOpacities = {
    0.7,  1.0, 0.2,  0.1,   0.5,  0.35,
    1.5,  2.5, -0.5, 0.0,   4e7,  std::numeric_limits<double>::infinity(),
    0.99, 0.3, 1e-5, 3.1e7, -2e9, std::numeric_limits<double>::quiet_NaN()};
const std::vector<double> kFractions = {0, 0.5, 0.25, 0.3, 1.0 / 3, 0.999};

enum MaskSort { kNoMask, kNoise, kBlack, kWhite, kRuns, kNarrow, kLow, kMaskSorts };

Image MaskOf(Random& random, int sort, const Image& source, int format) {
  Image mask = random.Noise(sort == kNarrow ? source.width / 2 + 1 : source.width,
                            sort == kLow ? source.height / 2 + 1 : source.height, format);
  std::uint32_t held = 0;
  for (auto& word : mask.words) {
    if (sort == kBlack) word = 0;
    if (sort == kWhite) word = 0xFFFFFFFF;
    if (sort != kRuns) continue;
    if (random.Between(0, 39) == 0) held = random.Coin() ? word : ~held | 0xFF;
    word = held == 0 || random.Between(0, 60) != 0 ? held : word;
  }
  return mask;
}

// Empty when the plug-in drew what the oracle draws.
std::string RunCase(support::LoadedPlugin& plugin, Random& random, int n, bool buffers,
                    bool itself) {
  const auto format = [&] { return buffers ? 8 : random.Between(1, 6); };
  const Image dest = random.Noise(random.Between(30, 130), random.Between(20, 50), format());
  const Image source =
      itself ? dest : random.Noise(random.Between(30, 130), random.Between(20, 50), format());
  const int maskSort = n % kMaskSorts;
  const Image mask = MaskOf(random, maskSort, source, format());
  const double alpha = kOpacities.at(static_cast<std::size_t>(n) % kOpacities.size());
  const auto fraction = [&] {
    return kFractions.at(static_cast<std::size_t>(random.Between(0, 5)));
  };
  const double x = random.Between(-20, 20) + fraction();
  const double y = random.Between(-8, 8) + fraction();

  Image expected = dest;
  oracle::DrawPicture(expected, itself ? expected : source, maskSort == kNoMask ? nullptr : &mask,
                      x, y, alpha);

  host::Runtime& runtime = plugin.Host();
  host::PictureSpec guarded;
  guarded.guard = random.AnyGuard();
  host::Picture* to = support::PictureOf(runtime, dest, guarded);
  host::Picture* from = itself ? to : support::PictureOf(runtime, source, guarded);
  if (maskSort != kNoMask) {
    runtime.SetMask(from, support::PictureOf(runtime, mask, guarded));
  }
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", to, {from, x, y, alpha, 0});
  std::string problem = support::Complaints(report);
  problem += support::Difference(expected, support::ImageOf(*to));
  if (!itself) problem += support::Difference(source, support::ImageOf(*from));
  if (!problem.empty()) {
    problem += " (case " + std::to_string(n) + ", x " + std::to_string(x) + ", y " +
               std::to_string(y) + ", alpha " + std::to_string(alpha) + ")";
  }
  if (!itself) runtime.Release(from);
  runtime.Release(to);
  return problem;
}

void RunCases(ApplicationKind kind, bool itself, std::uint32_t seed, int cases) {
  support::LoadedPlugin plugin({.kind = kind});
  Random random(seed);
  for (int n = 0; n < cases; ++n) {
    ASSERT_EQ(RunCase(plugin, random, n, kind == ApplicationKind::kConsole, itself), "");
  }
}

// Seven sorts of masks and eighteen opacities: each meets each in 126 cases.
TEST(DrawWidePicture, MatchesTheOracle) {
  RunCases(ApplicationKind::kDesktop, false, 81, 504);
  RunCases(ApplicationKind::kConsole, false, 82, 252);
}

// Samples that this very row has changed are read as they then are.
TEST(DrawWidePicture, MatchesTheOracleWhenDrawnIntoItsOwnMask) {
  Random random(77);
  for (const double x : {0.5, 3.25, -2.0}) {
    support::LoadedPlugin plugin;
    const Image source = random.Noise(70, 9, 6);
    const Image mask = random.Noise(70, 9, 6);
    host::Picture* from = support::PictureOf(plugin.Host(), source);
    host::Picture* to = support::PictureOf(plugin.Host(), mask);
    plugin.Host().SetMask(from, to);
    plugin.Host().Book().Lock(to, "test");
    const host::CallReport report =
        plugin.Library().Call("DrawPictureFZVQ", to, {from, x, 0.5, 0.7, 0});
    EXPECT_TRUE(std::get<bool>(report.result));
    Image expected = mask;
    oracle::DrawPicture(expected, source, &expected, x, 0.5, 0.7);
    EXPECT_EQ(support::Difference(expected, support::ImageOf(*to)), "") << x;
  }
}

TEST(DrawWidePicture, MatchesTheOracleWhenDrawnIntoItself) {
  RunCases(ApplicationKind::kDesktop, true, 83, 252);
  RunCases(ApplicationKind::kConsole, true, 84, 126);
}

}  // namespace
