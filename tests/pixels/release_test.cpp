// What an editor gives up, when, and in which order.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "platform/linux/bundles.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

const std::string kAsksAlpha1 = "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false";
const std::string kAsksAlpha2 = "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false";

TEST(Relock, ReleasesTheFirstPictureCompletelyBeforeTheSecondIsTouched) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* first = host.runtime.NewPicture(Context(2, 2));
  host::Picture* second = host.Make(Context(5, 4, 3));
  {
    PictureEditor editor;
    ASSERT_EQ(editor.GetPictureEditor(HandleOf(first), 0, 1), 1);
    host.Calls();
    ASSERT_EQ(editor.GetPictureEditor(HandleOf(second), 1, 0), 1);
    EXPECT_EQ(host.Calls(),
              (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                     "REALUnlockObject(Picture#1)", kAsksAlpha2,
                     "REALLockPictureDescription(Picture#2, 8) = 1", "REALLockObject(Picture#2)"}));
    EXPECT_EQ(editor.width, 5);
    EXPECT_EQ(editor.pixelFormat, 3);
    EXPECT_FALSE(editor.writable);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#2)", "REALUnlockObject(Picture#2)"}));
  EXPECT_EQ(first->CacheClears(), 1);
  EXPECT_EQ(second->CacheClears(), 0);
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(Relock, OfTheSamePictureUnlocksItFirst) {
  LinkedHost host(Console());
  host.KnowKind();
  host::Picture* picture = host.Make(Buffer(2, 2));
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(
        host.Calls(),
        (Lines{kAsksAlpha1, "REALLockPictureDescription(Picture#1, 10) = 1",
               "REALLockObject(Picture#1)", "unlockPictureDescription(Picture#1)",
               "REALUnlockObject(Picture#1)", kAsksAlpha1,
               "REALLockPictureDescription(Picture#1, 10) = 1", "REALLockObject(Picture#1)"}));
    EXPECT_EQ(picture->References(), 2);
    EXPECT_EQ(host.runtime.Book().DescriptionLocks(picture), 1);
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(Relock, ThatFailsLeavesTheEditorReleased) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* first = host.runtime.NewPicture(Context(2, 2));
  host::Picture* second = host.Make(Context(2, 2));
  second->refuseLocks = true;
  {
    PictureEditor editor;
    ASSERT_EQ(editor.GetPictureEditor(HandleOf(first), 0, 1), 1);
    host.Calls();
    EXPECT_EQ(editor.GetPictureEditor(HandleOf(second), 0, 1), 0);
    EXPECT_EQ(editor.picture, nullptr);
    EXPECT_FALSE(editor.descriptionLocked);
    EXPECT_EQ(host.LeftOver(), Lines{});
    host.Calls();
  }
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(Relock, WithNilReleasesAndAsksTheHostForNothing) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 2));
  PictureEditor editor;
  ASSERT_EQ(editor.GetPictureEditor(HandleOf(picture), 0, 1), 1);
  host.Calls();
  EXPECT_EQ(editor.GetPictureEditor(nullptr, 1, 0), 0);
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(editor.picture, nullptr);
  EXPECT_FALSE(editor.descriptionLocked);
  EXPECT_EQ(host.LeftOver(), Lines{});
  EXPECT_EQ(editor.GetPictureEditor(nullptr, 1, 0), 0);
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(Release, OfAWriterWithoutAPictureClearsNoCache) {
  LinkedHost host(Desktop());
  {
    PictureEditor editor;
    editor.writable = true;
    editor.descriptionLocked = true;
    editor.status = 9;
    EXPECT_EQ(editor.GetPictureEditor(nullptr, 0, 1), 0);
    EXPECT_FALSE(editor.descriptionLocked);
    EXPECT_EQ(editor.status, 0);
    editor.descriptionLocked = true;
  }
  EXPECT_EQ(host.CallsAndLookUps(), Lines{});
}

TEST(Release, WithoutALockOnlyGivesUpThePicture) {
  LinkedHost host(Desktop());
  host::Picture* picture = host.Make(Context(2, 2));
  host.runtime.Book().Lock(picture, "test");
  {
    PictureEditor editor;
    editor.picture = HandleOf(picture);
  }
  EXPECT_EQ(host.Calls(), Lines{"REALUnlockObject(Picture#1)"});
  EXPECT_EQ(host.LeftOver(), Lines{});
}

// ---- With a pixel map -------------------------------------------------------------------------

std::vector<PixMap**> gUnlocked;
Lines* gCallsAtUnlock = nullptr;

void RecordUnlock(PixMap** pixMap) {
  gUnlocked.push_back(pixMap);
  *gCallsAtUnlock = host::Runtime::Current().Calls().Calls();
}

class Script {
 public:
  explicit Script(Lines& callsAtUnlock) {
    gUnlocked.clear();
    gCallsAtUnlock = &callsAtUnlock;
    platform::BundleScript script;
    script.function = reinterpret_cast<void*>(&RecordUnlock);
    platform::SetBundleScript(script);
  }
  ~Script() { platform::ClearBundleScript(); }
};

TEST(Release, UnlocksThePixelMapFirstAndOnce) {
  LinkedHost host(Desktop());
  host.KnowKind();
  Lines before = {"never called"};
  const Script script(before);
  host::Picture* picture = host.Make(Context(2, 2));
  PixMap* map = nullptr;
  {
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    writer.pixMap = &map;
    host.Calls();
  }
  EXPECT_EQ(gUnlocked, std::vector<PixMap**>{&map});
  EXPECT_EQ(before, Lines{});
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(Release, OfAnEditorThatHoldsNothingElseUnlocksThePixelMap) {
  LinkedHost host(Desktop());
  Lines before;
  const Script script(before);
  PixMap* map = nullptr;
  {
    PictureEditor editor;
    editor.pixMap = &map;
    EXPECT_EQ(editor.GetPictureEditor(nullptr, 1, 0), 0);
    EXPECT_EQ(editor.pixMap, nullptr);
    EXPECT_EQ(gUnlocked, std::vector<PixMap**>{&map});
  }
  EXPECT_EQ(gUnlocked.size(), 1u);
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(Release, APixelMapThatNobodyCanUnlockIsForgotten) {
  LinkedHost host(Desktop());
  host.KnowKind();
  platform::ClearBundleScript();
  host::Picture* picture = host.Make(Context(2, 2));
  PixMap* map = nullptr;
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    reader.pixMap = &map;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(reader.pixMap, nullptr);
  }
  EXPECT_EQ(platform::BundleCalls(), Lines{"FSFindFolder(-32767, fram, 1)"});
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
