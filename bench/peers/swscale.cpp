// swscale: 32-bit pixels without alpha to the same, colour at full resolution all the way (it goes
// through luma and chroma, which it would halve if it were let).
extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include <memory>

#include "bench/peers/peer.h"

namespace bench {

namespace {

constexpr double kDefault = SWS_PARAM_DEFAULT;

struct Filter {
  int flag;
  double first = kDefault, second = kDefault;
};

Peer Scaling(const char* name, Filter filter, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            const double parameters[] = {filter.first, filter.second};
            const std::shared_ptr<SwsContext> context(
                sws_getContext(work.sourceWidth, work.sourceHeight, AV_PIX_FMT_BGR0, work.width,
                               work.height, AV_PIX_FMT_BGR0,
                               filter.flag | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, nullptr,
                               nullptr, parameters),
                sws_freeContext);
            if (!context) return {};
            return [context, &scene, work] {
              const std::uint8_t* from[] = {Bytes(scene.source), nullptr, nullptr, nullptr};
              std::uint8_t* to[] = {Bytes(scene.result), nullptr, nullptr, nullptr};
              const int fromStride[] = {work.sourceWidth * 4, 0, 0, 0};
              const int toStride[] = {work.width * 4, 0, 0, 0};
              sws_scale(context.get(), from, fromStride, 0, work.sourceHeight, to, toStride);
            };
          }};
}

// Of two parameters: B and C.
bool IsMitchell(const Work& work) { return work.Resamples(5); }
bool IsCubic(const Work& work) { return work.Resamples(6); }

const bool kRegistered = Register({
    Scaling("swscale point", {SWS_POINT}, TakesNearest),
    Scaling("swscale fast bilinear", {SWS_FAST_BILINEAR}, InterpolatesRow),
    Scaling("swscale bilinear", {SWS_BILINEAR}, WeighsTriangle),
    Scaling("swscale area", {SWS_AREA}, Averages),
    Scaling("swscale mitchell", {SWS_BICUBIC, 1.0 / 3, 1.0 / 3}, IsMitchell),
    Scaling("swscale bicubic", {SWS_BICUBIC, 0, 0.75}, IsCubic),
    Scaling("swscale lanczos 3", {SWS_LANCZOS, 3}, WeighsSix),
    Scaling("swscale lanczos 8", {SWS_LANCZOS, 8}, WeighsSixteen),
});

}  // namespace

}  // namespace bench
