// Times a plug-in's methods in the reference host. What the host does itself (making, filling and
// clearing pictures, its bookkeeping) is measured and taken off.
//
// Usage: plugin_worker NAME=PLUGIN
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "bench/host_time.h"
#include "bench/plugin_scene.h"
#include "bench/worker.h"
#include "host/call_arguments.h"
#include "host/native_call.h"
#include "host/plugin_library.h"

namespace {

using bench::Outcome;
using bench::Taken;
using bench::Work;
using Clock = std::chrono::steady_clock;

class Bench {
 public:
  Bench(std::string name, const std::string& path)
      : name_(std::move(name)), library_(runtime_, path), hostTime_(runtime_) {}

  Taken Run(const Work& work) {
    if (words_ != work.words) Prepare(work);
    if (refuses_) return {Outcome::kRefused};
    runtime_.Calls().Clear();
    runtime_.entryTime = {.on = true};
    const long before = bench::PageFaults();
    const auto start = Clock::now();
    const host::NativeResult result = host::CallNative(method_->routine, arguments_, Result());
    const std::chrono::duration<double> whole = Clock::now() - start;
    const long faults = bench::PageFaults() - before;
    const double host = runtime_.entryTime.seconds + hostTime_.Missed(runtime_.Calls().Lines());
    runtime_.entryTime = {};
    if (result.word == 0) return {Outcome::kRefused};
    if (Result() == host::Type::kPicture) {
      runtime_.Release(runtime_.Book().Find(reinterpret_cast<const void*>(result.word)));
    }
    return {Outcome::kDone, (whole.count() - host) * 1e3, std::max(0L, faults - hostFaults_)};
  }

 private:
  host::Type Result() const { return method_->declaration.result; }

  // One work at a time is kept: a 32-bit process has no room for all. The first call is a checked
  // one.
  void Prepare(const Work& work) {
    words_.clear();
    scene_.reset();
    scene_ = std::make_unique<bench::PluginScene>(runtime_, work);
    method_ = library_.Find(scene_->Method());
    refuses_ = true;
    if (method_ != nullptr) {
      const host::CallReport report =
          library_.Call(scene_->Method(), scene_->Receiver(), scene_->Arguments());
      const bool* truth = std::get_if<bool>(&report.result);
      refuses_ = truth != nullptr ? !*truth : report.ResultPicture() == nullptr;
      if (report.ResultPicture() != nullptr) runtime_.Release(report.ResultPicture());
      if (!report.Clean()) {
        std::fprintf(stderr, "bench: %s misuses the host: %s\n", name_.c_str(), work.words.c_str());
      }
      arguments_ = host::NativeArguments(*method_, scene_->Receiver(), scene_->Arguments());
      hostFaults_ = refuses_ ? 0 : scene_->HostFaults();
    }
    words_ = work.words;
  }

  std::string name_;
  host::Runtime runtime_;
  host::PluginLibrary library_;
  bench::HostTime hostTime_;
  std::string words_;
  std::unique_ptr<bench::PluginScene> scene_;
  const host::RegisteredMethod* method_ = nullptr;
  std::vector<host::NativeArgument> arguments_;
  bool refuses_ = true;
  long hostFaults_ = 0;
};

}  // namespace

int main(int count, char** words) {
  const std::string word = count == 2 ? words[1] : "";
  const std::size_t equals = word.find('=');
  if (equals == std::string::npos) {
    std::fprintf(stderr, "Usage: plugin_worker NAME=PLUGIN\n");
    return 2;
  }
  try {
    const std::string name = word.substr(0, equals);
    Bench bench(name, word.substr(equals + 1));
    return bench::Serve({{name, [&](const Work& work) { return bench.Run(work); }}});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench: %s\n", failure.what());
    return 2;
  }
}
