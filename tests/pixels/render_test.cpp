// Finished pictures on their way back to the host.
#include <gtest/gtest.h>

#include <cstring>

#include "pixels/picture_editor.h"
#include "platform/linux/bundles.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;

TEST(RenderPictureWriter, ReturnsThePictureWithOneReferenceAndClearsItsCacheTwice) {
  LinkedHost host(Desktop());
  host.KnowKind();
  PictureReader reader;
  host::Picture* result = nullptr;
  {
    PictureWriter writer;
    ASSERT_TRUE(writer.NewPictureWriter(reader, 2, 2));
    *writer.cursor = 0x11223344;
    host.Calls();
    const REALpicture rendered = writer.RenderPictureWriter();
    EXPECT_EQ(host.Calls(),
              (Lines{"REALLockObject(Picture#1)", "REALPictureClearCache(Picture#1)",
                     "unlockPictureDescription(Picture#1)", "REALPictureClearCache(Picture#1)",
                     "REALUnlockObject(Picture#1)"}));
    result = dynamic_cast<host::Picture*>(host.runtime.Book().Find(rendered));
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(writer.picture, nullptr);
    EXPECT_FALSE(writer.descriptionLocked);
    EXPECT_EQ(writer.status, 0);
  }
  EXPECT_EQ(host.Calls(), Lines{});
  EXPECT_EQ(result->References(), 1);
  EXPECT_EQ(result->CacheClears(), 2);
  EXPECT_EQ(host.runtime.Book().DescriptionLocks(result), 0);
  EXPECT_EQ(result->Word(0, 0), 0x11223344u);
  EXPECT_EQ(host.LeftOver(result), Lines{});
}

TEST(RenderPictureWriter, ReturnsAlphaPicturesAndBuffersAlike) {
  for (const host::RuntimeOptions& options : {Desktop(), Console()}) {
    LinkedHost host(options);
    host.KnowKind();
    PictureReader reader;
    reader.hasAlpha = true;
    PictureWriter writer;
    ASSERT_TRUE(writer.NewPictureWriter(reader, 40000, 1));
    const REALpicture rendered = writer.RenderPictureWriter();
    const auto* result = dynamic_cast<host::Picture*>(host.runtime.Book().Find(rendered));
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->HasAlphaChannel());
    EXPECT_EQ(result->Width(), 40000);
    EXPECT_EQ(result->CacheClears(), 2);
    EXPECT_EQ(host.LeftOver(result), Lines{});
  }
}

TEST(RenderPictureWriter, ASecondTimeReturnsNil) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 2));
  PictureWriter writer;
  ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
  EXPECT_EQ(writer.RenderPictureWriter(), HandleOf(picture));
  host.Calls();
  EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
  EXPECT_EQ(host.Calls(), Lines{});
  EXPECT_EQ(host.LeftOver(picture), Lines{});
}

TEST(RenderPictureWriter, OfAReaderClearsTheCacheOnce) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(2, 2));
  PictureReader reader;
  ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
  EXPECT_EQ(reader.RenderPictureWriter(), HandleOf(picture));
  EXPECT_EQ(picture->CacheClears(), 1);
  EXPECT_EQ(host.LeftOver(picture), Lines{});
}

TEST(RenderPictureWriter, OfAnEditorThatWasNeverLockedIsNil) {
  LinkedHost host(Desktop());
  PictureWriter writer;
  EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
  EXPECT_EQ(host.CallsAndLookUps(), Lines{});
}

// ---- From a buffer of the editor's own --------------------------------------------------------

struct Built {
  int calls = 0;
  std::int32_t width = 0, height = 0, one = 0, rowBytes = 0;
  void* buffer = nullptr;
} gBuilt;

REALpicture Build(std::int32_t width, std::int32_t height, std::int32_t one, void* buffer,
                  std::int32_t rowBytes) {
  gBuilt = {gBuilt.calls + 1, width, height, one, rowBytes, buffer};
  return nullptr;
}

TEST(RenderPictureWriter, WithoutAPictureBuildsOneFromItsOwnBuffer) {
  LinkedHost host(Desktop());
  std::uint32_t pixels[2][4] = {{0x01010101, 0x02020202, 0x03030303, 0},
                                {0x04040404, 0x05050505, 0x06060606, 0}};
  PictureWriter writer;
  writer.width = 3;
  writer.height = 2;
  writer.rowBytes = 16;
  writer.writable = true;
  writer.status = 5;
  writer.description.ownBuffer = pixels;
  const REALpicture rendered = writer.RenderPictureWriter();
  EXPECT_EQ(host.Calls(), Lines{"REALBuildPictureFromBuffer(3, 2, 1, buffer, 16) = Picture#1"});
  EXPECT_EQ(writer.status, 0);
  const auto* result = dynamic_cast<host::Picture*>(host.runtime.Book().Find(rendered));
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->Word(2, 1), 0x06060606u);
  EXPECT_EQ(host.LeftOver(result), Lines{});
}

TEST(RenderPictureWriter, PassesSizeTheConstantOneBufferAndRowLengthInThatOrder) {
  LinkedHost host(Desktop());
  host.ReplaceEntry("REALBuildPictureFromBuffer", reinterpret_cast<REALroutine>(&Build));
  gBuilt = {};
  std::uint32_t pixel = 0;
  PictureWriter writer;
  writer.width = 33;
  writer.height = -44;
  writer.rowBytes = 55;
  writer.bytesPerPixel = 66;
  writer.description.ownBuffer = &pixel;
  EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
  EXPECT_EQ(gBuilt.calls, 1);
  EXPECT_EQ(gBuilt.width, 33);
  EXPECT_EQ(gBuilt.height, -44);
  EXPECT_EQ(gBuilt.one, 1);
  EXPECT_EQ(gBuilt.buffer, &pixel);
  EXPECT_EQ(gBuilt.rowBytes, 55);
}

TEST(RenderPictureWriter, AHostThatCannotBuildAnswersNil) {
  LinkedHost host(Desktop());
  host.runtime.Withhold("REALBuildPictureFromBuffer");
  std::uint32_t pixel = 0;
  PictureWriter writer;
  writer.width = writer.height = 1;
  writer.rowBytes = 4;
  writer.description.ownBuffer = &pixel;
  EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
  EXPECT_EQ(host.Calls(), Lines{});
}

TEST(RenderPictureWriter, APictureComesBeforeTheBuffer) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host.ReplaceEntry("REALBuildPictureFromBuffer", reinterpret_cast<REALroutine>(&Build));
  gBuilt = {};
  host::Picture* picture = host.Make(Context(2, 2));
  PictureWriter writer;
  ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
  std::uint32_t pixel = 0;
  writer.description.ownBuffer = &pixel;
  EXPECT_EQ(writer.RenderPictureWriter(), HandleOf(picture));
  EXPECT_EQ(gBuilt.calls, 0);
}

// ---- Failed writers ---------------------------------------------------------------------------

std::uint8_t LockWithNoise(REALpicture, REALpictureDescription* description, std::int32_t) {
  std::memset(description, 0x5C, sizeof *description);
  return 0;
}

TEST(RenderPictureWriter, OfAFailedWriterIsNilWhateverTheHostLeftInTheDescription) {
  for (const host::RuntimeOptions& options : {Desktop(), Console()}) {
    LinkedHost host(options);
    host.KnowKind();
    host.ReplaceEntry("REALLockPictureDescription", reinterpret_cast<REALroutine>(&LockWithNoise));
    host.ReplaceEntry("REALBuildPictureFromBuffer", reinterpret_cast<REALroutine>(&Build));
    gBuilt = {};
    PictureReader reader;
    PictureWriter writer;
    EXPECT_FALSE(writer.NewPictureWriter(reader, 2, 2));
    host.Calls();
    EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
    EXPECT_EQ(gBuilt.calls, 0);
    EXPECT_EQ(host.Calls(), Lines{});
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

TEST(RenderPictureWriter, OfARefusedWriterIsNilWhateverTheHostLeftInTheDescription) {
  const struct {
    host::PictureSpec spec;
    bool stays;
  } rows[] = {{Context(2, 2, 0), true}, {Context(2, 2, 6), false}, {Buffer(2, 2), false}};
  for (const auto& row : rows) {
    LinkedHost host(Unknown());
    host.ReplaceEntry("REALBuildPictureFromBuffer", reinterpret_cast<REALroutine>(&Build));
    gBuilt = {};
    host::Picture* picture = host.Make(row.spec);
    picture->distort = [](host::Picture::LockedView view) {
      view.description.ownBuffer = &gBuilt;
      view.context.bitsPerPixel = 16;
      view.buffer.valid = 0;
    };
    PictureWriter writer;
    EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 0);
    EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
    EXPECT_EQ(gBuilt.calls, 0);
    EXPECT_EQ(host.LeftOver().size(), row.stays ? 1u : 0u);
  }
}

// ---- With a pixel map -------------------------------------------------------------------------

int gMapsUnlocked = 0;
void CountUnlock(PixMap**) { ++gMapsUnlocked; }

TEST(RenderPictureWriter, UnlocksThePixelMapWithTheRelease) {
  LinkedHost host(Desktop());
  host.KnowKind();
  gMapsUnlocked = 0;
  platform::BundleScript script;
  script.function = reinterpret_cast<void*>(&CountUnlock);
  platform::SetBundleScript(script);
  host::Picture* picture = host.Make(Context(2, 2));
  {
    PictureWriter writer;
    ASSERT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
    PixMap* map = nullptr;
    writer.pixMap = &map;
    EXPECT_EQ(writer.RenderPictureWriter(), HandleOf(picture));
    EXPECT_EQ(gMapsUnlocked, 1);
    EXPECT_EQ(writer.pixMap, nullptr);
  }
  EXPECT_EQ(gMapsUnlocked, 1);
  platform::ClearBundleScript();
}

}  // namespace
