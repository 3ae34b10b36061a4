// ScaleZVQ against the oracles, bit for bit, on random pictures of every kind: noise of 1 to 67
// pixels a side, padded rows, guarded memory, requests on both sides of the size. Counts what was
// covered and fails on a gap.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "tests/oracles/scale_method.h"
#include "tests/support/differential.h"
#include "tests/support/pictures.h"

namespace {

using oracle::Branch;
using oracle::Image;
using support::FormatPair;
using support::Random;

constexpr int kCasesPerCell = 16;
constexpr int kLargestSide = 67;

// What the request does to the picture; the fast branch is told apart by it.
enum class Request { kSame, kSmooth, kShrink, kEnlarge, kMixed };
const std::map<Request, std::string> kRequestNames = {{Request::kSame, "same"},
                                                      {Request::kSmooth, "smooth"},
                                                      {Request::kShrink, "shrink"},
                                                      {Request::kEnlarge, "enlarge"},
                                                      {Request::kMixed, "mixed"}};

struct Cell {
  FormatPair formats;
  Request request;
};

// A side length on the asked side of `side`, which must be above 1 for a smaller one.
int Shrunk(Random& random, int side) { return random.Between(1, side - 1); }
int Enlarged(Random& random, int side) { return random.Between(side + 1, 2 * side + 9); }

oracle::ScaleRequest MakeRequest(Random& random, const Cell& cell, const Image& source) {
  oracle::ScaleRequest request;
  request.width = source.width;
  request.height = source.height;
  request.hasAlpha = cell.formats.alpha;
  request.resultFormat = cell.formats.result;
  request.antiAlias = random.Coin();
  switch (cell.request) {
    case Request::kSame:
      break;
    case Request::kSmooth:
    case Request::kEnlarge:
      request.antiAlias = cell.request == Request::kSmooth;
      request.width = Enlarged(random, source.width);
      request.height = Enlarged(random, source.height);
      break;
    case Request::kShrink:
      request.width = Shrunk(random, source.width);
      request.height = Shrunk(random, source.height);
      break;
    case Request::kMixed:
      request.width = Shrunk(random, source.width);
      request.height = Enlarged(random, source.height);
      if (random.Coin()) {
        request.width = Enlarged(random, source.width);
        request.height = Shrunk(random, source.height);
      }
      break;
  }
  return request;
}

// Empty when the plug-in gave what the oracle gives.
std::string RunCase(support::LoadedPlugin& plugin, Random& random, const Cell& cell) {
  const bool needsTwo = cell.request == Request::kShrink || cell.request == Request::kMixed;
  const int least = needsTwo ? 2 : 1;
  const Image image = random.Noise(random.Between(least, kLargestSide),
                                   random.Between(least, kLargestSide), cell.formats.source);
  const oracle::ScaleRequest request = MakeRequest(random, cell, image);
  const host::PictureSpec spec = support::AnyMemory(random, cell.formats.alpha);
  host::Picture* source = support::PictureOf(plugin.Host(), image, spec);
  const auto expected = oracle::ScaleMethod(image, request);
  const host::CallReport report = plugin.Library().Call(
      "ScaleZVQ", source, {request.width, request.height, request.antiAlias, 0});

  std::string problem = support::Complaints(report);
  host::Picture* result = report.ResultPicture();
  const Branch wanted = cell.request == Request::kSame     ? Branch::kSame
                        : cell.request == Request::kSmooth ? Branch::kSmooth
                                                           : Branch::kFast;
  if (result == nullptr) {
    problem += "nil";
  } else if (expected->branch != wanted) {
    problem += "the case took another branch than its cell";
  } else {
    problem += support::Difference(expected->image, support::ImageOf(*result));
    problem += support::Difference(image, support::ImageOf(*source));
    if (result->DamagedPadding() + source->DamagedPadding() != 0) problem += "padding was written";
    plugin.Host().Release(result);
  }
  if (source->Alive()) plugin.Host().Release(source);
  return problem;
}

host::RuntimeOptions Options(Random& random, const Cell& cell) {
  host::RuntimeOptions options;
  options.kind = cell.formats.kind;
  options.newPixelFormat = cell.formats.result;
  options.alphaPixelFormat = cell.formats.result;
  options.newRowPadding = 4 * random.Between(0, 3);
  options.newGuard = random.AnyGuard();
  return options;
}

TEST(ScaleZVQ, MatchesTheOracleForEveryKindFormatAndBranch) {
  std::vector<std::string> columns;
  for (const auto& [request, name] : kRequestNames) columns.push_back(name);
  std::vector<support::DifferentialCell> cells;
  for (const FormatPair& formats : support::AllFormatPairs(true)) {
    for (const auto& [request, name] : kRequestNames) {
      const Cell cell = {formats, request};
      cells.push_back(
          {.row = formats.Name(),
           .column = name,
           .cases = kCasesPerCell,
           .options = [=](Random& random) { return Options(random, cell); },
           .run = [=](auto& plugin, Random& random) { return RunCase(plugin, random, cell); }});
    }
  }
  support::Coverage covered(columns);
  ASSERT_EQ(support::RunCells(cells, 20130400, covered), "");
  covered.Print("kind, source -> result");
  std::printf("%d cases, none differing\n", covered.Total());
  EXPECT_EQ(covered.Rows(), 2U * (36 + 4) + 2U * 2) << "a row of the table is missing";
  EXPECT_EQ(covered.Gaps(kCasesPerCell), std::vector<std::string>());
}

}  // namespace
