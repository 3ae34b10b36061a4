// BlurZVQ against the oracle, bit for bit, on random pictures of every kind: noise of 1 to 20
// pixels a side, padded rows, guarded memory, radii around the picture's sides, results of other
// sizes than asked for. Counts what was covered and fails on a gap.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

#include "tests/oracles/blur.h"
#include "tests/support/differential.h"
#include "tests/support/pictures.h"

namespace {

using oracle::BlurOutcome;
using oracle::Image;
using support::FormatPair;
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
  FormatPair formats;
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
                                   random.Between(least, kLargestSide), cell.formats.source);
  const host::PictureSpec spec = support::AnyMemory(random, cell.formats.alpha);
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
  const std::uint32_t white = cell.formats.result == 8 ? 0x00FFFFFF : 0xFFFFFFFF;  // a new picture
  const oracle::BlurResult expected =
      oracle::Blur(image, radius, cell.formats.result, white, width, height);
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

TEST(Blur, MatchesTheOracleForEveryKindFormatAndRadius) {
  std::vector<std::string> columns;
  for (const auto& [request, name] : kRequestNames) columns.push_back(name);
  std::vector<support::DifferentialCell> cells;
  for (const FormatPair& formats : support::AllFormatPairs(false)) {
    const host::RuntimeOptions options = {.kind = formats.kind, .newPixelFormat = formats.result};
    for (const auto& [request, name] : kRequestNames) {
      const Cell cell = {formats, request};
      cells.push_back(
          {.row = formats.Name(),
           .column = name,
           .cases = kCasesPerCell,
           .options = [=](Random&) { return options; },
           .run = [=](auto& plugin, Random& random) { return RunCase(plugin, random, cell); }});
    }
  }
  support::Coverage covered(columns);
  ASSERT_EQ(support::RunCells(cells, 52000, covered), "");
  covered.Print("kind, source -> result");
  std::printf("%d cases, none differing\n", covered.Total());
  EXPECT_EQ(covered.Rows(), 2U * (36 + 12) + 2U * 2) << "a row of the table is missing";
  EXPECT_EQ(covered.Gaps(kCasesPerCell), std::vector<std::string>());
}

}  // namespace
