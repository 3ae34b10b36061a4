// Copies from picture to picture: through the host's drawing, and buffer to buffer.
#include "pixels/picture_copy.h"

#include <gtest/gtest.h>

#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;
using View = host::Picture::LockedView;

// Picture#1 is drawn or copied into Picture#2.
struct Pair {
  explicit Pair(LinkedHost& host, host::PictureSpec from = Buffer(3, 2),
                host::PictureSpec to = Buffer(3, 2)) {
    src = host.runtime.NewPicture(from);
    Number(*src);
    dst = host.Make(to);
  }
  bool Copy(int w, int h, int sw, int sh) const {
    return OwnCopy(HandleOf(dst), HandleOf(src), 0, 0, w, h, 0, 0, sw, sh);
  }
  void Draw(int w, int h, int sw, int sh) const {
    GraphicsDrawPicture(HandleOf(dst), HandleOf(src), 0, 0, w, h, 0, 0, sw, sh);
  }
  bool Copied() const {
    return dst->Word(0, 0) == NumberAt(0, 0) && dst->Word(2, 1) == NumberAt(2, 1);
  }
  bool Untouched() const {
    for (int y = 0; y < dst->Height(); ++y) {
      for (int x = 0; x < dst->Width(); ++x) {
        if (dst->Word(x, y) != 0x00FFFFFFu) return false;
      }
    }
    return true;
  }
  host::Picture* src;
  host::Picture* dst;
};

const Lines kBothLocked = {
    "REALLockPictureDescription(Picture#1, 10) = 1",
    "REALLockPictureDescription(Picture#2, 10) = 1", "unlockPictureDescription(Picture#2)",
    "unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#2)"};

TEST(OwnCopy, CopiesAllWordsAndUnlocksTheDestinationFirst) {
  for (const host::Guard guard : {host::Guard::kNone, host::Guard::kAfter, host::Guard::kBefore}) {
    LinkedHost host(Console());
    host::PictureSpec spec = Buffer(3, 5);
    spec.guard = guard;
    const Pair pair(host, spec, spec);
    EXPECT_TRUE(pair.Copy(3, 5, 3, 5));
    EXPECT_EQ(host.Calls(), kBothLocked);
    for (int y = 0; y < 5; ++y) {
      for (int x = 0; x < 3; ++x) EXPECT_EQ(pair.dst->Word(x, y), NumberAt(x, y));
    }
    EXPECT_EQ(pair.dst->Word(1, 4), 0x01020701u);
    EXPECT_EQ(pair.dst->DamagedPadding(), 0u);
    EXPECT_EQ(pair.dst->CacheClears(), 1);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(OwnCopy, CopiesEverythingWhateverSizeIsAskedForTwice) {
  for (const int size : {0, 1, 99, -5}) {
    LinkedHost host(Console());
    const Pair pair(host);
    EXPECT_TRUE(pair.Copy(size, size, size, size)) << size;
    EXPECT_TRUE(pair.Copied()) << size;
  }
}

TEST(OwnCopy, NeverScales) {
  const struct {
    int w, h, sw, sh;
  } rows[] = {{3, 2, 4, 2}, {3, 2, 3, 1}, {6, 4, 3, 2}, {2, 3, 3, 2}};
  for (const auto& row : rows) {
    LinkedHost host(Console());
    const Pair pair(host);
    EXPECT_FALSE(pair.Copy(row.w, row.h, row.sw, row.sh));
    EXPECT_EQ(host.CallsAndLookUps(), Lines{});
    EXPECT_TRUE(pair.Untouched());
  }
}

TEST(OwnCopy, OfNilOrIntoNilFailsAtOnce) {
  LinkedHost host(Console(2011.9));
  const Pair pair(host);
  EXPECT_FALSE(OwnCopy(nullptr, HandleOf(pair.src), 0, 0, 3, 2, 0, 0, 3, 2));
  EXPECT_FALSE(OwnCopy(HandleOf(pair.dst), nullptr, 0, 0, 3, 2, 0, 0, 3, 2));
  EXPECT_FALSE(OwnCopy(nullptr, nullptr, 0, 0, 3, 2, 0, 0, 3, 2));
  EXPECT_EQ(host.CallsAndLookUps(), Lines{});
}

TEST(OwnCopy, PicturesOfDifferentSizesAreLockedUnlockedAndClearedButNotCopied) {
  const host::PictureSpec sizes[] = {Buffer(4, 2), Buffer(2, 2), Buffer(3, 3), Buffer(3, 1),
                                     Buffer(2, 3)};
  for (const host::PictureSpec& size : sizes) {
    LinkedHost host(Console());
    const Pair pair(host, Buffer(3, 2), size);
    EXPECT_FALSE(pair.Copy(3, 2, 3, 2));
    EXPECT_EQ(host.Calls(), kBothLocked);
    EXPECT_TRUE(pair.Untouched());
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(OwnCopy, RecordsThatCannotBeCopiedAreUnlockedAndClearedAllTheSame) {
  const struct {
    const char* what;
    void (*distort)(View);
  } rows[] = {
      {"kind", [](View view) { view.buffer.kind = 1; }},
      {"width", [](View view) { view.buffer.width = 2; }},
      {"height", [](View view) { view.buffer.height = 1; }},
      {"no row table", [](View view) { view.buffer.rowTable = nullptr; }},
      {"no handle", [](View view) { view.description.handle = nullptr; }},
  };
  for (const auto& row : rows) {
    for (const bool distortSource : {false, true}) {
      LinkedHost host(Console());
      const Pair pair(host);
      (distortSource ? pair.src : pair.dst)->distort = row.distort;
      EXPECT_FALSE(pair.Copy(3, 2, 3, 2)) << row.what;
      EXPECT_EQ(host.Calls(), kBothLocked) << row.what;
      EXPECT_TRUE(pair.Untouched()) << row.what;
      EXPECT_EQ(host.LeftOver(), Lines{}) << row.what;
    }
  }
}

TEST(OwnCopy, TheSizeIsThatOfTheRecordsAndTheirValidWordIsNotAsked) {
  LinkedHost host(Console());
  const Pair pair(host);
  for (host::Picture* picture : {pair.src, pair.dst}) {
    picture->distort = [](View view) {
      view.buffer.height = 1;
      view.buffer.valid = 0;
      view.description.width = 77;
    };
  }
  EXPECT_TRUE(pair.Copy(3, 2, 3, 2));
  EXPECT_EQ(pair.dst->Word(2, 0), 0x01020302u);
  EXPECT_EQ(pair.dst->Word(0, 1), 0x00FFFFFFu);
}

TEST(OwnCopy, OfNoRowsSucceedsAndCopiesNothing) {
  LinkedHost host(Console());
  const Pair pair(host);
  pair.src->distort = pair.dst->distort = [](View view) { view.buffer.height = 0; };
  EXPECT_TRUE(pair.Copy(3, 2, 3, 2));
  EXPECT_EQ(host.Calls(), kBothLocked);
  EXPECT_TRUE(pair.Untouched());
}

TEST(OwnCopy, ASourceThatCannotBeLockedEndsItBeforeTheDestinationIsTouched) {
  for (const double version : {2011.9, 2012.0}) {
    LinkedHost host(Console(version));
    const Pair pair(host);
    pair.src->refuseLocks = true;
    EXPECT_FALSE(pair.Copy(3, 2, 3, 2));
    Lines expected = {"REALLockPictureDescription(Picture#1, 10) = 0"};
    if (version < 2012.0) expected.push_back("unlockPictureDescription(Picture#1)");
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(OwnCopy, ADestinationThatCannotBeLockedIsClearedAllTheSame) {
  for (const double version : {2011.9, 2012.0}) {
    LinkedHost host(Console(version));
    const Pair pair(host);
    pair.dst->refuseLocks = true;
    EXPECT_FALSE(pair.Copy(3, 2, 3, 2));
    Lines expected = {"REALLockPictureDescription(Picture#1, 10) = 1",
                      "REALLockPictureDescription(Picture#2, 10) = 0",
                      "unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#2)"};
    if (version < 2012.0) {
      expected.insert(expected.begin() + 2, "unlockPictureDescription(Picture#2)");
    }
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(OwnCopy, OfContextsFails) {
  LinkedHost host(Desktop());
  const Pair pair(host, Context(3, 2), Context(3, 2));
  EXPECT_FALSE(pair.Copy(3, 2, 3, 2));
  EXPECT_EQ(host.Calls(), Lines{"REALLockPictureDescription(Picture#1, 10) = 0"});
}

TEST(OwnCopy, IntoItselfChangesNothing) {
  LinkedHost host(Console());
  host::Picture* picture = host.Make(Buffer(3, 2));
  Number(*picture);
  EXPECT_TRUE(OwnCopy(HandleOf(picture), HandleOf(picture), 0, 0, 3, 2, 0, 0, 3, 2));
  EXPECT_EQ(picture->Word(2, 1), 0x01020402u);
  EXPECT_EQ(host.LeftOver(), Lines{});
}

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

TEST(DrawWithGraphics, LeavesTheGraphicsObjectToTheCaller) {
  LinkedHost host(Desktop());
  const Pair pair(host, Context(3, 2), Context(3, 2));
  const REALgraphics graphics =
      host::Runtime::Resolve("pluginPictureGraphicsGetter") == nullptr
          ? nullptr
          : reinterpret_cast<PluginPictureGraphicsGetterEntry*>(
                host::Runtime::Resolve("pluginPictureGraphicsGetter"))(HandleOf(pair.dst));
  host.Mark();
  DrawWithGraphics(graphics, HandleOf(pair.dst), HandleOf(pair.src), 3, 2, 3, 2);
  EXPECT_EQ(host.Calls(), (Lines{FindsDrawPicture("Graphics#3"),
                                 "Graphics#3.DrawPicture(Picture#1, 0, 0, 3, 2, 0, 0, 3, 2)"}));
  EXPECT_EQ(pair.dst->Get(2, 1), pair.src->Get(2, 1));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
