// The inner parts of picturehost run: words, names of outputs, outcomes.
#include <gtest/gtest.h>

#include <sstream>

#include "tool/exit_status.h"
#include "tool/output_pattern.h"
#include "tool/run_outcome.h"
#include "tool/run_words.h"

namespace tool {
namespace {

TEST(OutputName, FillsInPlaceholders) {
  const struct {
    const char* pattern;
    const char* input;
    std::size_t index, count;
    const char* name;
  } rows[] = {
      {"out.png", "in.png", 1, 1, "out.png"},
      {"{name}.png", "folder/in.JPG", 1, 1, "in.png"},
      {"{name}.{ext}", "folder/in.old.JPG", 1, 1, "in.old.JPG"},
      {"{name}-{ext}", "in", 1, 1, "in-"},
      {"{name}{name}", ".hidden", 1, 1, ".hidden.hidden"},
      {"{index}", "in", 9, 9, "9"},
      {"{index}", "in", 9, 10, "09"},
      {"{index}/{index}", "in", 10, 100, "010/010"},
      {"{name}", "{index}.png", 7, 7, "{index}"},
      {"{Name}{}{n}}{name", "in", 1, 1, "{Name}{}{n}}{name"},
      {"", "in", 1, 1, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(OutputName(row.pattern, row.input, row.index, row.count), row.name) << row.pattern;
  }
}

TEST(OutputNames, AreOnesThatNobodyElseHas) {
  const std::vector<std::string> inputs = {"x/a.png", "y/b.png"};
  EXPECT_EQ(OutputNames("{name}.png", inputs, {}), (std::vector<std::string>{"a.png", "b.png"}));
  for (const char* pattern : {"same.png", "{ext}.png", "x/{name}.png", "y/../x/{name}.png",
                              "{nam}{name}.png", "read{index}.png"}) {
    EXPECT_THROW(OutputNames(pattern, inputs, {"./read2.png"}), UsageError) << pattern;
  }
}

host::Declaration Declare(const std::string& text) { return host::ParseDeclaration(text).value(); }

TEST(Divide, EndsThePicturesAtTheFirstMethod) {
  const std::vector<host::Declaration> methods = {Declare("Blur(radius as double)"),
                                                  Declare("Scale(width as integer)")};
  const RunWords words = Divide({"scale", "b.png", "SCALE", "Blur", "2"}, methods);
  EXPECT_EQ(words.inputs, (std::vector<std::string>{"scale", "b.png"}));
  EXPECT_EQ(words.method.name, "Scale");
  EXPECT_EQ(words.arguments, (std::vector<std::string>{"Blur", "2"}));
}

TEST(Divide, NamesTheWordThatWasMeantForTheMethod) {
  const std::vector<host::Declaration> methods = {Declare("Blur(radius as double)")};
  const struct {
    std::vector<std::string> words;
    const char* complaint;
  } rows[] = {
      {{"a", "Blurr", "2"}, "the plug-in has no method 'Blurr'; did you mean 'Blur'?"},
      {{"a", "b.png", "Blurr", "2"}, "the plug-in has no method 'Blurr'; did you mean 'Blur'?"},
      {{"a", "/", "b.png", "2"},
       "the plug-in has no method 'b.png'; picturehost methods lists what it has"},
      {{"a", "/"}, "the plug-in has no method '/'; picturehost methods lists what it has"},
  };
  for (const auto& row : rows) {
    try {
      Divide(row.words, methods);
      ADD_FAILURE() << row.complaint;
    } catch (const UsageError& error) {
      EXPECT_STREQ(error.what(), row.complaint);
    }
  }
}

TEST(MayBeInput, HoldsForFilesAndForWhatNoMethodIsCalled) {
  for (const char* word : {"a.png", "./a", "2", "", "a-b", "/", "."}) EXPECT_TRUE(MayBeInput(word));
  for (const char* word : {"Scale", "_a1", "nothing_of_that_name"}) EXPECT_FALSE(MayBeInput(word));
}

RunOutcome Outcome() {
  RunOutcome outcome;
  outcome.input = "in \"1\".png";
  outcome.output = "out.png";
  outcome.call = "F(\"\\\n)";
  outcome.status = RunStatus::kNotUnderstood;
  outcome.faults = {"one \"fault\"", "", "another\nfault"};
  outcome.width = 3;
  outcome.height = -4;
  outcome.timed = true;
  outcome.milliseconds = 1.0 / 3;
  outcome.yields = 5;
  outcome.number = "6.5";
  return outcome;
}

TEST(RunOutcome, IsReadAsItWasWritten) {
  for (const RunOutcome& outcome : {Outcome(), RunOutcome()}) {
    std::stringstream text;
    Write(text, outcome);
    RunOutcome read;
    ASSERT_TRUE(Read(text, read));
    EXPECT_EQ(read.status, outcome.status);
    EXPECT_EQ(read.call, outcome.call);
    EXPECT_EQ(read.faults, outcome.faults);
    EXPECT_EQ(read.width, outcome.width);
    EXPECT_EQ(read.height, outcome.height);
    EXPECT_EQ(read.timed, outcome.timed);
    EXPECT_EQ(read.milliseconds, outcome.milliseconds);
    EXPECT_EQ(read.yields, outcome.yields);
    EXPECT_EQ(read.number, outcome.number);
  }
}

TEST(RunOutcome, IsNotReadWhenItIsCutOff) {
  std::ostringstream whole;
  Write(whole, Outcome());
  for (const std::size_t length : {std::size_t(0), whole.str().size() / 2}) {
    std::istringstream text(whole.str().substr(0, length));
    RunOutcome read;
    EXPECT_FALSE(Read(text, read)) << length;
  }
}

TEST(RunOutcome, IsALineOfJson) {
  RunOutcome outcome = Outcome();
  EXPECT_EQ(
      JsonOf(outcome),
      "{\"input\": \"in \\\"1\\\".png\", \"output\": \"out.png\", \"call\": "
      "\"F(\\\"\\\\\\u000a)\", "
      "\"width\": null, \"height\": null, \"milliseconds\": 0.333, \"yields\": 5, \"number\": 6.5, "
      "\"status\": \"failed\", \"error\": \"one \\\"fault\\\"\\u000a\\u000aanother\\u000afault\"}");
  outcome.status = RunStatus::kDone;
  outcome.faults.clear();
  outcome.timed = false;
  outcome.number = "nan";
  EXPECT_NE(
      JsonOf(outcome).find("\"width\": 3, \"height\": -4, \"milliseconds\": null, \"yields\": 5, "
                           "\"number\": null, \"status\": \"done\", \"error\": null}"),
      std::string::npos);
}

}  // namespace
}  // namespace tool
