#include "tests/plugin/plugin_file.h"

#include <stdexcept>

#include "tests/plugin/leftovers.h"
#include "tests/plugin/thread_identity_count.h"
#include "tests/support/plugin_under_test.h"

namespace plugin_test {

namespace {

double gVersion;
std::vector<Received> gRecords;

template <typename Record>
void Receive(bool isModule, const Record* record) {
  const auto words = WordsOf(*record);
  gRecords.push_back({isModule, Word(record), {words.begin(), words.end()}});
}

double Version() {
  FakeHost::Current().Note("REALGetRBVersion()");
  return gVersion;
}

void Announce(std::int32_t recordVersion) {
  FakeHost::Current().Note("RegisterPluginVersion(" + Show(recordVersion) + ")");
}

void TakeModule(REALmoduleDefinition* module) {
  FakeHost::Current().Note("PluginRegisterModule");
  Receive(true, module);
}

void TakeClassExtension(REALclassDefinition* definition) {
  FakeHost::Current().Note("PluginRegisterClassExtension");
  Receive(false, definition);
}

}  // namespace

PluginFile::PluginFile() : file_(host::LoadFile(support::PluginPath())) {}

void PluginFile::Start() {
  const DeliberateLeftovers leftovers;
  void* start = file_->Find("REALPluginMain");
  if (start == nullptr) throw std::runtime_error("REALPluginMain is not exported");
  const int before = plugin_test::ThreadIdentityCalls();
  reinterpret_cast<void (*)(REALresolver)>(start)(FakeHost::Resolve);
  threadIdentityCalls_ = plugin_test::ThreadIdentityCalls() - before;
}

RegisteringHost::RegisteringHost(double version) {
  gRecords.clear();
  SetVersion(version);
  Offer("REALGetRBVersion", Version);
  Offer("RegisterPluginVersion", Announce);
  Offer("PluginRegisterModule", TakeModule);
  Offer("PluginRegisterClassExtension", TakeClassExtension);
}

void RegisteringHost::SetVersion(double version) { gVersion = version; }

const std::vector<Received>& RegisteringHost::Records() const { return gRecords; }

std::vector<std::uintptr_t> WordsAt(std::uintptr_t address, std::size_t count) {
  const auto* words = reinterpret_cast<const std::uintptr_t*>(address);
  return {words, words + count};
}

const char* const kDeclarations[5] = {
    "DrawPictureFZVQ(pic as picture, x as double, y as double, alpha as double = 1.0, yield as "
    "integer = 0) as boolean",
    "ScaleZVQ(width as integer, height as integer, AntiAlias as boolean=false, YieldTicks as "
    "integer=0) as picture",
    "ScaleImageAndMaskZVQ(width as integer, height as integer, AntiAlias as boolean=false, "
    "YieldTicks as integer=0) as picture",
    "ScalingZVQ(mode as integer, width as integer, height as integer, yield as integer = 0) as "
    "picture",
    "BlurZVQ(Radius as double, yield as integer = 0) as picture",
};

const char* const kExtendedDeclarations[5] = {
    "DrawPictureFZVQ(extends ref as Picture, pic as picture, x as double, y as double, alpha as "
    "double = 1.0, yield as integer = 0) as boolean",
    "ScaleZVQ(extends ref as Picture, width as integer, height as integer, AntiAlias as "
    "boolean=false, YieldTicks as integer=0) as picture",
    "ScaleImageAndMaskZVQ(extends ref as Picture, width as integer, height as integer, AntiAlias "
    "as boolean=false, YieldTicks as integer=0) as picture",
    "ScalingZVQ(extends ref as Picture, mode as integer, width as integer, height as integer, "
    "yield as integer = 0) as picture",
    "BlurZVQ(extends ref as Picture, Radius as double, yield as integer = 0) as picture",
};

}  // namespace plugin_test
