// The decisions of the method "ScaleImageAndMaskZVQ".
#include "tests/oracles/image_and_mask.h"

#include <algorithm>
#include <stdexcept>

#include "tests/oracles/fast_scale.h"
#include "tests/oracles/smooth_enlarge.h"

namespace oracle {
namespace {

std::optional<Image> Smooth(const Image& source, const ImageAndMaskRequest& request,
                            const NewPicture& made) {
  if (!ResultCanBeMade(request.width, request.height, made.hasAlpha)) return std::nullopt;
  if (!SmoothTablesFit(source.width, request.width, request.height)) return std::nullopt;
  return SmoothEnlarge(source, request.width, request.height, made.format, made.initial,
                       made.height);
}

std::optional<Image> Fast(const Image& source, const ImageAndMaskRequest& request,
                          const NewPicture& made) {
  if (!ResultCanBeMade(request.width, request.height, made.hasAlpha)) return std::nullopt;
  return FastScale(source, request.width, request.height, made.format, made.initial, made.height);
}

std::optional<ImageAndMask> ScaleBoth(const Image& picture, const Image* mask, int chooserWidth,
                                      int chooserHeight, const ImageAndMaskRequest& request) {
  const bool enlarges = chooserWidth < request.width && chooserHeight < request.height;
  if (request.antiAlias && enlarges) {
    if (const auto image = Smooth(picture, request, request.picture)) {
      ImageAndMask result = {Branch::kSmooth, *image, std::nullopt};
      if (mask != nullptr) result.mask = Smooth(*mask, request, request.mask);
      return result;
    }
  }
  const auto image = Fast(picture, request, request.picture);
  if (!image) return std::nullopt;
  ImageAndMask result = {Branch::kFast, *image, std::nullopt};
  if (mask != nullptr) result.mask = Fast(*mask, request, request.mask);
  return result;
}

}  // namespace

std::optional<ImageAndMask> ScaleImageAndMask(const Image& source, const Image* mask,
                                              const ImageAndMaskRequest& request) {
  if (source.width == request.width && source.height == request.height) {
    ImageAndMask same = {Branch::kSame, source, std::nullopt};
    if (mask != nullptr) same.mask = *mask;
    return same;
  }
  return ScaleBoth(source, mask, source.width, source.height, request);
}

std::optional<ImageAndMask> ScaleConverted(const Image& drawn, const Image* mask, int originalWidth,
                                           int originalHeight, const ImageAndMaskRequest& request) {
  if (originalWidth == request.width && originalHeight == request.height) {
    throw std::invalid_argument("the request is the receiver's own size");
  }
  return ScaleBoth(drawn, mask, originalWidth, originalHeight, request);
}

void DrawTopLeft(Image& temporary, const Image& source) {
  if (!IsStorable(temporary.format)) return;
  for (int y = 0; y < std::min(temporary.height, source.height); ++y) {
    for (int x = 0; x < std::min(temporary.width, source.width); ++x) {
      const std::uint32_t word = source.At(x, y);
      temporary.At(x, y) = PackOpaque(temporary.format, Red(word, source.format),
                                      Green(word, source.format), Blue(word, source.format));
    }
  }
}

bool CopyHostBuffer(Image& destination, const Image& source) {
  if (destination.format != kHostBuffer || source.format != kHostBuffer) return false;
  if (destination.width != source.width || destination.height != source.height) return false;
  destination.words = source.words;
  return true;
}

}  // namespace oracle
