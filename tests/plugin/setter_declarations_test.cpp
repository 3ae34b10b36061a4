// Declarations of the assigns form, made from extended ones.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "plugin/declarations.h"
#include "tests/support/allocation_faults.h"

namespace {

std::string Assigns(const std::string& extended) {
  const std::unique_ptr<char, decltype(&std::free)> text(AddAssignsParameter(extended.c_str()),
                                                         &std::free);
  return text == nullptr ? "(null)" : text.get();
}

std::string N(std::size_t count) { return std::string(count, 'n'); }

struct SetterCase {
  const char* extended;
  const char* expected;
};

TEST(AddAssignsParameter, PutsTheValueBehindTheParameters) {
  const SetterCase cases[] = {
      {"F(extends ref as Picture, a as integer) as T",
       "F(extends ref as Picture, a as integer, assigns value as T)"},
      {"F(extends ref as Picture) as T", "F(extends ref as Picture, assigns value as T)"},
      {"F(extends ref as Picture)", "F(extends ref as Picture, assigns value)"},
      {"F(extends ref as Picture, ) as T", "F(extends ref as Picture, , assigns value as T)"},
      {"F(a = g(1)) as T", "F(a = g(1, assigns value) as T)"},
      {"F)", "F, assigns value)"},
      {") as T", ", assigns value as T)"},
      {"F(%s) as %n", "F(%s, assigns value as %n)"},
  };
  for (const SetterCase& row : cases) EXPECT_EQ(Assigns(row.extended), row.expected);
}

TEST(AddAssignsParameter, WithoutAClosingParenthesisTheValueStandsBeforeTheFirstBlank) {
  EXPECT_EQ(Assigns("F as T"), "F(assigns value as T)");
  EXPECT_EQ(Assigns(" as T"), "(assigns value as T)");
  EXPECT_EQ(Assigns("F "), "F(assigns value )");
  EXPECT_EQ(Assigns("F(extends ref as Picture, a"), "F(extends(assigns value ref as Picture, a)");
}

TEST(AddAssignsParameter, AnswersNullForATextWithNeither) {
  EXPECT_EQ(AddAssignsParameter(""), nullptr);
  EXPECT_EQ(AddAssignsParameter("F"), nullptr);
  EXPECT_EQ(AddAssignsParameter("F(a,b"), nullptr);
  EXPECT_EQ(AddAssignsParameter(N(990).c_str()), nullptr);
}

TEST(AddAssignsParameter, CutsTheTextAt998Bytes) {
  const std::string head = "F(a, assigns value";
  ASSERT_EQ(head.size(), 18u);
  EXPECT_EQ(Assigns("F(a)" + N(978)), head + N(978) + ")");  // 997 bytes
  EXPECT_EQ(Assigns("F(a)" + N(979)), head + N(979) + ")");  // 998
  EXPECT_EQ(Assigns("F(a)" + N(980)), head + N(980));        // 999
  EXPECT_EQ(Assigns("F(a)" + N(981)), head + N(980));
  EXPECT_EQ(Assigns("F(a)" + N(5000)), head + N(980));

  const std::string blankHead = "F(assigns value ";
  ASSERT_EQ(blankHead.size(), 16u);
  EXPECT_EQ(Assigns("F " + N(980)), blankHead + N(980) + ")");  // 997
  EXPECT_EQ(Assigns("F " + N(981)), blankHead + N(981) + ")");  // 998
  EXPECT_EQ(Assigns("F " + N(982)), blankHead + N(982));        // 999
  EXPECT_EQ(Assigns("F " + N(983)), blankHead + N(982));
}

struct PositionCase {
  std::size_t position;
  const char* inserted;
};

TEST(AddAssignsParameter, InsertsNothingWherePositionLeavesNoRoom) {
  const PositionCase parentheses[] = {
      {977, ", assigns value as T)"},
      {978, ", assigns value as T"},
      {996, ", "},
      {997, ","},
      {998, ""},
  };
  for (const PositionCase& row : parentheses) {
    EXPECT_EQ(Assigns(N(row.position) + ") as T"), N(row.position) + row.inserted);
  }
  const PositionCase blanks[] = {
      {978, "(assigns value as T)"},
      {979, "(assigns value as T"},
      {997, "("},
      {998, ""},
  };
  for (const PositionCase& row : blanks) {
    EXPECT_EQ(Assigns(N(row.position) + " as T"), N(row.position) + row.inserted);
  }
}

TEST(AddAssignsParameter, AnswersNullWhenThereIsNoMemory) {
  for (const char* extended : {"F(a) as T", "F as T"}) {
    const support::AllocationWatch watch(1);
    EXPECT_EQ(AddAssignsParameter(extended), nullptr) << extended;
  }
}

}  // namespace
