#include "scale/smooth_tables.h"

namespace {

constexpr std::uint64_t kSpare = 20;  // bytes behind each table

std::int32_t Larger(std::int32_t a, std::int32_t b) { return a > b ? a : b; }

std::uint64_t BlockSize(std::int32_t entries, std::uint64_t entryBytes) {
  return static_cast<std::uint64_t>(entries) * entryBytes + kSpare;
}

void FillIndex(std::int32_t* index, std::int32_t entries, std::int32_t source,
               std::int32_t target) {
  for (std::int64_t i = 0; i < entries; ++i) {
    index[i] = static_cast<std::int32_t>(i * source / target);
  }
}

void FillWeights(TapWeights* weights, std::int32_t source, std::int32_t target) {
  for (std::int64_t i = 0; i < target; ++i) {
    const auto remainder = static_cast<std::int32_t>(i * source % target);
    weights[i] = WeightsFor(static_cast<float>(remainder) / static_cast<float>(target));
  }
}

void Pad(TapWeights* weights, std::int32_t filled, std::int32_t entries) {
  for (std::int32_t i = filled; i < entries; ++i) weights[i] = weights[i % filled];
}

}  // namespace

TapWeights WeightsFor(float t) {
  const float a = 0.0F;
  const float t2 = t * t;
  const float t3 = (t * t) * t;
  return {{a * t2 - a * t3,                  //
           (3.0F * t2 - 2.0F * t3) - a * t,  //
           (2.0F * t3 - 3.0F * t2) + 1.0F,   //
           (a * t3 - a * t2) + a * t}};
}

SmoothTables::SmoothTables(std::int32_t sw, std::int32_t sh, std::int32_t width,
                           std::int32_t height)
    : sw_(sw),
      sh_(sh),
      width_(width),
      height_(height),
      entries_(Larger(width, height)),
      xIndex_(BlockSize(entries_, sizeof(std::int32_t))),
      yIndex_(BlockSize(entries_, sizeof(std::int32_t))),
      xWeights_(BlockSize(entries_, sizeof(TapWeights))),
      yWeights_(BlockSize(entries_, sizeof(TapWeights))),
      // A mask may be wider than the picture that it belongs to, and so than the result.
      rowBuffer_(BlockSize(Larger(entries_, sw), sizeof(float))) {}

bool SmoothTables::Complete() const {
  return xIndex_ && yIndex_ && xWeights_ && yWeights_ && rowBuffer_;
}

void SmoothTables::FillIndexes() {
  FillIndex(xIndex_.Data(), entries_, sw_, width_);
  FillIndex(yIndex_.Data(), entries_, sh_, height_);
}

void SmoothTables::FillColumnWeights() { FillWeights(xWeights_.Data(), sw_, width_); }

void SmoothTables::FillRowWeights() { FillWeights(yWeights_.Data(), sh_, height_); }

void SmoothTables::PadWeights() {
  Pad(xWeights_.Data(), width_, entries_);
  Pad(yWeights_.Data(), height_, entries_);
}

void SmoothTables::SetColumnWeightsApart() {
  float* here = rowBuffer_.Data();
  float* next = xWeights_[0].entry;  // entry i is read before its place is written
  for (std::int32_t i = 0; i < width_; ++i) {
    const TapWeights weights = xWeights_[i];
    here[i] = weights.entry[2];
    next[i] = weights.entry[1];
  }
}
