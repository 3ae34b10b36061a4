// Which bitmap contexts are accepted, for opaque pictures and for those with an alpha channel, and
// which locks stay.
#include <gtest/gtest.h>

#include "pixels/picture_editor.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

std::string AsksAlpha(bool alpha) {
  return std::string("REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = ") +
         (alpha ? "true" : "false");
}

Lines Locked(bool alpha) {
  return {AsksAlpha(alpha), "REALLockPictureDescription(Picture#1, 8) = 1",
          "REALLockObject(Picture#1)"};
}

Lines RefusedAndUnlocked(bool alpha) {
  return {AsksAlpha(alpha), "REALLockPictureDescription(Picture#1, 8) = 1",
          "unlockPictureDescription(Picture#1)"};
}

Lines RefusedAndLeft(bool alpha) {
  return {AsksAlpha(alpha), "REALLockPictureDescription(Picture#1, 8) = 1"};
}

// The same with the lock's end.
const Lines kStaysLocked = {
    "Picture#1 is left with a description lock taken by REALLockPictureDescription, call 2."};

enum class Fate { kAccepted, kUnlocked, kLeft };

// The fate of a picture: that of a refused alpha info comes first.
Fate FateOf(bool alpha, int alphaInfo, int bitsPerPixel) {
  static constexpr bool kOpaque[] = {false, true, true, true, true, true, true, false};
  static constexpr bool kAlpha[] = {false, true, true, false, false, false, false, false};
  if (!(alpha ? kAlpha : kOpaque)[alphaInfo]) return Fate::kLeft;
  return bitsPerPixel == 32 ? Fate::kAccepted : Fate::kUnlocked;
}

void ExpectFate(Fate fate, bool alpha, int alphaInfo, int bitsPerPixel, bool writable,
                std::uint32_t noise, double version) {
  SCOPED_TRACE(testing::Message() << (alpha ? "alpha" : "opaque") << " info " << alphaInfo
                                  << " bits " << bitsPerPixel << " noise " << noise << " version "
                                  << version);
  LinkedHost host(Desktop(version));
  host.KnowKind();
  host::PictureSpec spec = alpha ? AlphaContext(3, 2, alphaInfo) : Context(3, 2, alphaInfo);
  spec.bitsPerPixel = bitsPerPixel;
  host::Picture* picture = host.Make(spec);
  picture->distort = [&](host::Picture::LockedView view) {
    view.context.alphaInfo = static_cast<std::uint32_t>(alphaInfo) | noise;
  };
  {
    PictureEditor editor;
    const bool locked =
        editor.GetPictureEditor(HandleOf(picture), writable ? 0 : 1, writable ? 1 : 0) != 0;
    EXPECT_EQ(locked, fate == Fate::kAccepted);
    EXPECT_EQ(editor.descriptionLocked, locked);
    EXPECT_EQ(editor.picture, locked ? HandleOf(picture) : nullptr);
    EXPECT_EQ(editor.hasAlpha, alpha);
    EXPECT_EQ(editor.alphaLocked, locked && alpha);
    EXPECT_EQ(editor.pixelFormat, locked ? alphaInfo : 0);
    EXPECT_EQ(host.Calls(), fate == Fate::kAccepted   ? Locked(alpha)
                            : fate == Fate::kUnlocked ? RefusedAndUnlocked(alpha)
                                                      : RefusedAndLeft(alpha));
  }
  EXPECT_EQ(host.LeftOver(), fate == Fate::kLeft ? kStaysLocked : Lines{});
  EXPECT_EQ(picture->References(), 1);
}

TEST(AlphaInfo, DecidesBeforeTheDepthAndOnlyARefusedInfoStaysLocked) {
  for (const bool alpha : {false, true}) {
    for (int alphaInfo = 0; alphaInfo <= 7; ++alphaInfo) {
      for (const int bits : {32, 24, 16}) {
        ExpectFate(FateOf(alpha, alphaInfo, bits), alpha, alphaInfo, bits, false, 0, 2013.04);
      }
    }
  }
}

TEST(AlphaInfo, DecidesForWritersAndOnOldHostsAlike) {
  for (const bool alpha : {false, true}) {
    for (int alphaInfo = 0; alphaInfo <= 7; ++alphaInfo) {
      ExpectFate(FateOf(alpha, alphaInfo, 32), alpha, alphaInfo, 32, true, 0, 2013.04);
      ExpectFate(FateOf(alpha, alphaInfo, 32), alpha, alphaInfo, 32, false, 0, 2011.9);
      ExpectFate(FateOf(alpha, alphaInfo, 24), alpha, alphaInfo, 24, true, 0, 2011.9);
    }
  }
}

TEST(AlphaInfo, OnlyTheLowThreeBitsCount) {
  // 0x2000: the byte order that contexts of this platform usually carry.
  for (const std::uint32_t noise : {0x2000u, 0x8u, 0xFFFFFFF8u, 0xA5A5A5A0u}) {
    for (const bool alpha : {false, true}) {
      for (int alphaInfo = 0; alphaInfo <= 7; ++alphaInfo) {
        ExpectFate(FateOf(alpha, alphaInfo, 32), alpha, alphaInfo, 32, false, noise, 2013.04);
      }
    }
  }
}

TEST(AlphaInfo, DepthsNearThirtyTwoAreRefused) {
  for (const int bits : {0, 1, 8, 31, 33, 64, 128}) {
    ExpectFate(Fate::kUnlocked, false, 6, bits, false, 0, 2013.04);
    ExpectFate(Fate::kUnlocked, true, 2, bits, false, 0, 2013.04);
  }
}

TEST(AlphaInfo, ThreeKindsOfRefusalAsTheHostSeesThem) {
  ExpectFate(Fate::kLeft, false, 7, 16, false, 0, 2013.04);
  ExpectFate(Fate::kUnlocked, false, 1, 16, false, 0, 2013.04);
  ExpectFate(Fate::kLeft, true, 3, 32, false, 0, 2013.04);
}

TEST(AlphaInfo, TheLockThatStaysIsNeverGivenUpByTheEditor) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* bad = host.runtime.NewPicture(Context(2, 2, 0));
  host::Picture* good = host.Make(Context(2, 2, 6));
  {
    PictureEditor editor;
    EXPECT_EQ(editor.GetPictureEditor(HandleOf(bad), 1, 0), 0);
    EXPECT_EQ(editor.GetPictureEditor(HandleOf(bad), 1, 0), 0);
    EXPECT_EQ(host.runtime.Book().DescriptionLocks(bad), 2);
    host.Calls();
    EXPECT_EQ(editor.GetPictureEditor(HandleOf(good), 1, 0), 1);
  }
  EXPECT_EQ(host.Calls(),
            (Lines{"REALGetPropValueBool(Picture#2, \"HasAlphaChannel\") = false",
                   "REALLockPictureDescription(Picture#2, 8) = 1", "REALLockObject(Picture#2)",
                   "unlockPictureDescription(Picture#2)", "REALUnlockObject(Picture#2)"}));
  EXPECT_EQ(host.runtime.Book().DescriptionLocks(bad), 2);
  EXPECT_EQ(host.runtime.Book().DescriptionLocks(good), 0);
}

TEST(AlphaInfo, ARefusedContextIsNeitherCopiedNorAskedForABuffer) {
  LinkedHost host(Unknown());
  host::Picture* picture = host.Make(Context(2, 2, 7));
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
  EXPECT_EQ(host.Calls(), (Lines{"pluginObjectType(\"Application\") = nil",
                                 "pluginObjectType(\"WebApplication\") = nil",
                                 "pluginObjectType(\"ConsoleApplication\") = nil",
                                 "REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = false",
                                 "REALLockPictureDescription(Picture#1, 8) = 1"}));
}

TEST(AlphaInfo, AHandleOfNilOrAnotherTypeIsUnlockedAndRefused) {
  const struct {
    bool noHandle;
    std::int32_t type;
  } rows[] = {{true, 8},  {true, 10},  {false, 10}, {false, 0},
              {false, 9}, {false, -8}, {false, 264}};
  for (const auto& row : rows) {
    for (const bool alpha : {false, true}) {
      LinkedHost host(Desktop());
      host.KnowKind();
      host::Picture* picture = host.Make(alpha ? AlphaContext(2, 2) : Context(2, 2));
      picture->distort = [&](host::Picture::LockedView view) {
        view.description.type = row.type;
        if (row.noHandle) view.description.handle = nullptr;
      };
      {
        PictureReader reader;
        EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0) << row.type;
        EXPECT_EQ(host.Calls(), RefusedAndUnlocked(alpha)) << row.type;
      }
      EXPECT_EQ(host.Calls(), Lines{}) << row.type;
      EXPECT_EQ(host.LeftOver(), Lines{}) << row.type;
    }
  }
}

TEST(AlphaPicture, AnOpaquePictureLockedAfterwardsLeavesAlphaLockedAlone) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* alpha = host.runtime.NewPicture(AlphaContext(2, 2, 1));
  host::Picture* opaque = host.Make(Context(2, 2, 5));
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(alpha), 1, 0), 1);
  EXPECT_TRUE(reader.hasAlpha);
  EXPECT_TRUE(reader.alphaLocked);
  EXPECT_EQ(reader.pixelFormat, 1);
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(opaque), 1, 0), 1);
  EXPECT_FALSE(reader.hasAlpha);
  EXPECT_TRUE(reader.alphaLocked);
  EXPECT_EQ(reader.pixelFormat, 5);
}

TEST(AlphaPicture, IsNeverReadThroughACopy) {
  for (const double version : {2011.9, 2013.04}) {
    LinkedHost host(Desktop(version));
    host.KnowKind();
    host::Picture* picture = host.Make(AlphaContext(2, 2));
    picture->refuseLocks = true;
    PictureReader reader;
    EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
    Lines expected = {AsksAlpha(true), "REALLockPictureDescription(Picture#1, 8) = 0"};
    if (version < 2012.0) expected.push_back("unlockPictureDescription(Picture#1)");
    EXPECT_EQ(host.Calls(), expected);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

}  // namespace
