// Times a plug-in's methods in the reference host. What the host does itself (making, filling and
// clearing pictures, its bookkeeping) is measured within its entries and taken off.
//
// Usage: plugin_worker NAME=PLUGIN
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

#include "bench/worker.h"
#include "bench/works.h"
#include "host/plugin_library.h"

namespace {

using bench::Kind;
using bench::Work;
using Clock = std::chrono::steady_clock;

class Bench {
 public:
  explicit Bench(const std::string& path) : library_(runtime_, path) {
    runtime_.Calls().onLine = nullptr;
  }

  double Run(const Work& work) {
    Scene& scene = SceneFor(work);
    runtime_.Calls().Clear();
    runtime_.entryTime = {.on = true};
    const auto start = Clock::now();
    const host::CallReport report = library_.Call(scene.method, scene.receiver, scene.arguments);
    const std::chrono::duration<double> whole = Clock::now() - start;
    const double own = whole.count() - runtime_.entryTime.seconds;
    runtime_.entryTime = {};
    const bool done = std::holds_alternative<bool>(report.result)
                          ? std::get<bool>(report.result)
                          : report.ResultPicture() != nullptr;
    if (host::Picture* made = report.ResultPicture()) runtime_.Release(made);
    return done ? own * 1e3 : -1;
  }

 private:
  struct Scene {
    std::string method;
    host::Picture* receiver = nullptr;
    std::vector<host::Value> arguments;
  };

  host::Picture* Make(int width, int height) {
    host::Picture* picture = runtime_.NewPicture(runtime_.NewPictureSpec(width, height));
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) picture->SetWord(x, y, bench::PixelAt(x, y));
    }
    return picture;
  }

  // One at a time is kept: a 32-bit process has no room for all.
  Scene& SceneFor(const Work& work) {
    if (scenes_.contains(work.name)) return scenes_[work.name];
    for (host::Picture* picture : pictures_) runtime_.Release(picture);
    pictures_.clear();
    scenes_.clear();
    Scene& scene = scenes_[work.name];
    host::Picture* source = Make(work.sourceWidth, work.sourceHeight);
    pictures_.push_back(source);
    scene.receiver = source;
    if (work.kind == Kind::kDrawMasked || work.kind == Kind::kScaleBoth) {
      runtime_.SetMask(source, Make(work.sourceWidth, work.sourceHeight));
    }
    switch (work.kind) {
      case Kind::kFast:
      case Kind::kSmooth:
        scene.method = "ScaleZVQ";
        scene.arguments = {work.width, work.height, work.kind == Kind::kSmooth};
        break;
      case Kind::kScaleBoth:
        scene.method = "ScaleImageAndMaskZVQ";
        scene.arguments = {work.width, work.height, false};
        break;
      case Kind::kResample:
        scene.method = "ScalingZVQ";
        scene.arguments = {work.mode, work.width, work.height};
        break;
      case Kind::kBlur:
        scene.method = "BlurZVQ";
        scene.arguments = {static_cast<double>(work.mode)};
        break;
      case Kind::kDraw:
      case Kind::kDrawMasked:
        scene.method = "DrawPictureFZVQ";
        scene.receiver = Make(work.width, work.height);
        pictures_.push_back(scene.receiver);
        scene.arguments = {source, bench::kDrawX, bench::kDrawY, bench::kOpacity};
        break;
    }
    return scene;
  }

  host::Runtime runtime_;
  host::PluginLibrary library_;
  std::map<std::string, Scene> scenes_;
  std::vector<host::Picture*> pictures_;
};

}  // namespace

int main(int count, char** words) {
  const std::string word = count == 2 ? words[1] : "";
  const std::size_t equals = word.find('=');
  if (equals == std::string::npos) {
    std::fprintf(stderr, "Usage: plugin_worker NAME=PLUGIN\n");
    return 2;
  }
  Bench bench(word.substr(equals + 1));
  return bench::Serve(
      {{word.substr(0, equals), [&](const Work& work) { return bench.Run(work); }}});
}
