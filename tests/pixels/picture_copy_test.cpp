// Copies from buffer to buffer.
#include "pixels/picture_copy.h"

#include <gtest/gtest.h>

#include "tests/pixels/linked_host.h"
#include "tests/pixels/picture_pair.h"

namespace {

using namespace pixels_test;
using View = host::Picture::LockedView;

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
      {"type", [](View view) { view.description.type = 8; }},
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

}  // namespace
