// pixman: compositing with a translation of fractions of pixels, and scaled copies.
#include <pixman.h>

#include <memory>

#include "bench/peers/peer.h"

namespace bench {

namespace {

struct Unref {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using Image = std::shared_ptr<pixman_image_t>;

Image Owned(pixman_image_t* image) { return {image, Unref()}; }

Image ImageOf(Words& words, int width, int height) {
  return Owned(pixman_image_create_bits(PIXMAN_x8r8g8b8, width, height, words.data(), width * 4));
}

// A mask that holds the opacity too.
Image MaskOf(const std::shared_ptr<Words>& words, int width, int height) {
  return Owned(pixman_image_create_bits(PIXMAN_a8r8g8b8, width, height, words->data(), width * 4));
}

// From the corner of the whole pixel that it starts in.
void Shift(pixman_image_t* image) {
  pixman_transform_t shift;
  pixman_transform_init_translate(&shift, pixman_double_to_fixed(static_cast<int>(kDrawX) - kDrawX),
                                  pixman_double_to_fixed(static_cast<int>(kDrawY) - kDrawY));
  pixman_image_set_transform(image, &shift);
  pixman_image_set_filter(image, PIXMAN_FILTER_BILINEAR, nullptr, 0);
}

Act Draw(const Work& work, Scene& scene) {
  if (!work.Draws()) return {};
  const Image source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
  const Image result = ImageOf(scene.result, work.width, work.height);
  Shift(source.get());
  const pixman_color_t opacity = {0, 0, 0, static_cast<std::uint16_t>(kOpacity * 65535)};
  Image mask = Owned(pixman_image_create_solid_fill(&opacity));
  const auto levels = std::make_shared<Words>();
  if (work.kind == Kind::kDrawMasked) {
    *levels = scene.source;
    for (std::uint32_t& word : *levels) word <<= 24;
    mask = MaskOf(levels, work.sourceWidth, work.sourceHeight);
    Shift(mask.get());
  }
  return [=] {
    pixman_image_composite32(PIXMAN_OP_OVER, source.get(), mask.get(), result.get(), 0, 0, 0, 0,
                             static_cast<int>(kDrawX), static_cast<int>(kDrawY),
                             work.sourceWidth + 1, work.sourceHeight + 1);
    (void)levels;
  };
}

Peer Scaling(const char* name, pixman_filter_t filter, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            const Image source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
            const Image result = ImageOf(scene.result, work.width, work.height);
            pixman_transform_t scale;
            pixman_transform_init_scale(
                &scale, pixman_double_to_fixed(static_cast<double>(work.sourceWidth) / work.width),
                pixman_double_to_fixed(static_cast<double>(work.sourceHeight) / work.height));
            pixman_image_set_transform(source.get(), &scale);
            pixman_image_set_filter(source.get(), filter, nullptr, 0);
            pixman_image_set_repeat(source.get(), PIXMAN_REPEAT_PAD);
            return [=] {
              pixman_image_composite32(PIXMAN_OP_SRC, source.get(), nullptr, result.get(), 0, 0, 0,
                                       0, 0, 0, work.width, work.height);
            };
          }};
}

const bool kRegistered = Register({
    {"pixman draw", Draw},
    Scaling("pixman nearest", PIXMAN_FILTER_NEAREST, TakesNearest),
    Scaling("pixman bilinear", PIXMAN_FILTER_BILINEAR, Interpolates),
});

}  // namespace

}  // namespace bench
