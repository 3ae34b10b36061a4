// The seven-filter two-pass resampler of "ScalingZVQ", stated literally; the expected pixels of
// every filtered scaling.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tests/oracles/image.h"

namespace oracle {

// The source pixels of one result column or row: (index, weight) with ascending indices, and the
// sum of the weights, added up in double precision and rounded to float once.
struct Taps {
  std::vector<std::pair<int, float>> taps;
  float total = 0.0f;
};

// The list of result index `index` (0 .. resultSize - 1) along one axis. The first pass is the
// horizontal one. Weights of exactly 0 are left out; a list too large to be allocated is empty, as
// are the lists of a source of size 0.
// Throws std::invalid_argument on a mode, size or index out of range, and std::length_error if more
// taps are found than the list is defined to hold.
Taps TapsFor(int mode, int sourceSize, int resultSize, int index, bool firstPass);

// Filters `source` to width * height (both at least 1): rows first, then columns of that 8-bit
// intermediate picture. Channel = trunc(sum / total + 0.5), clamped to 0..255; what is not finite
// or does not fit 32 bits is 0, so an empty list gives black.
//
// source        at least one row; no column gives black; its fourth byte is never read; a format
//               that holds no pixel is black
// resultFormat  written opaque, top byte 0 in format 8; a format that holds no pixel is not written
// initial       the word that the result holds wherever nothing is written
// resultHeight  rows that the result really has, at least 1; `height` if not given. Rows at or
//               beyond it land on row 0, in writing order; rows beyond `height` keep `initial`.
//
// Throws as TapsFor does, and std::invalid_argument on a size below its minimum.
Image Resample(const Image& source, int mode, int width, int height, int resultFormat,
               std::uint32_t initial = 0, std::optional<int> resultHeight = std::nullopt);

// A call of the method, on a host where every lock and allocation succeeds.
struct ScalingRequest {
  int mode = 0;
  int width = 0;
  int height = 0;
  bool hasAlpha = false;                           // the source has an alpha channel
  double hostVersion = 3000.0;                     // such as 2011.04
  int resultFormat = kNone;                        // the format in which the new picture is locked
  std::uint32_t initial = 0;                       // what a new picture's words hold
  std::optional<int> resultHeight = std::nullopt;  // rows that it really has; `height` if not given
};

enum class NilReason {
  kNone,          // there is a picture
  kArguments,     // no source, a size below 1 or a mode outside 1..7
  kIntermediate,  // width * source height words are nothing at all or more than 2^31 - 1 bytes
  kListHeads,     // the larger of width and height is too large for an array of list heads
  kResult,        // above 32767 without alpha; any size with alpha on a host below 2011.04
};

// The first reason for which the method gives nil. The source's pixels do not matter; null is nil.
NilReason WhyNil(const Image* source, const ScalingRequest& request);

// The method's result; none where it is nil.
std::optional<Image> ScalingMethod(const Image* source, const ScalingRequest& request);

}  // namespace oracle
