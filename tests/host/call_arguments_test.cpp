#include "host/call_arguments.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace host {
namespace {

RegisteredMethod Method(const char* declaration) {
  RegisteredMethod method;
  method.declaration = ParseDeclaration(declaration).value();
  return method;
}

std::vector<NativeArgument> Arguments(const char* declaration, const std::vector<Value>& values) {
  return NativeArguments(Method(declaration), nullptr, values);
}

TEST(CallArguments, TheReceiverComesFirstOnBothPaths) {
  Picture picture(PictureSpec{});
  const auto handle = HandleOf<std::uintptr_t>(&picture);
  for (const char* text : {"F(a as integer)", "F(extends ref as Picture, a as integer)"}) {
    const auto native = NativeArguments(Method(text), &picture, {std::int32_t{7}});
    ASSERT_EQ(native.size(), 2u) << text;
    EXPECT_EQ(native[0].word, handle) << text;
    EXPECT_EQ(static_cast<std::uint32_t>(native[1].word), 7u) << text;
  }
  EXPECT_EQ(NativeArguments(Method("F(extends ref as Picture, )"), &picture, {}).size(), 1u);
  EXPECT_EQ(Arguments("F()", {})[0].word, 0u) << "a nil receiver";
}

TEST(CallArguments, SharedMethodsHaveNoReceiver) {
  RegisteredMethod method = Method("F(a as integer)");
  method.isShared = true;
  EXPECT_EQ(NativeArguments(method, nullptr, {std::int32_t{7}}).size(), 1u);
}

TEST(CallArguments, BitsThatTheConventionLeavesOpenAreNoise) {
  for (const bool truth : {false, true}) {
    const std::uintptr_t word = Arguments("F(a as boolean)", {truth})[1].word;
    EXPECT_EQ(word & 0xFF, truth ? 1u : 0u);
    EXPECT_NE(word >> 8, 0u);
  }
  for (const std::int32_t number : {0, -1, 5}) {
    const std::uintptr_t word = Arguments("F(a as integer)", {number})[1].word;
    EXPECT_EQ(static_cast<std::int32_t>(static_cast<std::uint32_t>(word)), number);
    if constexpr (sizeof word == 8) {
      EXPECT_EQ(word >> 32, 0xA5A5A5A5u);
    }
  }
}

TEST(CallArguments, ValuesAreConvertedToTheDeclaredType) {
  Picture picture(PictureSpec{});
  const auto native = Arguments("F(a as double, b as double, c as picture, d as picture)",
                                {1.5, std::int32_t{2}, &picture, std::monostate()});
  EXPECT_TRUE(native[1].isDouble);
  EXPECT_EQ(native[1].number, 1.5);
  EXPECT_TRUE(native[2].isDouble);
  EXPECT_EQ(native[2].number, 2.0);
  EXPECT_EQ(native[3].word, HandleOf<std::uintptr_t>(&picture));
  EXPECT_EQ(native[4].word, 0u);
}

TEST(CallArguments, WrongKindsAndNumbersAreRefused) {
  Picture picture(PictureSpec{});
  const std::pair<const char*, std::vector<Value>> rows[] = {
      {"F(a as integer)", {1.0}},
      {"F(a as integer)", {true}},
      {"F(a as integer)", {std::monostate()}},
      {"F(a as double)", {false}},
      {"F(a as boolean)", {std::int32_t{1}}},
      {"F(a as picture)", {std::int32_t{0}}},
      {"F(a as string)", {std::int32_t{0}}},
      {"F(a as integer)", {}},
      {"F()", {std::int32_t{0}}},
      {"F(extends ref as Picture, a as integer)", {&picture, std::int32_t{0}}},
  };
  for (const auto& [text, values] : rows) {
    EXPECT_THROW(Arguments(text, values), std::invalid_argument) << text;
  }
}

TEST(CallArguments, MissingArgumentsTakeTheDeclaredDefaults) {
  const auto native = Arguments(
      "F(a as integer, b as integer = -10000, c as double = 1.5, d as boolean = FALSE, "
      "e as boolean=true, f as picture = Nil, g as integer = &hFF, h as integer = &b101, "
      "i as double = 2)",
      {std::int32_t{1}});
  ASSERT_EQ(native.size(), 10u);
  EXPECT_EQ(static_cast<std::int32_t>(static_cast<std::uint32_t>(native[2].word)), -10000);
  EXPECT_EQ(native[3].number, 1.5);
  EXPECT_EQ(native[4].word & 0xFF, 0u);
  EXPECT_EQ(native[5].word & 0xFF, 1u);
  EXPECT_EQ(native[6].word, 0u);
  EXPECT_EQ(static_cast<std::uint32_t>(native[7].word), 255u);
  EXPECT_EQ(static_cast<std::uint32_t>(native[8].word), 5u);
  EXPECT_EQ(native[9].number, 2.0);
}

TEST(CallArguments, DefaultsOfTheWrongTypeAreRefused) {
  for (const char* text :
       {"F(a as integer = 1.5)", "F(a as integer = false)", "F(a as integer = 99999999999)",
        "F(a as double = x)", "F(a as boolean = 1)", "F(a as picture = 0)"}) {
    EXPECT_THROW(Arguments(text, {}), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace host
