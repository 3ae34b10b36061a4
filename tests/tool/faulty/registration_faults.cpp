// Faults in what the host hears when the plug-in starts.
#include <algorithm>
#include <cstdlib>

#include "tests/tool/faulty/faults.h"
#include "tests/tool/faulty/host_entries.h"

namespace faulty {
namespace {

void CrashAtStart() { std::abort(); }

void NeedEveryEntry() { Get<PluginObjectTypeEntry>("pluginObjectType")("Application"); }

void RegisterTwice(Registration& registration) { registration.times = 2; }

void DropMethod(Registration& registration) { registration.methods.pop_back(); }

void DropMethodAtSecondStart(Registration& registration) {
  if (registration.start > 1) registration.methods.pop_back();
}

void ChangeFlags(Registration& registration) {
  for (REALmethodDefinition& method : registration.methods) method.flags ^= 8;
}

void ChangeDefault(Registration& registration) {
  for (REALmethodDefinition& method : registration.methods) {
    if (!Declares(method, "ScaleZVQ")) continue;
    method.declaration =
        "ScaleZVQ(width as integer, height as integer, AntiAlias as boolean=true, "
        "YieldTicks as integer=0) as picture";
  }
}

double HostVersion() { return Get<REALGetRBVersionEntry>("REALGetRBVersion")(); }
double OldVersion() { return std::min(HostVersion(), 2012.5); }
double NewVersion() { return std::max(HostVersion(), 2013.04); }

void AnnounceLess(std::int32_t version) {
  Get<RegisterPluginVersionEntry>("RegisterPluginVersion")(version - 1);
}

const Fault kFaults[] = {
    {"crash-at-start", CrashAtStart},
    {"needs-every-entry", NeedEveryEntry},
    {"registers-twice", RegisterTwice},
    {"dropped-method", DropMethod},
    {"second-start-drops", DropMethodAtSecondStart},
    {"wrong-flags", ChangeFlags},
    {"changed-default", ChangeDefault},
    {"old-path-everywhere", {{"REALGetRBVersion", OldVersion}}},
    {"new-path-everywhere", {{"REALGetRBVersion", NewVersion}}},
    {"wrong-announcement", {{"RegisterPluginVersion", AnnounceLess}}},
};

}  // namespace

std::span<const Fault> RegistrationFaults() { return kFaults; }

}  // namespace faulty
