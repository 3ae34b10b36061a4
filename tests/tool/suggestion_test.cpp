// The right word for a mistyped one.
#include "tool/suggestion.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

TEST(Nearest, AllowsAThirdOfTheLettersToBeWrong) {
  const struct {
    const char* name;
    const char* word;
    const char* candidate;
    bool isNear;
  } rows[] = {
      {"itself", "width", "width", true},
      {"another letter case", "WIDTH", "width", true},
      {"a letter too many", "widtth", "width", true},
      {"a letter too few", "widh", "width", true},
      {"another letter", "wodth", "width", true},
      {"neighbours swapped", "wdith", "width", true},
      {"neighbours swapped, in another case", "WDITH", "width", true},
      {"two mistakes in five", "wdiht", "width", false},
      {"two mistakes in six", "raduis", "radios", true},
      {"letters swapped that are no neighbours", "cba", "abc", false},
      {"one of three letters", "pix", "pic", true},
      {"one of two letters", "px", "pc", false},
      {"three of nine, by length alone", "abcdefghi", "abcdef", true},
      {"four of nine", "abcdefghi", "abcde", false},
      {"nothing", "", "a", false},
      {"nothing for nothing", "a", "", false},
      {"the beginning", "scale", "ScaleImageAndMaskZVQ", true},
      {"a beginning of two letters", "sc", "ScaleZVQ", false},
      {"the end", "ImageAndMask", "ScaleImageAndMaskZVQ", false},
      {"something else", "rotate", "ScaleZVQ", false},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Nearest(row.word, {row.candidate}), row.isNear ? row.candidate : "") << row.name;
  }
}

TEST(Nearest, TakesTheOneWithTheFewestMistakes) {
  EXPECT_EQ(Nearest("ScalZVQ", {"ScalingZVQ", "ScaleZVQ", "BlurZVQ"}), "ScaleZVQ");
  EXPECT_EQ(Nearest("bat", {"cat", "hat", "bat"}), "bat");
  EXPECT_EQ(Nearest("bat", {"cat", "hat"}), "cat");
  EXPECT_EQ(Nearest("abc", {}), "");
}

TEST(Nearest, TakesTheShortestThatBeginsSoWhenNoneIsNear) {
  EXPECT_EQ(Nearest("Scal", {"ScaleImageAndMaskZVQ", "ScalingZVQ", "ScaleZVQ"}), "ScaleZVQ");
  EXPECT_EQ(Nearest("abcd", {"abcdefghijk", "abce"}), "abce");
}

TEST(DidYouMean, IsTheEndOfASentence) {
  EXPECT_EQ(DidYouMean("widht", {"height", "width"}), "; did you mean 'width'?");
  EXPECT_EQ(DidYouMean("depth", {"height", "alpha"}), "");
}

}  // namespace
}  // namespace tool
