#include <gtest/gtest.h>

#include "tests/host/entry_access.h"

namespace host {
namespace {

class HostMethods : public testing::Test {
 protected:
  template <typename Method>
  Method* Load(const void* handle, const char* declaration) {
    return reinterpret_cast<Method*>(EntryOf<REALLoadObjectMethodEntry>("REALLoadObjectMethod")(
        const_cast<void*>(handle), declaration));
  }
  REALpicture NewInstance() {
    return static_cast<REALpicture>(
        EntryOf<PluginNewInstanceEntry>("PluginNewInstance")("Picture"));
  }
  void Construct(REALpicture picture, int width, int height) {
    Load<ConstructorMethod>(picture, kConstructorDeclaration)(picture, width, height);
  }
  Runtime runtime_;
};

TEST_F(HostMethods, TheConstructorGivesPixelsWithAnAlphaChannel) {
  const REALpicture handle = NewInstance();
  Construct(handle, 40000, 2);
  const auto* picture = ObjectOf<Picture>(handle);
  EXPECT_EQ(picture->Width(), 40000) << "no limit but memory";
  EXPECT_EQ(picture->Height(), 2);
  EXPECT_TRUE(picture->HasAlphaChannel());
  EXPECT_EQ(picture->PixelFormat(), 2);
  EXPECT_EQ(picture->Get(0, 0).a, 0);
  EXPECT_EQ(runtime_.Calls().Calls().back(), "Picture#1.Constructor(40000, 2)");
  Construct(handle, 1, 1);
  EXPECT_TRUE(LastViolationSays(runtime_, "constructed before"));
  EXPECT_EQ(picture->Width(), 40000);
}

TEST_F(HostMethods, TheConstructorLeavesImpossibleSizesWithoutPixels) {
  const std::pair<int, int> sizes[] = {{0, 5}, {5, -1}, {0x7FFFFFFF, 0x7FFFFFFF}, {100000, 100000}};
  for (const auto& [width, height] : sizes) {
    const REALpicture handle = NewInstance();
    Construct(handle, width, height);
    EXPECT_FALSE(ObjectOf<Picture>(handle)->HasPixels());
    REALpictureDescription description{};
    EXPECT_EQ(EntryOf<REALLockPictureDescriptionEntry>("REALLockPictureDescription")(
                  handle, &description, 8),
              0);
  }
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

TEST_F(HostMethods, AdjustmentsReachConstructedPictures) {
  runtime_.adjustNewPicture = [](PictureSpec& spec) { spec.pixelFormat = 1; };
  const REALpicture handle = NewInstance();
  Construct(handle, 2, 2);
  EXPECT_EQ(ObjectOf<Picture>(handle)->PixelFormat(), 1);
}

TEST_F(HostMethods, DrawPictureDrawsIntoTheGraphicsPicture) {
  PictureSpec spec;
  spec.fill = {10, 20, 30, 255};
  Picture* source = runtime_.NewPicture(spec);
  Picture* target = runtime_.NewPicture({});
  const auto graphics =
      EntryOf<PluginPictureGraphicsGetterEntry>("pluginPictureGraphicsGetter")(Handle(target));
  const auto draw = Load<DrawPictureMethod>(graphics, kDrawPictureDeclaration);
  draw(graphics, Handle(source), 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(target->Get(0, 0), (Rgba{10, 20, 30, 255}));
  EXPECT_EQ(runtime_.Calls().Calls().back(),
            "Graphics#3.DrawPicture(Picture#1, 0, 0, 1, 1, 0, 0, 1, 1)");
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  draw(graphics, nullptr, 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(runtime_.Book().Violations().size(), 1u);
  runtime_.Release(target);
  draw(graphics, Handle(source), 0, 0, 1, 1, 0, 0, 1, 1);
  EXPECT_TRUE(LastViolationSays(runtime_, "Picture#2, which it draws into, is gone"));
}

TEST_F(HostMethods, CopyMaskTurnsTheAlphaChannelIntoAMask) {
  PictureSpec spec;
  spec.width = 2;
  spec.pixelFormat = 2;
  spec.hasAlphaChannel = true;
  spec.fill = {0, 0, 0, 255};
  Picture* picture = runtime_.NewPicture(spec);
  picture->Set(1, 0, {255, 255, 255, 55});
  const auto copyMask = Load<CopyMaskMethod>(Handle(picture), kCopyMaskDeclaration);
  const auto* mask = ObjectOf<Picture>(copyMask(Handle(picture)));
  ASSERT_NE(mask, nullptr);
  EXPECT_EQ(mask->Get(0, 0), (Rgba{0, 0, 0, 255}));
  EXPECT_EQ(mask->Get(1, 0), (Rgba{200, 200, 200, 255}));
  EXPECT_EQ(mask->References(), 1);
  EXPECT_FALSE(mask->HasAlphaChannel());
}

TEST_F(HostMethods, CopyMaskOfAnOpaquePictureCopiesItsMask) {
  Picture* picture = runtime_.NewPicture({});
  const auto copyMask = Load<CopyMaskMethod>(Handle(picture), kCopyMaskDeclaration);
  EXPECT_EQ(copyMask(Handle(picture)), nullptr);
  PictureSpec spec;
  spec.fill = {70, 70, 70, 255};
  runtime_.SetMask(picture, runtime_.NewPicture(spec));
  const auto* copy = ObjectOf<Picture>(copyMask(Handle(picture)));
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, picture->Mask());
  EXPECT_EQ(copy->Get(0, 0), (Rgba{70, 70, 70, 255}));
}

TEST_F(HostMethods, AssigningAMaskTakesAReferenceOfItsOwn) {
  Picture* picture = runtime_.NewPicture({});
  Picture* mask = runtime_.NewPicture({});
  const auto assign = Load<AssignMaskMethod>(Handle(picture), kAssignMaskDeclaration);
  assign(Handle(picture), Handle(mask));
  EXPECT_EQ(picture->Mask(), mask);
  EXPECT_EQ(mask->References(), 2);
  assign(Handle(picture), Handle(mask));
  EXPECT_EQ(mask->References(), 2) << "the same again";
  runtime_.Release(mask);
  EXPECT_TRUE(mask->Alive());
  assign(Handle(picture), nullptr);
  EXPECT_EQ(picture->Mask(), nullptr);
  EXPECT_FALSE(mask->Alive());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
  assign(Handle(picture), Handle(picture));
  EXPECT_TRUE(LastViolationSays(runtime_, "its own mask"));
}

TEST_F(HostMethods, AreInterceptedByTheirNames) {
  std::vector<std::string> names;
  const REALpicture handle = NewInstance();
  const auto constructor = Load<ConstructorMethod>(handle, kConstructorDeclaration);
  const auto copyMask = Load<CopyMaskMethod>(handle, kCopyMaskDeclaration);
  const auto assign = Load<AssignMaskMethod>(handle, kAssignMaskDeclaration);
  runtime_.intercept = [&](const EntryCall& call) {
    names.push_back(call.entry);
    return Verdict::kFail;
  };
  constructor(handle, 3, 3);
  EXPECT_EQ(copyMask(handle), nullptr);
  assign(handle, handle);
  EXPECT_EQ(names, (std::vector<std::string>{"Constructor", "CopyMask", "Mask"}));
  EXPECT_FALSE(ObjectOf<Picture>(handle)->HasPixels());
  EXPECT_TRUE(runtime_.Book().Violations().empty());
}

}  // namespace
}  // namespace host
