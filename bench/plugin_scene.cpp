#include "bench/plugin_scene.h"

#include "bench/worker.h"

namespace bench {

// Delegates, so that what was made is released when there is no room for the rest.
PluginScene::PluginScene(host::Runtime& runtime, const Work& work) : PluginScene(runtime) {
  work_ = work;
  host::Picture* source = Make(work.sourceWidth, work.sourceHeight);
  receiver_ = source;
  if (work.kind == Kind::kDrawMasked || work.kind == Kind::kBoth) {
    host::Picture* mask = Make(work.sourceWidth, work.sourceHeight);
    pictures_.pop_back();  // the source's from here on
    runtime_.SetMask(source, mask);
  }
  switch (work.kind) {
    case Kind::kFast:
    case Kind::kSmooth:
      method_ = "ScaleZVQ";
      arguments_ = {work.width, work.height, work.kind == Kind::kSmooth};
      break;
    case Kind::kBoth:
      method_ = "ScaleImageAndMaskZVQ";
      arguments_ = {work.width, work.height, false};
      break;
    case Kind::kResample:
      method_ = "ScalingZVQ";
      arguments_ = {work.number, work.width, work.height};
      break;
    case Kind::kBlur:
      method_ = "BlurZVQ";
      arguments_ = {static_cast<double>(work.number)};
      break;
    case Kind::kDraw:
    case Kind::kDrawMasked:
      method_ = "DrawPictureFZVQ";
      receiver_ = Make(work.width, work.height);
      arguments_ = {source, kDrawX, kDrawY, kOpacity};
      break;
  }
}

PluginScene::~PluginScene() {
  for (host::Picture* picture : pictures_) runtime_.Release(picture);
}

host::Picture* PluginScene::Make(int width, int height) {
  host::Picture* picture = runtime_.NewPicture(runtime_.NewPictureSpec(width, height));
  pictures_.push_back(picture);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) picture->SetWord(x, y, PixelAt(x, y));
  }
  return picture;
}

long PluginScene::HostFaults() const {
  if (work_.Draws()) return 0;
  const auto make = [this] {
    return runtime_.NewPicture(runtime_.NewPictureSpec(work_.width, work_.height));
  };
  const long before = PageFaults();
  std::vector<host::Picture*> made = {make()};
  // The scaled mask, and the result's mask, into which the host draws it.
  if (work_.kind == Kind::kBoth) {
    made.insert(made.end(), {make(), make()});
    runtime_.Draw(made[2], made[1], 0, 0, work_.width, work_.height, 0, 0, work_.width,
                  work_.height);
  }
  const long faults = PageFaults() - before;
  for (host::Picture* picture : made) runtime_.Release(picture);
  return faults;
}

}  // namespace bench
