#include "plugin/strings.h"

#include <cstring>

#include "plugin/exception_guard.h"
#include "plugin/held_object.h"
#include "plugin/host_state.h"
#include "plugin/zeroed_block.h"

namespace {

constexpr std::int64_t kLongest = 0x7FFFFFFF;
constexpr std::int64_t kLongestInPlace =
    799;  // bytes of UTF-32 that are converted without a heap block

bool IsSevenBit(const char* bytes, std::int32_t length) {
  for (std::int32_t i = 0; i < length; ++i) {
    if ((static_cast<unsigned char>(bytes[i]) & 0x80) != 0) return false;
  }
  return true;
}

// Appends one code point in UTF-16 and gives the place behind it.
char16_t* AppendUtf16(std::uint32_t codePoint, char16_t* place) {
  if (codePoint < 0x10000) {
    if (codePoint < 0xD800 || codePoint > 0xDFFF) *place++ = static_cast<char16_t>(codePoint);
  } else if (codePoint <= 0x10FFFF) {
    *place++ = static_cast<char16_t>(((codePoint - 0x10000) >> 10) + 0xD800);
    *place++ = static_cast<char16_t>((codePoint & 0x3FF) | 0xDC00);
  } else {
    *place++ = 0xFFFD;
  }
  return place;
}

REALstring BuildFromUtf32(const char* data, std::int32_t length, char16_t* units) {
  char16_t* end = units;
  for (std::int32_t i = 0; i + 4 <= length; i += 4) {
    std::uint32_t codePoint = 0;
    std::memcpy(&codePoint, data + i, sizeof(codePoint));
    end = AppendUtf16(codePoint, end);
  }
  return REALBuildUnicodeStringUTF16(units, static_cast<std::int32_t>((end - units) * 2));
}

// Two units for each code point, and a terminating zero.
REALstring ConvertUtf32(const char* data, std::int32_t length) {
  if (length <= kLongestInPlace) {
    char16_t units[kLongestInPlace / 4 * 2 + 1] = {};
    return BuildFromUtf32(data, length, units);
  }
  const ZeroedBlock<char16_t> units(static_cast<std::uint64_t>(length / 4 * 2 + 1) *
                                    sizeof(char16_t));
  return units ? BuildFromUtf32(data, length, units.Data()) : nullptr;
}

REALstring BuildMarked(const char* data, std::int32_t length, std::uint32_t encoding) {
  HeldString text(originalREALBuildString(data, length));
  if (text.Get() == nullptr) return nullptr;
  REALSetStringEncoding(text.Get(), encoding);
  return text.Keep();
}

REALstring BuildAs(const char* data, std::int32_t length, std::uint32_t encoding) {
  switch (encoding) {
    case kEncodingUtf16:
      return REALBuildUnicodeStringUTF16(data, length);
    case kEncodingUtf32:
      if (rbversion_rbversion >= 2013.0) return REALBuildStringWithEncoding(data, length, encoding);
      return ConvertUtf32(data, length);
    case kEncodingMacRoman:
    case kEncodingWindowsLatin1:
    case kEncodingUnknown:
      return BuildMarked(data, length, IsSevenBit(data, length) ? kEncodingAscii : encoding);
    default:
      return BuildMarked(data, length, encoding);
  }
}

REALstring BuildFromUtf16(const char* data, std::int32_t byteLength) {
  if (rbversion_rbversion >= 2012.0) {
    const HeldString utf16(REALBuildStringWithEncoding(data, byteLength, kEncodingUtf16));
    return REALConvertString(utf16.Get(), kEncodingUtf8);
  }
  const HeldString utf16(originalREALBuildString(data, byteLength));
  if (utf16.Get() == nullptr) return nullptr;
  REALSetStringEncoding(utf16.Get(), kEncodingUtf16);
  return REALConvertString(utf16.Get(), kEncodingUtf8);
}

}  // namespace

REALstring REALBuildUnicodeString(const void* data, std::int64_t length, std::uint32_t encoding) {
  if (data == nullptr || length < 1 || length > kLongest) return nullptr;
  return Guarded([&] {
    return BuildAs(static_cast<const char*>(data), static_cast<std::int32_t>(length), encoding);
  });
}

REALstring REALBuildUnicodeStringUTF16(const void* data, std::int32_t byteLength) {
  return Guarded([&] { return BuildFromUtf16(static_cast<const char*>(data), byteLength); });
}
