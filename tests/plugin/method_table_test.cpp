// The class-extension record as it is before the host starts the plug-in.
#include "plugin/method_table.h"

#include <gtest/gtest.h>

#include "plugin/methods.h"
#include "tests/plugin/fake_host.h"

namespace {

using plugin_test::Word;
using plugin_test::WordsOf;

TEST(PictureClass, HoldsThese25Words) {
  const auto words = WordsOf(pictureClass);
  ASSERT_EQ(words.size(), 25u);
  EXPECT_EQ(words[0], 13u);
  EXPECT_STREQ(reinterpret_cast<const char*>(words[1]), "Picture");
  EXPECT_NE(words[9], 0u);
  EXPECT_EQ(words[10], 5u);
  EXPECT_EQ(words[20], 0x40000u);
  for (const std::size_t zero :
       {2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18, 19, 21, 22, 23, 24}) {
    EXPECT_EQ(words[zero], 0u) << zero;
  }
}

struct MethodCase {
  const void* routine;
  const char* declaration;
};

TEST(PictureClass, ListsTheFiveMethodsInOrder) {
  const MethodCase cases[] = {
      {reinterpret_cast<const void*>(DrawPictureFZVQ),
       "DrawPictureFZVQ(pic as picture, x as double, y as double, alpha as double = 1.0, yield as "
       "integer = 0) as boolean"},
      {reinterpret_cast<const void*>(ScaleZVQ),
       "ScaleZVQ(width as integer, height as integer, AntiAlias as boolean=false, YieldTicks as "
       "integer=0) as picture"},
      {reinterpret_cast<const void*>(ScaleImageAndMaskZVQ),
       "ScaleImageAndMaskZVQ(width as integer, height as integer, AntiAlias as boolean=false, "
       "YieldTicks as integer=0) as picture"},
      {reinterpret_cast<const void*>(ScalingZVQ),
       "ScalingZVQ(mode as integer, width as integer, height as integer, yield as integer = 0) as "
       "picture"},
      {reinterpret_cast<const void*>(BlurZVQ),
       "BlurZVQ(Radius as double, yield as integer = 0) as picture"},
  };
  ASSERT_EQ(pictureClass.methodCount, 5u);
  const auto* methods = static_cast<const REALmethodDefinition*>(pictureClass.methods);
  for (std::size_t i = 0; i < 5; ++i) {
    const auto words = WordsOf(methods[i]);
    EXPECT_EQ(words[0], Word(cases[i].routine)) << i;
    EXPECT_EQ(words[1], 0u) << i;
    EXPECT_STREQ(methods[i].declaration, cases[i].declaration);
    EXPECT_EQ(words[3], 0x40000u) << i;
    EXPECT_EQ(words[4], 0u) << i;
    EXPECT_EQ(words[5], 0u) << i;
  }
}

}  // namespace
