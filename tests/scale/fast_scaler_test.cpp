// The fast scaler, through the loaded plug-in: results worked out by hand.
#include <gtest/gtest.h>

#include "tests/support/allocation_faults.h"
#include "tests/support/case_name.h"
#include "tests/support/pictures.h"
#include "tests/support/plugin_under_test.h"

namespace {

using host::ApplicationKind;
using oracle::Image;
using support::Words;

struct FastCase {
  const char* name;
  ApplicationKind kind;
  int resultFormat;
  Image source;
  int width, height;
  Image expected;
};

// Without antialiasing, every request takes the fast scaler.
Image FastScaled(const FastCase& c) {
  support::LoadedPlugin plugin({.kind = c.kind, .newPixelFormat = c.resultFormat});
  host::Picture* source = support::PictureOf(plugin.Host(), c.source);
  const host::CallReport report =
      plugin.Library().Call("ScaleZVQ", source, {c.width, c.height, false, 0});
  EXPECT_EQ(support::Complaints(report), "") << c.name;
  const host::Picture* result = report.ResultPicture();
  EXPECT_NE(result, nullptr) << c.name;
  return result == nullptr ? Image{} : support::ImageOf(*result);
}

class FastScalerByHand : public testing::TestWithParam<FastCase> {};

TEST_P(FastScalerByHand, GivesTheseWords) {
  EXPECT_EQ(support::Difference(GetParam().expected, FastScaled(GetParam())), "");
}

constexpr auto kDesktop = ApplicationKind::kDesktop;
constexpr auto kConsole = ApplicationKind::kConsole;

// clang-format off
const FastCase kCases[] = {
    // Four copies of the pixel; the alpha byte 0x12 becomes 255.
    {"DoublingOnePixelGivesFourOpaqueCopies", kDesktop, 1, Words(1, {{0x12332211}}), 2, 2,
     Words(1, {{0xFF332211, 0xFF332211}, {0xFF332211, 0xFF332211}})},
    // Format 2 keeps alpha in the low byte.
    {"DoublingOnePixelIsOpaqueInAlphaFirstFormats", kDesktop, 6, Words(2, {{0x33221100}}), 2, 2,
     Words(6, {{0x332211FF, 0x332211FF}, {0x332211FF, 0x332211FF}})},
    // Red 10, 20 | 30, 40 in the first row: (0.5 + 10 + 20) * 2 rows: (0.5 + 60) / 4 = 15.125; 35.125.
    // The second row, all 200, does not contribute.
    {"HalvingIgnoresOddRows", kDesktop, 5, Words(5, {{10, 20, 30, 40}, {200, 200, 200, 200}}), 2, 1,
     Words(5, {{0xFF00000F, 0xFF000023}})},
    // (0.5 + 2·(0 + 1)) / 4 = 0.625 -> 0; (0.5 + 2·(1 + 1)) / 4 = 1.125 -> 1; (0.5 + 2·(254 + 255)) / 4 =
    // 254.625 -> 254: the half is added once, so means are as good as truncated.
    {"TheHalfIsAddedOnce", kDesktop, 5, Words(5, {{0, 1, 1, 1, 254, 255}, {9, 9, 9, 9, 9, 9}}), 3, 1,
     Words(5, {{0xFF000000, 0xFF000001, 0xFF0000FE}})},
    // A block of one row: (0.5 + 0 + 1) / 2 = 0.75 -> 0; (0.5 + 1 + 2) / 2 = 1.75 -> 1.
    {"OneRowIsNotRepeated", kDesktop, 5, Words(5, {{0, 1, 1, 2}}), 2, 1,
     Words(5, {{0xFF000000, 0xFF000001}})},
    // 3 -> 2: step 1.5, blocks of 2 from columns 0 and 1: (0.5+10+20)/2 = 15.25, (0.5+20+60)/2 = 40.25.
    {"BlocksOverlapWhenTheStepIsNotWhole", kDesktop, 5, Words(5, {{10, 20, 60}}), 2, 1,
     Words(5, {{0xFF00000F, 0xFF000028}})},
    // 2 -> 5: step 0.4, columns 0, 0.4, 0.8, 1.2, 1.6 -> 0 0 0 1 1.
    {"EnlargingTakesTheTruncatedColumn", kDesktop, 5, Words(5, {{7, 9}}), 5, 1,
     Words(5, {{0xFF000007, 0xFF000007, 0xFF000007, 0xFF000009, 0xFF000009}})},
    // Red 4+8, green 6+6, blue 255+1 over one row: 6.25, 6.25, 128.25; from format 1 into format 4.
    {"ChannelsKeepTheirMeaningAcrossFormats", kDesktop, 4, Words(1, {{0x00FF0604, 0xFF010608}}), 1, 1,
     Words(4, {{0x800606FF}})},
    // Host buffers hold blue lowest; the top byte becomes 0.
    {"HostBuffersGetATopByteOfZero", kConsole, 8, Words(8, {{0xFF102030, 0x7F304050}}), 1, 1,
     Words(8, {{0x00203040}})},
    // 1×3 -> 1×2: step 1.5, rows 0 and 1, each counted twice: (0.5 + 2·50) / 2 = 50.25; (0.5+2·70)/2 = 70.25.
    {"RowsAreChosenByTheTruncatedStep", kDesktop, 5, Words(5, {{50}, {70}, {90}}), 1, 2,
     Words(5, {{0xFF000032}, {0xFF000046}})},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(FastScaler, FastScalerByHand, testing::ValuesIn(kCases),
                         support::CaseName<FastCase>);

TEST(FastScaler, YieldsAfterEveryRowAndOnceMore) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 9, .height = 5});
  plugin.Library().Call("ScaleZVQ", source, {4, 7, false, 1});
  EXPECT_EQ(plugin.Host().Yields(), 7 + 1);
}

TEST(FastScaler, YieldsOnceMoreWhenThePictureCannotBeMade) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  plugin.Host().Withhold("newPicture");
  host::Picture* source = plugin.Host().NewPicture({.width = 9, .height = 5});
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {4, 7, false, -1});
  EXPECT_EQ(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Complaints(report), "");
  EXPECT_EQ(plugin.Host().Yields(), 1);
}

TEST(FastScaler, YieldsBetweenTheReleaseOfResultAndSource) {
  support::LoadedPlugin plugin;
  const support::RushingClock clock;
  host::Picture* source = plugin.Host().NewPicture({.width = 1, .height = 1});
  plugin.Library().Call("ScaleZVQ", source, {1, 2, false, 1});
  std::vector<std::string> calls = plugin.Host().Calls().Calls();
  ASSERT_GE(calls.size(), 5U);
  calls.erase(calls.begin(), calls.end() - 5);
  const std::vector<std::string> expected = {
      "REALPictureClearCache(Picture#2)", "REALUnlockObject(Picture#2)", "REALYieldToRB()",
      "unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"};
  EXPECT_EQ(calls, expected);
}

TEST(FastScaler, RowsBeyondAShorterResultLandOnItsFirst) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  plugin.Host().adjustNewPicture = [](host::PictureSpec& spec) { spec.height = 2; };
  host::Picture* source =
      support::PictureOf(plugin.Host(), Words(5, {{11}, {22}, {33}, {44}, {55}, {66}}));
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {1, 3, false, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000037}, {0xFF000021}}),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

TEST(FastScaler, ANarrowerResultIsRefusedUnwritten) {
  support::LoadedPlugin plugin;
  host::Picture* made = nullptr;
  plugin.Host().adjustNewPicture = [](host::PictureSpec& spec) {
    spec.width -= 1;
    spec.guard = host::Guard::kAfter;
  };
  host::Picture* source = plugin.Host().NewPicture({.width = 9, .height = 9});
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {5, 5, false, 0});
  EXPECT_EQ(report.ResultPicture(), made);
  EXPECT_EQ(support::Complaints(report), "");
}

TEST(FastScaler, ASourceOfAnotherLockedSizeIsReadWithinIt) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  host::PictureSpec guarded;
  guarded.guard = host::Guard::kAfter;
  host::Picture* source =
      support::PictureOf(plugin.Host(), Words(5, {{1, 2, 3, 4}, {5, 6, 7, 8}}), guarded);
  source->distort = [](host::Picture::LockedView view) { view.context.height = 1; };
  // One row of four is what the lock shows: halved to (0.5 + 1 + 2) / 2 = 1, (0.5 + 3 + 4) / 2 = 3.
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {2, 1, false, 0});
  ASSERT_NE(report.ResultPicture(), nullptr);
  EXPECT_EQ(support::Difference(Words(5, {{0xFF000001, 0xFF000003}}),
                                support::ImageOf(*report.ResultPicture())),
            "");
}

// What other code does to the source between rows is seen by the rows that follow, also when that
// code's own scaling put an end to yielding.
TEST(FastScaler, RowsAfterAYieldReadTheSourceAnew) {
  support::LoadedPlugin plugin({.newPixelFormat = 5});
  const support::RushingClock clock;
  host::Picture* source = support::PictureOf(plugin.Host(), Words(5, {{1}}));
  plugin.Host().onYield = [&] {
    source->SetWord(0, 0, source->Word(0, 0) + 10);
    if (plugin.Host().Yields() != 2) return;
    const host::CallReport inner = plugin.Library().Call("ScaleZVQ", source, {1, 2, false, 0});
    plugin.Host().Release(inner.ResultPicture());
  };
  const host::CallReport report = plugin.Library().Call("ScaleZVQ", source, {2, 4, false, 1});
  ASSERT_NE(report.ResultPicture(), nullptr);
  const Image expected = Words(5, {{0xFF000001, 0xFF000001},
                                   {0xFF00000B, 0xFF00000B},
                                   {0xFF000015, 0xFF000015},
                                   {0xFF000015, 0xFF000015}});
  EXPECT_EQ(support::Difference(expected, support::ImageOf(*report.ResultPicture())), "");
}

TEST(FastScaler, AllocatesNothingOfItsOwn) {
  support::LoadedPlugin plugin;
  host::Picture* source = plugin.Host().NewPicture({.width = 40, .height = 30});
  const std::vector<host::Value> request = {20, 10, false, 0};
  const support::AllocationWatch watch;
  plugin.Library().Call("ScaleZVQ", source, request);
  EXPECT_EQ(watch.Calls(), 0);
}

}  // namespace
