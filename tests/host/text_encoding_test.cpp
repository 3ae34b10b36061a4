#include "host/text_encoding.h"

#include <gtest/gtest.h>

#include "plugin/host_interface.h"

namespace host {
namespace {

using namespace std::string_literals;

TEST(TextEncoding, DecodesEachEncoding) {
  struct Row {
    std::uint32_t encoding;
    std::string bytes;
    std::u32string text;
  };
  const Row rows[] = {
      {kEncodingAscii, "aZ~", U"aZ~"},
      {kEncodingAscii, "a\x80", U"a\xFFFD"},
      {kEncodingUnknown, "a\xE9", U"a\xFFFD"},
      {kEncodingMacRoman, "\x80\xCA\xDB\xFF", U"\u00C4\u00A0\u20AC\u02C7"},
      {kEncodingWindowsLatin1, "\x80\x81\x9F\xA0\xFF", U"\u20AC\xFFFD\u0178\u00A0\u00FF"},
      {kEncodingUtf8, "a\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E", U"a\u00E9\u20AC\U0001D11E"},
      {kEncodingUtf8, "\xC3", U"\xFFFD"},
      {kEncodingUtf8, "\xC0\x80", U"\xFFFD\xFFFD"},
      {kEncodingUtf8, "\xE0\x80\x80", U"\xFFFD\xFFFD\xFFFD"},
      {kEncodingUtf8, "\xED\xA0\x80", U"\xFFFD\xFFFD\xFFFD"},
      {kEncodingUtf8, "\xF4\x90\x80\x80", U"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {kEncodingUtf8, "\xC3(", U"\xFFFD("},
      {kEncodingUtf16, "a\0\x34\xD8\x1E\xDD"s, U"a\U0001D11E"},
      {kEncodingUtf16, "\x1E\xDD\x34\xD8"s, U"\xFFFD\xFFFD"},
      {kEncodingUtf16, "a\0b"s, U"a\xFFFD"},
      {kEncodingUtf32, "\x1E\xD1\x01\0"s, U"\U0001D11E"},
      {kEncodingUtf32, "\0\xD8\0\0\0\0\x11\0a"s, U"\xFFFD\xFFFD\xFFFD"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(DecodeText(row.bytes, row.encoding), row.text)
        << testing::PrintToString(row.bytes) << " in " << row.encoding;
  }
}

TEST(TextEncoding, EncodesEachEncoding) {
  const std::u32string text = U"a\u00E9\u20AC\U0001D11E";
  EXPECT_EQ(EncodeText(text, kEncodingAscii), "a???");
  EXPECT_EQ(EncodeText(text, kEncodingUnknown), "a???");
  EXPECT_EQ(EncodeText(text, kEncodingMacRoman), "a\x8E\xDB?");
  EXPECT_EQ(EncodeText(text, kEncodingWindowsLatin1), "a\xE9\x80?");
  EXPECT_EQ(EncodeText(text, kEncodingUtf8), "a\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E");
  EXPECT_EQ(EncodeText(text, kEncodingUtf16), "a\0\xE9\0\xAC\x20\x34\xD8\x1E\xDD"s);
  EXPECT_EQ(EncodeText(text, kEncodingUtf32), "a\0\0\0\xE9\0\0\0\xAC\x20\0\0\x1E\xD1\x01\0"s);
  EXPECT_EQ(EncodeText(U"\xFFFD", kEncodingWindowsLatin1), "?") << "not one of its empty places";
}

TEST(TextEncoding, EveryCharacterSurvivesTheUnicodeEncodings) {
  for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 97) {
    if (c >= 0xD800 && c < 0xE000) continue;
    const std::u32string text(1, c);
    for (const std::uint32_t encoding : {kEncodingUtf8, kEncodingUtf16, kEncodingUtf32}) {
      ASSERT_EQ(DecodeText(EncodeText(text, encoding), encoding), text) << static_cast<unsigned>(c);
    }
  }
}

TEST(TextEncoding, EveryByteOfTheByteEncodingsSurvives) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(EncodeText(DecodeText(bytes, kEncodingMacRoman), kEncodingMacRoman), bytes);
    const std::u32string text = DecodeText(bytes, kEncodingWindowsLatin1);
    if (text != U"\xFFFD") {
      EXPECT_EQ(EncodeText(text, kEncodingWindowsLatin1), bytes);
    }
  }
}

}  // namespace
}  // namespace host
