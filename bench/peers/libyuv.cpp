// libyuv: scaling by its own choice of instructions, and its box blur.
#include <libyuv.h>

#include <cstddef>
#include <memory>

#include "bench/peers/peer.h"

namespace bench {

namespace {

// A way of scaling, for the work that `comparable` says.
Peer Scaling(const char* name, libyuv::FilterMode filter, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            return [&scene, work, filter] {
              libyuv::ARGBScale(Bytes(scene.source), work.sourceWidth * 4, work.sourceWidth,
                                work.sourceHeight, Bytes(scene.result), work.width * 4, work.width,
                                work.height, filter);
            };
          }};
}

Act Blur(const Work& work, Scene& scene) {
  if (work.kind != Kind::kBlur) return {};
  const auto sums = std::make_shared<std::vector<std::int32_t>>(scene.result.size() * 4);
  return [&scene, work, sums] {
    libyuv::ARGBBlur(Bytes(scene.source), work.width * 4, Bytes(scene.result), work.width * 4,
                     sums->data(), work.width * 16, work.width, work.height, work.number);
  };
}

const bool kRegistered = Register({
    Scaling("libyuv point", libyuv::kFilterNone, TakesNearest),
    Scaling("libyuv linear", libyuv::kFilterLinear, InterpolatesRow),
    Scaling("libyuv bilinear", libyuv::kFilterBilinear, Interpolates),
    Scaling("libyuv box", libyuv::kFilterBox, Averages),
    {"libyuv blur", Blur},
});

}  // namespace

}  // namespace bench
