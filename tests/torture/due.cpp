#include "tests/torture/due.h"

#include "plugin/processor.h"
#include "tests/oracles/blur.h"
#include "tests/oracles/draw_picture.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/resample.h"
#include "tests/oracles/smooth_enlarge.h"

namespace torture {

using oracle::Image;

namespace {

Image ColoursOf(const Image& image) {
  Image colours = image;
  colours.format = oracle::kSkipLast;
  for (auto& word : colours.words) {
    word = oracle::PackOpaque(oracle::kSkipLast, oracle::Red(word, image.format),
                              oracle::Green(word, image.format), oracle::Blue(word, image.format));
  }
  return colours;
}

Image White(int width, int height, int format) {
  return oracle::NewImage(width, height, format, oracle::PackOpaque(format, 255, 255, 255));
}

Image Black(int width, int height, int format) {
  return oracle::NewImage(width, height, format, oracle::PackOpaque(format, 0, 0, 0));
}

const char* NameOf(Answer answer) {
  constexpr const char* kNames[] = {"nothing",      "nil",           "false",       "true",
                                    "the receiver", "a new picture", "an exception"};
  return kNames[static_cast<int>(answer)];
}

}  // namespace

std::string Due::DifferenceTo(const Outcome& outcome) const {
  if (outcome.answer != answer) {
    return std::string("expected ") + NameOf(answer) + ", got " + NameOf(outcome.answer);
  }
  std::string difference = support::Difference(receiver, outcome.receiver);
  if (!difference.empty()) return "receiver " + difference;
  if (answer != Answer::kPicture) return "";
  if (hasAlpha != outcome.hasAlpha) return "alpha channel";
  difference = support::Difference(*image, *outcome.image);
  if (!difference.empty()) return difference;
  if (mask.has_value() != outcome.mask.has_value()) return mask ? "mask missing" : "mask too many";
  if (!mask) return "";
  difference = support::Difference(ColoursOf(*mask), ColoursOf(*outcome.mask));
  return difference.empty() ? "" : "mask " + difference;
}

DueOutcomes::DueOutcomes(Stage& stage) : scenario_(stage.Subject()) {
  const bool buffers = scenario_.HasBuffers();
  opaque_ = {buffers ? oracle::kHostBuffer : oracle::kSkipFirst, false};
  alpha_ = {buffers ? oracle::kHostBuffer : oracle::kPremultipliedFirst, true};
  const Variant& variant = scenario_.variant;
  host::Runtime& runtime = stage.Host();
  const std::size_t objects = runtime.Book().Objects().size();
  const Stage::Pictures pictures = stage.MakePictures();
  if (pictures.receiver != nullptr) receiver_ = support::ImageOf(*pictures.receiver);
  if (pictures.source != nullptr) {
    source_ = support::ImageOf(*pictures.source);
    const auto drawn = [&](int width, int height) {
      host::Picture* target = runtime.NewPicture(runtime.NewPictureSpec(width, height));
      runtime.Draw(target, pictures.source, 0, 0, width, height, 0, 0, width, height);
      return support::ImageOf(*target);
    };
    copy_ = drawn(kSourceWidth, kSourceHeight);
    converted_ = drawn(variant.width, variant.height);
    if (variant.alpha) {
      Image mask = oracle::NewImage(kSourceWidth, kSourceHeight, opaque_.format);
      for (int y = 0; y < kSourceHeight; ++y) {
        for (int x = 0; x < kSourceWidth; ++x) {
          const int level = 255 - pictures.source->Get(x, y).a;
          mask.At(x, y) = oracle::PackOpaque(opaque_.format, level, level, level);
        }
      }
      mask_ = mask;
      host::Picture* masked = support::PictureOf(
          runtime, converted_, runtime.NewPictureSpec(variant.width, variant.height));
      runtime.SetMask(masked, support::PictureOf(runtime, mask, runtime.NewPictureSpec(1, 1)));
      host::Picture* target =
          runtime.NewPicture(runtime.NewPictureSpec(variant.width, variant.height));
      runtime.Draw(target, masked, 0, 0, variant.width, variant.height, 0, 0, variant.width,
                   variant.height);
      convertedCopy_ = support::ImageOf(*target);
    } else if (pictures.sourceMask != nullptr) {
      mask_ = support::ImageOf(*pictures.sourceMask);
      host::Picture* target =
          runtime.NewPicture(runtime.NewPictureSpec(kSourceWidth, kSourceHeight));
      runtime.Draw(target, pictures.sourceMask, 0, 0, kSourceWidth, kSourceHeight, 0, 0,
                   kSourceWidth, kSourceHeight);
      maskCopy_ = support::ImageOf(*target);
    }
  }
  stage.CleanUp(objects);
  blank_ = White(kSourceWidth, kSourceHeight, opaque_.format);
  blankConverted_ = White(variant.width, variant.height, opaque_.format);
  whiteMask_ = blank_;
  switch (variant.method) {
    case Method::kScale:
      AddScaled(false);
      break;
    case Method::kScaleBoth:
      AddScaled(true);
      break;
    default:
      AddOthers();
  }
  FindUndisturbed();
}

Due DueOutcomes::Picture(const Image& image, Format format, std::optional<Image> mask) const {
  return {Answer::kPicture, format.hasAlpha, image, std::move(mask), receiver_};
}

Image DueOutcomes::Scaled(const Image& source, bool smooth, int format) const {
  const Variant& variant = scenario_.variant;
  if (smooth) return oracle::SmoothEnlarge(source, variant.width, variant.height, format);
  return oracle::FastScale(source, variant.width, variant.height, format);
}

void DueOutcomes::AddScaled(bool masks) {
  if (receiver_.words.empty()) return;
  const Variant& variant = scenario_.variant;
  const bool converts = masks && variant.alpha;
  const std::vector<Image> sources =
      converts ? std::vector<Image>{converted_, convertedCopy_, blankConverted_}
               : std::vector<Image>{source_, copy_, blank_};
  std::vector<Format> formats = {opaque_};
  if (!converts && variant.alpha && scenario_.version >= 2011.04) formats.push_back(alpha_);
  for (const bool smooth : {false, true}) {
    if (smooth && !variant.smooth) continue;
    std::vector<std::optional<Image>> newMasks = {std::nullopt};
    if (masks && mask_) {
      newMasks.push_back(Scaled(*mask_, smooth, opaque_.format));
      newMasks.push_back(Scaled(maskCopy_.value_or(*mask_), smooth, opaque_.format));
      newMasks.push_back(Scaled(whiteMask_, smooth, opaque_.format));
      newMasks.push_back(Black(variant.width, variant.height, opaque_.format));
    }
    for (const Image& source : sources) {
      for (const Format format : formats) {
        for (const auto& mask : newMasks) {
          due_.push_back(Picture(Scaled(source, smooth, format.format), format, mask));
        }
      }
    }
    // An alpha channel that cannot be read is taken for none.
    if (converts) {
      due_.push_back(Picture(Scaled(source_, smooth, opaque_.format), opaque_));
      if (scenario_.version >= 2011.04) {
        due_.push_back(Picture(Scaled(source_, smooth, alpha_.format), alpha_));
      }
    }
  }
}

void DueOutcomes::AddOthers() {
  const Variant& variant = scenario_.variant;
  if (source_.words.empty() || receiver_.words.empty()) return;
  for (const Image& source : {source_, copy_, blank_}) {
    if (variant.method == Method::kResample) {
      due_.push_back(Picture(
          oracle::Resample(source, 5, variant.width, variant.height, opaque_.format), opaque_));
      if (!variant.alpha || scenario_.version < 2011.04) continue;
      due_.push_back(Picture(
          oracle::Resample(source, 5, variant.width, variant.height, alpha_.format), alpha_));
    } else if (variant.method == Method::kBlur) {
      due_.push_back(Picture(oracle::Blur(source, 1.0, opaque_.format).image, opaque_));
    } else {
      const Image* const own = mask_ ? &*mask_ : nullptr;
      const Image* const white = &whiteMask_;
      const Image* const none = nullptr;
      for (const Image* mask : {none, own, white}) {
        // What is drawn without its mask may be a copy that its mask has been blended into.
        if (mask != nullptr && variant.alpha) continue;
        Due drawn{Answer::kTrue, false, std::nullopt, std::nullopt, receiver_};
        oracle::DrawPicture(drawn.receiver, source, mask, 0.5, 0.25, 0.75);
        due_.push_back(drawn);
      }
    }
  }
}

void DueOutcomes::FindUndisturbed() {
  const Variant& variant = scenario_.variant;
  const bool draws = variant.method == Method::kDraw;
  undisturbed_ = {draws ? Answer::kFalse : Answer::kNil, false, {}, {}, receiver_};
  if (receiver_.words.empty() || source_.words.empty()) return;
  if (variant.special == Special::kOwnSize) {
    undisturbed_.answer = Answer::kReceiver;
    return;
  }
  if (variant.hidden && scenario_.HasBuffers()) return;
  if (variant.special == Special::kRefused && !scenario_.HasBuffers()) return;
  const Image& source = variant.hidden ? copy_ : source_;
  const bool makesAlpha =
      variant.alpha && (variant.method == Method::kScale || variant.method == Method::kResample);
  if (makesAlpha && scenario_.version < 2011.04) return;
  const Format format = makesAlpha ? alpha_ : opaque_;
  switch (variant.method) {
    case Method::kScale:
      undisturbed_ = Picture(Scaled(source, variant.smooth, format.format), format);
      break;
    case Method::kScaleBoth: {
      std::optional<Image> mask;
      if (mask_) mask = Scaled(*mask_, variant.smooth, format.format);
      undisturbed_ = Picture(
          Scaled(variant.alpha ? converted_ : source, variant.smooth, format.format), format, mask);
      break;
    }
    case Method::kResample:
      undisturbed_ = Picture(
          oracle::Resample(source, 5, variant.width, variant.height, format.format), format);
      break;
    case Method::kDraw:
      undisturbed_.answer = Answer::kTrue;
      oracle::DrawPicture(undisturbed_.receiver, source, variant.mask ? &*mask_ : nullptr, 0.5,
                          0.25, 0.75);
      break;
    case Method::kBlur:
      undisturbed_ = Picture(oracle::Blur(source, 1.0, format.format).image, format);
      break;
  }
}

bool DueOutcomes::Allows(const Outcome& outcome, bool alphaUnread) const {
  if (undisturbed_.DifferenceTo(outcome).empty()) return true;
  const Variant& variant = scenario_.variant;
  const bool keepsAlpha = variant.alpha && !alphaUnread &&
                          (variant.method == Method::kScale || variant.method == Method::kResample);
  for (const Due& due : due_) {
    if (due.answer == Answer::kPicture && keepsAlpha && !due.hasAlpha) continue;
    if (due.DifferenceTo(outcome).empty()) return true;
  }
  return false;
}

Due DueOutcomes::WithoutAllocation(int number, bool andLater) const {
  const Variant& variant = scenario_.variant;
  Due due = undisturbed_;
  if (due.answer != Answer::kPicture) return due;
  const Format format = due.hasAlpha ? alpha_ : opaque_;
  const Image& source = variant.hidden ? copy_ : source_;
  switch (variant.method) {
    case Method::kScale:  // the fast scaler needs none
      due.image = Scaled(source, false, format.format);
      break;
    case Method::kScaleBoth:  // five for the picture, then five for its mask
      if (number <= 5) {
        due.image = Scaled(variant.alpha ? converted_ : source, false, format.format);
        if (mask_) due.mask = Scaled(*mask_, false, format.format);
      } else {
        due.mask.reset();
      }
      break;
    case Method::kResample:
      return ShortOfTaps(number, andLater);
    case Method::kBlur:
      due.image = White(kSourceWidth, kSourceHeight, opaque_.format);
      break;
    case Method::kDraw:
      break;
  }
  return due;
}

// In this order: the intermediate picture, the list heads, one list for each column, with vector
// instructions a block that nothing but speed depends on, new heads when there are more rows than
// columns, one list for each row. A pixel without a list is black.
Due DueOutcomes::ShortOfTaps(int number, bool andLater) const {
  const Variant& variant = scenario_.variant;
  Due due = undisturbed_;
  const Due nil{Answer::kNil, false, {}, {}, receiver_};
  const bool newHeads = variant.height > variant.width;
  const int columns = 3;
  const int further = BestVectorLevel() > VectorLevel::kScalar ? 1 : 0;
  const int heads = columns + variant.width + further;
  const int rows = heads + (newHeads ? 1 : 0);
  if (number < columns) return nil;
  if (newHeads && (number == heads || (andLater && number < heads))) return nil;
  const std::uint32_t black = oracle::PackOpaque(due.image->format, 0, 0, 0);
  const auto lost = [&](int allocation) {
    return allocation == number || (andLater && allocation > number);
  };
  for (int y = 0; y < variant.height; ++y) {
    for (int x = 0; x < variant.width; ++x) {
      if (lost(columns + x) || lost(rows + y)) due.image->At(x, y) = black;
    }
  }
  return due;
}

}  // namespace torture
