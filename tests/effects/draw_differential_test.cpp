// DrawPictureFZVQ against the oracle, bit for bit, on random pictures of every kind: noise of 1 to
// 16 pixels a side, padded rows, guarded memory, masks of other sizes, every sort of position and
// opacity. Counts what was covered and fails on a gap.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <map>
#include <string>

#include "tests/effects/drawing.h"
#include "tests/oracles/draw_picture.h"
#include "tests/support/coverage.h"
#include "tests/support/random.h"

namespace {

using host::ApplicationKind;
using oracle::Image;
using support::Random;

constexpr int kCasesPerCell = 12;
constexpr int kLargestSide = 16;

// What is cycled through from case to case, so that each value meets every other.
const std::string kPositions[] = {"whole", "eighths", "fraction", "far", "strange"};
const std::string kOpacities[] = {"one", "part", "above", "below", "strange"};
const std::string kMasks[] = {"no mask", "own size", "smaller", "larger", "receiver"};

// Which pictures a cell draws. A negative format: with an alpha channel.
struct Cell {
  ApplicationKind kind;
  int dest, source;
  bool itself;
};

// Along one side; positions that are neither far nor strange let the pictures meet or just miss.
double Position(Random& random, const std::string& sort, int destSide, int sourceSide) {
  if (sort == "whole") return random.Between(-sourceSide, destSide);
  if (sort == "eighths") return random.Between(-8 * sourceSide - 8, 8 * destSide) / 8.0;
  if (sort == "fraction") return random.Between(-sourceSide * 9973, destSide * 9973) / 9973.0;
  if (sort == "far") return random.Between(-1000000000, 1000000000) * 7.03;
  const double strange[] = {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(),
                            -std::numeric_limits<double>::infinity(),
                            -0.0,
                            -1e-300,
                            1e-17,
                            -2147483648.0,
                            2147483647.5,
                            -1e300};
  return strange[random.Between(0, 8)];
}

double Opacity(Random& random, const std::string& sort) {
  if (sort == "one") return 1;
  if (sort == "part") return random.Between(0, 1000) / 1000.0;
  if (sort == "above") return random.Coin() ? random.Between(1000, 5000) / 999.0 : 3.1e7;
  if (sort == "below") return random.Between(-3000, -1) / 777.0;
  const double strange[] = {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(),
                            -std::numeric_limits<double>::infinity(),
                            1e300,
                            -1e300,
                            1e-310};
  return strange[random.Between(0, 5)];
}

host::Picture* Make(support::LoadedPlugin& plugin, Random& random, const Image& image, bool alpha) {
  host::PictureSpec spec;
  spec.rowPadding = 4 * random.Between(0, 5);
  spec.guard = random.AnyGuard();
  spec.hasAlphaChannel = alpha;
  return support::PictureOf(plugin.Host(), image, spec);
}

Image AnySize(Random& random, int format) {
  return random.Noise(random.Between(1, kLargestSide), random.Between(1, kLargestSide),
                      std::abs(format));
}

Image MaskOf(Random& random, const std::string& sort, const Image& source, int format) {
  int width = source.width;
  int height = source.height;
  if (sort == "smaller") {
    width = random.Between(1, width);
    height = random.Between(1, height);
  } else if (sort == "larger") {
    width += random.Between(0, 5);
    height += random.Between(0, 5);
  }
  Image mask = random.Noise(width, height, format);
  for (auto& word : mask.words) {  // black and white often
    if (random.Between(0, 2) == 0) word = random.Coin() ? 0 : 0xFFFFFFFF;
  }
  return mask;
}

struct Sorts {
  std::string position, opacity, mask;
  int maskFormat;
};

// Empty when the plug-in drew what the oracle draws.
std::string RunCase(support::LoadedPlugin& plugin, Random& random, const Cell& cell,
                    const Sorts& sorts, int& visible) {
  const Image destImage = AnySize(random, cell.dest);
  const Image sourceImage = cell.itself ? destImage : AnySize(random, cell.source);
  host::Picture* dest = Make(plugin, random, destImage, cell.dest < 0);
  host::Picture* source = cell.itself ? dest : Make(plugin, random, sourceImage, cell.source < 0);
  Image expected = destImage;
  Image maskImage;
  const Image* oracleMask = nullptr;
  host::Picture* mask = nullptr;
  if (sorts.mask == "receiver") {
    plugin.Host().Book().Lock(dest, "test");
    plugin.Host().SetMask(source, dest);
    oracleMask = &expected;
  } else if (sorts.mask != "no mask") {
    maskImage = MaskOf(random, sorts.mask, sourceImage, sorts.maskFormat);
    mask = Make(plugin, random, maskImage, false);
    plugin.Host().SetMask(source, mask);
    oracleMask = &maskImage;
  }
  const double x = Position(random, sorts.position, destImage.width, sourceImage.width);
  const double y = Position(random, random.Coin() ? sorts.position : "eighths", destImage.height,
                            sourceImage.height);
  const double alpha = Opacity(random, sorts.opacity);
  oracle::DrawPicture(expected, cell.itself ? expected : sourceImage, oracleMask, x, y, alpha);
  Image untouched = destImage;
  oracle::DrawPicture(untouched, sourceImage, nullptr, 0, 0, 0);
  if (expected != untouched) ++visible;
  const host::CallReport report =
      plugin.Library().Call("DrawPictureFZVQ", dest, {source, x, y, alpha, 0});

  std::string problem = support::Complaints(report);
  if (!Flag(report)) problem += "not drawn; ";
  problem += support::Difference(expected, support::ImageOf(*dest));
  if (!cell.itself) problem += support::Difference(sourceImage, support::ImageOf(*source));
  if (mask != nullptr) {
    problem += support::Difference(maskImage, support::ImageOf(*mask));
    if (mask->DamagedPadding() != 0) problem += "padding was written";
  }
  if (dest->DamagedPadding() + source->DamagedPadding() != 0) problem += "padding was written";
  if (!problem.empty()) {
    problem += " (x " + std::to_string(x) + ", y " + std::to_string(y) + ", alpha " +
               std::to_string(alpha) + ")";
  }
  if (!cell.itself) plugin.Host().Release(source);
  plugin.Host().Release(dest);
  return problem;
}

std::vector<Cell> AllCells() {
  std::vector<Cell> cells;
  for (const auto& [kind, kindName] : support::KindNames()) {
    const bool buffers = kind == ApplicationKind::kWeb || kind == ApplicationKind::kConsole;
    const std::vector<int> formats =
        buffers ? std::vector<int>{8, -8} : std::vector<int>{1, 2, 3, 4, 5, 6, -1, -2};
    for (const int dest : formats) {
      for (const int source : formats) cells.push_back({kind, dest, source, false});
      cells.push_back({kind, dest, dest, true});
    }
  }
  return cells;
}

std::string FormatName(int format) {
  return std::to_string(std::abs(format)) + (format < 0 ? " alpha" : "");
}

using Counts = std::map<std::string, int>;

// A line a row: the counts of all columns. Fails on a missing one.
void PrintAndCheck(const std::map<std::string, Counts>& table) {
  for (const auto& [row, counts] : table) {
    std::printf("%-18s", row.c_str());
    for (const auto& [column, count] : counts) {
      std::printf(" %s %d", column.c_str(), count);
      EXPECT_GT(count, 0) << row << ", " << column;
    }
    std::printf("\n");
  }
}

TEST(DrawPicture, MatchesTheOracleForEveryKindFormatAndPosition) {
  std::map<std::string, Counts> formats;  // source formats by kind and receiver
  std::map<std::string, Counts> sorts;    // opacities and masks by position
  std::map<std::string, Counts> masks;    // mask formats by receiver
  for (const auto& position : kPositions) {
    for (const auto& opacity : kOpacities) sorts[position]["alpha " + opacity] = 0;
    for (const auto& mask : kMasks) sorts[position][mask] = 0;
  }
  for (int dest : {1, 2, 3, 4, 5, 6, -1, -2}) {
    for (int mask = 1; mask <= 6; ++mask)
      masks["mask on " + FormatName(dest)][FormatName(mask)] = 0;
  }
  int total = 0;
  int visible = 0;  // cases in which the picture leaves a trace
  std::uint32_t seed = 51000;
  for (const Cell& cell : AllCells()) {
    Random random(++seed);
    support::LoadedPlugin plugin({.kind = cell.kind});
    const bool buffers = std::abs(cell.dest) == 8;
    int& count = formats[support::KindNames().at(cell.kind) + " " + FormatName(cell.dest)]
                        [cell.itself ? "itself" : FormatName(cell.source)];
    for (int k = 0; k < (buffers ? 5 : 2) * kCasesPerCell; ++k, ++total) {
      Sorts sort;
      sort.position = kPositions[total % 5];
      sort.opacity = kOpacities[total / 5 % 5];
      sort.mask = kMasks[total / 25 % 5];
      if (cell.itself && sort.mask == "receiver") sort.mask = "own size";
      sort.maskFormat = buffers ? 8 : random.Between(1, 6);
      ASSERT_EQ(RunCase(plugin, random, cell, sort, visible), "")
          << support::KindNames().at(cell.kind) << ", " << FormatName(cell.source) << " -> "
          << FormatName(cell.dest) << ", " << sort.position << ", " << sort.opacity << ", "
          << sort.mask << ", seed " << seed << ", case " << k;
      ++count;
      ++sorts[sort.position]["alpha " + sort.opacity];
      ++sorts[sort.position][sort.mask];
      const bool own = sort.mask != "no mask" && sort.mask != "receiver";
      if (own && !buffers) ++masks["mask on " + FormatName(cell.dest)][FormatName(sort.maskFormat)];
    }
  }
  PrintAndCheck(formats);
  PrintAndCheck(sorts);
  PrintAndCheck(masks);
  EXPECT_EQ(formats.size(), 2U * 8 + 2U * 2) << "a row of the table is missing";
  for (const auto& [row, counts] : formats) {
    const bool buffers = row.starts_with("web") || row.starts_with("console");
    EXPECT_EQ(counts.size(), buffers ? 3U : 9U) << row;
  }
  std::printf("%d cases, none differing, the picture visible in %d\n", total, visible);
  EXPECT_GE(total, 3000);
  EXPECT_GE(visible, total / 3);
}

}  // namespace
