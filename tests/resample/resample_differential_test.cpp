// ScalingZVQ against the oracle, bit for bit: every pair of one-dimensional sizes in every mode,
// random pictures of every format and kind, extreme ratios.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tests/oracles/resample.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/random.h"

namespace {

using host::ApplicationKind;
using oracle::Image;
using support::Random;

// Empty when the plug-in gave what the oracle gives.
std::string Compare(support::LoadedPlugin& plugin, const Image& image, host::PictureSpec spec,
                    int mode, int width, int height, int resultFormat) {
  host::Picture* source = support::PictureOf(plugin.Host(), image, spec);
  const host::CallReport report =
      plugin.Library().Call("ScalingZVQ", source, {mode, width, height, 0});
  std::string problem = support::Complaints(report);
  if (host::Picture* result = report.ResultPicture()) {
    problem += support::Difference(oracle::Resample(image, mode, width, height, resultFormat),
                                   support::ImageOf(*result));
    if (result->DamagedPadding() + source->DamagedPadding() != 0) problem += "padding was written";
    plugin.Host().Release(result);
  } else {
    problem += "nil";
  }
  problem += support::Difference(image, support::ImageOf(*source));
  plugin.Host().Release(source);
  return problem;
}

class ResampleDifferential : public testing::TestWithParam<int> {};

TEST_P(ResampleDifferential, MatchesForEveryPairOfSizesAlongBothAxes) {
  const int mode = GetParam();
  int cases = 0;
  for (int from = 1; from <= 48; ++from) {
    Random random(static_cast<std::uint32_t>(from * 100 + mode));
    support::LoadedPlugin plugin({.newPixelFormat = 5});
    const Image row = random.Noise(from, 1, 5);
    const Image column = random.Noise(1, from, 6);
    for (int to = 1; to <= 48; ++to) {
      ASSERT_EQ(Compare(plugin, row, {}, mode, to, 1, 5), "")
          << from << " -> " << to << " along rows";
      ASSERT_EQ(Compare(plugin, column, {}, mode, 1, to, 5), "") << from << " -> " << to << " down";
      cases += 2;
    }
  }
  EXPECT_EQ(cases, 48 * 48 * 2);
  std::printf("mode %d: %d cases, none differing\n", mode, cases);
}

TEST_P(ResampleDifferential, MatchesAtExtremeRatios) {
  const int mode = GetParam();
  Random random(static_cast<std::uint32_t>(4000 + mode));
  support::LoadedPlugin plugin({.newPixelFormat = 6});
  const int shapes[][4] = {{1, 3, 4000, 3},    {4000, 3, 1, 3},    {3, 1, 3, 4000},
                           {3, 4000, 3, 1},    {2, 2, 3001, 2},    {2999, 1, 2, 1},
                           {4000, 1, 3999, 1}, {1, 3999, 1, 4000}, {4000, 2, 7, 900}};
  for (const auto& s : shapes) {
    ASSERT_EQ(Compare(plugin, random.Noise(s[0], s[1], 6), {}, mode, s[2], s[3], 6), "")
        << s[0] << "x" << s[1] << " -> " << s[2] << "x" << s[3];
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, ResampleDifferential, testing::Range(1, 8));

struct Row {
  ApplicationKind kind;
  const char* kindName;
  bool alpha;
  std::vector<int> formats;
};

TEST(ScalingZVQ, MatchesTheOracleForEveryKindAndFormat) {
  const Row rows[] = {{ApplicationKind::kDesktop, "desktop", false, {1, 2, 3, 4, 5, 6}},
                      {ApplicationKind::kDesktop, "desktop", true, {1, 2}},
                      {ApplicationKind::kNone, "none", false, {1, 2, 3, 4, 5, 6}},
                      {ApplicationKind::kWeb, "web", false, {8}},
                      {ApplicationKind::kWeb, "web", true, {8}},
                      {ApplicationKind::kConsole, "console", false, {8}},
                      {ApplicationKind::kConsole, "console", true, {8}}};
  std::map<std::string, int> covered;
  std::uint32_t seed = 0;
  for (const Row& row : rows) {
    for (int sourceFormat : row.formats) {
      for (int resultFormat : row.formats) {
        Random random(++seed);
        support::LoadedPlugin plugin({.kind = row.kind,
                                      .newPixelFormat = resultFormat,
                                      .alphaPixelFormat = resultFormat,
                                      .newRowPadding = 4 * random.Between(0, 3),
                                      .newGuard = random.AnyGuard()});
        const int casesPerMode = row.formats.size() == 1 ? 12 : 2;
        for (int k = 0; k < 7 * casesPerMode; ++k) {
          const int mode = k % 7 + 1;
          host::PictureSpec spec;
          spec.rowPadding = 4 * random.Between(0, 5);
          spec.guard = random.AnyGuard();
          spec.hasAlphaChannel = row.alpha;
          const Image image =
              random.Noise(random.Between(1, 40), random.Between(1, 40), sourceFormat);
          ASSERT_EQ(Compare(plugin, image, spec, mode, random.Between(1, 60), random.Between(1, 60),
                            resultFormat),
                    "")
              << row.kindName << (row.alpha ? " alpha " : " opaque ") << sourceFormat << " -> "
              << resultFormat << ", mode " << mode << ", seed " << seed;
          ++covered[std::string(row.kindName) + (row.alpha ? " alpha" : " opaque") + ", mode " +
                    std::to_string(mode)];
        }
      }
    }
  }
  int total = 0;
  for (const auto& [name, count] : covered) {
    std::printf("%-24s %4d\n", name.c_str(), count);
    total += count;
  }
  std::printf("%d cases, none differing\n", total);
  EXPECT_EQ(covered.size(), 7U * 7U);
  EXPECT_EQ(total, 7 * ((36 + 4 + 36) * 2 + 4 * 12));
}

}  // namespace
