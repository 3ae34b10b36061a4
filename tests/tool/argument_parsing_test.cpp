// Values, names and defaults of method arguments, and the texts that describe them.
#include "tool/argument_parsing.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tool/exit_status.h"

namespace tool {
namespace {

host::Declaration Declare(const std::string& text) {
  const auto declaration = host::ParseDeclaration(text);
  if (!declaration) throw std::logic_error("bad declaration in a test: " + text);
  return *declaration;
}

template <typename Type>
Type Only(const std::string& typeName, const std::string& word) {
  const auto parsed = ParseArguments(Declare("F(a as " + typeName + ")"), {word});
  return std::get<Type>(parsed.values.at(0));
}

void ExpectRefused(const std::string& declaration, const std::vector<std::string>& words,
                   const std::string& reason) {
  try {
    ParseArguments(Declare(declaration), words);
    ADD_FAILURE() << "accepted for " << declaration;
  } catch (const UsageError& error) {
    EXPECT_EQ(std::string(error.what()).substr(0, reason.size()), reason);
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
  }
}

TEST(ArgumentParsing, IntegersAreDecimalOrHexadecimalOf32Bits) {
  const struct {
    const char* word;
    std::int32_t value;
  } rows[] = {
      {"0", 0},
      {"-0", 0},
      {"+7", 7},
      {"2147483647", 2147483647},
      {"-2147483648", INT32_MIN},
      {"0x1F", 31},
      {"0Xff", 255},
      {"0xFFFFFFFF", -1},
      {"007", 7},
  };
  for (const auto& row : rows) EXPECT_EQ(Only<std::int32_t>("integer", row.word), row.value);
  for (const char* word : {"", "-", "+", "1.0", "1e3", " 1", "1 ", "2147483648", "0x",
                           "0x1FFFFFFFF", "+-1", "one", "0x-1", "0x+1"}) {
    ExpectRefused("F(a as integer)", {word}, "'a' must be a whole number of 32 bits, not '");
  }
}

TEST(ArgumentParsing, DoublesAreDecimal) {
  const struct {
    const char* word;
    double value;
  } rows[] = {{"1", 1}, {"-2.5", -2.5}, {".5", 0.5}, {"+1e-3", 0.001}, {"3.", 3}};
  for (const auto& row : rows) EXPECT_EQ(Only<double>("double", row.word), row.value);
  EXPECT_TRUE(std::isnan(Only<double>("double", "nan")));
  EXPECT_EQ(Only<double>("double", "-inf"), -INFINITY);
  for (const char* word : {"", ".", "1,5", "0x10", "1.5x"}) {
    ExpectRefused("F(a as double)", {word}, "'a' must be a number, not '");
  }
}

TEST(ArgumentParsing, BooleansAreWordsOrDigits) {
  for (const char* word : {"true", "TRUE", "1"}) EXPECT_TRUE(Only<bool>("boolean", word));
  for (const char* word : {"false", "False", "0"}) EXPECT_FALSE(Only<bool>("boolean", word));
  for (const char* word : {"", "yes", "2", "t"}) {
    ExpectRefused("F(a as boolean)", {word}, "'a' must be true or false, not '");
  }
}

TEST(ArgumentParsing, PicturesAreFilesOrNil) {
  EXPECT_EQ(Only<PictureArgument>("picture", "x/y.png").path, "x/y.png");
  EXPECT_EQ(Only<PictureArgument>("picture", "Nil").path, "");
  EXPECT_EQ(Only<PictureArgument>("picture", "b=c.png").path, "b=c.png");
  EXPECT_EQ(Only<PictureArgument>("picture", "a=c.png").path, "c.png");
  ExpectRefused("F(a as picture)", {"a="}, "'a' must be a picture file or nil, not ''");
}

TEST(ArgumentParsing, DefaultsFillWhatIsNotGivenAndAreMarkedSo) {
  const auto declaration =
      Declare("F(a as integer, b as double = -1.5, c as boolean=true) as picture");
  const Arguments arguments = ParseArguments(declaration, {"C=false", "3"});
  EXPECT_EQ(arguments.values, (std::vector<Argument>{3, -1.5, false}));
  EXPECT_EQ(arguments.given, (std::vector<bool>{true, false, true}));
}

TEST(ArgumentParsing, TheReceiverIsNoParameter) {
  const auto declaration = Declare("F(extends ref as Picture, a as integer) as picture");
  EXPECT_EQ(Signature(declaration), "F(a as integer) as picture");
  EXPECT_EQ(ParseArguments(declaration, {"4"}).values, (std::vector<Argument>{4}));
  ExpectRefused("F(extends ref as Picture, a as integer) as picture", {"ref=1", "2"},
                "there is no parameter 'ref'");
}

TEST(ArgumentParsing, MistakesNameTheDeclaration) {
  const char* text = "F(a as integer, b as Boolean = False) as boolean";
  const struct {
    std::vector<std::string> words;
    const char* reason;
  } rows[] = {
      {{}, "'a' is missing; the declaration is F(a as integer, b as Boolean = False) as boolean"},
      {{"1", "true", "3"}, "too many arguments; the declaration is F(a as integer, b"},
      {{"1", "a=2"}, "'a' is given twice; the declaration is F("},
      {{"A=1", "2"}, "'a' is given twice; the declaration is F("},
      {{"x=1"}, "there is no parameter 'x'; the declaration is F("},
  };
  for (const auto& row : rows) ExpectRefused(text, row.words, row.reason);
}

TEST(ArgumentParsing, NearNamesOfParametersAreSuggested) {
  ExpectRefused("F(width as integer, b as integer)", {"widht=1"},
                "there is no parameter 'widht'; did you mean 'width'? The declaration is F(width");
}

TEST(ArgumentParsing, ASizeStandsForWidthAndHeightWhereverTheyAre) {
  const struct {
    const char* declaration;
    std::vector<std::string> words;
    const char* call;  // on 6x4
  } rows[] = {
      {"F(width as integer, height as integer, a as integer = 9)", {"3x"}, "F(3, 2, 9)"},
      {"F(WIDTH as integer, Height as integer, a as integer)", {"50%", "7"}, "F(3, 2, 7)"},
      {"F(width as integer, height as integer, a as integer)", {"a=7", "x2"}, "F(3, 2, 7)"},
      {"F(width as integer, height as integer, a as integer)", {"Width=x2", "a=7"}, "F(3, 2, 7)"},
      {"F(width as integer, a as integer, height as integer)", {"3x5", "7"}, "F(3, 7, 5)"},
      {"F(width as integer, a as integer, height as integer, b as picture)",
       {"3x5", "7", "c=d.png"},
       "F(3, 7, 5, c=d.png)"},
      {"F(height as integer, width as integer, a as integer)", {"width=3x5", "a=7"}, "F(5, 3, 7)"},
      {"F(width as integer = 1, height as integer = 1)", {"200%"}, "F(12, 8)"},
  };
  for (const auto& row : rows) {
    const auto declaration = Declare(row.declaration);
    Arguments arguments = ParseArguments(declaration, row.words);
    FitSize(arguments, {6, 4});
    EXPECT_EQ(CallText(declaration, arguments), row.call);
    EXPECT_FALSE(arguments.size);
  }
}

TEST(ArgumentParsing, ASizeCountsAsGiven) {
  const auto declaration =
      Declare("F(width as integer = 1, height as integer = 1, a as integer = 1)");
  EXPECT_EQ(ParseArguments(declaration, {"3x"}).given, (std::vector<bool>{true, true, false}));
}

TEST(ArgumentParsing, ASizeNeedsIntegersForBothSides) {
  ExpectRefused("F(width as integer)", {"3x"}, "'width' must be a whole number of 32 bits, not");
  ExpectRefused("F(width as integer, height as double)", {"3x"},
                "'width' must be a whole number of 32 bits, not");
  ExpectRefused("F(height as integer, width as integer)", {"3x", "2"},
                "'height' must be a whole number of 32 bits, not");
  ExpectRefused("F(height as integer, width as integer)", {"3", "2x"}, "'height' is given twice");
  ExpectRefused("F(width as integer, height as integer)", {"3x2", "1"}, "too many arguments");
}

TEST(ArgumentParsing, CallTextShowsEveryValue) {
  const auto declaration =
      Declare("F(a as integer, b as double, c as boolean, d as picture = nil)");
  const Arguments arguments = ParseArguments(declaration, {"-3", "0.25", "1"});
  EXPECT_EQ(CallText(declaration, arguments), "F(-3, 0.25, true, nil)");
}

}  // namespace
}  // namespace tool
