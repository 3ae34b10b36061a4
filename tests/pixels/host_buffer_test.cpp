// Pictures that are reached through the host's own buffers.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

const Lines kRefusedAndUnlocked = {"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 10) = 1",
                                   "unlockPictureDescription(Picture#1)"};

TEST(HostBuffer, IsReadWithThreeCallsAndGivenUpWithTwo) {
  LinkedHost host(Console());
  host.KnowKind();
  host::Picture* picture = host.Make(Buffer(5, 3));
  Number(*picture);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    EXPECT_EQ(host.Calls(), (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                   "REALLockPictureDescription(Picture#1, 10) = 1",
                                   "REALLockObject(Picture#1)"}));
    EXPECT_EQ(reader.rowBytes, 20);
    EXPECT_EQ(reader.width, 5);
    EXPECT_EQ(reader.height, 3);
    EXPECT_EQ(reader.bytesPerPixel, 4);
    EXPECT_EQ(reader.pixelFormat, 8);
    EXPECT_EQ(reader.x, 0);
    EXPECT_EQ(reader.y, 0);
    EXPECT_EQ(reader.base, picture->Row(0));
    EXPECT_EQ(reinterpret_cast<unsigned char*>(reader.cursor), picture->Row(0));
    EXPECT_EQ(reader.picture, HandleOf(picture));
    EXPECT_TRUE(reader.descriptionLocked);
    EXPECT_FALSE(reader.hasAlpha);
    EXPECT_FALSE(reader.alphaLocked);
    ASSERT_NE(reader.rowTable, nullptr);
    for (int row = 0; row < 3; ++row) EXPECT_EQ(reader.rowTable[row], picture->Row(row));
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(HostBuffer, HoldsBlueInTheLowByte) {
  LinkedHost host(Console());
  host.KnowKind();
  host::Picture* picture = host.Make(Buffer(2, 1));
  picture->Set(1, 0, {1, 2, 3, 255});
  PictureWriter writer;
  ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
  EXPECT_EQ(writer.cursor[1], 0x00010203u);
  writer.cursor[0] = 0x00A0B0C0;
  EXPECT_EQ(picture->Get(0, 0), (host::Rgba{0xA0, 0xB0, 0xC0, 255}));
}

TEST(HostBuffer, RowsThatLieApartAreEachReachedThroughTheTable) {
  for (const host::Guard guard : {host::Guard::kNone, host::Guard::kAfter, host::Guard::kBefore}) {
    LinkedHost host(Console());
    host.KnowKind();
    host::PictureSpec spec = Buffer(4, 7);
    spec.guard = guard;
    host::Picture* picture = host.Make(spec);
    Number(*picture);
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    bool apart = false;
    for (int row = 0; row < 7; ++row) {
      writer.x = 3;
      writer.GoToRow(row);
      EXPECT_EQ(writer.x, 0);
      EXPECT_EQ(writer.y, row);
      EXPECT_EQ(writer.RowAddress(row), picture->Row(row));
      apart = apart || picture->Row(row) != picture->Row(0) + row * writer.rowBytes;
      for (int x = 0; x < 4; ++x) EXPECT_EQ(writer.cursor[x], NumberAt(x, row));
      writer.cursor[3] = 0x00ABCDEF;
    }
    EXPECT_TRUE(apart);
    for (int row = 0; row < 7; ++row) {
      EXPECT_EQ(picture->Word(3, row), 0x00ABCDEFu);
      EXPECT_EQ(picture->Word(2, row), NumberAt(2, row));
    }
    EXPECT_EQ(picture->DamagedPadding(), 0u);
  }
}

TEST(HostBuffer, RowsFromTheHeightOnAreRowZero) {
  LinkedHost host(Console());
  host.KnowKind();
  host::PictureSpec spec = Buffer(3, 2);
  spec.guard = host::Guard::kAfter;
  host::Picture* picture = host.Make(spec);
  Number(*picture);
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  for (const int row : {2, 3, 100000, INT32_MAX}) {
    reader.GoToRow(row);
    EXPECT_EQ(reader.y, row);
    EXPECT_EQ(reader.RowAddress(row), picture->Row(0));
    EXPECT_EQ(*reader.cursor, 0x01020300u);
  }
}

TEST(HostBuffer, SizeComesFromTheDescriptionAndNotFromTheRecord) {
  LinkedHost host(Console());
  host.KnowKind();
  host::Picture* picture = host.Make(Buffer(4, 3));
  picture->distort = [](host::Picture::LockedView view) {
    view.buffer.width = 99;
    view.buffer.height = 77;
  };
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.width, 4);
  EXPECT_EQ(reader.height, 3);
  EXPECT_EQ(reader.rowBytes, 16);
}

TEST(HostBuffer, IsRefusedAndUnlockedUnlessItsRecordIsValid) {
  using View = host::Picture::LockedView;
  const struct {
    const char* what;
    void (*distort)(View);
  } rows[] = {
      {"no handle", [](View view) { view.description.handle = nullptr; }},
      {"type 8", [](View view) { view.description.type = 8; }},
      {"type 0", [](View view) { view.description.type = 0; }},
      {"type 266", [](View view) { view.description.type = 266; }},
      {"kind 1", [](View view) { view.buffer.kind = 1; }},
      {"kind 2^31", [](View view) { view.buffer.kind = std::uintptr_t{1} << 31; }},
      {"not valid", [](View view) { view.buffer.valid = 0; }},
      {"no row table", [](View view) { view.buffer.rowTable = nullptr; }},
  };
  for (const auto& row : rows) {
    for (const double version : {2011.9, 2013.04}) {
      LinkedHost host(Console(version));
      host.KnowKind();
      host::Picture* picture = host.Make(Buffer(3, 2));
      picture->distort = row.distort;
      {
        PictureReader reader;
        EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0) << row.what;
        EXPECT_EQ(reader.picture, nullptr) << row.what;
        EXPECT_FALSE(reader.descriptionLocked) << row.what;
        EXPECT_EQ(host.Calls(), kRefusedAndUnlocked) << row.what;
      }
      EXPECT_EQ(host.Calls(), Lines{}) << row.what;
      EXPECT_EQ(host.LeftOver(), Lines{}) << row.what;
    }
  }
}

TEST(HostBuffer, AnyValueButZeroIsValid) {
  for (const std::uintptr_t valid :
       {std::uintptr_t{1}, std::uintptr_t{1} << 31, ~std::uintptr_t{0}}) {
    LinkedHost host(Console());
    host.KnowKind();
    host::Picture* picture = host.Make(Buffer(3, 2));
    picture->distort = [&](host::Picture::LockedView view) { view.buffer.valid = valid; };
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1) << valid;
  }
}

TEST(HostBuffer, AFailedLockIsUnlockedBelow2012Only) {
  for (const double version : {2011.9, 2012.0}) {
    for (const bool writable : {false, true}) {
      LinkedHost host(Console(version));
      host.KnowKind();
      host::Picture* picture = host.Make(Buffer(3, 2));
      picture->refuseLocks = true;
      PictureEditor editor;
      EXPECT_EQ(editor.GetPictureEditor(HandleOf(picture), !writable, writable), 0);
      Lines expected = {"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                        "REALLockPictureDescription(Picture#1, 10) = 0"};
      if (version < 2012.0) expected.push_back("unlockPictureDescription(Picture#1)");
      EXPECT_EQ(host.Calls(), expected) << version;  // and no private copy
      EXPECT_EQ(host.LeftOver(), Lines{}) << version;
    }
  }
}

TEST(HostBuffer, BothFailedLocksOfAnOldHostAreUnlocked) {
  for (const bool alpha : {false, true}) {
    LinkedHost host(Unknown(2011.9));
    host::PictureSpec spec = Buffer(3, 2);
    spec.hasAlphaChannel = alpha;
    host::Picture* picture = host.Make(spec);
    picture->refuseLocks = true;
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    const Lines calls = host.Calls();
    EXPECT_EQ(Lines(calls.begin() + 3, calls.end()),
              (Lines{std::string("REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = ") +
                         (alpha ? "true" : "false"),
                     "REALLockPictureDescription(Picture#1, 8) = 0",
                     "unlockPictureDescription(Picture#1)",
                     "REALLockPictureDescription(Picture#1, 10) = 0",
                     "unlockPictureDescription(Picture#1)"}));
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(HostBuffer, AnAlphaPictureHasNoAlphaLock) {
  LinkedHost host(Console());
  host.KnowKind();
  host::PictureSpec spec = Buffer(3, 2);
  spec.hasAlphaChannel = true;
  host::Picture* picture = host.Make(spec);
  picture->Set(0, 0, {1, 2, 3, 4});
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_TRUE(reader.hasAlpha);
  EXPECT_FALSE(reader.alphaLocked);
  EXPECT_EQ(reader.pixelFormat, 8);
  EXPECT_EQ(*reader.cursor, 0x04010203u);
  EXPECT_EQ(host.Calls(),
            (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = true",
                   "REALLockPictureDescription(Picture#1, 10) = 1", "REALLockObject(Picture#1)"}));
}

TEST(HostBuffer, AWriterDropsTheHostsCache) {
  LinkedHost host(Console());
  host.KnowKind();
  host::Picture* picture = host.Make(Buffer(3, 2));
  {
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    host.Calls();
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                   "REALUnlockObject(Picture#1)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
