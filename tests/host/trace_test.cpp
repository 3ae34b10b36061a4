#include "host/trace.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using Lines = std::vector<std::string>;

TEST(Trace, KeepsLinesInOrderAndCallsApartFromLookUps) {
  Trace trace;
  trace.Add("resolve(newPicture)");
  trace.Add("newPicture(1, 1, 32) = Picture#1");
  trace.Add("resolve(nothing) = nil");
  EXPECT_EQ(trace.Lines(), (Lines{"resolve(newPicture)", "newPicture(1, 1, 32) = Picture#1",
                                  "resolve(nothing) = nil"}));
  EXPECT_EQ(trace.Calls(), Lines{"newPicture(1, 1, 32) = Picture#1"});
  trace.Clear();
  EXPECT_TRUE(trace.Lines().empty());
}

TEST(Trace, TellsEachLineAsItIsAdded) {
  Trace trace;
  Lines told;
  trace.onLine = [&](const std::string& line) { told.push_back(line); };
  trace.Add("a");
  trace.Add("b");
  EXPECT_EQ(told, (Lines{"a", "b"}));
}

}  // namespace
}  // namespace host
