// The sections on the project's own test pictures.
#include "tool/drawing.h"
#include "tool/gallery_sections.h"
#include "tool/gallery_tiles.h"
#include "tool/kernel_curves.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

constexpr char kRings[] = R"html(
<p>Rings that grow finer outwards, reduced from 256 to 96 pixels a side and magnified twice. Beyond three
eighths of the radius they are finer than the result can hold, and an ideal method leaves an even grey there.
Rings that appear further out, with centres of their own, are false: aliases.</p>
)html";
constexpr char kSprite[] = R"html(
<p>A star of 24 × 24 pixels, with a mask, drawn from x = 4 to x = 5 in steps of an eighth of a pixel; magnified
without smoothing. Its edges shift their brightness evenly, so that it glides instead of jumping.</p>
)html";
constexpr char kMasks[] = R"html(
<p>A star of 64 × 64 pixels with a mask. In a mask black shows and white hides. Each tile has the picture
without its mask, the mask, and both together on a checkerboard.</p>
)html";

Subject Own(const std::string& name, Bitmap picture) {
  return {std::make_shared<const Bitmap>(std::move(picture)), name, AlphaEntry::kMask, false};
}

GallerySection Rings() {
  const Subject rings = Own("the rings", DrawRings());
  GallerySection section{"rings", "Rings", kRings, "details", {}};
  for (const Kernel& kernel : kKernels) {
    const std::string title = "Mode " + std::to_string(kernel.mode) + ", " + kernel.name;
    section.tiles.push_back({title,
                             {rings, "ScalingZVQ", {std::to_string(kernel.mode), "96", "96"}, {}},
                             ShowMagnified("The rings reduced by " + title, 2)});
  }
  section.tiles.push_back({"For comparison, ScaleZVQ",
                           {rings, "ScaleZVQ", {"96", "96"}, {}},
                           ShowMagnified("The rings reduced by ScaleZVQ", 2)});
  return section;
}

// An evening sky of even colours, on which a light sprite stands out.
Bitmap Sky(int size) {
  Bitmap sky(size, size, false);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      sky.At(x, y) = Pixel(Mix({0.16, 0.22, 0.42}, {0.62, 0.40, 0.46}, double(y) / size));
    }
  }
  return sky;
}

GallerySection Sprite() {
  const Subject sky = Own("a sky", Sky(32));
  const Subject star = Own("star", Reduced(DrawStamp(), 24, 24));
  GallerySection section{"sprite", "A sprite at fractions of a pixel", kSprite, "small", {}};
  const char* const kEighths[] = {"4",     "4.125", "4.25",  "4.375", "4.5",
                                  "4.625", "4.75",  "4.875", "5"};
  for (const std::string x : kEighths) {
    section.tiles.push_back({"x = " + x,
                             {sky, "DrawPictureFZVQ", {"star", x, "4"}, star},
                             ShowMagnified("A star on a sky at x = " + x, 6)});
  }
  return section;
}

GallerySection Masks() {
  const Subject star = Own("the star", DrawStamp());
  GallerySection section{"mask", "Image and mask", kMasks, "pairs", {}};
  const auto add = [&](const std::string& title, std::vector<std::string> words) {
    section.tiles.push_back(
        {title, {star, "ScaleImageAndMaskZVQ", std::move(words), {}}, ShowMasked(title)});
  };
  add("The star at its own size", {"64", "64"});
  add("Reduced", {"32", "32"});
  add("Enlarged smoothly", {"128", "128", "true"});
  add("Enlarged by the nearest pixel", {"128", "128", "false"});
  return section;
}

}  // namespace

GalleryChapter CommonChapter() {
  return {"common",
          "Methods and kernels",
          "<p>On the project’s own test pictures, the same in every gallery.</p>\n",
          {Rings(), KernelSection(), Sprite(), Masks()}};
}

}  // namespace tool
