// What the tests of the vector kernels share: sources whose reader is filled by hand, and both
// passes over them, as defined and in lanes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "host/pixel_memory.h"
#include "pixels/picture_editor.h"
#include "resample/lane_passes.h"
#include "resample/passes.h"
#include "tests/support/random.h"

namespace resample_tests {

inline constexpr PixelLayout kLayouts[] = {PixelLayout::kRedFirst, PixelLayout::kAlphaFirst,
                                           PixelLayout::kBlueFirst};

// The levels of this processor that have kernels of their own.
inline std::vector<VectorLevel> Levels() {
  std::vector<VectorLevel> levels;
  for (const VectorLevel level : {VectorLevel::kSse2, VectorLevel::kAvx2}) {
    if (level <= BestVectorLevel()) levels.push_back(level);
  }
  return levels;
}

inline std::size_t Bytes(int pixels) {
  return sizeof(std::uint32_t) * static_cast<std::size_t>(pixels);
}
inline std::uint32_t* Words(const host::PixelMemory& memory) {
  return reinterpret_cast<std::uint32_t*>(memory.Data());
}

enum class Picture { kNoise, kBlack, kWhite, kColumns, kRows, kBoard, kGradient, kBlackOrWhite };
inline constexpr Picture kPictures[] = {Picture::kNoise,    Picture::kBlack,       Picture::kWhite,
                                        Picture::kColumns,  Picture::kRows,        Picture::kBoard,
                                        Picture::kGradient, Picture::kBlackOrWhite};

inline std::uint32_t PixelOf(Picture picture, int x, int y, support::Random& random) {
  const auto whiteIf = [](int condition) { return condition % 2 != 0 ? 0xFFFFFFFFU : 0U; };
  switch (picture) {
    case Picture::kNoise:
      return random.Word();
    case Picture::kBlack:
      return 0;
    case Picture::kWhite:
      return 0xFFFFFFFF;
    case Picture::kColumns:
      return whiteIf(x);
    case Picture::kRows:
      return whiteIf(y);
    case Picture::kBoard:
      return whiteIf(x + y);
    case Picture::kGradient:
      return static_cast<std::uint32_t>(x) * 0x03070205U +
             static_cast<std::uint32_t>(y) * 0x05020301U;
    case Picture::kBlackOrWhite:
      return (random.Word() & 0x01010101U) * 255;
  }
  return 0;
}

// A source of that size. Inaccessible memory is next to its first or last row; next to several of
// its rows for kBlueFirst, the layout of pictures whose rows lie anywhere.
class Source {
 public:
  Source(int width, int height, PixelLayout layout, Picture picture, support::Random& random) {
    reader.width = width;
    reader.height = height;
    reader.bytesPerPixel = 4;
    const int padding = random.Between(0, 2);
    reader.rowBytes = static_cast<std::int32_t>(Bytes(width + padding));
    if (layout == PixelLayout::kBlueFirst) {
      reader.pixelFormat = kFormatHostBuffer;
      for (int y = 0; y < height; ++y) {
        const bool isGuarded = y == 0 || y == height / 2 || y == height - 1;
        memory_.emplace_back(Bytes(width), isGuarded ? random.AnyGuard() : host::Guard::kNone);
        table_.push_back(memory_.back().Data());
      }
      reader.rowTable = table_.data();
    } else {
      reader.pixelFormat = layout == PixelLayout::kRedFirst ? 5 : 6;
      // The last row has no padding.
      memory_.emplace_back(Bytes((width + padding) * height - padding), random.AnyGuard());
      reader.base = memory_.back().Data();
    }
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) Row(y)[x] = PixelOf(picture, x, y, random);
    }
  }

  std::uint32_t* Row(int y) const { return reinterpret_cast<std::uint32_t*>(reader.RowAddress(y)); }

  PictureReader reader;

 private:
  std::vector<host::PixelMemory> memory_;
  std::vector<unsigned char*> table_;
};

// How many channels were left open, over several runs.
struct OpenCounts {
  OpenChannels along, down;

  void Add(const LanePasses& lanes) {
    along.coarse += lanes.OpenAlong().coarse;
    along.fine += lanes.OpenAlong().fine;
    down.coarse += lanes.OpenDown().coarse;
    down.fine += lanes.OpenDown().fine;
  }
};

// What both passes make of a source by lists, as defined and in lanes.
class Comparison {
 public:
  // `span`: the most source rows that a list of `rows` reaches over. All must outlive it.
  Comparison(const Source& source, const ContributionLists& columns, const ContributionLists& rows,
             std::int32_t span, PixelLayout layout, support::Random& random)
      : source_(source),
        columns_(columns),
        rows_(rows),
        span_(span),
        layout_(layout),
        image_(Bytes(columns.Count()) * static_cast<std::size_t>(source.reader.height),
               random.AnyGuard()),
        rowsMade_{{Bytes(columns.Count()), random.AnyGuard()},
                  {Bytes(columns.Count()), random.AnyGuard()}} {
    const PictureReader& reader = source.reader;
    const std::int32_t width = columns.Count();
    std::vector<std::uint32_t> image(IndexOf(reader.height, width));
    for (std::int32_t y = 0; y < reader.height; ++y) {
      FilterAlongRow(source.Row(y), reader.Layout(), columns, image.data() + IndexOf(y, width));
    }
    expected_.resize(IndexOf(rows.Count(), width));
    for (std::int32_t y = 0; y < rows.Count(); ++y) {
      FilterDownColumns(image.data(), width, rows[y], layout, expected_.data() + IndexOf(y, width));
    }
  }

  // The first row that lanes make otherwise, kSame or kNotPrepared.
  static constexpr int kSame = -1;
  static constexpr int kNotPrepared = -2;
  int FirstOtherRow(VectorLevel level, OpenCounts& counts) const {
    const std::int32_t width = columns_.Count();
    std::memset(image_.Data(), 0xA5, image_.Size());
    LanePasses lanes;
    if (!lanes.Prepare(source_.reader, columns_, image_.Data(), span_, level)) return kNotPrepared;
    for (std::int32_t y = 0; y < rows_.Count(); ++y) {
      const host::PixelMemory& row = rowsMade_[y % 2];
      std::memset(row.Data(), 0x5A, row.Size());
      lanes.FilterRow(rows_[y], layout_, Words(row));
      if (std::memcmp(row.Data(), &expected_[IndexOf(y, width)], row.Size()) != 0) return y;
    }
    counts.Add(lanes);
    return kSame;
  }

 private:
  const Source& source_;
  const ContributionLists& columns_;
  const ContributionLists& rows_;
  std::int32_t span_;
  PixelLayout layout_;
  host::PixelMemory image_;
  host::PixelMemory rowsMade_[2];  // in turn: the one before stays for the next
  std::vector<std::uint32_t> expected_;
};

}  // namespace resample_tests
