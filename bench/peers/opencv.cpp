// OpenCV: four channels of bytes, one thread.
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include "bench/peers/peer.h"

namespace bench {

namespace {

cv::Mat MatOf(Words& words, int width, int height) {
  return {height, width, CV_8UC4, words.data()};
}

Peer Scaling(const char* name, int interpolation, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            cv::setNumThreads(1);
            const cv::Mat source = MatOf(scene.source, work.sourceWidth, work.sourceHeight);
            const cv::Mat result = MatOf(scene.result, work.width, work.height);
            return [source, result, interpolation] {
              cv::resize(source, result, result.size(), 0, 0, interpolation);
            };
          }};
}

Act Blur(const Work& work, Scene& scene) {
  if (work.kind != Kind::kBlur) return {};
  cv::setNumThreads(1);
  const cv::Mat source = MatOf(scene.source, work.width, work.height);
  const cv::Mat result = MatOf(scene.result, work.width, work.height);
  const int side = 2 * work.number + 1;
  return [source, result, side] {
    cv::blur(source, result, cv::Size(side, side), cv::Point(-1, -1), cv::BORDER_REPLICATE);
  };
}

// Only the mean of an area is as wide as the factor; the others look around a point.
bool MeansAreaOrMore(const Work& work) { return Averages(work) || InterpolatesRow(work); }
bool EnlargesCubic(const Work& work) { return WeighsCubic(work) && !work.Shrinks(); }
bool EnlargesSix(const Work& work) { return WeighsSix(work) && !work.Shrinks(); }
bool Linear(const Work& work) { return Interpolates(work) || InterpolatesRow(work); }

const bool kRegistered = Register({
    Scaling("opencv nearest", cv::INTER_NEAREST, TakesNearest),
    Scaling("opencv linear", cv::INTER_LINEAR, Linear),
    Scaling("opencv area", cv::INTER_AREA, MeansAreaOrMore),
    Scaling("opencv cubic", cv::INTER_CUBIC, EnlargesCubic),
    Scaling("opencv lanczos4", cv::INTER_LANCZOS4, EnlargesSix),
    {"opencv blur", Blur},
});

}  // namespace

}  // namespace bench
