#include "plugin/wrappers.h"

#include "plugin/host_state.h"

PluginRegisterModuleEntry* pRegisterModule = nullptr;
PluginRegisterClassExtensionEntry* pRegisterClassExtension = nullptr;
PluginNewInstanceEntry* pNewInstance = nullptr;
PluginObjectTypeEntry* pGetClassRef = nullptr;
REALLockObjectEntry* pLockObject = nullptr;
REALUnlockObjectEntry* pUnlockObject = nullptr;
REALLoadObjectMethodEntry* pLoadObjectMethod = nullptr;
RuntimeRaiseExceptionEntry* pRaiseException = nullptr;
REALGetPropValueIntegerEntry* pGetPropValueInteger = nullptr;
REALGetPropValueBoolEntry* pGetPropValueBoolean = nullptr;
REALSetPropValueIntegerEntry* pSetPropValueInteger = nullptr;
REALSetPropValueStringEntry* pSetPropValueString = nullptr;
NewPictureEntry* pNewPicture = nullptr;
REALLockPictureDescriptionEntry* pLockPictureDescription = nullptr;
UnlockPictureDescriptionEntry* pUnlockPictureDescription = nullptr;
PluginPictureGraphicsGetterEntry* pGetPictureGraphics = nullptr;
REALGetPictureMaskEntry* pGetPictureMask = nullptr;
REALPictureClearCacheEntry* pPictureClearCache = nullptr;
REALBuildPictureFromBufferEntry* pBuildPictureFromBuffer = nullptr;
REALBuildStringEntry* pBuildString = nullptr;
REALBuildStringWithEncodingEntry* pBuildStringWithEncoding = nullptr;
REALSetStringEncodingEntry* pSetStringEncoding = nullptr;
REALConvertStringEntry* pConvertString = nullptr;
REALUnlockStringEntry* pUnlockString = nullptr;
REALYieldToRBEntry* pYieldToRB = nullptr;

namespace {

// Fills an empty slot; true when it then holds a routine.
template <typename Entry>
bool Resolve(Entry*& slot, const char* entryName) {
  if (slot == nullptr) slot = reinterpret_cast<Entry*>(LookUpEntry(entryName));
  return slot != nullptr;
}

}  // namespace

REALroutine LookUpEntry(const char* entryName) {
  return gResolver == nullptr ? nullptr : gResolver(entryName);
}

void REALRegisterModule(REALmoduleDefinition* module) {
  if (Resolve(pRegisterModule, "PluginRegisterModule")) pRegisterModule(module);
}

void REALRegisterClassExtension(REALclassDefinition* definition) {
  if (Resolve(pRegisterClassExtension, "PluginRegisterClassExtension")) {
    pRegisterClassExtension(definition);
  }
}

REALobject REALnewInstance(const char* className) {
  return Resolve(pNewInstance, "PluginNewInstance") ? pNewInstance(className) : nullptr;
}

REALclassRef REALGetClassRef(const char* className) {
  return Resolve(pGetClassRef, "pluginObjectType") ? pGetClassRef(className) : nullptr;
}

void REALLockObject(REALobject object) {
  if (Resolve(pLockObject, "REALLockObject")) pLockObject(object);
}

void REALUnlockObject(REALobject object) {
  if (Resolve(pUnlockObject, "REALUnlockObject")) pUnlockObject(object);
}

REALroutine REALLoadObjectMethod(REALobject object, const char* declaration) {
  return Resolve(pLoadObjectMethod, "REALLoadObjectMethod") ? pLoadObjectMethod(object, declaration)
                                                            : nullptr;
}

void REALRaiseException(REALobject exception) {
  if (Resolve(pRaiseException, "RuntimeRaiseException")) pRaiseException(exception);
}

std::int32_t REALGetPropValueInteger(REALobject object, const char* property) {
  if (!Resolve(pGetPropValueInteger, "REALGetPropValueInteger") &&
      !Resolve(pGetPropValueInteger, "REALGetPropValueInt")) {
    return 0;
  }
  std::int32_t value = 0;
  return pGetPropValueInteger(object, property, &value) != 0 ? value : 0;
}

bool REALGetPropValueBoolean(REALobject object, const char* property) {
  if (!Resolve(pGetPropValueBoolean, "REALGetPropValueBool")) return false;
  std::uint8_t value = 0;
  return pGetPropValueBoolean(object, property, &value) != 0 && value != 0;
}

void REALSetPropValueInteger(REALobject object, const char* property, std::int32_t value) {
  if (Resolve(pSetPropValueInteger, "REALSetPropValueInteger") ||
      Resolve(pSetPropValueInteger, "REALSetPropValueInt")) {
    pSetPropValueInteger(object, property, value);
  }
}

void REALSetPropValueString(REALobject object, const char* property, REALstring value) {
  if (Resolve(pSetPropValueString, "REALSetPropValueString")) {
    pSetPropValueString(object, property, value);
  }
}

REALpicture REALNewPicture(std::int32_t width, std::int32_t height, std::int32_t depth) {
  return Resolve(pNewPicture, "newPicture") ? pNewPicture(width, height, depth) : nullptr;
}

bool REALLockPictureDescription(REALpicture picture, REALpictureDescription* description,
                                std::int32_t type) {
  return Resolve(pLockPictureDescription, "REALLockPictureDescription") &&
         pLockPictureDescription(picture, description, type) != 0;
}

void REALUnlockPictureDescription(REALpicture picture) {
  if (Resolve(pUnlockPictureDescription, "unlockPictureDescription")) {
    pUnlockPictureDescription(picture);
  }
}

REALgraphics REALGetPictureGraphics(REALpicture picture) {
  return Resolve(pGetPictureGraphics, "pluginPictureGraphicsGetter") ? pGetPictureGraphics(picture)
                                                                     : nullptr;
}

REALpicture REALGetPictureMask(REALpicture picture, std::int32_t create) {
  return Resolve(pGetPictureMask, "REALGetPictureMask") ? pGetPictureMask(picture, create)
                                                        : nullptr;
}

void REALPictureClearCache(REALpicture picture) {
  if (Resolve(pPictureClearCache, "REALPictureClearCache")) pPictureClearCache(picture);
}

REALpicture REALBuildPictureFromBuffer(std::int32_t width, std::int32_t height, std::int32_t one,
                                       void* buffer, std::int32_t rowBytes) {
  return Resolve(pBuildPictureFromBuffer, "REALBuildPictureFromBuffer")
             ? pBuildPictureFromBuffer(width, height, one, buffer, rowBytes)
             : nullptr;
}

REALstring originalREALBuildString(const char* bytes, std::int32_t length) {
  return Resolve(pBuildString, "REALBuildString") ? pBuildString(bytes, length) : nullptr;
}

REALstring REALBuildStringWithEncoding(const char* bytes, std::int32_t length,
                                       std::uint32_t encoding) {
  return Resolve(pBuildStringWithEncoding, "REALBuildStringWithEncoding")
             ? pBuildStringWithEncoding(bytes, length, encoding)
             : nullptr;
}

void REALSetStringEncoding(REALstring text, std::uint32_t encoding) {
  if (Resolve(pSetStringEncoding, "REALSetStringEncoding")) pSetStringEncoding(text, encoding);
}

REALstring REALConvertString(REALstring text, std::uint32_t encoding) {
  return Resolve(pConvertString, "REALConvertString") ? pConvertString(text, encoding) : nullptr;
}

void REALUnlockString(REALstring text) {
  if (Resolve(pUnlockString, "REALUnlockString")) pUnlockString(text);
}

void REALYieldToRB() {
  if (Resolve(pYieldToRB, "REALYieldToRB")) pYieldToRB();
}
