// Plain loops over the definition of the two-pass resampler; every sum is made in tap order.
#include "tests/oracles/resample.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>

#include "tests/oracles/kernels.h"
#include "tests/oracles/numbers.h"
#include "tests/oracles/scale_method.h"

namespace oracle {
namespace {

constexpr std::int64_t kLargestBlock = 2147483647;  // bytes

struct Colour {
  int red = 0;
  int green = 0;
  int blue = 0;
};

// A list head as the resampler keeps it, for its size: 12 bytes in 32-bit programs, 16 in 64-bit.
struct ListHead {
  void* entries;
  std::int32_t count;
  float total;
};

std::vector<Taps> AllTaps(int mode, int sourceSize, int resultSize, bool firstPass) {
  std::vector<Taps> lists;
  for (int i = 0; i < resultSize; ++i) {
    lists.push_back(TapsFor(mode, sourceSize, resultSize, i, firstPass));
  }
  return lists;
}

int Level(double sum, float total) {
  const double value = sum / static_cast<double>(total) + 0.5;
  if (!(value > -2147483649.0 && value < 2147483648.0)) return 0;
  return std::clamp(static_cast<int>(value), 0, 255);
}

// `row` is one source row; every product is taken in double precision.
Colour FilterAcross(const std::vector<Colour>& row, const Taps& list) {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  for (const auto& [column, weight] : list.taps) {
    if (weight == 0.0f) continue;
    const Colour& colour = row.at(static_cast<std::size_t>(column));
    red += static_cast<double>(colour.red) * static_cast<double>(weight);
    green += static_cast<double>(colour.green) * static_cast<double>(weight);
    blue += static_cast<double>(colour.blue) * static_cast<double>(weight);
  }
  return {Level(red, list.total), Level(green, list.total), Level(blue, list.total)};
}

// Column x of `rows`; every product is taken in single precision, every sum in double.
Colour FilterDown(const std::vector<std::vector<Colour>>& rows, std::size_t x, const Taps& list) {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  for (const auto& [row, weight] : list.taps) {
    if (weight == 0.0f) continue;
    const Colour& colour = rows.at(static_cast<std::size_t>(row)).at(x);
    const float redPart = static_cast<float>(colour.red) * weight;
    const float greenPart = static_cast<float>(colour.green) * weight;
    const float bluePart = static_cast<float>(colour.blue) * weight;
    red += static_cast<double>(redPart);
    green += static_cast<double>(greenPart);
    blue += static_cast<double>(bluePart);
  }
  return {Level(red, list.total), Level(green, list.total), Level(blue, list.total)};
}

bool HeadsFit(int count) {
  return static_cast<std::int64_t>(count) * static_cast<std::int64_t>(sizeof(ListHead)) <=
         kLargestBlock;
}

}  // namespace

Taps TapsFor(int mode, int sourceSize, int resultSize, int index, bool firstPass) {
  if (sourceSize < 0 || resultSize < 1 || index < 0 || index >= resultSize) {
    throw std::invalid_argument("no such result pixel");
  }
  const double s = SearchHalfWidth(mode);
  const double scale = static_cast<double>(resultSize) / static_cast<double>(sourceSize);
  const bool enlarges = scale >= 1.0;
  const double c = (static_cast<double>(index) + 0.5) / scale;

  double low = 0.0;
  double high = 0.0;
  double capacity = 0.0;
  if (enlarges) {
    low = firstPass ? std::floor(c - s) : std::trunc(c - s);
    high = firstPass ? std::ceil(c + s) : std::trunc(c + s);
    capacity = EnlargingCapacity(mode, firstPass);
  } else {
    const double reach = s / scale;
    low = std::trunc(c - reach);
    high = std::trunc(c + reach);
    capacity = ShrinkingCapacity(reach, firstPass);
  }

  Taps list;
  if (!ListCanBeAllocated(capacity)) return list;
  const int left = static_cast<int>(std::max(low, 0.0));
  const int right = static_cast<int>(std::min(high, static_cast<double>(sourceSize) - 1.0));
  double total = 0.0;
  for (int j = left; j <= right; ++j) {
    const double distance = c - static_cast<double>(j) - 0.5;
    const double weight = Kernel(mode, enlarges ? distance : distance * scale);
    if (weight == 0.0) continue;
    if (static_cast<double>(list.taps.size()) == capacity) {
      throw std::length_error("more taps than the list holds");
    }
    list.taps.emplace_back(j, static_cast<float>(weight));
    total += weight;
  }
  list.total = static_cast<float>(total);
  return list;
}

Image Resample(const Image& source, int mode, int width, int height, int resultFormat,
               std::uint32_t initial, std::optional<int> resultHeight) {
  const int lockedHeight = resultHeight.value_or(height);
  if (width < 1 || height < 1 || lockedHeight < 1 || source.height < 1) {
    throw std::invalid_argument("a result has at least one pixel, a source at least one row");
  }

  const std::vector<Taps> columns = AllTaps(mode, source.width, width, true);
  std::vector<std::vector<Colour>> intermediate;
  for (int y = 0; y < source.height; ++y) {
    std::vector<Colour> sourceRow;
    for (int x = 0; x < source.width; ++x) {
      const std::uint32_t word = source.At(x, y);
      sourceRow.push_back(
          {Red(word, source.format), Green(word, source.format), Blue(word, source.format)});
    }
    std::vector<Colour> filteredRow;
    for (const Taps& list : columns) filteredRow.push_back(FilterAcross(sourceRow, list));
    intermediate.push_back(filteredRow);
  }

  const std::vector<Taps> rows = AllTaps(mode, source.height, height, false);
  Image result = NewImage(width, lockedHeight, resultFormat, initial);
  if (!IsStorable(resultFormat)) return result;
  for (int y = 0; y < height; ++y) {
    const int writtenRow = y < lockedHeight ? y : 0;
    const Taps& list = rows.at(static_cast<std::size_t>(y));
    for (int x = 0; x < width; ++x) {
      const Colour colour = FilterDown(intermediate, static_cast<std::size_t>(x), list);
      result.At(x, writtenRow) = PackOpaque(resultFormat, colour.red, colour.green, colour.blue);
    }
  }
  return result;
}

NilReason WhyNil(const Image* source, const ScalingRequest& request) {
  const bool knownMode = request.mode >= kFirstMode && request.mode <= kLastMode;
  if (source == nullptr || request.width < 1 || request.height < 1 || !knownMode) {
    return NilReason::kArguments;
  }
  const std::int64_t words = std::int64_t{request.width} * source->height;
  if (words < 1 || words > kLargestBlock / 4) return NilReason::kIntermediate;
  if (!HeadsFit(request.width) || !HeadsFit(request.height)) return NilReason::kListHeads;
  if (!ResultCanBeMade(request.width, request.height, request.hasAlpha)) return NilReason::kResult;
  if (request.hasAlpha && request.hostVersion < 2011.04) return NilReason::kResult;
  return NilReason::kNone;
}

std::optional<Image> ScalingMethod(const Image* source, const ScalingRequest& request) {
  if (WhyNil(source, request) != NilReason::kNone) return std::nullopt;
  return Resample(*source, request.mode, request.width, request.height, request.resultFormat,
                  request.initial, request.resultHeight);
}

}  // namespace oracle
