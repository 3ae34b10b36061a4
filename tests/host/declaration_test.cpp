#include "host/declaration.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// "Name(extends ref Picture; a Integer=0): Picture", from the parsed parts.
std::string Summary(const Declaration& declaration) {
  const char* types[] = {"none", "integer", "double", "boolean", "picture", "string", "other"};
  std::string text = declaration.name + "(";
  for (const Parameter& parameter : declaration.parameters) {
    if (text.back() != '(') text += "; ";
    text += std::string(parameter.extends ? "extends " : "") +
            (parameter.assigns ? "assigns " : "") + parameter.name + " " +
            types[static_cast<int>(parameter.type)] +
            (parameter.defaultValue ? "=" + *parameter.defaultValue : "");
  }
  return text + "): " + types[static_cast<int>(declaration.result)];
}

TEST(Declaration, IsReadInAllItsForms) {
  const std::pair<const char*, const char*> rows[] = {
      {"F", "F(): none"},
      {"F as picture", "F(): picture"},
      {"F()", "F(): none"},
      {"F() as boolean", "F(): boolean"},
      {"F(a as integer)", "F(a integer): none"},
      {"F(a as integer = 0, b as double=1.0) as picture", "F(a integer=0; b double=1.0): picture"},
      {"F ( A As INTEGER=-10000 ,B aS Boolean = false ) AS Picture ",
       "F(A integer=-10000; B boolean=false): picture"},
      {"F(extends ref as Picture, a as integer) as T", "F(extends ref picture; a integer): other"},
      {"F(extends ref as Picture) as T", "F(extends ref picture): other"},
      {"F(extends ref as Picture, ) as T", "F(extends ref picture): other"},
      {"F(extends ref as Picture, ,)", ""},
      {"F(a as integer, assigns value as string)", "F(a integer; assigns value string): none"},
      {"Mask(assigns newMask As Picture)", "Mask(assigns newMask picture): none"},
      {"F(s as string = \"a, b)\", n as integer = 1)", "F(s string=\"a, b)\"; n integer=1): none"},
      {"F(byref a as int32) as double", "F(a integer): double"},
      {"F(extends as picture)", "F(extends picture): none"},
      {"", ""},
      {"F(", ""},
      {"F(a)", ""},
      {"F(a as)", ""},
      {"F(as integer)", ""},
      {"F(a as integer", ""},
      {"F(a as integer,)", ""},
      {"F(, a as integer)", ""},
      {"F(a as integer b as integer)", ""},
      {"F(a as integer = )", ""},
      {"F(a as integer) as", ""},
      {"F(a as integer) picture", ""},
      {"F() as picture x", ""},
      {"(a as integer)", ""},
  };
  for (const auto& [text, expected] : rows) {
    std::string error;
    const auto parsed = ParseDeclaration(text, &error);
    EXPECT_EQ(parsed ? Summary(*parsed) : "", expected) << text;
    EXPECT_EQ(error.empty(), parsed.has_value()) << text << ": " << error;
  }
}

TEST(Declaration, KeepsTheTextAndTypeNamesAsWritten) {
  const auto parsed = ParseDeclaration("F(pic as PICTURE) as Color");
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->text, "F(pic as PICTURE) as Color");
  EXPECT_EQ(parsed->parameters[0].typeName, "PICTURE");
  EXPECT_EQ(parsed->parameters[0].defaultValue, std::nullopt);
}

TEST(Declaration, NeedsNoPlaceForTheError) { EXPECT_FALSE(ParseDeclaration("F(")); }

}  // namespace
}  // namespace host
