#include "host/runtime.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/host/entry_access.h"

namespace host {
namespace {

TEST(Runtime, ThereIsOneAtATime) {
  EXPECT_THROW(Runtime::Current(), std::logic_error);
  {
    Runtime runtime;
    EXPECT_EQ(&Runtime::Current(), &runtime);
    EXPECT_THROW(Runtime second, std::logic_error);
    EXPECT_EQ(&Runtime::Current(), &runtime);
  }
  Runtime again;
  EXPECT_EQ(&Runtime::Current(), &again);
}

TEST(Runtime, HasTheClassesOfItsApplicationKind) {
  const std::pair<ApplicationKind, const char*> rows[] = {
      {ApplicationKind::kDesktop, "Application"},
      {ApplicationKind::kWeb, "WebApplication"},
      {ApplicationKind::kConsole, "ConsoleApplication"},
      {ApplicationKind::kNone, ""},
  };
  for (const auto& [kind, own] : rows) {
    RuntimeOptions options;
    options.kind = kind;
    Runtime runtime(options);
    for (const std::string name : {"Application", "WebApplication", "ConsoleApplication"}) {
      EXPECT_EQ(runtime.HasClass(name), name == own) << name;
    }
    EXPECT_TRUE(runtime.HasClass("Picture"));
    EXPECT_TRUE(runtime.HasClass("Graphics"));
    EXPECT_FALSE(runtime.HasClass("Canvas"));
    EXPECT_FALSE(runtime.HasClass(""));
    runtime.RemoveClass("Picture");
    EXPECT_FALSE(runtime.HasClass("Picture"));
  }
}

TEST(Runtime, NewPicturesFollowTheOptions) {
  RuntimeOptions options;
  options.newPixelFormat = 5;
  options.alphaPixelFormat = 1;
  options.newRowPadding = 12;
  options.newGuard = Guard::kAfter;
  options.newFill = {1, 2, 3, 255};
  options.newAlphaFill = {4, 5, 6, 7};
  for (const auto kind : {ApplicationKind::kDesktop, ApplicationKind::kNone,
                          ApplicationKind::kConsole, ApplicationKind::kWeb}) {
    options.kind = kind;
    Runtime runtime(options);
    const bool buffer = kind == ApplicationKind::kConsole || kind == ApplicationKind::kWeb;
    const PictureSpec opaque = runtime.NewPictureSpec(3, 2);
    EXPECT_EQ(opaque.storage, buffer ? Storage::kHostBuffer : Storage::kBitmapContext);
    EXPECT_EQ(opaque.width, 3);
    EXPECT_EQ(opaque.height, 2);
    EXPECT_EQ(opaque.pixelFormat, 5);
    EXPECT_EQ(opaque.rowPadding, 12);
    EXPECT_EQ(opaque.guard, Guard::kAfter);
    EXPECT_EQ(opaque.fill, (Rgba{1, 2, 3, 255}));
    EXPECT_FALSE(opaque.hasAlphaChannel);
    const PictureSpec alpha = runtime.NewAlphaPictureSpec(3, 2);
    EXPECT_TRUE(alpha.hasAlphaChannel);
    EXPECT_EQ(alpha.pixelFormat, 1);
    EXPECT_EQ(alpha.storage, opaque.storage);
    EXPECT_EQ(alpha.fill, (Rgba{4, 5, 6, 7}));
    EXPECT_EQ(runtime.NewMaskSpec(3, 2).fill, (Rgba{0, 0, 0, 255}));
    EXPECT_FALSE(runtime.NewMaskSpec(3, 2).hasAlphaChannel);
  }
}

TEST(Runtime, AMaskBelongsToItsPicture) {
  Runtime runtime;
  Picture* picture = runtime.NewPicture({});
  Picture* mask = runtime.NewPicture({});
  Picture* other = runtime.NewPicture({});
  runtime.SetMask(picture, mask);
  EXPECT_EQ(picture->Mask(), mask);
  runtime.SetMask(picture, other);
  EXPECT_FALSE(mask->Alive());
  EXPECT_TRUE(other->Alive());
  runtime.SetMask(picture, nullptr);
  EXPECT_FALSE(other->Alive());
  EXPECT_EQ(picture->Mask(), nullptr);
  runtime.Release(picture);
  EXPECT_FALSE(picture->Alive());
  EXPECT_TRUE(runtime.Book().Violations().empty());
}

TEST(Runtime, TakersNameTheMethodTheEntryAndItsNumber) {
  Runtime runtime;
  EXPECT_EQ(runtime.Taker("newPicture"), "newPicture, call 0");
  runtime.EnterMethod("ScaleZVQ");
  const auto before = runtime.Book().Take();
  EntryOf<REALYieldToRBEntry>("REALYieldToRB")();
  EntryOf<NewPictureEntry>("newPicture")(1, 1, 32);
  EXPECT_EQ(runtime.Book().Differences(before, nullptr),
            std::vector<std::string>{
                "Picture#1 is left with a reference taken by ScaleZVQ: newPicture, call 2."});
  runtime.EnterMethod("BlurZVQ");
  EXPECT_EQ(runtime.Taker("x"), "BlurZVQ: x, call 2");
  runtime.LeaveMethod();
  EXPECT_EQ(runtime.Taker("x"), "ScaleZVQ: x, call 2");
  runtime.LeaveMethod();
}

}  // namespace
}  // namespace host
