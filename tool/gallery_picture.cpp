// The sections on a picture of the user.
#include <algorithm>

#include "tool/gallery_sections.h"
#include "tool/gallery_tiles.h"
#include "tool/html.h"
#include "tool/kernel_curves.h"
#include "tool/test_pictures.h"

namespace tool {
namespace {

constexpr int kMostSide = 32767;  // that results can have

constexpr char kMethods[] = R"html(
<p>A tile that is called on a part takes the one of its size with the most detail.</p>
)html";
constexpr char kShrinking[] = R"html(
<p>The whole picture reduced to a quarter. Above, at most 240 × 180 pixels of the result around its finest
detail; below, that detail magnified without smoothing. Sharp modes keep more and ring at hard edges, soft
ones blur.</p>
)html";
constexpr char kEnlarging[] = R"html(
<p>A small part enlarged three times. Above, all of the result; below, its middle magnified without smoothing.</p>
)html";
constexpr char kBlur[] = R"html(
<p>The same part, blurred with boxes of 2 · Radius + 1 pixels a side. The time hardly depends on the
radius.</p>
)html";

std::string Text(int number) { return std::to_string(number); }

// A part of a picture as a picture of its own, and where it came from.
Subject Detail(const Subject& whole, int width, int height) {
  const Part part = MostDetail(*whole.picture, width, height);
  if (part.width == whole.picture->width && part.height == whole.picture->height) return whole;
  Subject detail = whole;
  detail.isPart = true;
  detail.picture = std::make_shared<const Bitmap>(Crop(*whole.picture, part));
  detail.name = "the part " + Text(part.x) + "," + Text(part.y) + "," + Text(part.width) + "," +
                Text(part.height) + " of " + whole.name;
  return detail;
}

std::vector<std::string> Words(Extent size, std::vector<std::string> rest = {}) {
  std::vector<std::string> words = {Text(size.width), Text(size.height)};
  words.insert(words.end(), rest.begin(), rest.end());
  return words;
}

std::vector<std::string> ModeWords(int mode, Extent size) {
  return {Text(mode), Text(size.width), Text(size.height)};
}

Extent Enlarged(const Subject& subject, int times) {
  return {subject.picture->width * times, subject.picture->height * times};
}

// The five methods, some of them in several ways.
class Methods {
 public:
  Methods(const Subject& picture, int most)
      : picture_(picture), most_(most), smaller_(Fitting(*picture.picture, most, 2)) {}

  std::vector<GalleryTile> Tiles() {
    const Subject small = Detail(picture_, most_ / 3, most_ / 4);
    const Subject canvas = Detail(picture_, most_ / 2, most_ / 2 * 3 / 4);
    const int longest = std::max(picture_.picture->width, picture_.picture->height);
    Add("The picture itself", "", picture_, {});
    Add("Reduced, fast", "ScaleZVQ", picture_, Words(smaller_));
    Add("Reduced by Lanczos 3", "ScalingZVQ", picture_, ModeWords(3, smaller_));
    Add("Blurred", "BlurZVQ", picture_, {Text(std::max(1, longest / 100))});
    Add("Enlarged by the nearest pixel", "ScaleZVQ", small, Words(Enlarged(small, 3), {"false"}));
    Add("Enlarged smoothly", "ScaleZVQ", small, Words(Enlarged(small, 3), {"true"}));
    Add("Enlarged by the six-point cubic", "ScalingZVQ", small, ModeWords(7, Enlarged(small, 3)));
    Add("A star drawn at fractions of a pixel", "DrawPictureFZVQ", canvas,
        {"star", "10.5", "20.25", "0.7"});
    tiles_.back().call.drawn = {std::make_shared<const Bitmap>(DrawStamp()), "star",
                                AlphaEntry::kMask};
    AddMasked();
    return std::move(tiles_);
  }

 private:
  void Add(const std::string& title, const std::string& method, const Subject& on,
           std::vector<std::string> words) {
    const std::string alternative =
        title + (method.empty() ? "" : ", by " + method) + ": " + on.name;
    tiles_.push_back({title, {on, method, std::move(words), {}}, ShowWhole(alternative, most_)});
  }

  // What has no transparency gets a mask, so that there is something to see.
  void AddMasked() {
    Subject masked = picture_;
    masked.oval = true;
    if (masked.picture->hasAlpha) {
      masked.alpha = AlphaEntry::kMask;
      masked.name += " with its transparency as a mask";
    } else {
      masked.name += " with an oval mask";
    }
    Add("Reduced together with a mask", "ScaleImageAndMaskZVQ", masked, Words(smaller_, {"true"}));
  }

  const Subject& picture_;
  int most_;
  Extent smaller_;
  std::vector<GalleryTile> tiles_;
};

Centre CentreOfDetail(const Bitmap& picture, int width, int height) {
  const Part part = MostDetail(picture, width, height);
  return {(part.x + part.width / 2.0) / picture.width,
          (part.y + part.height / 2.0) / picture.height};
}

// The seven modes, and the fast method beside them.
std::vector<GalleryTile> Modes(const Subject& on, Extent size, Centre centre,
                               const std::string& verb) {
  std::vector<GalleryTile> tiles;
  for (const Kernel& kernel : kKernels) {
    const std::string title = "Mode " + Text(kernel.mode) + ", " + kernel.name;
    tiles.push_back({title,
                     {on, "ScalingZVQ", ModeWords(kernel.mode, size), {}},
                     ShowDetail(title + ": " + on.name + " " + verb, centre)});
  }
  tiles.push_back({"For comparison, ScaleZVQ",
                   {on, "ScaleZVQ", Words(size), {}},
                   ShowDetail("ScaleZVQ: " + on.name + " " + verb, centre)});
  return tiles;
}

GallerySection Shrinking(const Subject& picture, const std::string& id) {
  const Bitmap& bitmap = *picture.picture;
  const Centre centre = CentreOfDetail(bitmap, kDetail.width, kDetail.height);
  return {id + "-shrinking", "Seven modes, shrinking", kShrinking, "details",
          Modes(picture, Fitting(bitmap, kMostSide, 4), centre, "reduced to a quarter")};
}

GallerySection Enlarging(const Subject& picture, const std::string& id) {
  const Subject detail = Detail(picture, kDetail.width / 3, kDetail.height / 3);
  return {id + "-enlarging", "Seven modes, enlarging", kEnlarging, "details",
          Modes(detail, Enlarged(detail, 3), {}, "enlarged three times")};
}

GallerySection Blurs(const Subject& picture, const std::string& id) {
  const Subject detail = Detail(picture, kDetail.width, kDetail.height);
  GallerySection section{id + "-blur", "Blur", kBlur, "details", {}};
  section.tiles.push_back({"Not blurred",
                           {detail, "", {}, {}},
                           ShowWhole("Not blurred: " + detail.name, kDetail.width)});
  for (const int radius : {1, 2, 4, 8, 16, 32, 64}) {
    const std::string title = "Radius " + Text(radius);
    section.tiles.push_back({title,
                             {detail, "BlurZVQ", {Text(radius)}, {}},
                             ShowWhole(title + ": " + detail.name + ", blurred", kDetail.width)});
  }
  return section;
}

}  // namespace

GalleryChapter PictureChapter(const Subject& picture, int number, int most) {
  const std::string id = "picture-" + Text(number);
  const std::string introduction =
      "<p>" + SizeText(picture.picture->width, picture.picture->height) + " pixels" +
      (picture.picture->hasAlpha ? ", with transparency" : "") + ".</p>\n";
  GallerySection methods{id + "-methods", "Every method", kMethods, "wholes",
                         Methods(picture, most).Tiles()};
  return {id,
          picture.name,
          introduction,
          {std::move(methods), Shrinking(picture, id), Enlarging(picture, id), Blurs(picture, id)}};
}

}  // namespace tool
