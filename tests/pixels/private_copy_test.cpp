// Opaque pictures that cannot be locked and are read through a copy of the editor's own.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "plugin/application_kind.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

// An opaque picture that only the host itself can read.
host::Picture* MakeLocked(LinkedHost& host, int width, int height) {
  host::Picture* picture = host.Make(Context(width, height));
  picture->refuseLocks = true;
  return picture;
}

TEST(PrivateCopy, IsDrawnLockedAndHeldByTheEditorAlone) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 4, 3);
  Number(*picture);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(host.Calls(), (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 8) = 0",
                                   "REALGetPropValueInteger(Picture#1, \"Width\") = 4",
                                   "REALGetPropValueInteger(Picture#1, \"Height\") = 3",
                                   "newPicture(4, 3, 32) = Picture#2",
                                   "pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
                                   FindsDrawPicture("Graphics#3"),
                                   "Graphics#3.DrawPicture(Picture#1, 0, 0, 4, 3, 0, 0, 4, 3)",
                                   "REALUnlockObject(Graphics#3)",
                                   "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#2, 8) = 1",
                                   "REALLockObject(Picture#2)", "REALUnlockObject(Picture#2)"}));
    const host::Object* copy = host.runtime.Book().Objects()[1].get();
    EXPECT_EQ(copy->References(), 1);
    EXPECT_EQ(picture->References(), 1);
    EXPECT_EQ(reader.picture, host::HandleOf<REALpicture>(const_cast<host::Object*>(copy)));
    EXPECT_TRUE(reader.mayCopy);
    EXPECT_FALSE(reader.writable);
    EXPECT_TRUE(reader.descriptionLocked);
    EXPECT_EQ(reader.width, 4);
    EXPECT_EQ(reader.height, 3);
    // The colours of format 6; its unused byte is the host's.
    reader.GoToRow(2);
    EXPECT_EQ(reader.cursor[3] & 0xFFFFFF00u, 0x01020500u);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#2)", "REALUnlockObject(Picture#2)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
  EXPECT_FALSE(host.runtime.Book().Objects()[1]->Alive());
}

TEST(PrivateCopy, HoldsTheColoursOfThePicture) {
  for (const int copyFormat : {1, 2, 3, 4, 5, 6}) {
    host::RuntimeOptions options = Desktop();
    options.newPixelFormat = copyFormat;
    options.newRowPadding = 8;
    options.newGuard = host::Guard::kAfter;
    LinkedHost host(options);
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, 3, 2);
    picture->Set(0, 0, {1, 2, 3, 255});
    picture->Set(2, 1, {250, 0, 128, 255});
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(reader.pixelFormat, copyFormat);
    EXPECT_EQ(reader.rowBytes, 20);
    const bool redFirst = copyFormat % 2 == 1;
    const std::uint32_t mask = redFirst ? 0x00FFFFFFu : 0xFFFFFF00u;
    EXPECT_EQ(reader.cursor[0] & mask, redFirst ? 0x00030201u : 0x03020100u);
    reader.GoToRow(1);
    EXPECT_EQ(reader.cursor[2] & mask, redFirst ? 0x008000FAu : 0x8000FA00u);
  }
}

TEST(PrivateCopy, OfAnOldHostFollowsTheExtraUnlock) {
  LinkedHost host(Desktop(2011.9));
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 2, 1);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    const Lines calls = host.Calls();
    ASSERT_EQ(calls.size(), 14u);
    EXPECT_EQ(calls[1], "REALLockPictureDescription(Picture#1, 8) = 0");
    EXPECT_EQ(calls[2], "unlockPictureDescription(Picture#1)");
    EXPECT_EQ(calls[3], "REALGetPropValueInteger(Picture#1, \"Width\") = 2");
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, IsNeverMadeForAWriterOrWithoutLeave) {
  const struct { signed char mayCopy, writable; } rows[] = {{0, 0}, {0, 1}, {1, 1}};
  for (const auto& row : rows) {
    LinkedHost host(Desktop());
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, 2, 2);
    PictureEditor editor;
    EXPECT_EQ(editor.GetPictureEditor(HandleOf(picture), row.mayCopy, row.writable), 0);
    EXPECT_EQ(host.Calls(), (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 8) = 0"}));
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(PrivateCopy, StaysAsMadeWithoutAGraphicsObject) {
  host::RuntimeOptions options = Desktop();
  options.newFill = {10, 20, 30, 255};
  LinkedHost host(options);
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 2, 2);
  host.FailEntry("pluginPictureGraphicsGetter");
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(host.Calls(), (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 8) = 0",
                                   "REALGetPropValueInteger(Picture#1, \"Width\") = 2",
                                   "REALGetPropValueInteger(Picture#1, \"Height\") = 2",
                                   "newPicture(2, 2, 32) = Picture#2",
                                   "pluginPictureGraphicsGetter(Picture#2) = nil",
                                   "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#2, 8) = 1",
                                   "REALLockObject(Picture#2)", "REALUnlockObject(Picture#2)"}));
    EXPECT_EQ(reader.cursor[0] & 0xFFFFFF00u, 0x1E140A00u);
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, AHostWithoutTheGraphicsEntryLeavesItUndrawnToo) {
  LinkedHost host(Desktop(2011.9));
  host.KnowKind();
  host.runtime.Withhold("pluginPictureGraphicsGetter");
  host::Picture* picture = MakeLocked(host, 2, 2);
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(reader.cursor[0] & 0xFFFFFF00u, 0xFFFFFF00u);
  }
  for (const std::string& line : host.CallsAndLookUps()) {
    EXPECT_EQ(line.find("RuntimeGraphicsDrawPicture"), std::string::npos);
    EXPECT_EQ(line.find(", 10)"), std::string::npos);
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, WithoutDrawPictureIsCopiedAsABufferWithoutSuccessOnADesktopHost) {
  for (const double version : {2011.9, 2012.0}) {
    LinkedHost host(Desktop(version));
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, 2, 2);
    host.runtime.WithholdHostMethod(kDrawPictureDeclaration);
    Lines expected = {
        "resolve(pluginPictureGraphicsGetter)",
        "pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
        "resolve(REALLoadObjectMethod)",
        LacksDrawPicture("Graphics#3"),
        "REALLockPictureDescription(Picture#1, 10) = 0",
        "resolve(REALUnlockObject)",
        "REALUnlockObject(Graphics#3)",
        "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
        "REALLockPictureDescription(Picture#2, 8) = 1",
        "resolve(REALLockObject)",
        "REALLockObject(Picture#2)",
        "REALUnlockObject(Picture#2)",
    };
    if (version < 2012.0) {
      expected.insert(expected.begin() + 5, "unlockPictureDescription(Picture#1)");
      expected.insert(expected.begin() + 4, "resolve(RuntimeGraphicsDrawPicture)");
    }
    {
      PictureReader reader;
      EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
      const Lines lines = host.CallsAndLookUps();
      ASSERT_GT(lines.size(), expected.size());
      EXPECT_EQ(Lines(lines.end() - static_cast<std::ptrdiff_t>(expected.size()), lines.end()),
                expected);
    }
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(PrivateCopy, TheOldDrawingRoutineIsLookedUpForEveryCopy) {
  LinkedHost host(Desktop(2011.9));
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 2, 2);
  host.runtime.WithholdHostMethod(kDrawPictureDeclaration);
  PictureReader reader;
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    int lookUps = 0;
    for (const std::string& line : host.CallsAndLookUps()) {
      lookUps += line == "resolve(RuntimeGraphicsDrawPicture)" ? 1 : 0;
    }
    EXPECT_EQ(lookUps, 1);
  }
  reader.GetPictureEditor(nullptr, 1, 0);
  EXPECT_EQ(host.LeftOver(), Lines{});  // the routine itself must not be called
}

TEST(PrivateCopy, SizesAreReadUnderTheOldNameToo) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.runtime.Withhold("REALGetPropValueInteger");
  host::Picture* picture = MakeLocked(host, 6, 5);
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  const Lines calls = host.Calls();
  EXPECT_EQ(calls[2], "REALGetPropValueInt(Picture#1, \"Width\") = 6");
  EXPECT_EQ(calls[3], "REALGetPropValueInt(Picture#1, \"Height\") = 5");
  EXPECT_EQ(calls[4], "newPicture(6, 5, 32) = Picture#2");
}

TEST(PrivateCopy, HasTheSizeThatItsOwnLockTells) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
    spec.width = 3;
    spec.height = 9;
    spec.guard = host::Guard::kAfter;
  };
  host::Picture* picture = MakeLocked(host, 6, 5);
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.width, 3);
  EXPECT_EQ(reader.height, 9);
}

}  // namespace
