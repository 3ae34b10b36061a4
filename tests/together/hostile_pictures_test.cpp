// Hosts whose pictures are not what they say: every method, through the shared object, must give
// its failure result or keep within the pixels that there are. All pixels are guarded.
#include <gtest/gtest.h>

#include <climits>

#include "tests/oracles/blur.h"
#include "tests/oracles/draw_picture.h"
#include "tests/oracles/fast_scale.h"
#include "tests/oracles/resample.h"
#include "tests/oracles/smooth_enlarge.h"
#include "tests/together/hostile_host.h"

namespace together {

namespace {

using host::ApplicationKind;
using oracle::Image;
using View = host::Picture::LockedView;

struct Lie {
  const char* what;
  ApplicationKind kind;
  void (*tell)(View);
};

// No pixels at all, or rows of fewer bytes than their pixels need.
const Lie kLies[] = {
    {"no data", ApplicationKind::kDesktop, [](View view) { view.context.data = nullptr; }},
    {"a byte too few in a row", ApplicationKind::kDesktop,
     [](View view) { view.context.bytesPerRow = view.context.width * 4 - 1; }},
    {"rows of no bytes", ApplicationKind::kDesktop,
     [](View view) { view.context.bytesPerRow = 0; }},
    {"a column more than a row has", ApplicationKind::kDesktop,
     [](View view) { view.context.width = view.context.bytesPerRow / 4 + 1; }},
    {"no handle", ApplicationKind::kDesktop, [](View view) { view.description.handle = nullptr; }},
    {"no row table", ApplicationKind::kConsole, [](View view) { view.buffer.rowTable = nullptr; }},
    {"no row 0", ApplicationKind::kConsole,
     [](View view) {
       static unsigned char* rows[64] = {};
       view.buffer.rowTable = rows;
     }},
    {"a row of -1 pixels", ApplicationKind::kConsole,
     [](View view) { view.description.width = -1; }},
    {"a row of 2^30 pixels", ApplicationKind::kConsole,
     [](View view) { view.description.width = 1 << 30; }},
    {"2^31-1 columns", ApplicationKind::kConsole,
     [](View view) { view.description.width = INT_MAX; }},
    {"no handle", ApplicationKind::kConsole, [](View view) { view.description.handle = nullptr; }},
};

TEST(HostilePictures, AReceiverWithoutUsablePixelsFails) {
  for (const Lie& lie : kLies) {
    for (const Method& method : kMethods) {
      for (const bool hasAlpha : {false, true}) {
        SCOPED_TRACE(std::string(method.Text()) + ": " + lie.what);
        HostileHost host(lie.kind, hasAlpha);
        host.receiver->distort = lie.tell;
        // An alpha channel is first drawn into a new, honest picture.
        const bool converted = hasAlpha && method.name == std::string("ScaleImageAndMaskZVQ");
        const host::CallReport report = host.Call(method);
        EXPECT_EQ(support::Complaints(report), "");
        EXPECT_EQ(Failed(report), !converted);
        host.ExpectReceiverUnchanged();
      }
    }
  }
}

TEST(HostilePictures, ADrawnPictureOrAMaskWithoutUsablePixelsFailsTheDrawing) {
  for (const Lie& lie : kLies) {
    for (const bool isMask : {false, true}) {
      SCOPED_TRACE(lie.what);
      HostileHost host(lie.kind, false);
      (isMask ? host.mask : host.picture)->distort = lie.tell;
      if (isMask) host.plugin.Host().SetMask(host.picture, host.mask);
      const host::CallReport report = host.Call(kDraw);
      EXPECT_EQ(support::Complaints(report), "");
      EXPECT_EQ(report.result, host::Value(false));
      EXPECT_TRUE(host.plugin.Host().Raised().empty());
      host.ExpectReceiverUnchanged();
    }
  }
}

TEST(HostilePictures, AMaskWithoutUsablePixelsIsLeftOut) {
  for (const Lie& lie : kLies) {
    for (const Method& method : {kBothFast, kBothSmooth}) {
      SCOPED_TRACE(lie.what);
      HostileHost host(lie.kind, false);
      host.mask->distort = lie.tell;
      host.plugin.Host().SetMask(host.receiver, host.mask);
      const host::CallReport report = host.Call(method);
      EXPECT_EQ(support::Complaints(report), "");
      ASSERT_NE(report.ResultPicture(), nullptr);
      EXPECT_EQ(report.ResultPicture()->Mask(), nullptr);
      EXPECT_EQ(support::Difference(host.Expected(method, host.NewFormat(), kNewWidth, kNewHeight),
                                    support::ImageOf(*report.ResultPicture())),
                "");
    }
  }
}

TEST(HostilePictures, ANewPictureWithoutUsablePixelsFails) {
  for (const Lie& lie : kLies) {
    for (const Method& method : kMethods) {
      if (method.name == std::string("DrawPictureFZVQ")) continue;  // makes none
      for (const bool hasAlpha : {false, true}) {
        SCOPED_TRACE(std::string(method.Text()) + ": " + lie.what);
        HostileHost host(lie.kind, hasAlpha);
        host.DistortNewPictures(lie.tell);
        const host::CallReport report = host.Call(method);
        EXPECT_EQ(support::Complaints(report), "");
        EXPECT_EQ(report.result, host::Value());
        host.ExpectReceiverUnchanged();
      }
    }
  }
}

// Sizes of the picture that the host makes, beside the one that it is asked for.
struct OtherSize {
  int moreColumns, moreRows;
};
constexpr OtherSize kNarrower[] = {{-1, 0}, {-6, 0}, {-1, 5}, {-1, -1}, {-6, -5}, {-3, 100}};
constexpr OtherSize kNotNarrower[] = {{0, -1}, {0, -3}, {0, 1}, {1, 0},  {3, 0},
                                      {2, -2}, {1, -3}, {5, 4}, {0, 50}, {100, 0}};

TEST(HostilePictures, ANarrowerNewPictureFails) {
  for (const ApplicationKind kind : kKinds) {
    for (const OtherSize& size : kNarrower) {
      for (const Method& method : kPictureMakers) {
        for (const bool hasAlpha : {false, true}) {
          SCOPED_TRACE(method.Text());
          HostileHost host(kind, hasAlpha);
          host.ResizeNewPictures(size.moreColumns, size.moreRows);
          const host::CallReport report = host.Call(method);
          EXPECT_EQ(support::Complaints(report), "");
          EXPECT_EQ(report.result, host::Value());
          host.ExpectReceiverUnchanged();
        }
      }
    }
  }
}

// Rows beyond a shorter one are written to its first row; what lies beyond the request in a larger
// one stays as it was.
TEST(HostilePictures, AnyOtherNewPictureIsFilledWithinItsSize) {
  for (const ApplicationKind kind : kKinds) {
    for (const OtherSize& size : kNotNarrower) {
      for (const Method& method : kPictureMakers) {
        for (const bool hasAlpha : {false, true}) {
          SCOPED_TRACE(std::string(method.Text()) + (hasAlpha ? ", alpha, " : ", ") +
                       std::to_string(size.moreColumns) + ", " + std::to_string(size.moreRows));
          HostileHost host(kind, hasAlpha);
          host.ResizeNewPictures(size.moreColumns, size.moreRows);
          const host::CallReport report = host.Call(method);
          EXPECT_EQ(support::Complaints(report), "");
          const host::Picture* result = report.ResultPicture();
          ASSERT_NE(result, nullptr);
          const int format = result->PixelFormat();
          const Image expected =
              host.Expected(method, format, result->Width(), result->Height(), host.Fill(*result));
          EXPECT_EQ(support::Difference(expected, support::ImageOf(*result)), "");
          EXPECT_EQ(result->DamagedPadding(), 0u);
          host.ExpectReceiverUnchanged();
        }
      }
    }
  }
}

// Only the scaled mask, which is the second new picture, has another size.
TEST(HostilePictures, AScaledMaskOfAnotherSizeIsLeftOutOrDrawnAsFarAsItGoes) {
  for (const ApplicationKind kind : kKinds) {
    for (const OtherSize& size :
         {OtherSize{-1, 0}, OtherSize{-6, 3}, OtherSize{0, -2}, OtherSize{0, 3}, OtherSize{4, 0}}) {
      for (const Method& method : {kBothFast, kBothSmooth}) {
        SCOPED_TRACE(std::to_string(size.moreColumns) + ", " + std::to_string(size.moreRows));
        HostileHost host(kind, false);
        host.plugin.Host().SetMask(host.receiver, host.mask);
        host.ResizeNewPictures(size.moreColumns, size.moreRows, 2);
        const host::CallReport report = host.Call(method);
        EXPECT_EQ(support::Complaints(report), "");
        const host::Picture* result = report.ResultPicture();
        ASSERT_NE(result, nullptr);
        const Image picture = host.Expected(method, host.NewFormat(), kNewWidth, kNewHeight);
        EXPECT_EQ(support::Difference(picture, support::ImageOf(*result)), "");
        ASSERT_EQ(result->Mask() != nullptr, size.moreColumns >= 0);
        if (result->Mask() == nullptr) continue;
        const int rows = kNewHeight + size.moreRows;
        const Image scaled = host.ExpectedOf(host.maskImage, method, host.NewFormat(),
                                             kNewWidth + size.moreColumns, rows);
        for (int y = 0; y < kNewHeight; ++y) {
          for (int x = 0; x < kNewWidth; ++x) {
            const host::Rgba black;
            ASSERT_EQ(result->Mask()->Get(x, y),
                      y < rows ? host::ColourOfWord(scaled.At(x, y), scaled.format, false) : black)
                << x << ", " << y;
          }
        }
      }
    }
  }
}

// The alpha channel's picture is drawn into a temporary one, the first new picture.
TEST(HostilePictures, ATemporaryPictureOfAnotherSizeIsScaledFromItsSize) {
  for (const ApplicationKind kind : kKinds) {
    for (const OtherSize& size : {OtherSize{-4, -3}, OtherSize{-6, 0}, OtherSize{0, -5},
                                  OtherSize{3, 0}, OtherSize{2, 7}}) {
      HostileHost host(kind, true);
      host.ResizeNewPictures(size.moreColumns, size.moreRows, 1);
      host::Picture* drawn = host.DrawnCopy(kNewWidth + size.moreColumns,
                                            kNewHeight + size.moreRows, kNewWidth, kNewHeight);
      const host::CallReport report = host.Call(kBothFast);
      EXPECT_EQ(support::Complaints(report), "");
      ASSERT_NE(report.ResultPicture(), nullptr);
      EXPECT_EQ(support::Difference(host.ExpectedOf(support::ImageOf(*drawn), kBothFast,
                                                    host.NewFormat(), kNewWidth, kNewHeight),
                                    support::ImageOf(*report.ResultPicture())),
                "");
    }
  }
}

// A desktop's opaque picture that cannot be locked is drawn into a private copy of it.
TEST(HostilePictures, APrivateCopyOfAnotherSizeIsReadWithinItsSize) {
  for (const OtherSize& size :
       {OtherSize{-1, 0}, OtherSize{-4, -3}, OtherSize{0, -2}, OtherSize{3, 0}, OtherSize{2, 5}}) {
    for (const Method& method : kPictureMakers) {
      SCOPED_TRACE(method.Text());
      HostileHost host(ApplicationKind::kDesktop, false);
      const int width = kWidth + size.moreColumns;
      const int height = kHeight + size.moreRows;
      host.receiver->refuseLocks = true;
      host::Picture* drawn = host.DrawnCopy(width, height, kWidth, kHeight);
      host.ResizeNewPictures(size.moreColumns, size.moreRows, 1);
      const host::CallReport report = host.Call(method);
      EXPECT_EQ(support::Complaints(report), "");
      const host::Picture* result = report.ResultPicture();
      ASSERT_NE(result, nullptr);
      EXPECT_EQ(
          support::Difference(host.ExpectedOf(support::ImageOf(*drawn), method, host.NewFormat(),
                                              result->Width(), result->Height()),
                              support::ImageOf(*result)),
          "");
    }
  }
}

// What is locked is smaller than "Width" and "Height" say: its right bottom corner, flush against
// the guards.
TEST(HostilePictures, ASmallerLockThanItsPropertiesSayIsKeptTo) {
  for (const ApplicationKind kind : kKinds) {
    for (const OtherSize& size : {OtherSize{-1, 0}, OtherSize{0, -1}, OtherSize{-4, -3}}) {
      for (const Method& method : kMethods) {
        SCOPED_TRACE(method.Text());
        HostileHost host(kind, false);
        const Image corner =
            host.LockCornerOnly(kWidth + size.moreColumns, kHeight + size.moreRows);
        const host::CallReport report = host.Call(method);
        EXPECT_EQ(support::Complaints(report), "");
        if (method.name == std::string("DrawPictureFZVQ")) {
          Image expected = corner;
          oracle::DrawPicture(expected, host.pictureImage, nullptr, 0.5, 0.25, 0.75);
          EXPECT_EQ(report.result, host::Value(true));
          EXPECT_EQ(support::Difference(expected, host.Corner(corner.width, corner.height)), "");
          continue;
        }
        const host::Picture* result = report.ResultPicture();
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(support::Difference(host.ExpectedOf(corner, method, host.NewFormat(),
                                                      result->Width(), result->Height()),
                                      support::ImageOf(*result)),
                  "");
      }
    }
  }
}

}  // namespace

}  // namespace together
