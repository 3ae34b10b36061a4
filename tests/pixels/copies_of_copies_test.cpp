// Private copies that cannot be locked as contexts either, and are copied in turn.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "plugin/application_kind.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

// Where no class tells the kind and pictures are buffers, each copy is copied again until the
// deepest may be locked as a buffer.
TEST(PrivateCopy, IsCopiedAgainAtMostFourDeep) {
  LinkedHost host(Unknown());
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
    spec.storage = host::Storage::kHostBuffer;
  };
  host::Picture* picture = host.Make(Buffer(3, 2));
  Number(*picture);
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    Lines calls;
    for (const std::string& line : host.Calls()) {
      if (!line.starts_with("pluginObjectType")) calls.push_back(line);
    }
    EXPECT_EQ(Lines(calls.begin() + 2, calls.begin() + 11),
              (Lines{"REALGetPropValueInteger(Picture#1, \"Width\") = 3",
                     "REALGetPropValueInteger(Picture#1, \"Height\") = 2",
                     "newPicture(3, 2, 32) = Picture#2",
                     "pluginPictureGraphicsGetter(Picture#2) = Graphics#3",
                     FindsDrawPicture("Graphics#3"),
                     "Graphics#3.DrawPicture(Picture#1, 0, 0, 3, 2, 0, 0, 3, 2)",
                     "REALUnlockObject(Graphics#3)",
                     "REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                     "REALLockPictureDescription(Picture#2, 8) = 0"}));
    ASSERT_EQ(calls.size(), 4u * 9u + 10u);
    EXPECT_EQ(Lines(calls.end() - 17, calls.end()),
              (Lines{"REALGetPropValueInteger(Picture#6, \"Width\") = 3",
                     "REALGetPropValueInteger(Picture#6, \"Height\") = 2",
                     "newPicture(3, 2, 32) = Picture#8",
                     "pluginPictureGraphicsGetter(Picture#8) = Graphics#9",
                     FindsDrawPicture("Graphics#9"),
                     "Graphics#9.DrawPicture(Picture#6, 0, 0, 3, 2, 0, 0, 3, 2)",
                     "REALUnlockObject(Graphics#9)",
                     "REALGetPropValueBool(Picture#8, \"HasAlphaChannel\") = false",
                     "REALLockPictureDescription(Picture#8, 8) = 0",
                     "REALGetPropValueInteger(Picture#8, \"Width\") = 3",
                     "REALGetPropValueInteger(Picture#8, \"Height\") = 2",
                     "REALLockPictureDescription(Picture#8, 10) = 1", "REALLockObject(Picture#8)",
                     "REALUnlockObject(Picture#8)", "REALUnlockObject(Picture#6)",
                     "REALUnlockObject(Picture#4)", "REALUnlockObject(Picture#2)"}));
    EXPECT_EQ(IsConsole, 1);
    EXPECT_EQ(reader.pixelFormat, 8);
    reader.GoToRow(1);
    EXPECT_EQ(reader.cursor[2] & 0x00FFFFFFu, 0x00020402u);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"unlockPictureDescription(Picture#8)", "REALUnlockObject(Picture#8)"}));
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, WithoutDrawPictureIsCopiedRowByRowFromBufferToBuffer) {
  LinkedHost host(Unknown(2011.9));
  host.runtime.WithholdHostMethod(kDrawPictureDeclaration);
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
    spec.storage = host::Storage::kHostBuffer;
    spec.guard = host::Guard::kAfter;
  };
  host::PictureSpec spec = Buffer(3, 2);
  spec.guard = host::Guard::kAfter;
  host::Picture* picture = host.Make(spec);
  Number(*picture);
  {
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    reader.GoToRow(1);
    EXPECT_EQ(reader.cursor[0], 0x01020400u);
    EXPECT_EQ(reader.cursor[2], 0x01020402u);
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
