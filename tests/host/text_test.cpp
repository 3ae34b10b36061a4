#include "host/text.h"

#include <gtest/gtest.h>

#include "plugin/host_interface.h"

namespace host {
namespace {

TEST(Text, ConvertsFromItsOwnEncoding) {
  Text text("\x8E", kEncodingMacRoman);
  EXPECT_EQ(text.ConvertedTo(kEncodingUtf8), "\xC3\xA9");
  text.SetEncoding(kEncodingWindowsLatin1);
  EXPECT_EQ(text.Encoding(), kEncodingWindowsLatin1);
  EXPECT_EQ(text.ConvertedTo(kEncodingUtf8), "\xC5\xBD");
  EXPECT_EQ(text.Bytes(), "\x8E");
}

TEST(RuntimeException, TakesItsMessageAndErrorNumber) {
  RuntimeException exception("NilObjectException");
  EXPECT_EQ(exception.ClassName(), "NilObjectException");
  EXPECT_FALSE(exception.hasMessage);
  Text text("picture is nil", kEncodingAscii);
  EXPECT_TRUE(exception.SetString("message", &text));
  EXPECT_TRUE(exception.SetInteger("ErrorNumber", 3));
  EXPECT_TRUE(exception.hasMessage);
  EXPECT_EQ(exception.message, "picture is nil");
  EXPECT_EQ(exception.errorNumber, 3);
  EXPECT_TRUE(exception.SetString("Message", nullptr));
  EXPECT_FALSE(exception.hasMessage);
  EXPECT_EQ(exception.message, "");
  EXPECT_FALSE(exception.SetInteger("Message", 3));
  EXPECT_FALSE(exception.SetString("ErrorNumber", &text));
}

}  // namespace
}  // namespace host
