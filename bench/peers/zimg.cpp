// zimg: filters three planes of bytes. libyuv takes pixels apart and puts them together: whole
// pictures before and after, or row by row when zimg asks for it, with planes of only a few rows.
#include <libyuv.h>
#include <zimg.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

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
  Planes(int width, int height)
      : stride((static_cast<std::size_t>(width) + kAlignment - 1) / kAlignment * kAlignment),
        size(stride * static_cast<std::size_t>(height)),
        bytes(size * 3 + kAlignment) {}

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

Graph GraphFor(const Work& work, const Filter& filter, zimg_cpu_type_e instructions) {
  const zimg_image_format from = FormatOf(work.sourceWidth, work.sourceHeight);
  const zimg_image_format to = FormatOf(work.width, work.height);
  zimg_graph_builder_params parameters;
  zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
  parameters.resample_filter = filter.kind;
  parameters.filter_param_a = filter.a;
  parameters.filter_param_b = filter.b;
  parameters.cpu_type = instructions;
  return {zimg_filter_graph_build(&from, &to, &parameters), zimg_filter_graph_free};
}

// The rows of planes that lie between zimg and the scene's pixels, in turn.
struct Ring {
  Ring(int width, int height, unsigned rows)
      : mask(rows == ZIMG_BUFFER_MAX ? rows : zimg_select_buffer_mask(rows)),
        planes(width, mask == ZIMG_BUFFER_MAX ? height : static_cast<int>(mask) + 1) {}

  std::uint8_t* At(std::size_t plane, unsigned row, unsigned column) {
    return planes.At(plane) + planes.stride * (row & mask) + column;
  }

  std::ptrdiff_t Stride() const { return static_cast<std::ptrdiff_t>(planes.stride); }

  unsigned mask;  // of rows
  Planes planes;
};

enum class Planned { kWhole, kByRows };

// What a call works with.
class Task {
 public:
  Task(const Work& work, Scene& scene, Graph graph, Planned planned)
      : work_(work),
        scene_(scene),
        graph_(std::move(graph)),
        planned_(planned),
        source_(work.sourceWidth, work.sourceHeight, Rows(zimg_filter_graph_get_input_buffering)),
        result_(work.width, work.height, Rows(zimg_filter_graph_get_output_buffering)),
        temporary_(static_cast<int>(Asked(zimg_filter_graph_get_tmp_size)), 1) {
    for (std::size_t plane = 0; plane < 3; ++plane) {
      from_.plane[plane] = {source_.At(plane, 0, 0), source_.Stride(), source_.mask};
      to_.plane[plane] = {result_.At(plane, 0, 0), result_.Stride(), result_.mask};
    }
  }

  bool Run() {
    const bool byRows = planned_ == Planned::kByRows;
    if (!byRows) TakeApart(0, 0, work_.sourceWidth, work_.sourceHeight);
    const zimg_error_code_e error = zimg_filter_graph_process(
        graph_.get(), &from_, &to_, temporary_.At(0), byRows ? TakeRowApart : nullptr, this,
        byRows ? PutRowTogether : nullptr, this);
    if (!byRows) PutTogether(0, 0, work_.width, work_.height);
    return error == ZIMG_ERROR_SUCCESS;
  }

 private:
  template <typename Answer>
  Answer Asked(zimg_error_code_e (*question)(const zimg_filter_graph*, Answer*)) const {
    Answer answer = 0;
    question(graph_.get(), &answer);
    return answer;
  }
  unsigned Rows(zimg_error_code_e (*question)(const zimg_filter_graph*, unsigned*)) const {
    return planned_ == Planned::kWhole ? ZIMG_BUFFER_MAX : Asked(question);
  }

  void TakeApart(unsigned row, unsigned left, int width, int height) {
    const int stride = static_cast<int>(source_.Stride());
    const std::size_t first = std::size_t{row} * static_cast<unsigned>(work_.sourceWidth) + left;
    libyuv::SplitARGBPlane(Bytes(scene_.source) + first * 4, work_.sourceWidth * 4,
                           source_.At(0, row, left), stride, source_.At(1, row, left), stride,
                           source_.At(2, row, left), stride, nullptr, 0, width, height);
  }
  void PutTogether(unsigned row, unsigned left, int width, int height) {
    const int stride = static_cast<int>(result_.Stride());
    const std::size_t first = std::size_t{row} * static_cast<unsigned>(work_.width) + left;
    libyuv::MergeARGBPlane(result_.At(0, row, left), stride, result_.At(1, row, left), stride,
                           result_.At(2, row, left), stride, nullptr, 0,
                           Bytes(scene_.result) + first * 4, work_.width * 4, width, height);
  }
  static int TakeRowApart(void* task, unsigned row, unsigned left, unsigned right) {
    static_cast<Task*>(task)->TakeApart(row, left, static_cast<int>(right - left), 1);
    return 0;
  }
  static int PutRowTogether(void* task, unsigned row, unsigned left, unsigned right) {
    static_cast<Task*>(task)->PutTogether(row, left, static_cast<int>(right - left), 1);
    return 0;
  }

  Work work_;
  Scene& scene_;
  Graph graph_;
  Planned planned_;
  Ring source_, result_;
  Planes temporary_;
  zimg_image_buffer_const from_ = {ZIMG_API_VERSION, {}};
  zimg_image_buffer to_ = {ZIMG_API_VERSION, {}};
};

Peer Resampling(const char* name, zimg_cpu_type_e instructions, Planned planned) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            const std::optional<Filter> filter = FilterFor(work);
            if (!filter) return {};
            Graph graph = GraphFor(work, *filter, instructions);
            if (!graph) return {};
            const auto task = std::make_shared<Task>(work, scene, std::move(graph), planned);
            if (!task->Run()) return {};
            return [task] { task->Run(); };
          }};
}

// With registers of 32 bytes at most, and with those of 64 where the processor has them.
const bool kRegistered =
    Register({Resampling("zimg", ZIMG_CPU_AUTO, Planned::kWhole),
              Resampling("zimg by rows", ZIMG_CPU_AUTO, Planned::kByRows),
              Resampling("zimg 64", ZIMG_CPU_AUTO_64B, Planned::kWhole),
              Resampling("zimg 64 by rows", ZIMG_CPU_AUTO_64B, Planned::kByRows)});

}  // namespace

}  // namespace bench
