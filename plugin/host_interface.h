// What the host and the plug-in hand to each other: handles, records, and the shape of every host
// routine. Nothing here belongs to the plug-in: handles and host routines are the host's, and every
// registration record stays with the host once it is registered.
//
// On i386 each record is a sequence of 32-bit words in the order given. Elsewhere the same structs
// hold words of the machine's pointer size, so that both sides agree on any machine.
#pragma once

#include <cstddef>
#include <cstdint>

// Opaque host objects, reference-counted by the host.
struct REALpictureStruct;
struct REALgraphicsStruct;
struct REALstringStruct;
struct REALclassRefStruct;
using REALpicture = REALpictureStruct*;
using REALgraphics = REALgraphicsStruct*;
using REALstring = REALstringStruct*;
using REALclassRef = REALclassRefStruct*;
// A reference to an object of any host class (a picture, a graphics object, an exception, ...).
using REALobject = void*;
// A routine of unknown shape: a method implementation, or a host method found by its declaration.
using REALroutine = void*;

// Maps a NUL-terminated entry name to the address of the host's routine, or null.
using REALresolver = REALroutine (*)(const char* entryName);

// ---- Registration records -------------------------------------------------------------------

// One method of a class or module.
struct REALmethodDefinition {
  REALroutine implementation;  // null: the method has no getter form
  REALroutine setter;          // null: the method has no assigns form
  const char* declaration;     // "Name(a as integer = 0) as picture"
  std::uintptr_t flags;
  std::uintptr_t extra[2];  // unknown to hosts below 2012.0
};

// One property; the host knows all twelve words, hosts below 2012.0 only the first ten.
struct REALproperty {
  std::uintptr_t words[3];
  std::uintptr_t flags;
  std::uintptr_t moreWords[8];
};

// The class-extension record. List pointers are untyped because older hosts expect shorter entries
// behind the same words.
struct REALclassDefinition {
  std::uintptr_t version;              // word 0
  const char* className;               // 1
  std::uintptr_t words2to6[5];         // 2-6
  void* properties;                    // 7   REALproperty[]
  std::uintptr_t propertyCount;        // 8
  void* methods;                       // 9   REALmethodDefinition[]
  std::uintptr_t methodCount;          // 10
  void* fourWordEntries;               // 11
  std::uintptr_t fourWordCount;        // 12
  std::uintptr_t words13to15[3];       // 13-15
  std::uintptr_t words16to17[2];       // 16, 17  unknown to hosts below 2012.0
  void* fiveWordEntries;               // 18
  std::uintptr_t fiveWordCount;        // 19
  std::uintptr_t flags;                // 20
  void* sharedProperties;              // 21  REALproperty[]
  std::uintptr_t sharedPropertyCount;  // 22
  void* sharedMethods;                 // 23  REALmethodDefinition[]
  std::uintptr_t sharedMethodCount;    // 24
};

struct REALmoduleDefinition {
  std::uintptr_t version;
  const char* name;
  REALmethodDefinition* methods;
  std::uintptr_t methodCount;
  std::uintptr_t unused[20];
};

static_assert(sizeof(REALmethodDefinition) == 6 * sizeof(void*));
static_assert(offsetof(REALmethodDefinition, flags) == 3 * sizeof(void*));
static_assert(sizeof(REALproperty) == 12 * sizeof(void*));
static_assert(offsetof(REALproperty, flags) == 3 * sizeof(void*));
static_assert(sizeof(REALclassDefinition) == 25 * sizeof(void*));
static_assert(offsetof(REALclassDefinition, methods) == 9 * sizeof(void*));
static_assert(offsetof(REALclassDefinition, fiveWordEntries) == 18 * sizeof(void*));
static_assert(offsetof(REALclassDefinition, flags) == 20 * sizeof(void*));
static_assert(offsetof(REALclassDefinition, sharedMethods) == 23 * sizeof(void*));
static_assert(sizeof(REALmoduleDefinition) == 24 * sizeof(void*));

// ---- Picture descriptions -------------------------------------------------------------------

// Description types; also the code with which a lock asks for one.
inline constexpr std::int32_t kDescriptionBitmapContext = 8;
inline constexpr std::int32_t kDescriptionHostBuffer = 10;

// Filled by the host when a picture's description is locked.
struct REALpictureDescription {
  std::int32_t type;    // kDescription…
  void* handle;         // the bitmap context (type 8) or the REALhostBuffer (type 10)
  std::int32_t width;   // pixels
  std::int32_t height;  // pixels
  std::uintptr_t hostWords[2];
  void* ownBuffer;  // seventh word
  // The host writes more words than the plug-in reads.
  std::uintptr_t moreHostWords[57];
};
static_assert(sizeof(REALpictureDescription) >= 256);

// The host's own 32-bit pixel buffer, reached through a table of row addresses.
struct REALhostBuffer {
  std::uintptr_t kind;    // 0 in every buffer that holds 32-bit pixels
  std::uintptr_t width;   // pixels
  std::uintptr_t height;  // pixels
  std::uintptr_t hostWords[1803];
  std::uintptr_t valid;      // word 1806: non-zero
  unsigned char** rowTable;  // word 1807: address of each row's first pixel
};
static_assert(offsetof(REALhostBuffer, valid) == 1806 * sizeof(void*));
static_assert(offsetof(REALhostBuffer, rowTable) == 1807 * sizeof(void*));

#if defined(__i386__)
static_assert(offsetof(REALpictureDescription, handle) == 4);
static_assert(offsetof(REALpictureDescription, width) == 8);
static_assert(offsetof(REALpictureDescription, height) == 12);
static_assert(offsetof(REALpictureDescription, ownBuffer) == 24);
static_assert(sizeof(REALpictureDescription) == 256);
#endif

// ---- Host routines, by entry name ------------------------------------------------------------
// Success results are one byte; any non-zero value is success. Boolean out-values are one byte.

using PluginRegisterModuleEntry = void(REALmoduleDefinition* module);
using PluginRegisterClassExtensionEntry = void(REALclassDefinition* definition);
using RegisterPluginVersionEntry = void(std::int32_t recordVersion);
using REALGetRBVersionEntry = double();
using PluginNewInstanceEntry = REALobject(const char* className);  // one reference, the caller's
using PluginObjectTypeEntry = REALclassRef(const char* className);
using REALLockObjectEntry = void(REALobject object);
using REALUnlockObjectEntry = void(REALobject object);
using REALUnlockStringEntry = void(REALstring text);
using REALGetPropValueIntegerEntry = std::uint8_t(REALobject object, const char* property,
                                                  std::int32_t* value);
using REALGetPropValueBoolEntry = std::uint8_t(REALobject object, const char* property,
                                               std::uint8_t* value);
using REALSetPropValueIntegerEntry = void(REALobject object, const char* property,
                                          std::int32_t value);
using REALSetPropValueStringEntry = void(REALobject object, const char* property, REALstring value);
using RuntimeRaiseExceptionEntry = void(REALobject exception);
using REALYieldToRBEntry = void();
using REALLoadObjectMethodEntry = REALroutine(REALobject object, const char* declaration);
using NewPictureEntry = REALpicture(std::int32_t width, std::int32_t height,
                                    std::int32_t depth);  // one reference, the caller's
using REALLockPictureDescriptionEntry = std::uint8_t(REALpicture picture,
                                                     REALpictureDescription* description,
                                                     std::int32_t type);
using UnlockPictureDescriptionEntry = void(REALpicture picture);
using PluginPictureGraphicsGetterEntry = REALgraphics(REALpicture picture);  // one reference
using REALGetPictureMaskEntry = REALpicture(REALpicture picture,
                                            std::int32_t create);  // one reference
using REALPictureClearCacheEntry = void(REALpicture picture);
using REALBuildPictureFromBufferEntry = REALpicture(std::int32_t width, std::int32_t height,
                                                    std::int32_t one, void* buffer,
                                                    std::int32_t rowBytes);
using REALBuildStringEntry = REALstring(const char* bytes, std::int32_t length);
using REALBuildStringWithEncodingEntry = REALstring(const char* bytes, std::int32_t length,
                                                    std::uint32_t encoding);
using REALSetStringEncodingEntry = void(REALstring text, std::uint32_t encoding);
using REALConvertStringEntry = REALstring(REALstring text, std::uint32_t encoding);

// Platform text-encoding codes.
inline constexpr std::uint32_t kEncodingMacRoman = 0;
inline constexpr std::uint32_t kEncodingUtf16 = 0x0100;
inline constexpr std::uint32_t kEncodingWindowsLatin1 = 0x0500;
inline constexpr std::uint32_t kEncodingAscii = 0x0600;
inline constexpr std::uint32_t kEncodingUnknown = 0xFFFF;
inline constexpr std::uint32_t kEncodingUtf8 = 0x08000100;
inline constexpr std::uint32_t kEncodingUtf32 = 0x0C000100;

// ---- Host methods, found by declaration with REALLoadObjectMethod ------------------------------
// Each takes the object it is called on as its first argument.

inline constexpr char kDrawPictureDeclaration[] =
    "DrawPicture(Image as Picture, x as Integer, y as Integer, w as Integer, h as Integer, "
    "sx as Integer = 0, sy as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)";
using DrawPictureMethod = void(REALgraphics self, REALpicture image, std::int32_t x, std::int32_t y,
                               std::int32_t w, std::int32_t h, std::int32_t sx, std::int32_t sy,
                               std::int32_t sw, std::int32_t sh);

inline constexpr char kConstructorDeclaration[] =
    "Constructor(width as integer, height as integer)";
using ConstructorMethod = void(REALpicture self, std::int32_t width, std::int32_t height);

inline constexpr char kCopyMaskDeclaration[] = "CopyMask as Picture";
using CopyMaskMethod = REALpicture(REALpicture self);  // one reference, the caller's, or null

inline constexpr char kAssignMaskDeclaration[] = "Mask(assigns newMask As Picture)";
using AssignMaskMethod = void(REALpicture self, REALpicture mask);
