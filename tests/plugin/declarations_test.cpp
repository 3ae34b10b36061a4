// Declarations with the leading parameter that names the class they extend.
#include "plugin/declarations.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "tests/support/allocation_faults.h"

namespace {

std::string Extended(const std::string& declaration, const std::string& className = "Picture") {
  const std::unique_ptr<char, decltype(&std::free)> text(
      AddClassParameter(declaration.c_str(), className.c_str()), &std::free);
  return text == nullptr ? "(null)" : text.get();
}

std::string N(std::size_t count) { return std::string(count, 'n'); }

struct DeclarationCase {
  const char* declaration;
  const char* expected;
};

TEST(AddClassParameter, InsertsTheClassAsFirstParameter) {
  const DeclarationCase cases[] = {
      {"F(a as integer) as T", "F(extends ref as Picture, a as integer) as T"},
      {"F() as T", "F(extends ref as Picture, ) as T"},
      {"F()", "F(extends ref as Picture, )"},
      {"F(", "F(extends ref as Picture, "},
      {"(a)", "(extends ref as Picture, a)"},
      {"F as T", "F(extends ref as Picture) as T"},
      {"F ", "F(extends ref as Picture) "},
      {" F", "(extends ref as Picture) F"},
      {"F (a as integer)", "F(extends ref as Picture) (a as integer)"},
      {"F( a)", "F(extends ref as Picture,  a)"},
      {"F(a = g(1)) as T", "F(extends ref as Picture, a = g(1)) as T"},
      {"F", "F(extends ref as Picture)"},
      {"", "(extends ref as Picture)"},
      {"F)", "F)(extends ref as Picture)"},
      {"F\tas\tT", "F\tas\tT(extends ref as Picture)"},
      {"%s%n(%d)", "%s%n(extends ref as Picture, %d)"},
      {"BlurZVQ(Radius as double, yield as integer = 0) as picture",
       "BlurZVQ(extends ref as Picture, Radius as double, yield as integer = 0) as picture"},
  };
  for (const DeclarationCase& row : cases) EXPECT_EQ(Extended(row.declaration), row.expected);
}

TEST(AddClassParameter, TakesAnyClassName) {
  EXPECT_EQ(Extended("F(a)", ""), "F(extends ref as , a)");
  EXPECT_EQ(Extended("F as T", "%s"), "F(extends ref as %s) as T");
  EXPECT_EQ(Extended("F", "A(B"), "F(extends ref as A(B)");
  EXPECT_EQ(Extended("F(a)", N(2000)), "F(extends ref as " + N(981));
  EXPECT_EQ(Extended("F a", N(2000)), "F(extends ref as " + N(981));
  EXPECT_EQ(Extended("F", N(2000)), "F(extends ref as " + N(982));
}

// "(extends ref as Picture, " takes the place of the "(" and is 24 bytes longer.
TEST(AddClassParameter, CutsTextsWithAParameterListAt998Bytes) {
  const std::string head = "F(extends ref as Picture, ";
  ASSERT_EQ(head.size(), 26u);
  EXPECT_EQ(Extended("F(" + N(971)), head + N(971));  // 997 bytes
  EXPECT_EQ(Extended("F(" + N(972)), head + N(972));  // 998
  EXPECT_EQ(Extended("F(" + N(973)), head + N(972));  // 999
  EXPECT_EQ(Extended("F(" + N(974)), head + N(972));
  EXPECT_EQ(Extended("F(" + N(5000)), head + N(972));
}

TEST(AddClassParameter, CutsTextsWithABlankAt998Bytes) {
  const std::string head = "F(extends ref as Picture) ";
  ASSERT_EQ(head.size(), 26u);
  EXPECT_EQ(Extended("F " + N(971)), head + N(971));
  EXPECT_EQ(Extended("F " + N(972)), head + N(972));
  EXPECT_EQ(Extended("F " + N(973)), head + N(972));
  EXPECT_EQ(Extended("F " + N(5000)), head + N(972));
}

TEST(AddClassParameter, CutsBareNamesAt999Bytes) {
  const std::string tail = "(extends ref as Picture)";
  ASSERT_EQ(tail.size(), 24u);
  EXPECT_EQ(Extended(N(974)), N(974) + tail);  // 998 bytes
  EXPECT_EQ(Extended(N(975)), N(975) + tail);  // 999
  EXPECT_EQ(Extended(N(976)), N(976) + "(extends ref as Picture");
  EXPECT_EQ(Extended(N(998)), N(998) + "(");
  EXPECT_EQ(Extended(N(999)), N(999));
  EXPECT_EQ(Extended(N(1000)), N(999));
  EXPECT_EQ(Extended(N(5000)), N(999));
}

struct PositionCase {
  std::size_t position;  // of "(" or of the blank
  std::size_t kept;      // bytes of the name that are kept
  const char* inserted;  // what follows them
};

TEST(AddClassParameter, InsertsNothingWherePositionLeavesNoRoom) {
  const PositionCase parentheses[] = {
      {973, 973, "(extends ref as Picture, "},
      {974, 974, "(extends ref as Picture,"},
      {996, 996, "(e"},
      {997, 997, "("},
      {998, 998, ""},
      {999, 999, ""},
      {1000, 999, ""},
      {1001, 999, ""},
      {4000, 999, ""},
  };
  for (const PositionCase& row : parentheses) {
    EXPECT_EQ(Extended(N(row.position) + "(a as integer) as T"), N(row.kept) + row.inserted);
  }
  const PositionCase blanks[] = {
      {974, 974, "(extends ref as Picture)"},
      {973, 973, "(extends ref as Picture) "},
      {997, 997, "("},
      {998, 998, ""},
      {999, 999, ""},
      {1000, 999, ""},
      {1001, 999, ""},
  };
  for (const PositionCase& row : blanks) {
    EXPECT_EQ(Extended(N(row.position) + " as T"), N(row.kept) + row.inserted);
  }
}

TEST(AddClassParameter, MakesOneCopyOfTheSizeOfItsText) {
  const support::AllocationWatch watch;
  char* text = AddClassParameter("F as T", "Picture");
  EXPECT_EQ(watch.Sizes(), std::vector<std::size_t>{31});
  std::free(text);
}

TEST(AddClassParameter, AnswersNullWhenThereIsNoMemory) {
  for (const char* declaration : {"F(a)", "F as T", "F"}) {
    const support::AllocationWatch watch(1);
    EXPECT_EQ(AddClassParameter(declaration, "Picture"), nullptr) << declaration;
  }
}

}  // namespace
