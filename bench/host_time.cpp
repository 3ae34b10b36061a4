#include "bench/host_time.h"

#include <algorithm>
#include <chrono>
#include <functional>

namespace bench {

namespace {

constexpr int kCalls = 501;

// One entry: a call of it, and what undoes the call.
struct Row {
  const char* entry;
  std::function<void()> call, undo;
};

template <typename Entry>
Entry* Routine(const char* name) {
  return reinterpret_cast<Entry*>(host::Runtime::Resolve(name));
}

// The median.
double Measure(host::Runtime& runtime, const Row& row) {
  std::vector<double> all;
  for (int i = 0; i < kCalls; ++i) {
    runtime.entryTime = {.on = true};
    const auto start = std::chrono::steady_clock::now();
    row.call();
    const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - start;
    all.push_back(whole.count() - runtime.entryTime.seconds);
    runtime.entryTime = {};
    row.undo();
    runtime.Calls().Clear();
  }
  std::nth_element(all.begin(), all.begin() + kCalls / 2, all.end());
  return all[kCalls / 2];
}

}  // namespace

HostTime::HostTime(host::Runtime& runtime) {
  host::Picture* picture = runtime.NewPicture(runtime.NewPictureSpec(16, 16));
  const auto handle = host::HandleOf<REALpicture>(picture);
  const auto object = host::HandleOf<REALobject>(picture);
  REALpictureDescription description;
  REALpicture made = nullptr;
  std::uint8_t truth = 0;
  std::int32_t number = 0;
  const auto lock = Routine<REALLockObjectEntry>("REALLockObject");
  const auto unlock = Routine<REALUnlockObjectEntry>("REALUnlockObject");
  const auto describe = Routine<REALLockPictureDescriptionEntry>("REALLockPictureDescription");
  const auto endDescription = Routine<UnlockPictureDescriptionEntry>("unlockPictureDescription");
  const auto make = Routine<NewPictureEntry>("newPicture");
  const auto readTruth = Routine<REALGetPropValueBoolEntry>("REALGetPropValueBool");
  const auto readNumber = Routine<REALGetPropValueIntegerEntry>("REALGetPropValueInteger");
  const auto clear = Routine<REALPictureClearCacheEntry>("REALPictureClearCache");
  const auto mask = Routine<REALGetPictureMaskEntry>("REALGetPictureMask");
  const auto find = Routine<PluginObjectTypeEntry>("pluginObjectType");
  const std::int32_t context = kDescriptionBitmapContext;
  const Row rows[] = {
      {"REALLockObject", [&] { lock(object); }, [&] { unlock(object); }},
      {"REALLockPictureDescription", [&] { describe(handle, &description, context); },
       [&] { endDescription(handle); }},
      {"newPicture", [&] { made = make(16, 16, 32); },
       [&] { unlock(reinterpret_cast<REALobject>(made)); }},
      {"REALGetPropValueBool", [&] { readTruth(object, "HasAlphaChannel", &truth); }, [] {}},
      {"REALGetPropValueInteger", [&] { readNumber(object, "Width", &number); }, [] {}},
      {"REALPictureClearCache", [&] { clear(handle); }, [] {}},
      {"REALGetPictureMask", [&] { mask(handle, 0); }, [] {}},
      {"pluginObjectType", [&] { find("Application"); }, [] {}},
  };
  // The opposites, each after what it undoes.
  lock(object);
  const Row unlocking = {"REALUnlockObject", [&] { unlock(object); }, [&] { lock(object); }};
  describe(handle, &description, context);
  const Row ending = {"unlockPictureDescription", [&] { endDescription(handle); },
                      [&] { describe(handle, &description, context); }};
  for (const Row& row : rows) seconds_[row.entry] = Measure(runtime, row);
  for (const Row& row : {unlocking, ending}) seconds_[row.entry] = Measure(runtime, row);
  endDescription(handle);
  unlock(object);
  runtime.Release(picture);
  for (const auto& [entry, seconds] : seconds_) {
    others_ += seconds / static_cast<double>(seconds_.size());
  }
}

double HostTime::Missed(const std::vector<std::string>& lines) const {
  double sum = 0;
  for (const std::string& line : lines) {
    const std::string entry = line.substr(0, line.find('('));
    if (entry == "resolve") continue;
    const auto found = seconds_.find(entry);
    sum += found == seconds_.end() ? others_ : found->second;
  }
  return sum;
}

}  // namespace bench
