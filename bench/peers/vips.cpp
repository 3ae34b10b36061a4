// libvips: four bands of bytes in memory, one thread, no cache. Its kernels are as wide as the
// factor when shrinking; enlarging it interpolates.
#include <vips/vips.h>

#include <memory>

#include "bench/peers/peer.h"

namespace bench {

namespace {

struct Unref {
  void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Unref>;

bool Start() {
  static const bool isStarted = [] {
    if (VIPS_INIT("peer_worker") != 0) return false;
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    return true;
  }();
  return isStarted;
}

Image ImageOf(Words& words, int width, int height) {
  return Image(vips_image_new_from_memory(words.data(), words.size() * 4, width, height, 4,
                                          VIPS_FORMAT_UCHAR));
}

// One operation from memory to memory, planned anew each time, as its users do.
using Operation = std::function<int(VipsImage*, VipsImage**)>;

Act Evaluate(const Work& work, Scene& scene, const Operation& operation) {
  if (!Start()) return {};
  const std::shared_ptr<VipsImage> source =
      ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
  return [source, operation] {
    VipsImage* planned = nullptr;
    if (operation(source.get(), &planned) != 0) vips_error_exit(nullptr);
    const Image plan(planned);
    const Image result(vips_image_new_memory());
    if (vips_image_write(plan.get(), result.get()) != 0) vips_error_exit(nullptr);
  };
}

Peer Scaling(const char* name, VipsKernel kernel, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            const double x = static_cast<double>(work.sourceWidth) / work.width;
            const double y = static_cast<double>(work.sourceHeight) / work.height;
            return Evaluate(work, scene, [=](VipsImage* source, VipsImage** result) {
              if (x > 1) return vips_reduce(source, result, x, y, "kernel", kernel, nullptr);
              return vips_resize(source, result, 1 / x, "vscale", 1 / y, "kernel", kernel, nullptr);
            });
          }};
}

Act Mean(const Work& work, Scene& scene) {
  if (!Averages(work)) return {};
  const double x = static_cast<double>(work.sourceWidth) / work.width;
  const double y = static_cast<double>(work.sourceHeight) / work.height;
  return Evaluate(work, scene, [=](VipsImage* source, VipsImage** result) {
    return vips_shrink(source, result, x, y, nullptr);
  });
}

bool IsMitchell(const Work& work) { return work.Resamples(5) && work.Shrinks(); }
bool IsCubic(const Work& work) { return WeighsCubic(work) && !IsMitchell(work); }
bool ReducesSix(const Work& work) { return WeighsSix(work) && work.Shrinks(); }

const bool kRegistered = Register({
    Scaling("vips nearest", VIPS_KERNEL_NEAREST, TakesNearest),
    Scaling("vips linear", VIPS_KERNEL_LINEAR, WeighsTriangle),
    Scaling("vips mitchell", VIPS_KERNEL_MITCHELL, IsMitchell),
    Scaling("vips cubic", VIPS_KERNEL_CUBIC, IsCubic),
    Scaling("vips lanczos3", VIPS_KERNEL_LANCZOS3, ReducesSix),
    {"vips shrink", Mean},
});

}  // namespace

}  // namespace bench
