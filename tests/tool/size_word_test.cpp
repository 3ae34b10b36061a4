// Sizes as people write them.
#include "tool/size_word.h"

#include <gtest/gtest.h>

#include "tool/exit_status.h"

namespace tool {

static void PrintTo(const Extent& extent, std::ostream* out) {
  *out << extent.width << 'x' << extent.height;
}

namespace {

constexpr std::int32_t kMost = 2147483647;

TEST(SizeWord, FollowsTheProportionsOfThePicture) {
  const struct {
    const char* text;
    Extent picture, size;
  } rows[] = {
      {"800x600", {3, 5}, {800, 600}},
      {"800X600", {3, 5}, {800, 600}},
      {"010x1", {3, 5}, {10, 1}},
      {"800x", {400, 300}, {800, 600}},
      {"x600", {400, 300}, {800, 600}},
      {"1x", {400, 300}, {1, 1}},
      {"1x", {1000, 1}, {1, 1}},
      {"x1", {1, 1000}, {1, 1}},
      {"3x", {2, 1}, {3, 2}},     // 1.5 up
      {"3x", {200, 99}, {3, 1}},  // 1.485 down
      {"x1", {5, 2}, {3, 1}},     // 2.5 up
      {"2147483647x", {2, 2}, {kMost, kMost}},
      {"x2147483647", {kMost, kMost}, {kMost, kMost}},
      {"2147483647x1", {1, 1}, {kMost, 1}},
      {"50%", {640, 480}, {320, 240}},
      {"50%", {5, 4}, {3, 2}},  // 2.5 up
      {"12.5%", {100, 99}, {13, 12}},
      {".5%", {1000, 10}, {5, 1}},
      {"5.%", {100, 200}, {5, 10}},
      {"0.0001%", {640, 480}, {1, 1}},
      {"100%", {kMost, 1}, {kMost, 1}},
      {"300%", {1, 2}, {3, 6}},
  };
  for (const auto& row : rows) {
    const auto size = SizeWord::Parse(row.text);
    ASSERT_TRUE(size) << row.text;
    EXPECT_EQ(size->For(row.picture), row.size) << row.text;
  }
}

TEST(SizeWord, IsNoOtherText) {
  for (const char* text :
       {"",     "x",    "X",    "%",     "0x",          "x0",          "0x5",  "5x0",  "0%",
        "0.0%", "-5x",  "5x-5", "+5x",   "+5%",         "-5%",         "5",    "5.5x", "5x5x5",
        "5xx5", "5 x5", " 5x",  "5x ",   "5%%",         "%5",          "5 %",  "5e1%", "0x1p1%",
        "inf%", "nan%", ".%",   "5..5%", "2147483648x", "x2147483648", "5x5%", "fivex"}) {
    EXPECT_FALSE(SizeWord::Parse(text)) << text;
  }
}

TEST(SizeWord, RefusesSidesOfMoreThan32BitsHold) {
  const struct {
    const char* text;
    Extent picture;
  } rows[] = {
      {"2147483647x", {1, 2}},
      {"x2147483647", {kMost, 1}},
      {"100.1%", {1, kMost}},
      {"99999999999999999999%", {1, 1}},
  };
  for (const auto& row : rows) {
    try {
      SizeWord::Parse(row.text).value().For(row.picture);
      ADD_FAILURE() << row.text;
    } catch (const UsageError& error) {
      EXPECT_EQ(std::string(error.what()).find("'" + std::string(row.text) + "' of a picture of "),
                0U);
    }
  }
}

}  // namespace
}  // namespace tool
