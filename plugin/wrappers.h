// Every host routine the plug-in calls, behind a function of its own that looks it up by name at
// first use. A routine that the host lacks is asked for again at the next call and answers its
// neutral result: 0, null or false, or nothing at all.
//
// For the host's thread only. Exceptions that a host routine throws pass through.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

// Asks the host for a routine now, without keeping the answer. Null when the host lacks it.
REALroutine LookUpEntry(const char* entryName);

// Registration. The host keeps the records.
void REALRegisterModule(REALmoduleDefinition* module);
void REALRegisterClassExtension(REALclassDefinition* definition);

// Objects. A new instance carries one reference, the caller's.
REALobject REALnewInstance(const char* className);
REALclassRef REALGetClassRef(const char* className);
void REALLockObject(REALobject object);
void REALUnlockObject(REALobject object);
REALroutine REALLoadObjectMethod(REALobject object, const char* declaration);
void REALRaiseException(REALobject exception);

// Properties. The readers answer 0 or false when the host cannot read the property, whatever it
// left in its out-value.
std::int32_t REALGetPropValueInteger(REALobject object, const char* property);
bool REALGetPropValueBoolean(REALobject object, const char* property);
void REALSetPropValueInteger(REALobject object, const char* property, std::int32_t value);
void REALSetPropValueString(REALobject object, const char* property, REALstring value);

// Pictures. New pictures, graphics objects and masks carry one reference, the caller's.
REALpicture REALNewPicture(std::int32_t width, std::int32_t height, std::int32_t depth);
bool REALLockPictureDescription(REALpicture picture, REALpictureDescription* description,
                                std::int32_t type);
void REALUnlockPictureDescription(REALpicture picture);
REALgraphics REALGetPictureGraphics(REALpicture picture);
REALpicture REALGetPictureMask(REALpicture picture, std::int32_t create);
void REALPictureClearCache(REALpicture picture);
REALpicture REALBuildPictureFromBuffer(std::int32_t width, std::int32_t height, std::int32_t one,
                                       void* buffer, std::int32_t rowBytes);

// Strings. New strings carry one reference, the caller's. Lengths are in bytes.
REALstring originalREALBuildString(const char* bytes, std::int32_t length);
REALstring REALBuildStringWithEncoding(const char* bytes, std::int32_t length,
                                       std::uint32_t encoding);
void REALSetStringEncoding(REALstring text, std::uint32_t encoding);
REALstring REALConvertString(REALstring text, std::uint32_t encoding);
void REALUnlockString(REALstring text);

void REALYieldToRB();

// The cache slots: null until the routine was found.
extern PluginRegisterModuleEntry* pRegisterModule;
extern PluginRegisterClassExtensionEntry* pRegisterClassExtension;
extern PluginNewInstanceEntry* pNewInstance;
extern PluginObjectTypeEntry* pGetClassRef;
extern REALLockObjectEntry* pLockObject;
extern REALUnlockObjectEntry* pUnlockObject;
extern REALLoadObjectMethodEntry* pLoadObjectMethod;
extern RuntimeRaiseExceptionEntry* pRaiseException;
extern REALGetPropValueIntegerEntry* pGetPropValueInteger;
extern REALGetPropValueBoolEntry* pGetPropValueBoolean;
extern REALSetPropValueIntegerEntry* pSetPropValueInteger;
extern REALSetPropValueStringEntry* pSetPropValueString;
extern NewPictureEntry* pNewPicture;
extern REALLockPictureDescriptionEntry* pLockPictureDescription;
extern UnlockPictureDescriptionEntry* pUnlockPictureDescription;
extern PluginPictureGraphicsGetterEntry* pGetPictureGraphics;
extern REALGetPictureMaskEntry* pGetPictureMask;
extern REALPictureClearCacheEntry* pPictureClearCache;
extern REALBuildPictureFromBufferEntry* pBuildPictureFromBuffer;
extern REALBuildStringEntry* pBuildString;
extern REALBuildStringWithEncodingEntry* pBuildStringWithEncoding;
extern REALSetStringEncodingEntry* pSetStringEncoding;
extern REALConvertStringEntry* pConvertString;
extern REALUnlockStringEntry* pUnlockString;
extern REALYieldToRBEntry* pYieldToRB;
