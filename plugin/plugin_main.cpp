// The plug-in's one export: the host calls it once, when it loads the plug-in.
#include "platform/thread_identity.h"
#include "plugin/class_registration.h"
#include "plugin/host_state.h"
#include "plugin/method_table.h"
#include "plugin/module_registration.h"
#include "plugin/wrappers.h"

REALresolver gResolver = nullptr;
double rbversion_rbversion = 0.0;
std::int32_t CurrentREALControlVersion = 13;
const char* gpartname = nullptr;

namespace {

// The newest record version that a host of that version knows.
std::int32_t RecordVersionFor(double hostVersion) {
  if (hostVersion >= 2013.04) return 13;
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return 11;
  if (hostVersion >= 2012.0) return 10;
  return 9;
}

void ReadHostVersion() {
  if (auto* version = reinterpret_cast<REALGetRBVersionEntry*>(LookUpEntry("REALGetRBVersion"))) {
    rbversion_rbversion = version();
  }
}

void AnnounceRecordVersion() {
  if (auto* announce =
          reinterpret_cast<RegisterPluginVersionEntry*>(LookUpEntry("RegisterPluginVersion"))) {
    announce(CurrentREALControlVersion);
  }
}

// Rewrites and converts the static record once per process, however often the host starts the
// plug-in: what was rewritten must not be read as new, and what was converted has shorter entries.
void RegisterPictureClass() {
  static bool flagsRewritten = false;
  static bool converted = false;
  if (!flagsRewritten) RewriteFlags(pictureClass, rbversion_rbversion);
  flagsRewritten = true;

  const bool oldHost = CurrentREALControlVersion <= 9;
  if (converted) {
    if (oldHost) RegisterClassExtension(pictureClass);
    return;
  }
  // Deliberate: hosts from 3000.0 on are treated like those before 2013.0.
  if (rbversion_rbversion >= 2013.0 && rbversion_rbversion < 3000.0) {
    RegisterModule(pictureClass);
    return;
  }
  if (oldHost) {
    if (!ConvertForOldHost(pictureClass)) return;
    converted = true;
  }
  RegisterClassExtension(pictureClass);
}

}  // namespace

// Called by the host on its own thread before any method. Reports no failure: where something is
// missing, the methods stay unregistered. Nothing that is registered is ever freed.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
  gResolver = resolver;
  ReadHostVersion();
  CurrentREALControlVersion = RecordVersionFor(rbversion_rbversion);
  AnnounceRecordVersion();
  gpartname = "Varnell";
  static_cast<void>(pthread_self());
  RegisterPictureClass();
}
