// ScaleImageAndMaskZVQ against the oracles, bit for bit in the pixels of the result and of its
// mask: noise of all formats, masks smaller and larger than their picture, both kinds of pictures,
// both scalers, padded rows, guarded memory. Counts what was covered and fails on a gap.
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "tests/oracles/image_and_mask.h"
#include "tests/support/differential.h"
#include "tests/support/pictures.h"

namespace {

using host::ApplicationKind;
using oracle::Branch;
using oracle::Image;
using support::Random;

constexpr int kCasesPerCell = 5;
constexpr int kLargestSide = 29;

// The mask next to its picture; the last two are pictures with an alpha channel, which is the mask.
enum class MaskKind { kNone, kSame, kSmaller, kLarger, kWiderThanResult, kAlphaOpaque, kAlphaAny };
const std::vector<std::string> kMaskKinds = {"none",  "same",  "smaller", "larger",
                                             "wider", "a=255", "any a"};

struct Cell {
  ApplicationKind kind;
  int sourceFormat;
  int maskFormat;  // 0 for alpha pictures, whose masks the host makes
  MaskKind mask;
  Branch branch;
  bool IsAlpha() const { return mask >= MaskKind::kAlphaOpaque; }
};

struct Case {
  Image source, mask;  // the mask only for pictures without an alpha channel
  oracle::ImageAndMaskRequest request;
};

int NewSide(Random& random, int side, bool larger) {
  return larger ? random.Between(side + 1, 2 * side + 5) : random.Between(1, side - 1);
}

Image MakeMask(Random& random, const Cell& cell, const Case& c) {
  const Image& source = c.source;
  switch (cell.mask) {
    case MaskKind::kSame:
      return random.Noise(source.width, source.height, cell.maskFormat);
    case MaskKind::kSmaller:
      return random.Noise(random.Between(1, source.width - 1), random.Between(1, source.height - 1),
                          cell.maskFormat);
    case MaskKind::kLarger:
      return random.Noise(source.width + random.Between(1, 9), source.height + random.Between(1, 9),
                          cell.maskFormat);
    default:
      return random.Noise(c.request.width + random.Between(1, 40), random.Between(1, kLargestSide),
                          cell.maskFormat);
  }
}

Case MakeCase(Random& random, const Cell& cell) {
  Case c;
  c.source = random.Noise(random.Between(2, kLargestSide), random.Between(2, kLargestSide),
                          cell.sourceFormat);
  const bool buffers = cell.sourceFormat == oracle::kHostBuffer;
  if (cell.mask == MaskKind::kAlphaOpaque) {
    const std::uint32_t opaque = buffers || cell.sourceFormat == 1 ? 0xFF000000U : 0xFFU;
    for (std::uint32_t& word : c.source.words) word |= opaque;
  }
  const bool smooth = cell.branch == Branch::kSmooth;
  const bool wider = smooth || random.Coin();
  const bool higher = smooth || random.Coin();
  c.request.width = NewSide(random, c.source.width, wider);
  c.request.height = NewSide(random, c.source.height, higher);
  c.request.antiAlias = smooth || (!(wider && higher) && random.Coin());
  // The picture and the scaled mask may come in different formats.
  c.request.picture.format = buffers ? oracle::kHostBuffer : random.Between(1, 6);
  c.request.mask.format = buffers ? oracle::kHostBuffer : random.Between(1, 6);
  if (cell.mask != MaskKind::kNone && !cell.IsAlpha()) c.mask = MakeMask(random, cell, c);
  return c;
}

// New pictures in this order: the temporary one of alpha pictures, the result, the scaled mask.
void SetFormats(host::Runtime& runtime, const Cell& cell, const Case& c, int temporaryFormat) {
  std::vector<int> formats = {c.request.picture.format, c.request.mask.format};
  if (cell.IsAlpha()) formats.insert(formats.begin(), temporaryFormat);
  runtime.adjustNewPicture = [formats, made = std::size_t{0}](host::PictureSpec& spec) mutable {
    spec.pixelFormat = formats.at(made++);
  };
}

// What the host draws and masks for a picture with an alpha channel, by the host's own means.
Image Drawn(host::Runtime& runtime, const Cell& cell, const Case& c, host::Picture* source,
            int format) {
  host::PictureSpec spec = runtime.NewPictureSpec(c.request.width, c.request.height);
  spec.pixelFormat = format;
  host::Picture* temporary = runtime.NewPicture(spec);
  Image image = support::ImageOf(*temporary);
  if (cell.mask == MaskKind::kAlphaOpaque) {
    oracle::DrawTopLeft(image, c.source);
  } else {
    runtime.Draw(temporary, source, 0, 0, spec.width, spec.height, 0, 0, spec.width, spec.height);
    image = support::ImageOf(*temporary);
  }
  runtime.Release(temporary);
  return image;
}

Image MaskOfAlpha(host::Runtime& runtime, const host::Picture& source) {
  host::Picture* mask = runtime.NewPicture(runtime.NewMaskSpec(source.Width(), source.Height()));
  for (int y = 0; y < source.Height(); ++y) {
    for (int x = 0; x < source.Width(); ++x) {
      const auto level = static_cast<std::uint8_t>(255 - source.Get(x, y).a);
      mask->Set(x, y, {level, level, level, 255});
    }
  }
  const Image image = support::ImageOf(*mask);
  runtime.Release(mask);
  return image;
}

// The result's mask: as the host makes it, with the scaled mask drawn into it.
std::string MaskDifference(host::Runtime& runtime, const oracle::ImageAndMask& expected,
                           const host::Picture& result) {
  if (!expected.mask) return result.Mask() == nullptr ? "" : "there is a mask";
  if (result.Mask() == nullptr) return "there is no mask";
  host::Picture* made =
      runtime.NewPicture(runtime.NewMaskSpec(expected.image.width, expected.image.height));
  Image target = support::ImageOf(*made);
  runtime.Release(made);
  oracle::DrawTopLeft(target, *expected.mask);
  return support::Difference(target, support::ImageOf(*result.Mask()));
}

// Empty when the plug-in gave what the oracle gives.
std::string RunCase(support::LoadedPlugin& plugin, Random& random, const Cell& cell) {
  host::Runtime& runtime = plugin.Host();
  Case c = MakeCase(random, cell);
  const host::PictureSpec spec = support::AnyMemory(random, cell.IsAlpha());
  host::Picture* source = support::PictureOf(runtime, c.source, spec);
  const Image* mask = nullptr;
  std::optional<oracle::ImageAndMask> expected;
  const bool buffers = cell.sourceFormat == oracle::kHostBuffer;
  const int temporaryFormat = buffers ? oracle::kHostBuffer : random.Between(1, 6);
  if (cell.IsAlpha()) {
    c.mask = MaskOfAlpha(runtime, *source);
    const Image drawn = Drawn(runtime, cell, c, source, temporaryFormat);
    expected = oracle::ScaleConverted(drawn, &c.mask, c.source.width, c.source.height, c.request);
  } else {
    if (cell.mask != MaskKind::kNone) {
      const host::PictureSpec maskSpec = support::AnyMemory(random, false);
      runtime.SetMask(source, support::PictureOf(runtime, c.mask, maskSpec));
      mask = &c.mask;
    }
    expected = oracle::ScaleImageAndMask(c.source, mask, c.request);
  }
  SetFormats(runtime, cell, c, temporaryFormat);
  const host::CallReport report = plugin.Library().Call(
      "ScaleImageAndMaskZVQ", source, {c.request.width, c.request.height, c.request.antiAlias, 0});
  runtime.adjustNewPicture = nullptr;

  std::string problem = support::Complaints(report);
  host::Picture* result = report.ResultPicture();
  if (result == nullptr || !expected) return problem + "nil";
  if (expected->branch != cell.branch) problem += "the case took another branch than its cell";
  problem += support::Difference(expected->image, support::ImageOf(*result));
  problem += MaskDifference(runtime, *expected, *result);
  problem += support::Difference(c.source, support::ImageOf(*source));
  if (mask != nullptr) problem += support::Difference(*mask, support::ImageOf(*source->Mask()));
  if (result->DamagedPadding() + source->DamagedPadding() != 0) problem += "padding was written";
  runtime.Release(result);
  runtime.Release(source);
  return problem;
}

std::vector<Cell> AllCells() {
  std::vector<Cell> cells;
  for (const Branch branch : {Branch::kFast, Branch::kSmooth}) {
    for (const auto kind :
         {ApplicationKind::kDesktop, ApplicationKind::kWeb, ApplicationKind::kConsole}) {
      const std::vector<int> formats = support::FormatsOf(kind, false);
      for (const int source : formats) {
        for (const MaskKind alpha : {MaskKind::kAlphaOpaque, MaskKind::kAlphaAny}) {
          const bool hasAlpha = source <= 2 || source == oracle::kHostBuffer;
          if (hasAlpha) cells.push_back({kind, source, 0, alpha, branch});
        }
        for (const int mask : formats) {
          for (int k = 0; k < static_cast<int>(MaskKind::kAlphaOpaque); ++k) {
            cells.push_back({kind, source, mask, static_cast<MaskKind>(k), branch});
          }
        }
      }
    }
  }
  return cells;
}

std::string RowName(const Cell& cell) {
  const std::string mask = cell.IsAlpha() ? "alpha" : "mask " + std::to_string(cell.maskFormat);
  return support::KindNames().at(cell.kind) +
         (cell.branch == Branch::kFast ? " fast " : " smooth ") +
         std::to_string(cell.sourceFormat) + ", " + mask;
}

host::RuntimeOptions Options(Random& random, const Cell& cell) {
  host::RuntimeOptions options;
  options.kind = cell.kind;
  options.newPixelFormat = random.Between(1, 6);  // of the result's mask
  options.newRowPadding = 4 * random.Between(0, 3);
  options.newGuard = random.AnyGuard();
  options.newFill = {9, 99, 199, 255};
  return options;
}

// In the rows of alpha pictures only the last two columns are due, in the others the rest.
int CasesDue(const std::string& row, const std::string& column) {
  const bool alpha = row.ends_with("alpha");
  const bool ofAlpha = column == kMaskKinds[5] || column == kMaskKinds[6];
  if (alpha != ofAlpha) return 0;
  return alpha ? 4 * kCasesPerCell : kCasesPerCell;
}

TEST(ScaleImageAndMaskZVQ, MatchesTheOracleForEveryFormatMaskAndScaler) {
  std::vector<support::DifferentialCell> cells;
  for (const Cell& cell : AllCells()) {
    cells.push_back(
        {.row = RowName(cell),
         .column = kMaskKinds[static_cast<std::size_t>(cell.mask)],
         .cases = cell.IsAlpha() ? 4 * kCasesPerCell : kCasesPerCell,
         .options = [=](Random& random) { return Options(random, cell); },
         .run = [=](auto& plugin, Random& random) { return RunCase(plugin, random, cell); }});
  }
  support::Coverage covered(kMaskKinds);
  ASSERT_EQ(support::RunCells(cells, 20110400, covered), "");
  covered.Print("kind, scaler, picture, mask");
  std::printf("%d cases, none differing\n", covered.Total());
  EXPECT_GE(covered.Total(), 2000);
  EXPECT_EQ(covered.Rows(), 2U * (6 * 6 + 2 + 1 + 1 + 1 + 1)) << "a row of the table is missing";
  EXPECT_EQ(covered.Unlike(CasesDue), std::vector<std::string>());
}

}  // namespace
