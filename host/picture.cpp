// A picture's memory and the host's own access to its pixels.
#include "host/picture.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "host/ledger.h"
#include "host/noise.h"

namespace host {

namespace {

constexpr std::size_t kBytesPerPixel = 4;
constexpr std::size_t kHostBufferGap = 48;  // bytes behind each row of a host buffer

void CheckSpec(const PictureSpec& spec) {
  if (spec.width < 0 || spec.height < 0 || spec.rowPadding < 0) {
    throw std::invalid_argument("a picture's size and row padding cannot be negative");
  }
  const std::uint64_t rowBytes = static_cast<std::uint64_t>(spec.width) * kBytesPerPixel +
                                 static_cast<std::uint64_t>(spec.rowPadding);
  if (rowBytes * static_cast<std::uint64_t>(spec.height) >= Picture::kMostPixelBytes) {
    throw std::bad_alloc();
  }
}

// 0 .. count-1 in an order that is far from sorted and always the same.
std::vector<std::size_t> Shuffled(std::size_t count) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (std::size_t i = count; i > 1; --i) std::swap(order[i - 1], order[NoiseWord(i) % i]);
  return order;
}

}  // namespace

Picture::Picture(const PictureSpec& spec) : Object("Picture") { Allocate(spec); }

Picture::~Picture() = default;

void Picture::Construct(const PictureSpec& spec) { Allocate(spec); }

void Picture::Allocate(const PictureSpec& spec) {
  CheckSpec(spec);
  std::vector<PixelMemory> memory;
  std::vector<unsigned char*> rows;
  PixelMemory rowTable;
  std::size_t padding = 0;
  if (spec.width > 0 && spec.height > 0) {
    const auto height = static_cast<std::size_t>(spec.height);
    const std::size_t rowSize = static_cast<std::size_t>(spec.width) * kBytesPerPixel;
    const bool isBuffer = spec.storage == Storage::kHostBuffer;
    rows.resize(height);
    if (isBuffer && spec.guard != Guard::kNone) {
      memory.resize(height);
      for (const std::size_t y : Shuffled(height)) {
        memory[y] = PixelMemory(rowSize, spec.guard);
        rows[y] = memory[y].Data();
      }
    } else {
      padding = isBuffer ? kHostBufferGap : static_cast<std::size_t>(spec.rowPadding);
      const std::size_t stride = rowSize + padding;
      memory.emplace_back(stride * height, spec.guard);
      const std::vector<std::size_t> order =
          isBuffer ? Shuffled(height) : std::vector<std::size_t>();
      for (std::size_t y = 0; y < height; ++y) {
        rows[y] = memory[0].Data() + (isBuffer ? order[y] : y) * stride;
        std::memset(rows[y] + rowSize, kNoiseByte, padding);
      }
    }
    if (isBuffer) {
      rowTable = PixelMemory(height * sizeof(unsigned char*),
                             spec.guard == Guard::kNone ? Guard::kNone : Guard::kAfter);
      if (buffer_.Data() == nullptr) {
        buffer_ = PixelMemory(sizeof(REALhostBuffer), Guard::kAfter);
        new (buffer_.Data()) REALhostBuffer;
      }
    }
  }
  spec_ = spec;
  memory_ = std::move(memory);
  rows_ = std::move(rows);
  rowTable_ = std::move(rowTable);
  padding_ = padding;
  const std::uint32_t word = WordOfColour(spec_.fill, PixelFormat(), spec_.hasAlphaChannel);
  for (unsigned char* row : rows_) {
    for (int x = 0; x < spec_.width; ++x) {
      std::memcpy(row + static_cast<std::size_t>(x) * kBytesPerPixel, &word, sizeof word);
    }
  }
}

int Picture::PixelFormat() const {
  return spec_.storage == Storage::kHostBuffer ? kHostBufferFormat : spec_.pixelFormat;
}

unsigned char* Picture::Row(int y) const {
  if (y < 0 || static_cast<std::size_t>(y) >= rows_.size()) {
    throw std::out_of_range(Name() + " has no row " + std::to_string(y));
  }
  return rows_[static_cast<std::size_t>(y)];
}

std::uint32_t Picture::Word(int x, int y) const {
  const unsigned char* row = Row(y);
  if (x < 0 || x >= spec_.width) {
    throw std::out_of_range(Name() + " has no column " + std::to_string(x));
  }
  std::uint32_t word = 0;
  std::memcpy(&word, row + static_cast<std::size_t>(x) * kBytesPerPixel, sizeof word);
  return word;
}

void Picture::SetWord(int x, int y, std::uint32_t word) {
  unsigned char* row = Row(y);
  if (x < 0 || x >= spec_.width) {
    throw std::out_of_range(Name() + " has no column " + std::to_string(x));
  }
  std::memcpy(row + static_cast<std::size_t>(x) * kBytesPerPixel, &word, sizeof word);
}

Rgba Picture::Get(int x, int y) const {
  return ColourOfWord(Word(x, y), PixelFormat(), spec_.hasAlphaChannel);
}

void Picture::Set(int x, int y, Rgba colour) {
  SetWord(x, y, WordOfColour(colour, PixelFormat(), spec_.hasAlphaChannel));
}

std::size_t Picture::DamagedPadding() const {
  const std::size_t rowSize = static_cast<std::size_t>(spec_.width) * kBytesPerPixel;
  std::size_t damaged = 0;
  for (const unsigned char* row : rows_) {
    damaged += static_cast<std::size_t>(
        std::count_if(row + rowSize, row + rowSize + padding_,
                      [](unsigned char byte) { return byte != kNoiseByte; }));
  }
  return damaged;
}

bool Picture::GetInteger(const std::string& property, int& value) const {
  if (SameName(property, "Width")) {
    value = spec_.width;
  } else if (SameName(property, "Height")) {
    value = spec_.height;
  } else {
    return false;
  }
  return true;
}

bool Picture::GetBoolean(const std::string& property, bool& value) const {
  if (!SameName(property, "HasAlphaChannel")) return false;
  value = spec_.hasAlphaChannel;
  return true;
}

void Picture::OnDeath(Ledger& ledger) {
  if (mask_ != nullptr) ledger.UnlockOwned(mask_, this);
  mask_ = nullptr;
  for (PixelMemory& block : memory_) block.MakeInaccessible();
  buffer_.MakeInaccessible();
  rowTable_.MakeInaccessible();
  rows_.clear();
}

}  // namespace host
