// cairo: a surface painted with an opacity, or through another surface as a mask.
#include <cairo.h>

#include <memory>

#include "bench/peers/peer.h"

namespace bench {

namespace {

using Surface = std::shared_ptr<cairo_surface_t>;

Surface SurfaceOf(Words& words, int width, int height, cairo_format_t format) {
  return {cairo_image_surface_create_for_data(Bytes(words), format, width, height, width * 4),
          cairo_surface_destroy};
}

Surface A8Of(const Words& words, int width, int height) {
  Surface made(cairo_image_surface_create(CAIRO_FORMAT_A8, width, height), cairo_surface_destroy);
  const int stride = cairo_image_surface_get_stride(made.get());
  std::uint8_t* row = cairo_image_surface_get_data(made.get());
  const std::uint32_t* word = words.data();
  for (int y = 0; y < height; ++y, row += stride) {
    for (int x = 0; x < width; ++x) row[x] = static_cast<std::uint8_t>(*word++);
  }
  cairo_surface_mark_dirty(made.get());
  return made;
}

// The mask holds the opacity too.
Act Draw(const Work& work, Scene& scene) {
  if (!work.Draws()) return {};
  const Surface source =
      SurfaceOf(scene.source, work.sourceWidth, work.sourceHeight, CAIRO_FORMAT_RGB24);
  const Surface result = SurfaceOf(scene.result, work.width, work.height, CAIRO_FORMAT_RGB24);
  Surface mask;
  if (work.kind == Kind::kDrawMasked) {
    mask = A8Of(scene.source, work.sourceWidth, work.sourceHeight);
  }
  return [source, result, mask] {
    cairo_t* context = cairo_create(result.get());
    cairo_set_source_surface(context, source.get(), kDrawX, kDrawY);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BILINEAR);
    if (mask) {
      cairo_mask_surface(context, mask.get(), kDrawX, kDrawY);
    } else {
      cairo_paint_with_alpha(context, kOpacity);
    }
    cairo_destroy(context);
  };
}

const bool kRegistered = Register({{"cairo draw", Draw}});

}  // namespace

}  // namespace bench
