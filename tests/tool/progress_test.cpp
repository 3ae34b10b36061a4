// The line on the terminal, with steps and without.
#include "tool/progress.h"

#include <gtest/gtest.h>

#include <regex>
#include <thread>

namespace tool {
namespace {

void Pass(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// Each time that the line was renewed: "CR, erase, text".
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  const std::string start = "\r\033[K";
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = text.find(start, at + 1);
    lines.push_back(text.substr(at + start.size(), next - at - start.size()));
    at = next == std::string::npos ? text.size() : next;
  }
  return lines;
}

TEST(Progress, ShowsNothingOfWhatIsDoneAtOnce) {
  host::Runtime runtime;
  testing::internal::CaptureStderr();
  {
    Progress progress(runtime, "work", 2, 2);
    progress.Begin("first", 1);
    runtime.onYield();
    progress.Begin("second", 1);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(runtime.onYield);
}

TEST(Progress, MovesWithinAStepByItsYieldsAndStaysInIt) {
  host::Runtime runtime;
  testing::internal::CaptureStderr();
  {
    Progress progress(runtime, "work", 3, 4);
    progress.Begin("first", 1);
    Pass(250);
    runtime.onYield();  // nothing is known yet of how long it takes
    progress.Begin("second", 2);
    for (int i = 0; i < 4; ++i) {
      Pass(120);
      runtime.onYield();
      runtime.onYield();  // too soon for another line
    }
    progress.Begin("third", 1);
    Pass(120);
    runtime.onYield();
  }
  const std::vector<std::string> lines = Lines(testing::internal::GetCapturedStderr());
  ASSERT_GE(lines.size(), 6u);
  EXPECT_EQ(lines.front(), "work [------------------------]   0 %  1 of 3: first");
  EXPECT_EQ(lines.back(), "");
  int before = -1, within = 0;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    std::smatch parts;
    const std::regex form("work \\[(#*)(-*)\\] +(\\d+) %  (\\d) of 3: (first|second|third)");
    ASSERT_TRUE(std::regex_match(lines[i], parts, form)) << lines[i];
    EXPECT_EQ(parts[1].length() + parts[2].length(), 24);
    const int percent = std::stoi(parts[3]), step = std::stoi(parts[4]);
    EXPECT_GE(percent, before) << lines[i];
    before = percent;
    if (step == 2) {
      ++within;
      EXPECT_LE(percent, 75);
    }
    if (step == 3) {
      EXPECT_GE(percent, 75);
      EXPECT_LE(percent, 100);
    }
  }
  EXPECT_GE(within, 3);
  EXPECT_GT(before, 75);
}

TEST(Progress, WithoutStepsShowsTheTimePassed) {
  host::Runtime runtime;
  testing::internal::CaptureStderr();
  {
    Progress progress(runtime, "work");
    Pass(210);
    runtime.onYield();
  }
  EXPECT_EQ(Lines(testing::internal::GetCapturedStderr()),
            (std::vector<std::string>{"work: working, 0.2 s", ""}));
}

}  // namespace
}  // namespace tool
