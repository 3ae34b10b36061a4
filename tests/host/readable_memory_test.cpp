#include "host/readable_memory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/pixel_memory.h"

namespace host {
namespace {

TEST(ReadableMemory, TellsWhatMayBeReadToTheByte) {
  PixelMemory memory(5000, Guard::kAfter);
  EXPECT_TRUE(IsReadable(memory.Data(), 5000));
  EXPECT_FALSE(IsReadable(memory.Data(), 5001));
  EXPECT_FALSE(IsReadable(memory.Data() + 5000, 1));
  memory.MakeInaccessible();
  EXPECT_FALSE(IsReadable(memory.Data(), 1));
  EXPECT_FALSE(IsReadable(nullptr, 1));
  EXPECT_FALSE(IsReadable(reinterpret_cast<const void*>(16), 1));
  EXPECT_FALSE(IsReadable(&memory, static_cast<std::size_t>(-1))) << "beyond all addresses";
}

TEST(ReadableMemory, TextEndsAtItsZero) {
  EXPECT_EQ(ReadableText("abc"), "abc");
  EXPECT_EQ(ReadableText(""), "");
  EXPECT_EQ(ReadableText(nullptr), std::nullopt);
  EXPECT_EQ(ReadableText(reinterpret_cast<const char*>(16)), std::nullopt);
}

TEST(ReadableMemory, TextThatRunsIntoAGuardCannotBeRead) {
  const PixelMemory memory(16, Guard::kAfter);
  std::memset(memory.Data(), 'x', 16);
  const char* text = reinterpret_cast<const char*>(memory.Data());
  EXPECT_EQ(ReadableText(text), std::nullopt);
  memory.Data()[15] = 0;
  EXPECT_EQ(ReadableText(text), std::string(15, 'x'));
}

TEST(ReadableMemory, TextMayNotBeLongerThanTheLimit) {
  EXPECT_EQ(ReadableText("abcd", 4), "abcd");
  EXPECT_EQ(ReadableText("abcde", 4), std::nullopt);
}

}  // namespace
}  // namespace host
