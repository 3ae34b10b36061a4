// Copies through the host's graphics objects.
#include <gtest/gtest.h>

#include "pixels/picture_copy.h"
#include "plugin/wrappers.h"
#include "tests/pixels/linked_host.h"
#include "tests/pixels/picture_pair.h"

namespace {

using namespace pixels_test;

TEST(GraphicsDrawPicture, DrawsThroughTheGraphicsObjectAndGivesItUp) {
  LinkedHost host(Desktop());
  const Pair pair(host, Context(3, 2), Context(6, 4));
  pair.Draw(6, 4, 3, 2);
  EXPECT_EQ(host.Calls(), (Lines{"pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
                                 FindsDrawPicture("Graphics#3"),
                                 "Graphics#3.DrawPicture(Picture#1, 0, 0, 6, 4, 0, 0, 3, 2)",
                                 "REALUnlockObject(Graphics#3)"}));
  EXPECT_EQ(pair.dst->Get(5, 3), pair.src->Get(2, 1));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(GraphicsDrawPicture, PositionsAreAlwaysZero) {
  LinkedHost host(Desktop());
  const Pair pair(host, Context(3, 2), Context(3, 2));
  GraphicsDrawPicture(HandleOf(pair.dst), HandleOf(pair.src), 1, 2, 3, 2, 4, 5, 3, 2);
  EXPECT_EQ(host.Calls()[2], "Graphics#3.DrawPicture(Picture#1, 0, 0, 3, 2, 0, 0, 3, 2)");
}

TEST(GraphicsDrawPicture, WithoutTheMethodCopiesAndOldHostsAreAskedForTheirRoutineInVain) {
  for (const double version : {2011.9, 2012.0}) {
    LinkedHost host(Console(version));
    host.runtime.WithholdHostMethod(kDrawPictureDeclaration);
    const Pair pair(host);
    pair.Draw(3, 2, 3, 2);
    Lines expected = {"resolve(pluginPictureGraphicsGetter)",
                      "pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
                      "resolve(REALLoadObjectMethod)",
                      LacksDrawPicture("Graphics#3"),
                      "resolve(REALLockPictureDescription)",
                      "REALLockPictureDescription(Picture#1, 10) = 1",
                      "REALLockPictureDescription(Picture#2, 10) = 1",
                      "resolve(unlockPictureDescription)",
                      "unlockPictureDescription(Picture#2)",
                      "unlockPictureDescription(Picture#1)",
                      "resolve(REALPictureClearCache)",
                      "REALPictureClearCache(Picture#2)",
                      "resolve(REALUnlockObject)",
                      "REALUnlockObject(Graphics#3)"};
    if (version < 2012.0) {
      expected.insert(expected.begin() + 4, "resolve(RuntimeGraphicsDrawPicture)");
    }
    EXPECT_EQ(host.CallsAndLookUps(), expected) << version;
    EXPECT_TRUE(pair.Copied()) << version;
    EXPECT_EQ(host.LeftOver(), Lines{}) << version;
  }
}

TEST(GraphicsDrawPicture, WithoutAGraphicsObjectCopies) {
  for (const bool withheld : {false, true}) {
    LinkedHost host(Console(2011.9));
    const Pair pair(host);
    host.FailEntry("pluginPictureGraphicsGetter");
    if (withheld) host.runtime.Withhold("pluginPictureGraphicsGetter");
    pair.Draw(3, 2, 3, 2);
    Lines expected = kBothLocked;
    if (!withheld) {
      expected.insert(expected.begin(), "pluginPictureGraphicsGetter(Picture#2) = nil");
    }
    const Lines lines = host.CallsAndLookUps();
    Lines calls;
    for (const std::string& line : lines) {
      EXPECT_EQ(line.find("RuntimeGraphicsDrawPicture"), std::string::npos);
      if (!line.starts_with("resolve(")) calls.push_back(line);
    }
    EXPECT_EQ(calls, expected);
    EXPECT_TRUE(pair.Copied());
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(GraphicsDrawPicture, OfNilOnlyTakesAndGivesUpTheGraphicsObject) {
  LinkedHost host(Desktop(2011.9));
  host.Make(Context(3, 2));
  host::Picture* dst = host.Make(Context(3, 2));
  GraphicsDrawPicture(HandleOf(dst), nullptr, 0, 0, 3, 2, 0, 0, 3, 2);
  EXPECT_EQ(host.Calls(), (Lines{"pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
                                 "REALUnlockObject(Graphics#3)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(GraphicsDrawPicture, IntoNilAsksForItsGraphicsObjectAndNothingElse) {
  LinkedHost host(Desktop(2011.9));
  host::Picture* src = host.Make(Context(3, 2));
  GraphicsDrawPicture(nullptr, HandleOf(src), 0, 0, 3, 2, 0, 0, 3, 2);
  EXPECT_EQ(host.Calls(), Lines{"pluginPictureGraphicsGetter(nil) = nil"});
  host.runtime.Book().ForgetViolations();  // of the host, which does not like nil
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(DrawWithGraphics, LeavesTheGraphicsObjectToTheCaller) {
  LinkedHost host(Desktop());
  const Pair pair(host, Context(3, 2), Context(3, 2));
  const REALgraphics graphics = REALGetPictureGraphics(HandleOf(pair.dst));
  host.Mark();
  DrawWithGraphics(graphics, HandleOf(pair.dst), HandleOf(pair.src), 3, 2, 3, 2);
  EXPECT_EQ(host.Calls(), (Lines{FindsDrawPicture("Graphics#3"),
                                 "Graphics#3.DrawPicture(Picture#1, 0, 0, 3, 2, 0, 0, 3, 2)"}));
  EXPECT_EQ(pair.dst->Get(2, 1), pair.src->Get(2, 1));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
