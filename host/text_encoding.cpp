// Text encodings.
#include "host/text_encoding.h"

#include <algorithm>
#include <iterator>

#include "plugin/host_interface.h"

namespace host {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Mac Roman from 0x80 on.
constexpr char32_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7};

// Windows Latin 1 from 0x80 to 0x9F; the rest is as in Unicode.
constexpr char32_t kWindows[32] = {
    0x20AC,       kReplacement, 0x201A, 0x0192, 0x201E, 0x2026,       0x2020, 0x2021,
    0x02C6,       0x2030,       0x0160, 0x2039, 0x0152, kReplacement, 0x017D, kReplacement,
    kReplacement, 0x2018,       0x2019, 0x201C, 0x201D, 0x2022,       0x2013, 0x2014,
    0x02DC,       0x2122,       0x0161, 0x203A, 0x0153, kReplacement, 0x017E, 0x0178};

char32_t CharacterOfByte(unsigned char byte, std::uint32_t encoding) {
  if (byte < 0x80) return byte;
  if (encoding == kEncodingMacRoman) return kMacRoman[byte - 0x80];
  if (encoding == kEncodingWindowsLatin1) return byte < 0xA0 ? kWindows[byte - 0x80] : byte;
  return kReplacement;
}

char ByteOfCharacter(char32_t character, std::uint32_t encoding) {
  if (character < 0x80) return static_cast<char>(character);
  if (character == kReplacement) return '?';
  for (int byte = 0x80; byte < 0x100; ++byte) {
    if (CharacterOfByte(static_cast<unsigned char>(byte), encoding) == character) {
      return static_cast<char>(byte);
    }
  }
  return '?';
}

bool IsSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xE000; }

bool IsCharacter(char32_t value) { return value < 0x110000 && !IsSurrogate(value); }

// Little-endian units of 2 or 4 bytes; a cut-off unit at the end becomes U+FFFD.
std::u32string Units(const std::string& bytes, std::size_t unitSize) {
  std::u32string units;
  for (std::size_t i = 0; i < bytes.size(); i += unitSize) {
    if (bytes.size() - i < unitSize) return units + kReplacement;
    char32_t unit = 0;
    for (std::size_t k = unitSize; k > 0; --k) {
      unit = unit << 8 | static_cast<unsigned char>(bytes[i + k - 1]);
    }
    units += unit;
  }
  return units;
}

void AppendUnit(std::string& bytes, char32_t unit, int unitSize) {
  for (int k = 0; k < unitSize; ++k) bytes += static_cast<char>(unit >> 8 * k & 0xFF);
}

std::u32string DecodeUtf16(const std::string& bytes) {
  const std::u32string units = Units(bytes, 2);
  std::u32string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool isPair = i + 1 < units.size() && units[i] >= 0xD800 && units[i] < 0xDC00 &&
                        units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
    if (isPair) {
      text +=
          static_cast<char32_t>(0x10000 + ((units[i] - 0xD800) << 10) + (units[i + 1] - 0xDC00));
      ++i;
    } else {
      text += IsSurrogate(units[i]) ? kReplacement : units[i];
    }
  }
  return text;
}

std::u32string DecodeUtf8(const std::string& bytes) {
  std::u32string text;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    char32_t character = length <= 1 ? lead : lead & (0x7Fu >> length);
    bool valid = length > 0 && length <= bytes.size() - i;
    for (std::size_t k = 1; valid && k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      valid = (next & 0xC0) == 0x80;
      character = character << 6 | (next & 0x3Fu);
    }
    constexpr char32_t kFirstOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    valid = valid && IsCharacter(character) && character >= kFirstOfLength[length];
    text += valid ? character : kReplacement;
    i += valid ? length : 1;
  }
  return text;
}

void AppendUtf8(std::string& bytes, char32_t c) {
  if (c < 0x80) {
    bytes += static_cast<char>(c);
    return;
  }
  constexpr char32_t kLeads[] = {0, 0xC0, 0xE0, 0xF0};
  const int tails = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  bytes += static_cast<char>(kLeads[tails] | c >> 6 * tails);
  for (int k = tails - 1; k >= 0; --k) bytes += static_cast<char>(0x80 | (c >> 6 * k & 0x3F));
}

void AppendUtf16(std::string& bytes, char32_t c) {
  if (c >= 0x10000) {
    AppendUnit(bytes, ((c - 0x10000) >> 10) + 0xD800, 2);
    AppendUnit(bytes, (c & 0x3FF) | 0xDC00, 2);
  } else {
    AppendUnit(bytes, c, 2);
  }
}

}  // namespace

std::u32string DecodeText(const std::string& bytes, std::uint32_t encoding) {
  if (encoding == kEncodingUtf8) return DecodeUtf8(bytes);
  if (encoding == kEncodingUtf16) return DecodeUtf16(bytes);
  std::u32string text;
  if (encoding == kEncodingUtf32) {
    for (const char32_t c : Units(bytes, 4)) text += IsCharacter(c) ? c : kReplacement;
  } else {
    for (const char c : bytes) text += CharacterOfByte(static_cast<unsigned char>(c), encoding);
  }
  return text;
}

std::string EncodeText(const std::u32string& text, std::uint32_t encoding) {
  std::string bytes;
  for (const char32_t c : text) {
    if (encoding == kEncodingUtf8) {
      AppendUtf8(bytes, c);
    } else if (encoding == kEncodingUtf16) {
      AppendUtf16(bytes, c);
    } else if (encoding == kEncodingUtf32) {
      AppendUnit(bytes, c, 4);
    } else {
      bytes += ByteOfCharacter(c, encoding);
    }
  }
  return bytes;
}

}  // namespace host
