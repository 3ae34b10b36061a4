// Qt: QImage's scaling, which makes its result, and QPainter into one that is there.
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include "bench/peers/peer.h"

namespace bench {

namespace {

QImage ImageOf(Words& words, int width, int height) {
  return {Bytes(words), width, height, width * 4, QImage::Format_RGB32};
}

Peer Scaled(const char* name, Qt::TransformationMode mode, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            const QImage source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
            return [source, work, mode] {
              (void)source.scaled(work.width, work.height, Qt::IgnoreAspectRatio, mode);
            };
          }};
}

Peer Painted(const char* name, bool isSmooth, bool (*comparable)(const Work&)) {
  return {name, [=](const Work& work, Scene& scene) -> Act {
            if (!comparable(work)) return {};
            const QImage source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
            return [source, result = ImageOf(scene.result, work.width, work.height),
                    isSmooth]() mutable {
              QPainter painter(&result);
              painter.setCompositionMode(QPainter::CompositionMode_Source);
              painter.setRenderHint(QPainter::SmoothPixmapTransform, isSmooth);
              painter.drawImage(result.rect(), source);
            };
          }};
}

Act Draw(const Work& work, Scene& scene) {
  if (work.kind != Kind::kDraw) return {};
  const QImage source = ImageOf(scene.source, work.sourceWidth, work.sourceHeight);
  // Fractions of pixels are rounded unless something else than a translation is asked for.
  constexpr double kNearlyOne = 1 + 1e-9;
  return [source, result = ImageOf(scene.result, work.width, work.height)]() mutable {
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(kOpacity);
    painter.translate(kDrawX, kDrawY);
    painter.scale(kNearlyOne, kNearlyOne);
    painter.drawImage(QPointF(), source);
  };
}

bool SmoothComparable(const Work& work) { return Interpolates(work) || Averages(work); }

const bool kRegistered = Register({
    Scaled("qt scaled fast", Qt::FastTransformation, TakesNearest),
    Scaled("qt scaled smooth", Qt::SmoothTransformation, SmoothComparable),
    Painted("qt painter nearest", false, TakesNearest),
    Painted("qt painter smooth", true, Interpolates),
    {"qt draw", Draw},
});

}  // namespace

}  // namespace bench
