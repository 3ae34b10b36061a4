// What is written into the manual page stays what it is.
#include "tool/manual_page.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

// The page of a tool with one command, whose purpose and example are these.
std::string Page(const std::string& purpose, const std::string& example) {
  CommandEntry command;
  command.name = "tool do";
  command.purpose = purpose;
  command.sections = {{"Examples", {example}}};
  CommandEntry tool;
  tool.name = "tool";
  tool.purpose = "Be tried";
  tool.commands = {command};
  return ManualPage(tool, "1.2.3");
}

bool Holds(const std::string& page, const std::string& text) {
  return page.find(text) != std::string::npos;
}

TEST(ManualPage, TextIsNeverTakenForACommandOfThePage) {
  const struct {
    const char* text;
    const char* written;
  } cases[] = {
      {".png or .jpg", "\n\\&.png or .jpg"},
      {"'quoted'", "\n\\(aqquoted\\(aq"},
      {"a \\n \"b\"", "\na \\(rsn \\(dqb\\(dq"},
      {"2^64 - 1 ~ `x`", "\n2\\(ha64 \\- 1 \\(ti \\(gax\\(ga"},
  };
  for (const auto& one : cases) {
    EXPECT_TRUE(Holds(Page(one.text, "x"), std::string(one.written) + ".\n")) << one.text;
    EXPECT_TRUE(Holds(Page("x", one.text), std::string(".EX") + one.written + "\n")) << one.text;
  }
}

TEST(ManualPage, NamesTheToolAndItsVersion) {
  const std::string page = Page("Do it", "tool do");
  EXPECT_TRUE(Holds(page, ".TH TOOL 1 \"\" \"tool 1.2.3\" \"User Commands\"\n"));
  EXPECT_TRUE(Holds(page, ".SH NAME\ntool \\- be tried\n"));
}

}  // namespace
}  // namespace tool
