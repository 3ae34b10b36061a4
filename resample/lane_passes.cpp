#include "resample/lane_passes.h"

#include "resample/list_facts.h"

namespace {

// Whether single precision is the faster way: where integers, of which two taps go into one
// operation, would leave many channels open. Shrinking, twice as much is taken apart.
bool AreForFloats(const ContributionLists& columns, std::int32_t sourceWidth, std::int32_t span) {
  constexpr std::int32_t kMostTaps = 18, kMostTapsShrinking = 8;
  constexpr double kManyOpen = 0.002;
  constexpr std::int32_t kSamples = 4;
  const std::int32_t count = columns.Count();
  const std::int32_t most = count >= sourceWidth ? kMostTaps : kMostTapsShrinking;
  if (span > kMostTaps + 1 || WidestListInPixels(&columns[0], count) > most) return false;
  for (std::int32_t i = count / 2; i < count && i < count / 2 + kSamples; ++i) {
    if (ShareLeftOpen(columns[i]) > kManyOpen) return true;
  }
  return false;
}

}  // namespace

bool LanePasses::Prepare(const PictureReader& reader, const ContributionLists& columns, void* image,
                         std::int32_t span, VectorLevel level) {
  if (AreForFloats(columns, reader.width, span) &&
      floats_.Plan(reader, columns, image, span, level, 0)) {
    return floats_.Prepare(columns);
  }
  const std::uint64_t copying = CopiedRows::BytesFor(reader, columns, level);
  if (!integers_.Plan(reader, columns, image, span, level, copying) ||
      !integers_.Prepare(columns)) {
    return false;
  }
  if (copying > 0) copies_.Prepare(reader, columns, level);
  return true;
}

void LanePasses::FilterRow(const ContributionList& list, PixelLayout layout,
                           std::uint32_t* result) {
  if (copies_ && copies_.CopyRow(list, layout, result)) return;
  if (floats_) return floats_.FilterRow(list, layout, result);
  integers_.FilterRow(list, layout, result);
}
