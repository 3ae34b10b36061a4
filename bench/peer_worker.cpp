// Times what other libraries do that comes nearest to each kind of work, at their fastest settings,
// and plain memory traffic. Those libraries that were found when this was built.
#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/worker.h"
#include "bench/works.h"

#if defined(BENCH_LIBYUV)
#include <libyuv.h>
#endif
#if defined(BENCH_PIXMAN)
#include <pixman.h>
#endif
#if defined(BENCH_ZIMG)
#include <zimg.h>
#endif

namespace {

using bench::Kind;
using bench::Work;
using Clock = std::chrono::steady_clock;
using Words = std::vector<std::uint32_t>;

// The pictures of a work, made once; the result is there before the clock starts.
struct Scene {
  Words source, result;
};

Scene& SceneFor(const Work& work) {
  static std::map<std::string, Scene> scenes;
  if (!scenes.contains(work.name)) {
    scenes.clear();
    scenes[work.name] = {bench::Pixels(work.sourceWidth, work.sourceHeight),
                         bench::Pixels(work.width, work.height)};
  }
  return scenes[work.name];
}

template <typename Act>
double Time(Act&& act) {
  const auto start = Clock::now();
  act();
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The least that any implementation must do: read the source once and write the result once.
double Memory(const Work& work) {
  Scene& scene = SceneFor(work);
  static std::uint32_t sum = 0;
  return Time([&] {
    std::uint32_t read = 0;
    for (const std::uint32_t word : scene.source) read += word;
    sum += read;
    std::memset(scene.result.data(), static_cast<int>(sum & 1), scene.result.size() * 4);
  });
}

#if defined(BENCH_LIBYUV)
std::uint8_t* Bytes(Words& words) { return reinterpret_cast<std::uint8_t*>(words.data()); }

double Libyuv(const Work& work, libyuv::FilterMode filter) {
  Scene& scene = SceneFor(work);
  return Time([&] {
    libyuv::ARGBScale(Bytes(scene.source), work.sourceWidth * 4, work.sourceWidth,
                      work.sourceHeight, Bytes(scene.result), work.width * 4, work.width,
                      work.height, filter);
  });
}

double LibyuvBlur(const Work& work) {
  if (work.kind != Kind::kBlur) return -1;
  Scene& scene = SceneFor(work);
  static std::vector<std::int32_t> sums;
  sums.resize(static_cast<std::size_t>(work.width) * static_cast<std::size_t>(work.height) * 4);
  return Time([&] {
    libyuv::ARGBBlur(Bytes(scene.source), work.width * 4, Bytes(scene.result), work.width * 4,
                     sums.data(), work.width * 16, work.width, work.height, work.mode);
  });
}

bool Scales(const Work& work) {
  return work.kind == Kind::kFast || work.kind == Kind::kSmooth ||
         (work.kind == Kind::kResample && work.mode <= 2);
}
#endif

#if defined(BENCH_PIXMAN)
struct Unref {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using Image = std::unique_ptr<pixman_image_t, Unref>;

Image ImageOf(Words& words, int width, int height, pixman_format_code_t format) {
  return Image(pixman_image_create_bits(format, width, height, words.data(), width * 4));
}

double Pixman(const Work& work) {
  if (work.kind != Kind::kDraw && work.kind != Kind::kDrawMasked) return -1;
  Scene& scene = SceneFor(work);
  static Words masks;
  masks.resize(scene.source.size());
  for (std::size_t i = 0; i < masks.size(); ++i) masks[i] = scene.source[i] << 24;
  const Image source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight, PIXMAN_x8r8g8b8);
  const Image result = ImageOf(scene.result, work.width, work.height, PIXMAN_x8r8g8b8);
  const pixman_color_t opacity = {0, 0, 0, static_cast<std::uint16_t>(bench::kOpacity * 65535)};
  const Image flat(pixman_image_create_solid_fill(&opacity));
  const Image mask = ImageOf(masks, work.sourceWidth, work.sourceHeight, PIXMAN_a8r8g8b8);
  pixman_transform_t shift;
  pixman_transform_init_translate(&shift, pixman_double_to_fixed(-(bench::kDrawX - 10)),
                                  pixman_double_to_fixed(-(bench::kDrawY - 20)));
  for (const Image* image : {&source, &mask}) {
    pixman_image_set_transform(image->get(), &shift);
    pixman_image_set_filter(image->get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
  }
  pixman_image_t* through = work.kind == Kind::kDraw ? flat.get() : mask.get();
  return Time([&] {
    pixman_image_composite32(PIXMAN_OP_OVER, source.get(), through, result.get(), 0, 0, 0, 0, 10,
                             20, work.sourceWidth + 1, work.sourceHeight + 1);
  });
}
#endif

#if defined(BENCH_ZIMG)
// Planes of bytes, three of them; taking pixels apart and together is not counted.
double Zimg(const Work& work) {
  if (work.kind != Kind::kResample) return -1;
  static std::map<std::string, zimg_filter_graph*> graphs;
  static std::vector<std::uint8_t> source, result, temporary;
  zimg_filter_graph*& graph = graphs[work.name];
  const std::size_t sourceStride = (static_cast<std::size_t>(work.sourceWidth) + 63) / 64 * 64;
  const std::size_t resultStride = (static_cast<std::size_t>(work.width) + 63) / 64 * 64;
  if (graph == nullptr) {
    zimg_image_format from;
    zimg_image_format_default(&from, ZIMG_API_VERSION);
    from.width = static_cast<unsigned>(work.sourceWidth);
    from.height = static_cast<unsigned>(work.sourceHeight);
    from.pixel_type = ZIMG_PIXEL_BYTE;
    from.color_family = ZIMG_COLOR_RGB;
    from.pixel_range = ZIMG_RANGE_FULL;
    from.matrix_coefficients = ZIMG_MATRIX_RGB;
    zimg_image_format to = from;
    to.width = static_cast<unsigned>(work.width);
    to.height = static_cast<unsigned>(work.height);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    constexpr zimg_resample_filter_e kFilters[] = {
        ZIMG_RESIZE_BILINEAR, ZIMG_RESIZE_POINT,   ZIMG_RESIZE_LANCZOS, ZIMG_RESIZE_LANCZOS,
        ZIMG_RESIZE_BICUBIC,  ZIMG_RESIZE_BICUBIC, ZIMG_RESIZE_SPLINE36};
    parameters.resample_filter = kFilters[work.mode - 1];
    if (work.mode == 3) parameters.filter_param_a = 3;
    if (work.mode == 4) parameters.filter_param_a = 8;
    parameters.allow_approximate_gamma = 1;
    graph = zimg_filter_graph_build(&from, &to, &parameters);
    if (graph == nullptr) return -1;
  }
  source.resize(sourceStride * static_cast<std::size_t>(work.sourceHeight) * 3 + 64, 90);
  result.resize(resultStride * static_cast<std::size_t>(work.height) * 3 + 64);
  std::size_t size = 0;
  zimg_filter_graph_get_tmp_size(graph, &size);
  temporary.resize(size + 64);
  const auto aligned = [](std::vector<std::uint8_t>& bytes) {
    return reinterpret_cast<std::uint8_t*>((reinterpret_cast<std::uintptr_t>(bytes.data()) + 63) &
                                           ~std::uintptr_t{63});
  };
  zimg_image_buffer_const from = {ZIMG_API_VERSION, {}};
  zimg_image_buffer to = {ZIMG_API_VERSION, {}};
  for (std::size_t plane = 0; plane < 3; ++plane) {
    from.plane[plane] = {
        aligned(source) + plane * sourceStride * static_cast<std::size_t>(work.sourceHeight),
        static_cast<std::ptrdiff_t>(sourceStride), ZIMG_BUFFER_MAX};
    to.plane[plane] = {
        aligned(result) + plane * resultStride * static_cast<std::size_t>(work.height),
        static_cast<std::ptrdiff_t>(resultStride), ZIMG_BUFFER_MAX};
  }
  return Time([&] {
    zimg_filter_graph_process(graph, &from, &to, aligned(temporary), nullptr, nullptr, nullptr,
                              nullptr);
  });
}
#endif

}  // namespace

int main() {
  std::vector<bench::NamedCandidate> candidates = {{"memory", Memory}};
#if defined(BENCH_LIBYUV)
  const auto scaling = [](libyuv::FilterMode filter) {
    return [filter](const Work& work) { return Scales(work) ? Libyuv(work, filter) : -1; };
  };
  candidates.push_back({"libyuv point", [](const Work& work) {
                          const bool nearest = work.name[1] == '2' ||
                                               (work.kind == Kind::kResample && work.mode == 2 &&
                                                work.width > work.sourceWidth);
                          return nearest ? Libyuv(work, libyuv::kFilterNone) : -1;
                        }});
  candidates.push_back({"libyuv linear", [scaling](const Work& work) {
                          return work.kind == Kind::kFast && work.width < work.sourceWidth
                                     ? scaling(libyuv::kFilterLinear)(work)
                                     : -1;
                        }});
  candidates.push_back({"libyuv bilinear", [scaling](const Work& work) {
                          const bool smooth = work.kind == Kind::kSmooth ||
                                              (work.kind == Kind::kResample && work.mode == 1 &&
                                               work.width > work.sourceWidth);
                          return smooth ? scaling(libyuv::kFilterBilinear)(work) : -1;
                        }});
  candidates.push_back({"libyuv box", [scaling](const Work& work) {
                          const bool box = work.kind == Kind::kResample && work.mode == 2 &&
                                           work.width < work.sourceWidth;
                          return box ? scaling(libyuv::kFilterBox)(work) : -1;
                        }});
  candidates.push_back({"libyuv blur", LibyuvBlur});
#endif
#if defined(BENCH_PIXMAN)
  candidates.push_back({"pixman", Pixman});
#endif
#if defined(BENCH_ZIMG)
  candidates.push_back({"zimg", Zimg});
#endif
  return bench::Serve(candidates);
}
