// zimg: three planes of bytes; taking pixels apart into planes and together again is not counted.
#include <zimg.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "bench/peers/peer.h"

namespace bench {

namespace {

constexpr std::size_t kAlignment = 64;

struct Filter {
  zimg_resample_filter_e kind;
  double a = 0, b = 0;
};

std::optional<Filter> FilterFor(const Work& work) {
  if (work.kind == Kind::kSmooth) return Filter{ZIMG_RESIZE_BILINEAR};
  if (TakesNearest(work)) return Filter{ZIMG_RESIZE_POINT};
  if (work.kind != Kind::kResample) return std::nullopt;
  switch (work.number) {
    case 1:
      return Filter{ZIMG_RESIZE_BILINEAR};
    case 3:
      return Filter{ZIMG_RESIZE_LANCZOS, 3};
    case 4:
      return Filter{ZIMG_RESIZE_LANCZOS, 8};
    case 5:
      return Filter{ZIMG_RESIZE_BICUBIC, 1.0 / 3, 1.0 / 3};
    case 6:
      return Filter{ZIMG_RESIZE_BICUBIC, 0, 0.75};
    case 7:
      return Filter{ZIMG_RESIZE_SPLINE36};
    default:
      return std::nullopt;
  }
}

struct Planes {
  Planes(int width, int height, std::uint8_t value)
      : stride((static_cast<std::size_t>(width) + kAlignment - 1) / kAlignment * kAlignment),
        size(stride * static_cast<std::size_t>(height)),
        bytes(size * 3 + kAlignment, value) {}

  std::uint8_t* At(std::size_t plane) {
    const auto start = reinterpret_cast<std::uintptr_t>(bytes.data());
    return bytes.data() + (kAlignment - start % kAlignment) + plane * size;
  }

  std::size_t stride, size;
  std::vector<std::uint8_t> bytes;
};

zimg_image_format FormatOf(int width, int height) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(width);
  format.height = static_cast<unsigned>(height);
  format.pixel_type = ZIMG_PIXEL_BYTE;
  format.color_family = ZIMG_COLOR_RGB;
  format.pixel_range = ZIMG_RANGE_FULL;
  format.matrix_coefficients = ZIMG_MATRIX_RGB;
  return format;
}

using Graph = std::shared_ptr<zimg_filter_graph>;

Graph GraphFor(const Work& work, const Filter& filter) {
  const zimg_image_format from = FormatOf(work.sourceWidth, work.sourceHeight);
  const zimg_image_format to = FormatOf(work.width, work.height);
  zimg_graph_builder_params parameters;
  zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
  parameters.resample_filter = filter.kind;
  parameters.filter_param_a = filter.a;
  parameters.filter_param_b = filter.b;
  parameters.cpu_type = ZIMG_CPU_AUTO_64B;
  return {zimg_filter_graph_build(&from, &to, &parameters), zimg_filter_graph_free};
}

// All that a call writes to and reads from.
struct Buffers {
  Buffers(const Work& work, std::size_t temporarySize)
      : source(work.sourceWidth, work.sourceHeight, 90),
        result(work.width, work.height, 0),
        temporary(static_cast<int>(temporarySize), 1, 0) {
    for (std::size_t plane = 0; plane < 3; ++plane) {
      from.plane[plane] = {source.At(plane), static_cast<std::ptrdiff_t>(source.stride),
                           ZIMG_BUFFER_MAX};
      to.plane[plane] = {result.At(plane), static_cast<std::ptrdiff_t>(result.stride),
                         ZIMG_BUFFER_MAX};
    }
  }

  Planes source, result, temporary;
  zimg_image_buffer_const from = {ZIMG_API_VERSION, {}};
  zimg_image_buffer to = {ZIMG_API_VERSION, {}};
};

Act Resample(const Work& work, Scene&) {
  const std::optional<Filter> filter = FilterFor(work);
  if (!filter) return {};
  const Graph graph = GraphFor(work, *filter);
  if (!graph) return {};
  std::size_t size = 0;
  zimg_filter_graph_get_tmp_size(graph.get(), &size);
  const auto buffers = std::make_shared<Buffers>(work, size);
  const auto process = [graph, buffers] {
    return zimg_filter_graph_process(graph.get(), &buffers->from, &buffers->to,
                                     buffers->temporary.At(0), nullptr, nullptr, nullptr, nullptr);
  };
  if (process() != ZIMG_ERROR_SUCCESS) return {};
  return [process] { process(); };
}

const bool kRegistered = Register({{"zimg", Resample}});

}  // namespace

}  // namespace bench
