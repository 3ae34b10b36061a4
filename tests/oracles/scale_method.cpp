// The decisions of the method "ScaleZVQ".
#include "tests/oracles/scale_method.h"

#include "tests/oracles/fast_scale.h"
#include "tests/oracles/smooth_enlarge.h"

namespace oracle {

Branch ChooseBranch(int sourceWidth, int sourceHeight, int width, int height, bool antiAlias) {
  if (sourceWidth == width && sourceHeight == height) return Branch::kSame;
  const bool enlarges = sourceWidth < width && sourceHeight < height;
  if (antiAlias && enlarges && SmoothTablesFit(sourceWidth, width, height)) return Branch::kSmooth;
  return Branch::kFast;
}

bool ResultCanBeMade(int width, int height, bool hasAlpha) {
  if (width < 1 || height < 1) return false;
  return hasAlpha || (width <= 32767 && height <= 32767);
}

std::optional<ScaleResult> ScaleMethod(const Image& source, const ScaleRequest& request) {
  const Branch branch =
      ChooseBranch(source.width, source.height, request.width, request.height, request.antiAlias);
  if (branch == Branch::kSame) return ScaleResult{branch, source};
  if (!ResultCanBeMade(request.width, request.height, request.hasAlpha)) return std::nullopt;
  const auto scale = branch == Branch::kSmooth ? SmoothEnlarge : FastScale;
  return ScaleResult{branch, scale(source, request.width, request.height, request.resultFormat,
                                   request.initial, request.resultHeight)};
}

}  // namespace oracle
