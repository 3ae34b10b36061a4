// DrawPictureFZVQ against the oracle, bit for bit, on random pictures of every kind: noise of 1 to
// 16 pixels a side, padded rows, guarded memory, masks of other sizes, every sort of position and
// opacity. Counts what was covered and fails on a gap.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "tests/effects/drawing.h"
#include "tests/oracles/draw_picture.h"
#include "tests/support/differential.h"

namespace {

using host::ApplicationKind;
using oracle::Image;
using support::Random;

constexpr int kCasesPerCell = 12;
constexpr int kLargestSide = 16;

// What is cycled through from case to case, so that each value meets every other.
const std::vector<std::string> kPositions = {"whole", "eighths", "fraction", "far", "strange"};
const std::vector<std::string> kOpacities = {"one", "part", "above", "below", "strange"};
const std::vector<std::string> kMasks = {"no mask", "own size", "smaller", "larger", "receiver"};

// Which pictures a cell draws. A negative format: with an alpha channel.
struct Cell {
  ApplicationKind kind;
  int dest, source;
  bool itself;
  bool Buffers() const { return std::abs(dest) == oracle::kHostBuffer; }
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
  return support::PictureOf(plugin.Host(), image, support::AnyMemory(random, alpha));
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
    problem += " (" + sorts.position + ", " + sorts.opacity + ", " + sorts.mask + ", x " +
               std::to_string(x) + ", y " + std::to_string(y) + ", alpha " + std::to_string(alpha) +
               ")";
  }
  if (!cell.itself) plugin.Host().Release(source);
  plugin.Host().Release(dest);
  return problem;
}

std::vector<Cell> AllCells() {
  std::vector<Cell> cells;
  for (const auto& [kind, kindName] : support::KindNames()) {
    std::vector<int> formats = support::FormatsOf(kind, false);
    for (const int format : support::FormatsOf(kind, true)) formats.push_back(-format);
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

std::string RowName(const Cell& cell) {
  return support::KindNames().at(cell.kind) + " " + FormatName(cell.dest);
}

std::string ColumnName(const Cell& cell) {
  return cell.itself ? "itself" : FormatName(cell.source);
}

int CasesOf(bool buffers) { return (buffers ? 5 : 2) * kCasesPerCell; }

// By the names of a row and a column.
int CasesDue(const std::string& row, const std::string& column) {
  const bool buffers = row.starts_with("web") || row.starts_with("console");
  const bool due = column == "itself" || column.starts_with("8") == buffers;
  return due ? CasesOf(buffers) : 0;
}

// The sorts of the n-th case of all.
Sorts SortsOf(Random& random, const Cell& cell, std::size_t n) {
  Sorts sorts;
  sorts.position = kPositions[n % 5];
  sorts.opacity = kOpacities[n / 5 % 5];
  sorts.mask = kMasks[n / 25 % 5];
  if (cell.itself && sorts.mask == "receiver") sorts.mask = "own size";
  sorts.maskFormat = cell.Buffers() ? 8 : random.Between(1, 6);
  return sorts;
}

TEST(DrawPicture, MatchesTheOracleForEveryKindFormatAndPosition) {
  support::Coverage covered(
      {"1", "2", "3", "4", "5", "6", "1 alpha", "2 alpha", "8", "8 alpha", "itself"});
  support::Coverage opacities(kOpacities);
  support::Coverage masks(kMasks);
  support::Coverage maskFormats({"1", "2", "3", "4", "5", "6"});
  std::size_t cases = 0;
  int visible = 0;  // cases in which the picture leaves a trace
  std::vector<support::DifferentialCell> cells;
  for (const Cell& cell : AllCells()) {
    const auto run = [&, cell](support::LoadedPlugin& plugin, Random& random) {
      const Sorts sorts = SortsOf(random, cell, cases++);
      opacities.Count(sorts.position, sorts.opacity);
      masks.Count(sorts.position, sorts.mask);
      const bool own = sorts.mask != "no mask" && sorts.mask != "receiver";
      if (own && !cell.Buffers()) {
        maskFormats.Count(FormatName(cell.dest), FormatName(sorts.maskFormat));
      }
      return RunCase(plugin, random, cell, sorts, visible);
    };
    cells.push_back({.row = RowName(cell),
                     .column = ColumnName(cell),
                     .cases = CasesOf(cell.Buffers()),
                     .options = [cell](Random&) { return host::RuntimeOptions{.kind = cell.kind}; },
                     .run = run});
  }
  ASSERT_EQ(support::RunCells(cells, 51000, covered), "");
  covered.Print("receiver, source");
  opacities.Print("position, opacity");
  masks.Print("position, mask");
  maskFormats.Print("receiver, mask format");
  std::printf("%d cases, none differing, the picture visible in %d\n", covered.Total(), visible);
  EXPECT_EQ(covered.Rows(), 2U * 8 + 2U * 2) << "a row of the table is missing";
  EXPECT_EQ(covered.Unlike(CasesDue), std::vector<std::string>());
  EXPECT_EQ(opacities.Rows(), kPositions.size());
  EXPECT_EQ(opacities.Gaps(1), std::vector<std::string>());
  EXPECT_EQ(masks.Rows(), kPositions.size());
  EXPECT_EQ(masks.Gaps(1), std::vector<std::string>());
  EXPECT_EQ(maskFormats.Rows(), 8U);
  EXPECT_EQ(maskFormats.Gaps(1), std::vector<std::string>());
  EXPECT_GE(covered.Total(), 3000);
  EXPECT_GE(visible, covered.Total() / 3);
}

}  // namespace
