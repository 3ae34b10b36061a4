#include "tests/support/linked_plugin.h"

#include "host/runtime.h"
#include "pixels/unlock_pixels.h"
#include "plugin/application_kind.h"
#include "plugin/host_state.h"
#include "plugin/wrappers.h"
#include "plugin/yield.h"

namespace support {

void ResetLinkedPlugin() {
  gResolver = nullptr;
  rbversion_rbversion = 0.0;
  CurrentREALControlVersion = 13;
  gpartname = nullptr;
  IsDesktop = 0;
  IsConsole = 0;
  yield = YieldData();
  gApplicationServices = nullptr;
  pUnlockPixels = nullptr;
  pRegisterModule = nullptr;
  pRegisterClassExtension = nullptr;
  pNewInstance = nullptr;
  pGetClassRef = nullptr;
  pLockObject = nullptr;
  pUnlockObject = nullptr;
  pLoadObjectMethod = nullptr;
  pRaiseException = nullptr;
  pGetPropValueInteger = nullptr;
  pGetPropValueBoolean = nullptr;
  pSetPropValueInteger = nullptr;
  pSetPropValueString = nullptr;
  pNewPicture = nullptr;
  pLockPictureDescription = nullptr;
  pUnlockPictureDescription = nullptr;
  pGetPictureGraphics = nullptr;
  pGetPictureMask = nullptr;
  pPictureClearCache = nullptr;
  pBuildPictureFromBuffer = nullptr;
  pBuildString = nullptr;
  pBuildStringWithEncoding = nullptr;
  pSetStringEncoding = nullptr;
  pConvertString = nullptr;
  pUnlockString = nullptr;
  pYieldToRB = nullptr;
}

void StartLinkedPlugin(double hostVersion) {
  ResetLinkedPlugin();
  gResolver = host::Runtime::Resolve;
  rbversion_rbversion = hostVersion;
  gpartname = "Varnell";
}

}  // namespace support
