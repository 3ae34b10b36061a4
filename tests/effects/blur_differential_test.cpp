// BlurZVQ against the oracle, bit for bit, on random pictures of every kind: noise of 1 to 20
// pixels a side, padded rows, guarded memory, radii around the picture's sides, results of other
// sizes than asked for. Counts what was covered and fails on a gap.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "tests/oracles/blur.h"
#include "tests/support/coverage.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"
#include "tests/support/random.h"

namespace {

using host::ApplicationKind;
using oracle::BlurOutcome;
using oracle::Image;
using support::Random;

constexpr int kCasesPerCell = 6;
constexpr int kLargestSide = 20;

// The radius, or what the host makes of the result.
enum class Request { kBelow, kOne, kInside, kSides, kBeyond, kShorter, kLarger, kNarrower };
const std::map<Request, std::string> kRequestNames = {
    {Request::kBelow, "below 1"}, {Request::kOne, "one"},          {Request::kInside, "inside"},
    {Request::kSides, "sides"},   {Request::kBeyond, "beyond"},    {Request::kShorter, "shorter"},
    {Request::kLarger, "larger"}, {Request::kNarrower, "narrower"}};

struct Cell {
  ApplicationKind kind;
  bool alpha;
  int sourceFormat;
  int resultFormat;
  Request request;
};

double Radius(Random& random, Request request, const Image& source) {
  const double fraction = random.Coin() ? 0 : random.Between(1, 999) / 1000.0;
  const int side = random.Coin() ? source.width : source.height;
  switch (request) {
    case Request::kBelow:
      return random.Coin() ? fraction : -random.Between(0, 50) + fraction;
    case Request::kOne:
      return 1 + fraction;
    case Request::kInside:
      return std::max(1, random.Between(1, side / 2 + 1)) + fraction;
    case Request::kSides:
      return std::max(1, side + random.Between(-2, 2)) + fraction;
    case Request::kBeyond:
      return random.Between(side + 2, 4 * side + 9) + fraction;
    default:
      return random.Between(1, 12) + fraction;
  }
}

// Empty when the plug-in gave what the oracle gives.
std::string RunCase(support::LoadedPlugin& plugin, Random& random, const Cell& cell) {
  const int least = cell.request == Request::kNarrower || cell.request == Request::kShorter ? 2 : 1;
  const Image image = random.Noise(random.Between(least, kLargestSide),
                                   random.Between(least, kLargestSide), cell.sourceFormat);
  host::PictureSpec spec;
  spec.rowPadding = 4 * random.Between(0, 5);
  spec.guard = random.AnyGuard();
  spec.hasAlphaChannel = cell.alpha;
  host::Picture* source = support::PictureOf(plugin.Host(), image, spec);
  int width = image.width;
  int height = image.height;
  if (cell.request == Request::kShorter) height = random.Between(1, height - 1);
  if (cell.request == Request::kNarrower) width = random.Between(1, width - 1);
  if (cell.request == Request::kLarger) {
    width += random.Between(0, 3);
    height += random.Between(1, 3);
  }
  plugin.Host().adjustNewPicture = [&](host::PictureSpec& made) {
    made.width = width;
    made.height = height;
    made.rowPadding = 4 * random.Between(0, 3);
    made.guard = random.AnyGuard();
  };
  const double radius = Radius(random, cell.request, image);
  const std::uint32_t white = cell.resultFormat == 8 ? 0x00FFFFFF : 0xFFFFFFFF;  // a new picture
  const oracle::BlurResult expected =
      oracle::Blur(image, radius, cell.resultFormat, white, width, height);
  const host::CallReport report = plugin.Library().Call("BlurZVQ", source, {radius, 0});

  std::string problem = support::Complaints(report);
  host::Picture* result = report.ResultPicture();
  const BlurOutcome wanted = cell.request == Request::kBelow      ? BlurOutcome::kReceiver
                             : cell.request == Request::kNarrower ? BlurOutcome::kNil
                                                                  : BlurOutcome::kBlurred;
  if (expected.outcome != wanted) problem += "the case has another outcome than its cell; ";
  problem += support::Difference(image, support::ImageOf(*source));
  if ((result == nullptr) != (wanted == BlurOutcome::kNil)) {
    problem += "nil or not; ";
  } else if ((result == source) != (wanted == BlurOutcome::kReceiver)) {
    problem += "the receiver or not; ";
  } else if (result != nullptr) {
    problem += support::Difference(expected.image, support::ImageOf(*result));
    if (result->DamagedPadding() + source->DamagedPadding() != 0) problem += "padding was written";
    plugin.Host().Release(result);
  }
  if (!problem.empty()) problem += " (radius " + std::to_string(radius) + ")";
  if (source->Alive()) plugin.Host().Release(source);
  return problem;
}

std::vector<Cell> AllCells() {
  std::vector<Cell> cells;
  for (const auto& [kind, kindName] : support::KindNames()) {
    const bool buffers = kind == ApplicationKind::kWeb || kind == ApplicationKind::kConsole;
    for (const bool alpha : {false, true}) {
      const std::vector<int> results =
          buffers ? std::vector<int>{8} : std::vector<int>{1, 2, 3, 4, 5, 6};
      const std::vector<int> sources = alpha && !buffers ? std::vector<int>{1, 2} : results;
      for (int source : sources) {
        for (int result : results) {
          for (const auto& [request, name] : kRequestNames) {
            cells.push_back({kind, alpha, source, result, request});
          }
        }
      }
    }
  }
  return cells;
}

std::string RowName(const Cell& cell) {
  return support::KindNames().at(cell.kind) + (cell.alpha ? " alpha " : " opaque ") +
         std::to_string(cell.sourceFormat) + " -> " + std::to_string(cell.resultFormat);
}

std::vector<std::string> RequestNames() {
  std::vector<std::string> names;
  for (const auto& [request, name] : kRequestNames) names.push_back(name);
  return names;
}

TEST(Blur, MatchesTheOracleForEveryKindFormatAndRadius) {
  support::Coverage covered(RequestNames());
  std::uint32_t seed = 52000;
  for (const Cell& cell : AllCells()) {
    Random random(++seed);
    support::LoadedPlugin plugin({.kind = cell.kind, .newPixelFormat = cell.resultFormat});
    for (int k = 0; k < kCasesPerCell; ++k) {
      ASSERT_EQ(RunCase(plugin, random, cell), "")
          << RowName(cell) << ", " << kRequestNames.at(cell.request) << ", seed " << seed
          << ", case " << k;
      covered.Count(RowName(cell), kRequestNames.at(cell.request));
    }
  }
  covered.Print("kind, source -> result");
  EXPECT_EQ(covered.Rows(), 2U * (36 + 12) + 2U * 2) << "a row of the table is missing";
  EXPECT_EQ(covered.Gaps(kCasesPerCell), std::vector<std::string>());
}

}  // namespace
