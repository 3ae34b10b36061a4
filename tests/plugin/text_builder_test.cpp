// Texts built in place: what fits is kept, the rest is dropped.
#include "plugin/text_builder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(TextBuilder, StartsEmpty) {
  const TextBuilder<4> builder(3);
  EXPECT_STREQ(builder.Text(), "");
}

TEST(TextBuilder, AppendsTextsAndPartsOfTexts) {
  TextBuilder<16> builder(15);
  builder.Append("ab").Append("").Append("cdef", 2).Append("g", 0).Append("h");
  EXPECT_STREQ(builder.Text(), "abcdh");
}

struct CutCase {
  std::size_t longest;
  const char* expected;
};

TEST(TextBuilder, DropsWhatDoesNotFit) {
  const CutCase cases[] = {{0, ""}, {1, "a"}, {2, "ab"}, {3, "abc"}, {4, "abcd"}, {5, "abcd"}};
  for (const CutCase& row : cases) {
    TextBuilder<8> builder(row.longest);
    builder.Append("abc").Append("d");
    EXPECT_STREQ(builder.Text(), row.expected) << row.longest;
  }
}

TEST(TextBuilder, TakesNothingMoreOnceItIsFull) {
  TextBuilder<4> builder(3);
  builder.Append("abcdefghij").Append("k").Append("lmn", 3);
  EXPECT_STREQ(builder.Text(), "abc");
}

TEST(TextBuilder, FillsItsCapacityUpToTheTerminatingZero) {
  TextBuilder<100> builder(99);
  builder.Append(std::string(98, 'x').c_str()).Append("yz!");
  EXPECT_EQ(builder.Text(), std::string(98, 'x') + "y");
}

}  // namespace
