// Which scaler the method "ScaleZVQ" uses for a request, and what picture it then gives.
#pragma once

#include <cstdint>
#include <optional>

#include "tests/oracles/image.h"

namespace oracle {

enum class Branch {
  kSame,    // the request is the picture's own size: the picture itself
  kSmooth,  // antialiased, and larger than the picture in both directions
  kFast,    // everything else
};

struct ScaleRequest {
  int width = 0;
  int height = 0;
  bool antiAlias = false;
  int resultFormat = kNone;   // the format in which the new picture is locked
  bool hasAlpha = false;      // the source has an alpha channel: no upper limit on the size
  std::uint32_t initial = 0;  // what a new picture's words hold
  // Rows that the new picture really has; `height` if not given.
  std::optional<int> resultHeight = std::nullopt;
};

struct ScaleResult {
  Branch branch = Branch::kFast;
  Image image;
};

// The scaler that the sizes choose; whether it can make its picture is not asked, except that an
// enlargement whose working tables are too large is left to the fast scaler.
Branch ChooseBranch(int sourceWidth, int sourceHeight, int width, int height, bool antiAlias);

// Whether a new picture of that size can be made: at least 1 in both directions, and at most 32767
// unless the source has an alpha channel.
bool ResultCanBeMade(int width, int height, bool hasAlpha);

// The method's result, on a host where every lock and allocation succeeds; none where it is nil.
// A source without pixels must not reach the smooth enlarger (std::invalid_argument).
std::optional<ScaleResult> ScaleMethod(const Image& source, const ScaleRequest& request);

}  // namespace oracle
