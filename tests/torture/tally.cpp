#include "tests/torture/tally.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/torture/expected_counts.h"

namespace torture {

Tally& Total() {
  static Tally total;
  return total;
}

Tally Since(const Tally& earlier) {
  const Tally& now = Total();
  return {now.points - earlier.points, now.calls - earlier.calls, now.children - earlier.children};
}

void Report(const char* name, const Tally& done, const Tally& expected) {
  std::printf(
      "%s: %ld points failed, %ld calls (expected at least %ld and %ld), %ld of them in "
      "child processes (at least %ld)\n",
      name, done.points, done.calls, expected.points, expected.calls, done.children,
      expected.children);
  EXPECT_GE(done.points, expected.points) << "fewer points were failed than there used to be";
  EXPECT_GE(done.calls, expected.calls) << "fewer calls were made than there used to be";
  EXPECT_GE(done.children, expected.children);
}

namespace {

// The closing line of a run, of whichever tests it had.
class Summary : public testing::Environment {
 public:
  void TearDown() override {
    const Tally& total = Total();
    if (total.calls == 0) return;
    std::printf(
        "torture: %ld points failed, %ld calls (of a whole run: %ld and %ld), %ld of them "
        "in child processes (one for each distinct sequence of host calls and throwing "
        "release)\n",
        total.points, total.calls, kExpectedTotal.points, kExpectedTotal.calls, total.children);
  }
};

const auto* const kSummary = testing::AddGlobalTestEnvironment(new Summary);

}  // namespace

}  // namespace torture
