#include "host/byte_view.h"

#include <gtest/gtest.h>

#include <vector>

namespace host {
namespace {

using Data = std::vector<std::uint8_t>;

ByteCursor Cursor(const Data& data) {
  return ByteCursor(ByteView(data.data(), data.size(), "numbers"));
}

TEST(ByteView, ReadsBothByteOrders) {
  const Data data = {1, 2, 3, 4, 5};
  const ByteView view(data.data(), data.size(), "bytes");
  EXPECT_EQ(view.Word(1), 0x05040302u);
  EXPECT_EQ(view.BigEndianWord(1), 0x02030405u);
  EXPECT_EQ(view.Byte(4), 5);
}

TEST(ByteView, NothingIsReadBeyondTheEnd) {
  const Data data = {1, 2, 3, 4, 5};
  const ByteView view(data.data(), data.size(), "bytes");
  EXPECT_THROW(view.Byte(5), FileFault);
  EXPECT_THROW(view.Word(2), FileFault);
  EXPECT_THROW(view.Word(UINT64_MAX), FileFault);
  EXPECT_THROW(view.PaddedText(1, 5), FileFault);
  EXPECT_THROW(view.Part(1, 5, "part"), FileFault);
  EXPECT_THROW(view.Part(2, UINT64_MAX, "part"), FileFault);
  EXPECT_THROW(view.Part(UINT64_MAX, 2, "part"), FileFault);
  EXPECT_EQ(view.Part(5, 0, "part").Size(), 0u);
  EXPECT_THROW(ByteView().Byte(0), FileFault);
}

TEST(ByteCursor, ReadsNumbersOfAnyLength) {
  struct {
    Data data;
    std::uint64_t plain;
    std::int64_t withSign;
  } const cases[] = {
      {{0x00}, 0, 0},
      {{0x3F}, 63, 63},
      {{0x7F}, 127, -1},
      {{0x80, 0x01}, 128, 128},
      {{0x80, 0x7F}, 0x3F80, -128},
      {{0x85, 0x80, 0x00}, 5, 5},
      {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}, INT64_MAX, INT64_MAX},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(Cursor(one.data).Uleb(), one.plain);
    EXPECT_EQ(Cursor(one.data).Sleb(), one.withSign);
  }
  Data most(10, 0xFF);
  most[9] = 0x01;
  EXPECT_EQ(Cursor(most).Uleb(), UINT64_MAX);
  most[9] = 0x7F;
  EXPECT_EQ(Cursor(most).Sleb(), -1);
}

TEST(ByteCursor, NumbersEndAndKeepTo64Bits) {
  Data data(10, 0xFF);
  EXPECT_THROW(Cursor(data).Uleb(), FileFault);
  data[9] = 0x02;
  EXPECT_THROW(Cursor(data).Uleb(), FileFault);
  EXPECT_THROW(Cursor(data).Sleb(), FileFault);
  Data zeros(10, 0x80);
  zeros.push_back(0);
  EXPECT_THROW(Cursor(zeros).Uleb(), FileFault);
  EXPECT_THROW(Cursor(zeros).Sleb(), FileFault);
}

TEST(ByteCursor, TextsEnd) {
  const Data data = {'a', 'b', 0, 'c'};
  ByteCursor cursor = Cursor(data);
  EXPECT_EQ(cursor.Text(), "ab");
  EXPECT_THROW(cursor.Text(), FileFault);
}

TEST(FileFault, IsOneLine) { EXPECT_STREQ(FileFault("a\nb\tc").what(), "a?b?c"); }

}  // namespace
}  // namespace host
