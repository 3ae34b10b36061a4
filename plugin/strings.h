// Turns the plug-in's text into host strings.
#pragma once

#include <cstdint>

#include "plugin/host_interface.h"

// A new host string with one reference for the caller, or null: for null data, for lengths
// outside 1..2^31 - 1 bytes, when the host cannot make one, and when memory is short. `encoding` is
// one of kEncoding…; UTF-16 and UTF-32 become UTF-8 where the host is not given them as they are.
// Text of one-byte encodings that is all 7-bit is marked as ASCII. Code points that are surrogates
// are dropped, those above U+10FFFF become U+FFFD.
//
// An exception of the standard library, or any other, that the host throws meanwhile becomes a host
// exception, and the result is null. Should its message fail in the same way, it is raised without
// one.
REALstring REALBuildUnicodeString(const void* data, std::int64_t length, std::uint32_t encoding);

// The same for UTF-16 code units in the machine's order; the result is in UTF-8.
REALstring REALBuildUnicodeStringUTF16(const void* data, std::int32_t byteLength);
