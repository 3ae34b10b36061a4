// The bitmap-context queries of the platform's graphics framework, declared here so that the
// plug-in builds without its headers. The process that loads the plug-in supplies them.
#pragma once

#include <cstddef>
#include <cstdint>

struct CGContext;
using CGContextRef = CGContext*;

// Alpha info of a bitmap context, in its low three bits.
inline constexpr std::uint32_t kCGImageAlphaNone = 0;
inline constexpr std::uint32_t kCGImageAlphaPremultipliedLast = 1;
inline constexpr std::uint32_t kCGImageAlphaPremultipliedFirst = 2;
inline constexpr std::uint32_t kCGImageAlphaLast = 3;
inline constexpr std::uint32_t kCGImageAlphaFirst = 4;
inline constexpr std::uint32_t kCGImageAlphaNoneSkipLast = 5;
inline constexpr std::uint32_t kCGImageAlphaNoneSkipFirst = 6;
inline constexpr std::uint32_t kCGImageAlphaOnly = 7;

extern "C" {
void* CGBitmapContextGetData(CGContextRef context);          // first pixel of row 0, or null
std::size_t CGBitmapContextGetWidth(CGContextRef context);   // pixels
std::size_t CGBitmapContextGetHeight(CGContextRef context);  // pixels
std::size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
std::size_t CGBitmapContextGetBitsPerPixel(CGContextRef context);
std::uint32_t CGBitmapContextGetAlphaInfo(CGContextRef context);  // kCGImageAlpha…
}
