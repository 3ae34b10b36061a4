// Hosts whose locks hand out less than they promise: nothing outside the pixels may be touched.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "pixels/picture_copy.h"
#include "pixels/picture_editor.h"
#include "tests/pixels/linked_host.h"

namespace {

using namespace pixels_test;
using View = host::Picture::LockedView;

constexpr std::size_t kAll = ~std::size_t{0};

void ExpectRefused(const host::RuntimeOptions& options, const host::PictureSpec& spec,
                   const std::string& what, const std::function<void(View)>& distort) {
  for (const bool writable : {false, true}) {
    LinkedHost host(options);
    host.KnowKind();
    host::Picture* picture = host.Make(spec);
    picture->distort = distort;
    {
      PictureEditor editor;
      EXPECT_EQ(editor.GetPictureEditor(HandleOf(picture), !writable, writable), 0) << what;
      const std::string type = spec.storage == host::Storage::kHostBuffer ? "10" : "8";
      const std::string alpha = spec.hasAlphaChannel ? "true" : "false";
      EXPECT_EQ(host.Calls(),
                (Lines{"REALGetPropValueBool(Picture#1, \"HasAlphaChannel\") = " + alpha,
                       "REALLockPictureDescription(Picture#1, " + type + ") = 1",
                       "unlockPictureDescription(Picture#1)"}))
          << what;
    }
    EXPECT_EQ(host.Calls(), Lines{}) << what;
    EXPECT_EQ(host.LeftOver(), Lines{}) << what;
  }
}

TEST(UncountedReferences, AHostThatCannotCountThemGetsNoLockAndNoRelease) {
  const std::pair<host::RuntimeOptions, host::PictureSpec> rows[] = {
      {Desktop(), Context(3, 2)}, {Desktop(), AlphaContext(3, 2)}, {Console(), Buffer(3, 2)}};
  for (const auto& [options, spec] : rows) {
    for (const bool writable : {false, true}) {
      LinkedHost host(options);
      host.KnowKind();
      host.runtime.Withhold("REALLockObject");
      host::Picture* picture = host.Make(spec);
      {
        PictureEditor editor;
        EXPECT_EQ(editor.GetPictureEditor(HandleOf(picture), !writable, writable), 0);
        EXPECT_EQ(host.Calls().back(), "unlockPictureDescription(Picture#1)");
      }
      EXPECT_EQ(host.Calls(), Lines{});
      EXPECT_EQ(host.LeftOver(), Lines{});
    }
  }
}

TEST(HostileContext, WithoutPixelsOrWithShortRowsIsUnlockedAndRefused) {
  const struct {
    const char* what;
    void (*distort)(CGContext&);
  } rows[] = {
      {"no data", [](CGContext& context) { context.data = nullptr; }},
      {"rows of 0 bytes", [](CGContext& context) { context.bytesPerRow = 0; }},
      {"rows of 11 bytes", [](CGContext& context) { context.bytesPerRow = 11; }},
      {"a pixel more than a row has", [](CGContext& context) { context.width = 4; }},
      {"no columns", [](CGContext& context) { context.width = 0; }},
      {"no rows", [](CGContext& context) { context.height = 0; }},
      {"a width whose bytes wrap to 4", [](CGContext& context) { context.width = kAll / 4 + 2; }},
      {"a width of -1", [](CGContext& context) { context.width = kAll; }},
      {"a height of -1", [](CGContext& context) { context.height = kAll; }},
      {"rows of -1 bytes", [](CGContext& context) { context.bytesPerRow = kAll; }},
      {"rows of 2^31 bytes",
       [](CGContext& context) { context.bytesPerRow = std::size_t{1} << 31; }},
      {"2^29 columns",
       [](CGContext& context) {
         context.width = std::size_t{1} << 29;
         context.bytesPerRow = std::size_t{1} << 31;
       }},
      {"2^31 rows", [](CGContext& context) { context.height = std::size_t{1} << 31; }},
  };
  for (const auto& row : rows) {
    const auto distort = [&](View view) { row.distort(view.context); };
    ExpectRefused(Desktop(), Context(3, 2), row.what, distort);
    ExpectRefused(Desktop(), AlphaContext(3, 2), row.what, distort);
  }
}

TEST(HostileContext, OfExactlyItsRowsIsAccepted) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(3, 2));
  picture->distort = [](View view) { view.context.bytesPerRow = 12; };
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
}

TEST(HostileContext, ARefusedAlphaInfoComesBeforeMissingPixelsAndStaysLocked) {
  LinkedHost host(Desktop());
  host.KnowKind();
  host::Picture* picture = host.Make(Context(3, 2, 0));
  picture->distort = [](View view) { view.context.data = nullptr; };
  PictureReader reader;
  EXPECT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 0);
  EXPECT_EQ(host.runtime.Book().DescriptionLocks(picture), 1);
}

TEST(HostileBuffer, WithoutRowsOrOfImpossibleSizeIsUnlockedAndRefused) {
  static unsigned char* noRows[2] = {nullptr, nullptr};
  const struct {
    const char* what;
    void (*distort)(View);
  } rows[] = {
      {"no row table", [](View view) { view.buffer.rowTable = nullptr; }},
      {"no row 0", [](View view) { view.buffer.rowTable = noRows; }},
      {"no columns", [](View view) { view.description.width = 0; }},
      {"no rows", [](View view) { view.description.height = 0; }},
      {"a width of -1", [](View view) { view.description.width = -1; }},
      {"a height of -1", [](View view) { view.description.height = -1; }},
      {"a width of -2^31", [](View view) { view.description.width = INT32_MIN; }},
      {"a height of -2^31", [](View view) { view.description.height = INT32_MIN; }},
      {"2^29 columns", [](View view) { view.description.width = 1 << 29; }},
      {"2^30 columns", [](View view) { view.description.width = 1 << 30; }},
      {"2^31-1 columns", [](View view) { view.description.width = INT32_MAX; }},
  };
  for (const auto& row : rows) {
    ExpectRefused(Console(), Buffer(3, 2), row.what, row.distort);
    host::PictureSpec alpha = Buffer(3, 2);
    alpha.hasAlphaChannel = true;
    ExpectRefused(Console(), alpha, row.what, row.distort);
  }
}

TEST(HostilePicture, LockingAndReleasingTouchNoPixel) {
  unsigned char* const nowhere = reinterpret_cast<unsigned char*>(std::uintptr_t{64});
  static unsigned char* nowhereRows[2];
  nowhereRows[0] = nowhereRows[1] = nowhere;
  for (const bool console : {false, true}) {
    LinkedHost host(console ? Console() : Desktop());
    host.KnowKind();
    host::Picture* picture = host.Make(console ? Buffer(3, 2) : Context(3, 2));
    picture->distort = [&](View view) {
      view.context.data = nowhere;
      view.buffer.rowTable = nowhereRows;
    };
    {
      PictureWriter writer;
      EXPECT_EQ(writer.GetPictureEditor(HandleOf(picture), 0, 1), 1);
      EXPECT_EQ(writer.base, nowhere);
      writer.GoToRow(1);
      EXPECT_EQ(writer.RenderPictureWriter(), HandleOf(picture));
    }
    EXPECT_EQ(host.LeftOver(picture), Lines{});
  }
}

// Sums every pixel of the locked size, row by row, and two rows more.
std::uint32_t SumOf(PictureEditor& editor) {
  std::uint32_t sum = 0;
  for (int row = 0; row < editor.height + 2; ++row) {
    editor.GoToRow(row);
    for (int x = 0; x < editor.width; ++x) sum += editor.cursor[x];
  }
  return sum;
}

// The locked pixels end flush against the guard at the picture's end.
TEST(HostilePicture, SmallerThanItsPropertiesSayIsReadWithinItsLockedSize) {
  const struct { int width, height; } rows[] = {{2, 3}, {6, 1}, {1, 5}, {1, 1}};
  for (const auto& row : rows) {
    for (const bool console : {false, true}) {
      LinkedHost host(console ? Console() : Desktop());
      host.KnowKind();
      host::PictureSpec spec = console ? Buffer(6, 5) : Context(6, 5);
      spec.guard = host::Guard::kAfter;
      host::Picture* picture = host.Make(spec);
      Number(*picture);
      const int firstX = 6 - row.width;
      const int firstY = 5 - row.height;
      std::vector<unsigned char*> table;
      for (int y = firstY; y < 5; ++y) table.push_back(picture->Row(y) + 4 * firstX);
      picture->distort = [&](View view) {
        view.context.data = table[0];
        view.context.width = static_cast<std::size_t>(row.width);
        view.context.height = static_cast<std::size_t>(row.height);
        view.description.width = row.width;
        view.description.height = row.height;
        view.buffer.rowTable = table.data();
      };
      std::uint32_t expected = 0;
      for (int y = firstY; y < 5; ++y) {
        for (int x = firstX; x < 6; ++x) expected += NumberAt(x, y);
      }
      for (int x = firstX; x < 6; ++x) expected += 2 * NumberAt(x, firstY);
      PictureReader reader;
      ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
      EXPECT_EQ(SumOf(reader), expected);
    }
  }
}

TEST(HostilePicture, TheGuardsOfTheseTestsFaultOnePixelOutside) {
  for (const bool console : {false, true}) {
    LinkedHost host(console ? Console() : Desktop());
    host.KnowKind();
    host::PictureSpec spec = console ? Buffer(3, 2) : Context(3, 2);
    spec.guard = host::Guard::kAfter;
    host::Picture* picture = host.Make(spec);
    PictureReader reader;
    ASSERT_EQ(reader.GetPictureEditor(HandleOf(picture), 1, 0), 1);
    reader.GoToRow(1);
    volatile const std::uint32_t* pixels = reader.cursor;
    // A checker that translates the program drops a read whose value nobody uses.
    EXPECT_DEATH(EXPECT_EQ(pixels[3], 0U), "");
  }
}

TEST(HostileCopy, OfSizesThatAreNegativeTouchesNothing) {
  const struct {
    std::uintptr_t width, height;
  } rows[] = {{~std::uintptr_t{0}, 2},
              {static_cast<std::uintptr_t>(INT32_MIN), 1},
              {3, ~std::uintptr_t{0}},
              {3, static_cast<std::uintptr_t>(INT32_MIN)}};
  for (const auto& row : rows) {
    LinkedHost host(Console());
    host::PictureSpec spec = Buffer(3, 2);
    spec.guard = host::Guard::kAfter;
    host::Picture* src = host.runtime.NewPicture(spec);
    Number(*src);
    host::Picture* dst = host.Make(spec);
    src->distort = dst->distort = [&](View view) {
      view.buffer.width = row.width;
      view.buffer.height = row.height;
    };
    OwnCopy(HandleOf(dst), HandleOf(src), 0, 0, 3, 2, 0, 0, 3, 2);
    EXPECT_EQ(dst->Word(0, 0), 0x00FFFFFFu);
    EXPECT_EQ(dst->Word(2, 1), 0x00FFFFFFu);
    EXPECT_EQ(host.LeftOver(), Lines{});
  }
}

}  // namespace
