// Private copies that cannot be made or locked.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "plugin/application_kind.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

host::Picture* MakeLocked(LinkedHost& host, int width, int height) {
  host::Picture* picture = host.Make(Context(width, height));
  picture->refuseLocks = true;
  return picture;
}

// A buffer on a host that does not tell its kind: its type-8 lock fails, its type-10 lock succeeds.
host::Picture* MakeBuffer(LinkedHost& host) { return host.Make(Buffer(3, 2)); }

const Lines kLockFailed = {"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                           "REALLockPictureDescription(Picture#1, 8) = 0"};

// The lock fails and the sizes are asked for, with these answers.
Lines SizesAsked(const std::string& width, const std::string& height) {
  Lines lines = kLockFailed;
  lines.push_back("REALGetPropValueInteger(Picture#1, \"Width\") = " + width);
  lines.push_back("REALGetPropValueInteger(Picture#1, \"Height\") = " + height);
  return lines;
}

TEST(PrivateCopy, IsNotMadeForSizesBelowOne) {
  const struct { int width, height; } rows[] = {{0, 0}, {0, 5}, {5, 0}};
  for (const auto& row : rows) {
    LinkedHost host(Desktop());
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, row.width, row.height);
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
    EXPECT_EQ(host.Calls(), SizesAsked(std::to_string(row.width), std::to_string(row.height)));
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(PrivateCopy, OfOnePixelIsMade) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 1, 1);
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.width, 1);
  EXPECT_EQ(reader.height, 1);
}

TEST(PrivateCopy, ASizeThatCannotBeReadCountsAsZeroWhateverTheHostWrote) {
  for (const int failing : {1, 2}) {
    LinkedHost host(Desktop());
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, 4, 4);
    host.FailEntry("REALGetPropValueInteger", failing);
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
    EXPECT_EQ(host.Calls(), failing == 1 ? SizesAsked("failed", "4") : SizesAsked("4", "failed"));
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

std::uint8_t NegativeSize(REALobject, const char*, std::int32_t* value) {
  *value = -4;
  return 1;
}

TEST(PrivateCopy, IsNotMadeForNegativeSizes) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = MakeLocked(host, 4, 4);
  host.ReplaceEntry("REALGetPropValueInteger", reinterpret_cast<REALroutine>(&NegativeSize));
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
  EXPECT_EQ(host.Calls(), kLockFailed);
}

TEST(PrivateCopy, AHostThatMakesNoPictureFailsOnTheDesktop) {
  for (const bool withheld : {false, true}) {
    LinkedHost host(Desktop());
    host.KnowKind();
    host::Picture* picture = MakeLocked(host, 4, 3);
    host.FailEntry("newPicture");
    if (withheld) host.runtime.Withhold("newPicture");
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
    Lines expected = SizesAsked("4", "3");
    if (!withheld) expected.push_back("newPicture(4, 3, 32) = nil");
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(PrivateCopy, WithoutOneThePictureItselfIsLockedAsABuffer) {
  LinkedHost host(Unknown());
  host::Picture* picture = MakeBuffer(host);
  host.FailEntry("newPicture");
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.picture, HandleOf(picture));
  EXPECT_EQ(reader.pixelFormat, 8);
  const Lines calls = host.Calls();
  EXPECT_EQ(
      Lines(calls.begin() + 5, calls.end()),
      (Lines{"REALGetPropValueInteger(Picture#1, \"Width\") = 3",
             "REALGetPropValueInteger(Picture#1, \"Height\") = 2", "newPicture(3, 2, 32) = nil",
             "REALLockPictureDescription(Picture#1, 10) = 1", "REALLockObject(Picture#1)"}));
}

TEST(PrivateCopy, WithoutASizeThePictureItselfIsLockedAsABuffer) {
  LinkedHost host(Unknown());
  host::Picture* picture = MakeBuffer(host);
  host.FailEntry("REALGetPropValueInteger");
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.picture, HandleOf(picture));
}

TEST(PrivateCopy, FourCopiesThatCannotBeLockedFailOnTheDesktop) {
  for (const double version : {2011.9, 2013.04}) {
    LinkedHost host(Desktop(version));
    host.KnowKind();
    host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
      spec.storage = host::Storage::kHostBuffer;
    };
    host::Picture* picture = MakeLocked(host, 3, 2);
    {
      PictureReader reader;
      EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
      EXPECT_EQ(reader.picture, nullptr);
      int made = 0;
      const Lines calls = host.Calls();
      for (const std::string& line : calls) made += line.starts_with("newPicture") ? 1 : 0;
      EXPECT_EQ(made, 4);
      EXPECT_EQ(Lines(calls.end() - 4, calls.end()),
                (Lines{"REALUnlockObject(Picture#8)", "REALUnlockObject(Picture#6)",
                       "REALUnlockObject(Picture#4)", "REALUnlockObject(Picture#2)"}));
    }
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(PrivateCopy, WhereACopyOfACopyCannotBeMadeTheCopyIsLockedAsABuffer) {
  LinkedHost host(Unknown());
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) {
    spec.storage = host::Storage::kHostBuffer;
  };
  host::Picture* picture = MakeBuffer(host);
  host.FailEntry("newPicture", 3);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    const Lines calls = host.Calls();
    EXPECT_EQ(Lines(calls.end() - 5, calls.end()),
              (Lines{"newPicture(3, 2, 32) = nil", "REALLockPictureDescription(Picture#4, 10) = 1",
                     "REALLockObject(Picture#4)", "REALUnlockObject(Picture#4)",
                     "REALUnlockObject(Picture#2)"}));
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, OfTheWrongDepthIsGivenUpAndNotReplacedByABuffer) {
  LinkedHost host(Unknown());
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) { spec.bitsPerPixel = 24; };
  host::Picture* picture = MakeBuffer(host);
  {
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
    const Lines calls = host.Calls();
    EXPECT_EQ(Lines(calls.end() - 4, calls.end()),
              (Lines{"REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                     "REALLockPictureDescription(Picture#2, 8) = 1",
                     "unlockPictureDescription(Picture#2)", "REALUnlockObject(Picture#2)"}));
  }
  EXPECT_EQ(host.LeftOver(), Lines{});
}

TEST(PrivateCopy, OfARefusedAlphaInfoDiesWithItsLock) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.runtime.adjustNewPicture = [](host::PictureSpec& spec) { spec.pixelFormat = 0; };
  host::Picture* picture = MakeLocked(host, 3, 2);
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
  const Lines calls = host.Calls();
  EXPECT_EQ(Lines(calls.end() - 2, calls.end()),
            (Lines{"REALLockPictureDescription(Picture#2, 8) = 1", "REALUnlockObject(Picture#2)"}));
  EXPECT_EQ(host.runtime.Book().Violations().size(), 1u);
  host.runtime.Book().ForgetViolations();
  EXPECT_EQ(host.LeftOver(), Lines{});
}

}  // namespace
