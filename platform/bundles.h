// Framework bundles and the folder manager, as far as the plug-in uses them to find a function of
// another framework at run time. The process that loads the plug-in supplies them. Every Create
// function gives one reference, which CFRelease gives up.
#pragma once

#include <cstdint>

struct CFAllocator;
struct CFString;
struct CFURL;
struct CFBundle;
using CFTypeRef = const void*;
using CFAllocatorRef = const CFAllocator*;
using CFStringRef = const CFString*;
using CFURLRef = const CFURL*;
using CFBundleRef = CFBundle*;

// A file or folder of the file system; opaque, filled by FSFindFolder.
struct FSRef {
  std::uint8_t hidden[80];
};

inline constexpr std::int16_t kFolderDomain = -32767;
inline constexpr std::uint32_t kFrameworksFolderType = 0x6672616D;  // 'fram'

extern "C" {
extern const CFAllocatorRef kCFAllocatorSystemDefault;
// NOLINTNEXTLINE(bugprone-reserved-identifier): the system names it so.
extern int __CFConstantStringClassReference[];

// 0 on success.
std::int16_t FSFindFolder(std::int16_t domain, std::uint32_t folderType, std::uint8_t create,
                          FSRef* found);
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* file);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, std::uint8_t isDirectory);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
std::uint8_t CFBundleLoadExecutable(CFBundleRef bundle);  // non-zero: its code is loaded
void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);  // or null
void CFRelease(CFTypeRef object);
}

// A string constant in the layout that the framework expects of compiled-in strings (7-bit text).
struct CFConstantString {
  const void* classReference;  // __CFConstantStringClassReference
  std::uintptr_t flags;        // kCFConstantStringFlags
  const char* text;
  std::intptr_t length;  // bytes, without the terminating zero
};
inline constexpr std::uintptr_t kCFConstantStringFlags = 0x7C8;
