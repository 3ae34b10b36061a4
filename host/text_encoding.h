// Bytes to code points and back, in the encodings whose platform codes host_interface.h names.
#pragma once

#include <cstdint>
#include <string>

namespace host {

// What is not valid in the encoding becomes U+FFFD, one per byte (or per unit, where units are
// wider; a cut-off unit at the end counts as one). Text of an unknown encoding is read as ASCII.
std::u32string DecodeText(const std::string& bytes, std::uint32_t encoding);

// A code point that the encoding does not have becomes '?'. UTF-16 and UTF-32 are little-endian.
// For an unknown encoding, ASCII is written.
std::string EncodeText(const std::u32string& text, std::uint32_t encoding);

}  // namespace host
