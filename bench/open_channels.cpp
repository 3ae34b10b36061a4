// Counts how many channels of a resampling their first sums left open, and how many the definition
// had to decide in the end. Reads works (work.h) from standard input, a line each, and answers with
// four shares: along rows and down columns, of the first sums and of the definition.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>

#include "bench/work.h"
#include "pixels/picture_editor.h"
#include "plugin/processor.h"
#include "resample/contributions.h"
#include "resample/kernels.h"
#include "resample/lane_passes.h"

namespace {

using bench::Words;
using bench::Work;

// A reader of pixels that no host has.
void Read(Words& pixels, const Work& work, PictureReader& reader) {
  reader.pixelFormat = 1;
  reader.base = reinterpret_cast<unsigned char*>(pixels.data());
  reader.rowBytes = work.sourceWidth * 4;
  reader.bytesPerPixel = 4;
  reader.width = work.sourceWidth;
  reader.height = work.sourceHeight;
}

template <typename Filter>
bool Count(const Work& work) {
  Words source = bench::Pixels(work.sourceWidth, work.sourceHeight);
  const auto width = static_cast<std::size_t>(work.width);
  const auto sourceHeight = static_cast<std::size_t>(work.sourceHeight);
  Words image(width * sourceHeight);
  Words row(width);
  PictureReader reader;
  Read(source, work, reader);
  ContributionLists columns, rows;
  if (!columns.Resize(work.width) || !rows.Resize(work.height)) return false;
  columns.Build<Filter>(work.sourceWidth, Axis::kAlongRows);
  rows.Build<Filter>(work.sourceHeight, Axis::kDownColumns);
  const auto search = TapSearch::For<Filter>(work.sourceHeight, work.height, Axis::kDownColumns);
  LanePasses lanes;
  if (!lanes.Prepare(reader, columns, image.data(), search.Span(work.sourceHeight),
                     BestVectorLevel())) {
    return false;
  }
  for (std::int32_t y = 0; y < work.height; ++y) {
    lanes.FilterRow(rows[y], PixelLayout::kRedFirst, row.data());
  }
  const double along = 3.0 * work.width * work.sourceHeight;
  const double down = 3.0 * work.width * work.height;
  const OpenChannels& first = lanes.OpenAlong();
  const OpenChannels& second = lanes.OpenDown();
  std::cout << static_cast<double>(first.coarse) / along << ' '
            << static_cast<double>(first.fine) / along << ' '
            << static_cast<double>(second.coarse) / down << ' '
            << static_cast<double>(second.fine) / down << std::endl;
  return true;
}

bool CountMode(const Work& work) {
  switch (work.number) {
    case 1:
      return Count<TriangleFilter>(work);
    case 2:
      return Count<BoxFilter>(work);
    case 3:
      return Count<Lanczos3Filter>(work);
    case 4:
      return Count<Lanczos8Filter>(work);
    case 5:
      return Count<MitchellFilter>(work);
    case 6:
      return Count<BicubicFilter>(work);
    case 7:
      return Count<Cubic6Filter>(work);
    default:
      return false;
  }
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    const std::optional<Work> work = bench::ParseWork(line);
    if (!work || work->kind != bench::Kind::kResample || !CountMode(*work)) {
      std::cout << '-' << std::endl;
    }
  }
  return 0;
}
