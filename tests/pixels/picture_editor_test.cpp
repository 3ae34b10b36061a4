// Opaque pictures in bitmap contexts: what a lock reads, what it refuses, what it leaves.
#include "pixels/picture_editor.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "plugin/application_kind.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

TEST(PictureEditor, IsAllZeroWhenConstructedAndNeverTouchesTheHost) {
  LinkedHost host(Desktop());
  {
    const PictureEditor editor;
    EXPECT_EQ(editor.rowBytes, 0);
    EXPECT_EQ(editor.width, 0);
    EXPECT_EQ(editor.height, 0);
    EXPECT_EQ(editor.bytesPerPixel, 0);
    EXPECT_EQ(editor.status, 0);
    EXPECT_EQ(editor.pixelFormat, 0);
    EXPECT_EQ(editor.cursor, nullptr);
    EXPECT_EQ(editor.description.type, 0);
    EXPECT_EQ(editor.description.handle, nullptr);
    EXPECT_EQ(editor.description.ownBuffer, nullptr);
    EXPECT_EQ(editor.base, nullptr);
    EXPECT_EQ(editor.x, 0);
    EXPECT_EQ(editor.y, 0);
    EXPECT_EQ(editor.picture, nullptr);
    EXPECT_EQ(editor.pixMap, nullptr);
    EXPECT_EQ(editor.rowTable, nullptr);
    EXPECT_FALSE(editor.hasAlpha);
    EXPECT_FALSE(editor.alphaLocked);
    EXPECT_FALSE(editor.mayCopy);
    EXPECT_FALSE(editor.writable);
    EXPECT_FALSE(editor.descriptionLocked);
    EXPECT_EQ(editor.spare, 0);
  }
  EXPECT_EQ(host.CallsAndLookUps(), Lines{});
}

TEST(PictureEditor, ReadersAndWritersAddNothingButTheirType) {
  static_assert(std::is_base_of_v<PictureEditor, PictureReader>);
  static_assert(std::is_base_of_v<PictureEditor, PictureWriter>);
  static_assert(sizeof(PictureReader) == sizeof(PictureEditor));
  static_assert(sizeof(PictureWriter) == sizeof(PictureEditor));
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 2));
  std::unique_ptr<PictureEditor> editor = std::make_unique<PictureReader>();
  ASSERT_EQ(editor->GetPictureEditor(HandleOf(picture), 1, 0), 1);
  editor.reset();  // through the virtual destructor
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PictureEditor, ReadsAContextWithThreeCallsAndGivesItUpWithTwo) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::PictureSpec spec = Context(5, 3);
  spec.rowPadding = 12;
  host::Picture* picture = host.Make(spec);
  Number(*picture);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(host.Calls(),
              (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                     "REALLockPictureDescription(Picture#1, 8) = 1", "REALLockObject(Picture#1)"}));
    EXPECT_EQ(reader.rowBytes, 32);
    EXPECT_EQ(reader.width, 5);
    EXPECT_EQ(reader.height, 3);
    EXPECT_EQ(reader.bytesPerPixel, 4);
    EXPECT_EQ(reader.status, 0);
    EXPECT_EQ(reader.pixelFormat, 6);
    EXPECT_EQ(reader.base, picture->Row(0));
    EXPECT_EQ(reinterpret_cast<unsigned char*>(reader.cursor), picture->Row(0));
    EXPECT_EQ(*reader.cursor, 0x01020300u);
    EXPECT_EQ(reader.x, 0);
    EXPECT_EQ(reader.y, 0);
    EXPECT_EQ(reader.picture, HandleOf(picture));
    EXPECT_EQ(reader.pixMap, nullptr);
    EXPECT_EQ(reader.rowTable, nullptr);
    EXPECT_FALSE(reader.hasAlpha);
    EXPECT_FALSE(reader.alphaLocked);
    EXPECT_TRUE(reader.mayCopy);
    EXPECT_FALSE(reader.writable);
    EXPECT_TRUE(reader.descriptionLocked);
    EXPECT_EQ(picture->References(), 2);
    EXPECT_EQ(host.runtime.Book().DescriptionLocks(picture), 1);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(picture->CacheClears(), 0);
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PictureEditor, AWriterDropsTheHostsCacheBetweenUnlockAndRelease) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 1, 5));
  {
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    EXPECT_TRUE(writer.writable);
    EXPECT_FALSE(writer.mayCopy);
    EXPECT_EQ(writer.pixelFormat, 5);
    *writer.cursor = 0xAABBCCDD;
    host.Calls();
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(picture->Word(0, 0), 0xAABBCCDDu);
  EXPECT_EQ(picture->CacheClears(), 1);
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PictureEditor, ArgumentsOtherThanOneCountAsTrue) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 1));
  PictureEditor editor;
  EXPECT_EQ(editor.GetPictureEditor(HandleOf(picture), 2, -128), 1);
  EXPECT_TRUE(editor.mayCopy);
  EXPECT_TRUE(editor.writable);
}

TEST(PictureEditor, PropertyThatCannotBeReadMakesThePictureOpaque) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(AlphaContext(3, 2, 3));  // 3: only as an opaque picture
  host.FailEntry("REALGetPropValueBool");
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_FALSE(reader.hasAlpha);
  EXPECT_FALSE(reader.alphaLocked);
  EXPECT_EQ(reader.pixelFormat, 3);
  EXPECT_EQ(host.Calls()[0], "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = failed");
}

TEST(PictureEditor, AHostWithoutThePropertyRoutineHasOpaquePicturesOnly) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.runtime.Withhold("REALGetPropValueBool");
  host::Picture* picture = host.Make(AlphaContext(3, 2, 4));
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_FALSE(reader.hasAlpha);
  EXPECT_EQ(reader.pixelFormat, 4);
  EXPECT_EQ(host.Calls(),
            (Lines{"REALLockPictureDescription(Picture#1, 8) = 1", "REALLockObject(Picture#1)"}));
}

TEST(PictureEditor, SizeComesFromTheContextAndNotFromTheDescription) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(4, 3));
  picture->distort = [](host::Picture::LockedView view) {
    view.description.width = 99;
    view.description.height = -7;
  };
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.width, 4);
  EXPECT_EQ(reader.height, 3);
  EXPECT_EQ(reader.rowBytes, 16);
}

TEST(PictureEditor, StatusIsPutBackByLockingAndByReleasing) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(1, 1));
  PictureEditor editor;
  editor.status = 77;
  ASSERT_EQ(editor.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(editor.status, 0);
  editor.status = 78;
  EXPECT_EQ(editor.GetPictureEditor(nullptr, 1, 0), 0);
  EXPECT_EQ(editor.status, 0);
}

TEST(GoToRow, SetsColumnRowAndCursorAndReadsPaddedRows) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::PictureSpec spec = Context(3, 4, 1);
  spec.rowPadding = 20;
  spec.guard = host::Guard::kAfter;
  host::Picture* picture = host.Make(spec);
  Number(*picture);
  PictureWriter writer;
  ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
  for (int row = 0; row < 4; ++row) {
    writer.x = 2;
    writer.GoToRow(row);
    EXPECT_EQ(writer.x, 0);
    EXPECT_EQ(writer.y, row);
    EXPECT_EQ(writer.RowAddress(row), picture->Row(row));
    for (int x = 0; x < 3; ++x) EXPECT_EQ(writer.cursor[x], NumberAt(x, row));
    for (int x = 0; x < 3; ++x) writer.cursor[x] = 0x77000000u + NumberAt(x, row);
  }
  EXPECT_EQ(writer.rowBytes, 32);
  EXPECT_EQ(picture->Word(2, 3), 0x78020602u);
  EXPECT_EQ(picture->Word(0, 1), 0x78020400u);
  EXPECT_EQ(picture->DamagedPadding(), 0u);
}

TEST(GoToRow, RowsFromTheHeightOnAreRowZero) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::PictureSpec spec = Context(3, 2);
  spec.guard = host::Guard::kAfter;
  host::Picture* picture = host.Make(spec);
  Number(*picture);
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  for (const int row : {2, 3, 32767, INT32_MAX}) {
    reader.x = 1;
    reader.GoToRow(row);
    EXPECT_EQ(reader.x, 0);
    EXPECT_EQ(reader.y, row);
    EXPECT_EQ(reader.RowAddress(row), picture->Row(0));
    EXPECT_EQ(reader.cursor[0], 0x01020300u);
  }
  reader.GoToRow(1);
  EXPECT_EQ(reader.cursor[0], 0x01020400u);
}

TEST(OldHost, AFailedContextLockIsUnlockedBelow2012Only) {
  const struct {
    double version;
    bool unlocks;
  } rows[] = {{0.0, true},       {2009.1, true},  {2011.04, true}, {2011.9, true},
              {2011.9999, true}, {2012.0, false}, {2012.1, false}, {2013.04, false}};
  for (const auto& row : rows) {
    LinkedHost host(Desktop(row.version));
    host.KnowKind();
    host::Picture* picture = host.Make(Context(2, 2));
    picture->refuseLocks = true;
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0) << row.version;
    Lines expected = {"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                      "REALLockPictureDescription(Picture#1, 8) = 0"};
    if (row.unlocks) expected.push_back("unlockPictureDescription(Picture#1)");
    EXPECT_EQ(host.Calls(), expected) << row.version;
    EXPECT_EQ(host.LeftOver(), Lines{}) << row.version;
  }
}

TEST(OldHost, ALockRoutineThatIsMissingCountsAsAFailedLock) {
  for (const double version : {2011.9, 2012.0}) {
    LinkedHost host(Desktop(version));
    host.KnowKind();
    host.runtime.Withhold("REALLockPictureDescription");
    host::Picture* picture = host.Make(Context(2, 2));
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    Lines expected = {"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false"};
    if (version < 2012.0) expected.push_back("unlockPictureDescription(Picture#1)");
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(picture->References(), 1);
  }
}

TEST(OldHost, ASuccessfulLockIsUnlockedOnceOnly) {
  LinkedHost host(Desktop(2011.9));
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 2));
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                   "REALLockPictureDescription(Picture#1, 8) = 1", "REALLockObject(Picture#1)",
                   "unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
