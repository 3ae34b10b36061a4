// Console hosts whose row table has a hole: a row without an address is refused like a table
// without a first row, by every method and in every place.
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "tests/together/hostile_host.h"

namespace together {

namespace {

constexpr host::ApplicationKind kConsole = host::ApplicationKind::kConsole;

// The table without its third row.
void MakeHole(host::Picture::LockedView view) {
  static unsigned char* rows[64];
  const auto height = static_cast<std::size_t>(std::max(view.description.height, 0));
  std::copy_n(view.buffer.rowTable, std::min(height, std::size(rows)), rows);
  rows[2] = nullptr;
  view.buffer.rowTable = rows;
}

TEST(HostileRows, AReceiverWithAHoleFails) {
  for (const Method& method : kMethods) {
    HostileHost host(kConsole, false);
    host.receiver->distort = MakeHole;
    const host::CallReport report = host.Call(method);
    EXPECT_EQ(support::Complaints(report), "") << method.Text();
    EXPECT_TRUE(Failed(report)) << method.Text();
    host.ExpectReceiverUnchanged();
  }
}

TEST(HostileRows, ANewPictureWithAHoleFails) {
  for (const Method& method : kMethods) {
    if (method.name == std::string_view("DrawPictureFZVQ")) continue;  // makes none
    HostileHost host(kConsole, false);
    host.DistortNewPictures(MakeHole);
    const host::CallReport report = host.Call(method);
    EXPECT_EQ(support::Complaints(report), "") << method.Text();
    EXPECT_TRUE(Failed(report)) << method.Text();
  }
}

TEST(HostileRows, ADrawnPictureOrAMaskWithAHoleFailsTheDrawing) {
  for (const bool isMask : {false, true}) {
    HostileHost host(kConsole, false);
    (isMask ? host.mask : host.picture)->distort = MakeHole;
    if (isMask) host.plugin.Host().SetMask(host.picture, host.mask);
    const host::CallReport report = host.Call(kDraw);
    EXPECT_EQ(support::Complaints(report), "");
    EXPECT_EQ(report.result, host::Value(false));
    host.ExpectReceiverUnchanged();
  }
}

TEST(HostileRows, AMaskWithAHoleIsLeftOut) {
  for (const Method& method : {kBothFast, kBothSmooth}) {
    HostileHost host(kConsole, false);
    host.mask->distort = MakeHole;
    host.plugin.Host().SetMask(host.receiver, host.mask);
    const host::CallReport report = host.Call(method);
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    EXPECT_EQ(report.ResultPicture()->Mask(), nullptr);
  }
}

// Without graphics the scaled mask is copied row by row into the result's mask, which then stays
// as it was.
TEST(HostileRows, ACopyFromOrIntoAHoleIsNotMade) {
  for (const bool intoHole : {false, true}) {
    HostileHost host(kConsole, false);
    host::Runtime& runtime = host.plugin.Host();
    runtime.Withhold("pluginPictureGraphicsGetter");
    runtime.SetMask(host.receiver, host.mask);
    const std::size_t old = runtime.Book().Objects().size();
    // New pictures: the result, its scaled mask, the result's mask. The scaled mask is whole while
    // it is written.
    runtime.intercept = [&](const host::EntryCall& call) {
      const auto& objects = runtime.Book().Objects();
      const std::size_t hole = old + (intoHole ? 2 : 1);
      const bool copies = objects.size() == old + 3;
      if (copies && call.entry == std::string_view("REALLockPictureDescription")) {
        dynamic_cast<host::Picture&>(*objects[hole]).distort = MakeHole;
      }
      return host::Verdict::kProceed;
    };
    const host::CallReport report = host.Call(kBothFast);
    EXPECT_EQ(support::Complaints(report), "");
    ASSERT_NE(report.ResultPicture(), nullptr);
    const host::Picture* mask = report.ResultPicture()->Mask();
    ASSERT_NE(mask, nullptr);
    for (int y = 0; y < kNewHeight; ++y) {
      for (int x = 0; x < kNewWidth; ++x) EXPECT_EQ(mask->Get(x, y), host::Rgba());
    }
  }
}

}  // namespace

}  // namespace together
